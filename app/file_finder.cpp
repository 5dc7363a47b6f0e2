#include "app/file_finder.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <set>
#include <system_error>
#include <utility>

#include "app/gallery/gallery.h"
#include "app/picture.h"

namespace catalogcore::app {
namespace {

namespace fs = std::filesystem;

using Identity = std::pair<dev_t, ino_t>;

class Finder {
 public:
  Finder(const std::function<bool(std::size_t)>& stop,
         const std::function<void(const std::string&, const std::string&)>& report)
      : stop_(stop), report_(report) {}

  void Begin(const fs::path& name) {
    std::error_code error;
    const fs::file_status status = fs::status(name, error);
    if (!fs::exists(status)) return report_(name.string(), error ? error.message() : "No such file or directory");
    if (fs::is_directory(status)) return Folder(CatalogPath(name));
    found_.files.push_back(CatalogPath(name));
  }

  FoundFiles Result() {
    std::sort(found_.files.begin(), found_.files.end());
    found_.files.erase(std::unique(found_.files.begin(), found_.files.end()), found_.files.end());
    return std::move(found_);
  }

 private:
  // What can be reached in two ways is searched once, under its own name; what contains itself is a loop.
  void Folder(const fs::path& folder) {
    struct stat status {};
    if (stat(folder.c_str(), &status) != 0) {
      if (errno != ENOENT) report_(folder.string(), std::generic_category().message(errno));  // else gone meanwhile
      return;
    }
    const Identity identity(status.st_dev, status.st_ino);
    if (above_.count(identity) != 0) return report_(folder.string(), "a link that leads back to a folder above it");
    if (!searched_.insert(identity).second) return;
    above_.insert(identity);
    std::error_code error;
    fs::directory_iterator entries(fs::is_symlink(folder, error) ? fs::path(CatalogPath(folder)) : folder, error);
    std::vector<fs::path> folders;
    for (; !error && entries != fs::directory_iterator() && !Stops(); entries.increment(error)) {
      if (entries->path().filename().native().front() != '.') Entry(*entries, folders);
    }
    if (error) report_(folder.string(), error.message());
    for (const fs::path& inner : folders) {
      if (!Stops()) Folder(inner);
    }
    above_.erase(identity);
  }

  void Entry(const fs::directory_entry& entry, std::vector<fs::path>& folders) {
    std::error_code error;
    const fs::file_status status = entry.status(error);
    if (fs::is_directory(status)) {
      if (!fs::exists(entry.path() / kGalleryMark, error)) folders.push_back(entry.path());
    } else if (!fs::status_known(status)) {
      report_(entry.path().string(), error.message());
    } else if (HasPictureName(entry.path())) {
      if (!fs::exists(status)) return report_(entry.path().string(), "a link to nothing");
      found_.files.push_back(entry.is_symlink(error) ? CatalogPath(entry.path()) : entry.path().string());
    }
  }

  bool Stops() { return found_.isStopped = found_.isStopped || stop_(found_.files.size()); }

  const std::function<bool(std::size_t)>& stop_;
  const std::function<void(const std::string&, const std::string&)>& report_;
  FoundFiles found_;
  std::set<Identity> above_;
  std::set<Identity> searched_;
};

}  // namespace

std::string CatalogPath(const fs::path& file) {
  std::error_code error;
  const fs::path resolved = fs::weakly_canonical(fs::absolute(file, error), error);
  std::string path = (error ? fs::absolute(file).lexically_normal() : resolved).string();
  if (path.size() > 1 && path.back() == '/') path.pop_back();
  return path;
}

FoundFiles FindPictures(const std::vector<std::string>& names, const std::function<bool(std::size_t)>& stop,
                        const std::function<void(const std::string&, const std::string&)>& report) {
  Finder finder(stop, report);
  for (const std::string& name : names) finder.Begin(name);
  return finder.Result();
}

}  // namespace catalogcore::app
