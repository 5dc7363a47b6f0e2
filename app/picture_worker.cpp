#include "app/picture_worker.h"

#include <fcntl.h>
#include <glib.h>
#include <malloc.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <new>
#include <string>
#include <string_view>

#include "app/picture.h"
#include "app/picture_messages.h"

namespace catalogcore::app {
namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kIsSanitized = true;
#elif defined(__has_feature)
constexpr bool kIsSanitized = __has_feature(address_sanitizer) || __has_feature(thread_sanitizer);
#else
constexpr bool kIsSanitized = false;
#endif

pid_t pool = 0;  // the process that started this one

// Ends this process within a second of the pool's end. An idle worker ends when its socket closes; the timer ends a worker
// that is decoding. (The kernel's parent-death signal comes too early: when the starting thread ends.)
void EndWithPool() {
  pool = getppid();
  std::signal(SIGALRM, [](int) {
    if (getppid() != pool) _exit(0);
  });
  const itimerval everySecond = {{1, 0}, {1, 0}};
  setitimer(ITIMER_REAL, &everySecond, nullptr);
}

// Limits the memory that the process maps from now on. Not with sanitizers, which map terabytes.
void LimitMemory(std::uint64_t megabytes) {
  mallopt(M_ARENA_MAX, 1);  // each further arena would reserve 64 MB
  std::uint64_t pages = 0;
  if (kIsSanitized || !(std::ifstream("/proc/self/statm") >> pages)) return;
  const std::uint64_t bytes = pages * static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE)) + (megabytes << 20);
  rlimit limit = {};
  getrlimit(RLIMIT_AS, &limit);
  limit.rlim_cur = limit.rlim_max = std::min<rlim_t>(limit.rlim_cur, bytes);
  setrlimit(RLIMIT_AS, &limit);
}

// A crash writes no core file and prints nothing; the pool reports it.
void SilenceCrashes() {
  const rlimit none = {0, 0};
  setrlimit(RLIMIT_CORE, &none);
  const int nowhere = kIsSanitized ? -1 : open("/dev/null", O_WRONLY | O_CLOEXEC);
  if (nowhere >= 0) dup2(nowhere, STDERR_FILENO);
}

// GLib aborts when an allocation fails. Exits with kOutOfMemoryStatus instead.
void ReportLackOfMemory() {
  g_log_set_default_handler(
      [](const char*, GLogLevelFlags level, const char* message, void*) {
        const bool isMemory = message != nullptr && std::strstr(message, "failed to allocate") != nullptr;
        if ((level & G_LOG_FLAG_FATAL) != 0 && isMemory) _exit(kOutOfMemoryStatus);
      },
      nullptr);
}

template <std::size_t size>
void PutText(std::string_view text, std::array<char, size>& to) {
  std::copy_n(text.begin(), std::min(text.size(), size - 1), to.begin());
}

Reply Do(const Request& request, const std::string& path, std::uint8_t* shared) {
  Reply reply;
  if (request.task == Task::kDecode) {
    const PictureShape shape = DecodePicture(path, [shared](std::size_t) { return shared; });
    reply.width = shape.width;
    reply.height = shape.height;
    reply.bitsPerPixel = shape.bitsPerPixel;
    reply.resolution = shape.resolution;
    PutText(shape.warning, reply.text);
  } else if (request.task == Task::kFacts) {
    const PictureFacts facts = ReadPictureFacts(path);
    reply.width = facts.width;
    reply.height = facts.height;
    reply.resolution = facts.resolution;
    PutText(facts.date, reply.date);
  } else {
    const std::string copy = SmallCopy(path, request.side);
    if (copy.size() > kMostPixelBytes) throw std::bad_alloc();
    std::copy(copy.begin(), copy.end(), shared);
    reply.copyBytes = static_cast<std::uint32_t>(copy.size());
  }
  return reply;
}

Reply Answer(const Request& request, const std::string& path, std::uint8_t* shared) {
  Reply reply;
  try {
    return Do(request, path, shared);
  } catch (const PictureError& error) {
    reply.outcome = Outcome::kRefused;
    PutText(error.what(), reply.text);
  } catch (const std::bad_alloc&) {
    reply.outcome = Outcome::kOutOfMemory;
  }
  return reply;
}

}  // namespace

bool IsPictureWorker(int argc, char** argv) { return argc == 5 && std::strcmp(argv[1], kWorkerArgument) == 0; }

int RunPictureWorker(char** argv) {
  const int socket = std::atoi(argv[2]);
  EndWithPool();
  SilenceCrashes();
  StartPictures("catalogcore");
  ReportLackOfMemory();
  LimitMemory(std::strtoull(argv[4], nullptr, 10));
  void* const shared = mmap(nullptr, kMostPixelBytes, PROT_READ | PROT_WRITE, MAP_SHARED, std::atoi(argv[3]), 0);
  if (shared == MAP_FAILED) return kOutOfMemoryStatus;
  const Reply ready;
  if (send(socket, &ready, sizeof ready, MSG_NOSIGNAL) != sizeof ready) return 0;
  std::string packet(65536, '\0');
  for (;;) {
    const ssize_t got = recv(socket, packet.data(), packet.size(), 0);
    if (got < 0 && errno == EINTR) continue;
    if (got < static_cast<ssize_t>(sizeof(Request))) return 0;  // the pool has closed the socket
    Request request;
    std::memcpy(&request, packet.data(), sizeof request);
    const std::string path = packet.substr(sizeof request, static_cast<std::size_t>(got) - sizeof request);
    const Reply reply = Answer(request, path, static_cast<std::uint8_t*>(shared));
    if (send(socket, &reply, sizeof reply, MSG_NOSIGNAL) != sizeof reply) return 0;
  }
}

}  // namespace catalogcore::app
