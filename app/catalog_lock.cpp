#include "app/catalog_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <array>
#include <cerrno>
#include <string_view>
#include <system_error>

#include "app/library.h"

namespace catalogcore::app {
namespace {

// The content of the file is "process 4711 (catalogcore sort)" and a line feed.
constexpr std::string_view kBegin = "process ";
constexpr std::string_view kMiddle = " (catalogcore ";
constexpr std::string_view kEnd = ")\n";
constexpr std::size_t kLongest = 200;

std::string Reason() { return std::generic_category().message(errno); }

// The first bytes of the file, one more than the longest content of a lock.
std::string TextOf(const FileDescriptor& file) {
  std::array<char, kLongest + 1> text{};
  const ssize_t size = pread(file.Get(), text.data(), text.size(), 0);
  return {text.data(), size > 0 ? static_cast<std::size_t>(size) : 0};
}

bool IsHolder(std::string_view text) {
  if (text.size() > kLongest || !text.starts_with(kBegin) || !text.ends_with(kEnd)) return false;
  text.remove_prefix(kBegin.size());
  text.remove_suffix(kEnd.size());
  const std::size_t digits = text.find_first_not_of("0123456789");
  return digits != 0 && digits != text.npos && text.substr(digits).starts_with(kMiddle) && text.find('\n') == text.npos;
}

std::string Holder(const FileDescriptor& file) {
  const std::string text = TextOf(file);
  return IsHolder(text) ? text.substr(0, text.size() - 1) : "another process";
}

// Why the open file is not a lock of this user; empty if it is. An empty file without another name is a lock: its creator
// ended before it wrote the holder.
std::string WhyForeign(const FileDescriptor& file, const struct stat& status) {
  if (status.st_uid != geteuid()) return "another user's file";
  const std::string text = TextOf(file);
  const bool isOurs = text.empty() ? status.st_size == 0 && status.st_nlink == 1 : IsHolder(text);
  return isOurs ? "" : "not a lock file";
}

FileDescriptor OpenLock(const std::string& name) {
  FileDescriptor file = OpenRegularFile(AT_FDCWD, name, O_RDWR | O_CREAT | O_NOFOLLOW);
  struct stat status {};
  const bool isKnown = file.IsOpen() && fstat(file.Get(), &status) == 0;
  const std::string problem = isKnown ? WhyForeign(file, status) : WhyNotOpened(errno);
  if (!problem.empty()) {
    throw CatalogError("cannot lock the catalogue with " + name + ": " + problem +
                       " (nothing was changed; move it away, or name another catalogue with --catalog)");
  }
  // File systems without permissions refuse this; the lock works without it.
  if ((status.st_mode & 0077) != 0) [[maybe_unused]]
    const int result = fchmod(file.Get(), 0600);
  return file;
}

bool Lock(const FileDescriptor& file, int operation) {
  int result = 0;
  do {
    result = flock(file.Get(), operation);
  } while (result != 0 && errno == EINTR);
  return result == 0;
}

// A failure only affects the message of the next command, so it is ignored.
void WriteHolder(const FileDescriptor& file, const std::string& command) {
  const std::string holder =
      std::string(kBegin) + std::to_string(getpid()) + std::string(kMiddle) + command + std::string(kEnd);
  [[maybe_unused]] const bool isWritten =
      ftruncate(file.Get(), 0) == 0 && pwrite(file.Get(), holder.data(), holder.size(), 0) > 0;
}

FileDescriptor OpenLockIn(const std::filesystem::path& folder) {
  std::error_code error;
  std::filesystem::create_directories(folder, error);
  if (error) throw CatalogError("cannot create " + folder.string() + ": " + error.message());
  return OpenLock((folder / "lock").string());
}

}  // namespace

CatalogLock::CatalogLock(const std::filesystem::path& folder, const std::string& command, const Waiting& waiting)
    : file_(OpenLockIn(folder)) {
  if (!Lock(file_, LOCK_EX | LOCK_NB)) {
    if (errno != EWOULDBLOCK) throw CatalogError("cannot lock " + (folder / "lock").string() + ": " + Reason());
    const std::string holder = folder.string() + " is being changed by " + Holder(file_);
    if (waiting) waiting(holder);
    if (!waiting || !Lock(file_, LOCK_EX)) {
      throw CatalogError(holder + " (try again later, or wait for it with --wait)");
    }
  }
  WriteHolder(file_, command);
}

}  // namespace catalogcore::app
