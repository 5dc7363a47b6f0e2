#include "app/folder.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <system_error>

namespace catalogcore::app {
namespace {

namespace fs = std::filesystem;

// A temporary file is called ".catalogcore-PID-COUNT". While its writer lives it is locked.
constexpr std::string_view kTemporary = ".catalogcore-";
constexpr std::string_view kDigits = "0123456789";

constexpr int kFolderFlags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;

struct CloseFolder {
  void operator()(DIR* folder) const { closedir(folder); }
};

// The process's umask, which cannot be read without being set. Whatever another thread makes meanwhile is for its owner
// alone.
mode_t Umask() {
  static const mode_t mask = [] {
    const mode_t before = umask(0077);
    umask(before);
    return before;
  }();
  return mask;
}

OwnedDescriptor OpenMade(const fs::path& path) {
  std::error_code error;
  fs::create_directories(path, error);
  if (error) throw std::runtime_error("cannot make the folder " + path.string() + ": " + error.message());
  OwnedDescriptor folder(open(path.c_str(), kFolderFlags));
  if (folder.IsOpen()) return folder;
  error.assign(errno, std::generic_category());
  throw std::runtime_error("cannot read the folder " + path.string() + ": " + error.message());
}

// 0, or errno.
int WriteAll(const OwnedDescriptor& file, std::string_view content) {
  while (!content.empty()) {
    const ssize_t count = write(file.Get(), content.data(), content.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return errno;
    content.remove_prefix(static_cast<std::size_t>(count));
  }
  return 0;
}

// Some file systems know no permissions, and refuse this.
void SetPermissions(const OwnedDescriptor& file, mode_t mode) {
  [[maybe_unused]] const int result = fchmod(file.Get(), mode);
}

}  // namespace

mode_t Readers::Limit(gid_t group) const {
  mode_t mode = mode_ & 0066;
  // Of another group's members nothing is known: they may do what everybody may.
  if (group_ && *group_ != group) mode &= ((mode & 0006) << 3) | 0006;
  return 0600 | mode;
}

Folder::Folder(OwnedDescriptor descriptor, fs::path path)
    : path_(std::move(path)), descriptor_(std::move(descriptor)) {}

Folder::Folder(const fs::path& path) : Folder(OpenMade(path), path) {}

Folder Folder::Inner(const std::string& name) const {
  if (mkdirat(Descriptor(), name.c_str(), 0777) != 0 && errno != EEXIST) Fail("make", name, errno);
  OwnedDescriptor inner(openat(Descriptor(), name.c_str(), kFolderFlags | O_NOFOLLOW));
  if (inner.IsOpen()) return {std::move(inner), path_ / name};
  if (errno != ENOTDIR && errno != ELOOP) Fail("read", name, errno);
  throw std::runtime_error("cannot write into " + (path_ / name).string() +
                           ": a link, or no folder (move it away, and make the gallery again)");
}

std::optional<Folder> Folder::FindInner(const std::string& name) const {
  OwnedDescriptor inner(openat(Descriptor(), name.c_str(), kFolderFlags | O_NOFOLLOW));
  if (!inner.IsOpen()) return std::nullopt;
  return Folder(std::move(inner), path_ / name);
}

std::vector<std::string> Folder::Names() const {
  // A description of its own, so that each reads from the start.
  const std::unique_ptr<DIR, CloseFolder> entries(fdopendir(openat(Descriptor(), ".", kFolderFlags)));
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
  std::string temporary;
  const OwnedDescriptor file = CreateTemporary(temporary);
  if (!file.IsOpen()) Fail("write", name, errno);
  int why = WriteAll(file, content);
  struct stat status {};
  if (why == 0 && fstat(file.Get(), &status) == 0) {
    SetPermissions(file, readers.Limit(status.st_gid) & ~Umask());
  }
  if (why == 0 && renameat(Descriptor(), temporary.c_str(), Descriptor(), name.c_str()) != 0) why = errno;
  if (why == 0) return;
  Remove(temporary);
  Fail("write", name, why);
}

// For nobody else until it is whole.
OwnedDescriptor Folder::CreateTemporary(std::string& name) const {
  static std::atomic<unsigned> count{0};
  for (;;) {
    name = std::string(kTemporary) + std::to_string(getpid()) + '-' + std::to_string(++count);
    OwnedDescriptor file = OpenRegularFile(Descriptor(), name, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW);
    if (!file.IsOpen() && (errno == EEXIST || errno == EINTR)) continue;
    struct stat status {};
    if (!file.IsOpen()) return file;
    flock(file.Get(), LOCK_EX | LOCK_NB);
    if (fstat(file.Get(), &status) != 0 || status.st_nlink > 0) return file;  // else taken for a leftover
  }
}

void Folder::Restrict(const std::string& name, const Readers& readers) const {
  const OwnedDescriptor file = OpenRegularFile(Descriptor(), name, O_RDONLY | O_NOFOLLOW);
  struct stat status {};
  if (!file.IsOpen() || fstat(file.Get(), &status) != 0) return;
  const mode_t wider = status.st_mode & 0077 & ~readers.Limit(status.st_gid);
  if (wider != 0) SetPermissions(file, status.st_mode & 07777 & ~wider);
}

void Folder::Remove(const std::string& name) const { unlinkat(Descriptor(), name.c_str(), 0); }

void Folder::RemoveLeftovers() const {
  for (const std::string& name : Names()) {
    if (!IsTemporary(name)) continue;
    const OwnedDescriptor file = OpenRegularFile(Descriptor(), name, O_RDONLY | O_NOFOLLOW);
    if (file.IsOpen() && flock(file.Get(), LOCK_EX | LOCK_NB) == 0) Remove(name);
  }
}

bool Folder::IsTemporary(std::string_view name) {
  if (!name.starts_with(kTemporary)) return false;
  name.remove_prefix(kTemporary.size());
  const std::size_t dash = name.find('-');
  const auto isNumber = [](std::string_view text) {
    return !text.empty() && text.find_first_not_of(kDigits) == text.npos;
  };
  return dash != name.npos && isNumber(name.substr(0, dash)) && isNumber(name.substr(dash + 1));
}

void Folder::Fail(const std::string& verb, const std::string& name, int code) const {
  throw std::runtime_error("cannot " + verb + ' ' + (name.empty() ? path_ : path_ / name).string() + ": " +
                           std::generic_category().message(code));
}

}  // namespace catalogcore::app
