#include "app/catalog_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>

#include "app/catalog.h"

namespace catalogcore::app {
namespace {

std::string Reason() { return std::generic_category().message(errno); }

// What the holder wrote of itself, "process 4711 (catalogcore sort)".
std::string Holder(int file) {
  std::array<char, 200> text{};
  const ssize_t size = pread(file, text.data(), text.size(), 0);
  const std::string holder(text.data(), size > 0 ? static_cast<std::size_t>(size) : 0);
  return holder.empty() ? "another process" : holder.substr(0, holder.find('\n'));
}

bool Lock(int file, int operation) {
  int result = 0;
  do {
    result = flock(file, operation);
  } while (result != 0 && errno == EINTR);
  return result == 0;
}

// That a lock cannot be read by the next one is no reason to fail.
void WriteHolder(int file, const std::string& command) {
  const std::string holder = "process " + std::to_string(getpid()) + " (catalogcore " + command + ")\n";
  const bool isWritten = ftruncate(file, 0) == 0 && pwrite(file, holder.data(), holder.size(), 0) > 0;
  static_cast<void>(isWritten);
}

}  // namespace

CatalogLock::CatalogLock(const std::filesystem::path& folder, const std::string& command, const Waiting& waiting)
    : file_(-1) {
  std::error_code error;
  std::filesystem::create_directories(folder, error);
  if (error) throw CatalogError("cannot make " + folder.string() + ": " + error.message());
  const std::string name = (folder / "lock").string();
  file_ = open(name.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
  if (file_ < 0) throw CatalogError("cannot open " + name + ": " + Reason());
  bool isLocked = Lock(file_, LOCK_EX | LOCK_NB);
  std::string problem = isLocked || errno == EWOULDBLOCK ? "" : "cannot lock " + name + ": " + Reason();
  if (!isLocked && problem.empty()) {
    const std::string holder = folder.string() + " is being changed by " + Holder(file_);
    if (waiting) waiting(holder);
    isLocked = waiting && Lock(file_, LOCK_EX);
    problem = holder + " (try again later, or wait for it with --wait)";
  }
  if (!isLocked) {
    close(file_);
    throw CatalogError(problem);
  }
  WriteHolder(file_, command);
}

CatalogLock::~CatalogLock() { close(file_); }

}  // namespace catalogcore::app
