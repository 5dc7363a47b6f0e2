#include "app/file_finder.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <set>
#include <system_error>
#include <utility>

#include "app/gallery/gallery.h"
#include "app/picture.h"
#include "app/text.h"

namespace catalogcore::app {
namespace {

namespace fs = std::filesystem;

using Identity = std::pair<dev_t, ino_t>;

constexpr std::size_t kLongestKind = 8;  // of an extension, which has only ASCII letters and digits
constexpr std::size_t kNamedKinds = 6;

// "PDF" for letter.pdf; empty for a name without an extension.
std::string KindOf(const fs::path& file) {
  std::string kind = file.extension().string().substr(file.has_extension() ? 1 : 0);
  const auto isPlain = [](char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
  };
  if (kind.size() > kLongestKind || !std::all_of(kind.begin(), kind.end(), isPlain)) return "";
  for (char& c : kind) c = static_cast<char>(c >= 'a' ? c - 'a' + 'A' : c);
  return kind;
}

class Finder {
 public:
  Finder(const std::function<bool(std::size_t)>& stop,
         const std::function<void(const std::string&, const std::string&)>& report)
      : stop_(stop), report_(report) {}

  void Begin(const fs::path& name) {
    std::error_code error;
    const fs::file_status status = fs::status(name, error);
    if (!fs::exists(status)) return report_(name.string(), error ? error.message() : "No such file or directory");
    const std::string path = CatalogPath(name);
    const std::string given = fs::absolute(name, error).lexically_normal().string();
    if (given != path && given != path + '/') found_.links.emplace(path, given);
    if (fs::is_directory(status)) return Folder(path);
    found_.files.push_back(path);
  }

  FoundFiles Result() {
    std::sort(found_.files.begin(), found_.files.end());
    found_.files.erase(std::unique(found_.files.begin(), found_.files.end()), found_.files.end());
    return std::move(found_);
  }

 private:
  // Searches a folder once, under its own name, however many links lead to it. Reports a link to a folder above.
  void Folder(const fs::path& folder) {
    struct stat status {};
    if (stat(folder.c_str(), &status) != 0) {
      if (errno != ENOENT) report_(folder.string(), std::generic_category().message(errno));  // else removed meanwhile
      return;
    }
    const Identity identity(status.st_dev, status.st_ino);
    if (above_.count(identity) != 0) return report_(folder.string(), "a link that leads back to a folder above it");
    if (!searched_.insert(identity).second) return;
    above_.insert(identity);
    std::error_code error;
    const bool isLink = fs::is_symlink(folder, error);
    const fs::path path = isLink ? fs::path(CatalogPath(folder)) : folder;
    if (isLink) found_.links.emplace(path.string(), folder.string());
    fs::directory_iterator entries(path, error);
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
      if (!entry.is_symlink(error)) return found_.files.push_back(entry.path().string());
      const std::string path = CatalogPath(entry.path());
      found_.links.emplace(path, entry.path().string());
      found_.files.push_back(path);
    } else if (fs::is_regular_file(status)) {
      ++found_.others[KindOf(entry.path())];
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

std::string FoundFiles::LinkTo(const std::string& file) const {
  for (fs::path above = file; above.has_relative_path(); above = above.parent_path()) {
    const auto link = links.find(above.string());
    if (link != links.end()) return link->second + file.substr(link->first.size());
  }
  return "";
}

std::string FoundFiles::Shown(const std::string& file) const {
  const std::string link = LinkTo(file);
  if (!link.empty()) return link + " -> " + file;
  std::error_code error;
  const std::string target = fs::read_symlink(file, error).string();
  return error ? file : file + " -> " + target;
}

std::string OtherKinds(const std::map<std::string, std::size_t>& others) {
  std::vector<std::pair<std::string, std::size_t>> kinds(others.begin(), others.end());
  std::stable_sort(kinds.begin(), kinds.end(), [](const auto& a, const auto& b) { return a.second > b.second; });
  std::size_t all = 0;
  std::size_t named = 0;
  std::string list;
  for (std::size_t i = 0; i < kinds.size(); ++i) {
    const auto& [kind, count] = kinds[i];
    all += count;
    if (i >= kNamedKinds) continue;
    named += count;
    list += (i == 0 ? ": " : ", ") + Grouped(count) + ' ' + (kind.empty() ? "without extension" : kind);
  }
  if (all == 0) return "";
  if (all > named) list += ", " + Grouped(all - named) + " more";
  return "Passed over " + Counted(all, "file") + " of other kinds" + list;
}

FoundFiles FindPictures(const std::vector<std::string>& names, const std::function<bool(std::size_t)>& stop,
                        const std::function<void(const std::string&, const std::string&)>& report) {
  Finder finder(stop, report);
  for (const std::string& name : names) finder.Begin(name);
  return finder.Result();
}

}  // namespace catalogcore::app
