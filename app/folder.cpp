#include "app/folder.h"

#include <dirent.h>
#include <fcntl.h>

#include <cerrno>
#include <memory>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "persist/temporary_file.h"

namespace catalogcore::app {
namespace {

namespace fs = std::filesystem;

constexpr char kTemporary[] = ".catalogcore-";

constexpr int kFolderFlags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;

// The process's umask. Reading the umask means setting it; a file that another thread creates at that moment is for its
// owner alone.
mode_t Umask() {
  static const mode_t mask = [] {
    const mode_t before = umask(0077);
    umask(before);
    return before;
  }();
  return mask;
}

FileDescriptor OpenMade(const fs::path& path) {
  std::error_code error;
  fs::create_directories(path, error);
  if (error) throw std::runtime_error("cannot make the folder " + path.string() + ": " + error.message());
  FileDescriptor folder(open(path.c_str(), kFolderFlags));
  if (folder.IsOpen()) return folder;
  error.assign(errno, std::generic_category());
  throw std::runtime_error("cannot read the folder " + path.string() + ": " + error.message());
}

// Errors are ignored: some file systems have no permissions.
void SetPermissions(int file, mode_t mode) { [[maybe_unused]] const int result = fchmod(file, mode); }

}  // namespace

mode_t Readers::Limit(gid_t group) const {
  mode_t mode = mode_ & 0066;
  // The members of another group are unknown, and get the permissions of everybody.
  if (group_ && *group_ != group) mode &= ((mode & 0006) << 3) | 0006;
  return 0600 | mode;
}

Folder::Folder(FileDescriptor descriptor, fs::path path) : path_(std::move(path)), descriptor_(std::move(descriptor)) {}

Folder::Folder(const fs::path& path) : Folder(OpenMade(path), path) {}

Folder Folder::Inner(const std::string& name) const {
  if (mkdirat(Descriptor(), name.c_str(), 0777) != 0 && errno != EEXIST) Fail("make", name, errno);
  FileDescriptor inner(openat(Descriptor(), name.c_str(), kFolderFlags | O_NOFOLLOW));
  if (inner.IsOpen()) return {std::move(inner), path_ / name};
  if (errno != ENOTDIR && errno != ELOOP) Fail("read", name, errno);
  throw std::runtime_error("cannot write into " + (path_ / name).string() +
                           ": a link, or no folder (move it away, and make the gallery again)");
}

std::optional<Folder> Folder::FindInner(const std::string& name) const {
  FileDescriptor inner(openat(Descriptor(), name.c_str(), kFolderFlags | O_NOFOLLOW));
  if (!inner.IsOpen()) return std::nullopt;
  return Folder(std::move(inner), path_ / name);
}

std::vector<std::string> Folder::Names() const {
  const FolderEntries entries = OpenEntries(Descriptor());
  if (!entries) Fail("read", "", errno);
  std::vector<std::string> names;
  while (const dirent* const entry = readdir(entries.get())) {
    const std::string_view name = entry->d_name;
    if (name != "." && name != "..") names.emplace_back(name);
  }
  return names;
}

std::optional<struct stat> Folder::FindFile(const std::string& name) const {
  struct stat status {};
  const bool isThere = fstatat(Descriptor(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0;
  return isThere && S_ISREG(status.st_mode) ? std::optional(status) : std::nullopt;
}

void Folder::Replace(const std::string& name, std::string_view content, const Readers& readers) const {
  TemporaryFile file(Descriptor(), kTemporary, 0600);
  if (!file.IsOpen() || !WriteAll(file.Descriptor(), content)) Fail("write", name, errno);
  struct stat status {};
  if (fstat(file.Descriptor(), &status) == 0) {
    SetPermissions(file.Descriptor(), readers.Limit(status.st_gid) & ~Umask());
  }
  if (!file.Rename(name)) Fail("write", name, errno);
}

void Folder::Restrict(const std::string& name, const Readers& readers) const {
  const FileDescriptor file = OpenRegularFile(Descriptor(), name, O_RDONLY | O_NOFOLLOW);
  struct stat status {};
  if (!file.IsOpen() || fstat(file.Get(), &status) != 0) return;
  const mode_t wider = status.st_mode & 0077 & ~readers.Limit(status.st_gid);
  if (wider != 0) SetPermissions(file.Get(), status.st_mode & 07777 & ~wider);
}

void Folder::Remove(const std::string& name) const { unlinkat(Descriptor(), name.c_str(), 0); }

void Folder::RemoveLeftovers() const { TemporaryFile::RemoveLeftovers(Descriptor(), kTemporary); }

bool Folder::IsTemporary(std::string_view name) { return TemporaryFile::IsTemporaryName(kTemporary, name); }

void Folder::Fail(const std::string& verb, const std::string& name, int code) const {
  throw std::runtime_error("cannot " + verb + ' ' + (name.empty() ? path_ : path_ / name).string() + ": " +
                           std::generic_category().message(code));
}

}  // namespace catalogcore::app
