#include "app/picture_pool.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <stdexcept>
#include <system_error>

#include "app/picture_messages.h"
#include "persist/file_descriptor.h"

extern char** environ;

namespace catalogcore::app {
namespace {

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::milliseconds;

constexpr std::chrono::seconds kTimeToStart(60);

[[noreturn]] void FailToStart(int why) {
  throw std::runtime_error("cannot start a process to decode pictures: " + std::generic_category().message(why));
}

template <std::size_t size>
std::string TextOf(const std::array<char, size>& from) {
  std::string text(from.begin(), std::find(from.begin(), from.end(), '\0'));
  std::replace_if(
      text.begin(), text.end(), [](char c) { return c >= 0 && c < ' '; }, '?');
  return text;
}

bool IsSide(std::int32_t side) { return side >= 1 && side <= kLongestSide; }

// The number of bytes of the pixels; 0 for an invalid reply to kDecode.
std::size_t PixelBytes(const Reply& reply) {
  const bool isGrey = reply.bitsPerPixel == 8;
  if (!IsSide(reply.width) || !IsSide(reply.height) || (!isGrey && reply.bitsPerPixel != 24)) return 0;
  return static_cast<std::size_t>(reply.width) * static_cast<std::size_t>(reply.height) * (isGrey ? 1 : 3);
}

std::string Packet(Task task, std::int32_t side, const std::filesystem::path& file) {
  const Request request = {task, side};
  std::string packet(sizeof request, '\0');
  std::memcpy(packet.data(), &request, sizeof request);
  return packet += file.native();
}

}  // namespace

unsigned DefaultMegabytes() {
  const std::uint64_t bytes =
      static_cast<std::uint64_t>(sysconf(_SC_PHYS_PAGES)) * static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE));
  return static_cast<unsigned>(std::clamp<std::uint64_t>(bytes >> 21, kLeastMegabytes, 4096));
}

class PicturePool::Worker {
 public:
  // Returns when the process is ready, so that a failure to start is not reported as a failure of a picture.
  explicit Worker(unsigned megabytes)
      : megabytes_(megabytes), memory_(memfd_create("pictures", MFD_CLOEXEC | MFD_ALLOW_SEALING)) {
    if (memory_.Get() < 0 || ftruncate(memory_.Get(), static_cast<off_t>(kMostPixelBytes)) != 0 ||
        fcntl(memory_.Get(), F_ADD_SEALS, F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_SEAL) != 0) {
      FailToStart(errno);
    }
    void* const mapped = mmap(nullptr, kMostPixelBytes, PROT_READ, MAP_SHARED, memory_.Get(), 0);
    if (mapped == MAP_FAILED) FailToStart(errno);
    shared_ = static_cast<const std::uint8_t*>(mapped);
    try {
      Start();
    } catch (...) {
      Stop();
      throw;
    }
  }
  Worker(const Worker&) = delete;
  Worker& operator=(const Worker&) = delete;
  ~Worker() { Stop(); }

  const std::uint8_t* Shared() const { return shared_; }
  const Reply& LastReply() const { return reply_; }

  // How a crashed process ended, for messages.
  std::string Death() const {
    if (WIFSIGNALED(status_)) return strsignal(WTERMSIG(status_));
    return "status " + std::to_string(WEXITSTATUS(status_));
  }

  // Sends a request and waits for the reply. After any result but kAnswered and kRefused the process has ended.
  Ending Ask(const std::string& packet, std::chrono::seconds limit) {
    if (send(socket_.Get(), packet.data(), packet.size(), MSG_NOSIGNAL) < 0 && errno == EMSGSIZE) {
      throw PictureError(std::generic_category().message(ENAMETOOLONG));
    }
    const Ending ending = Receive(limit);
    if (ending != Ending::kAnswered) return ending;
    if (reply_.outcome == Outcome::kOutOfMemory) return Ending::kOutOfMemory;
    return reply_.outcome == Outcome::kRefused ? Ending::kRefused : Ending::kAnswered;
  }

 private:
  void Start() {
    std::array<int, 2> pair{};
    if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, pair.data()) != 0) FailToStart(errno);
    socket_ = FileDescriptor(pair[0]);
    FileDescriptor far(pair[1]);
    std::string name = "catalogcore", argument = kWorkerArgument, socket = std::to_string(far.Get()),
                memory = std::to_string(memory_.Get()), megabytes = std::to_string(megabytes_);
    const std::array<char*, 6> arguments = {name.data(),   argument.data(),  socket.data(),
                                            memory.data(), megabytes.data(), nullptr};
    posix_spawn_file_actions_t files;
    posix_spawnattr_t attributes;
    posix_spawn_file_actions_init(&files);
    posix_spawnattr_init(&attributes);
    // A descriptor duplicated to its own number stays open in the new process.
    posix_spawn_file_actions_adddup2(&files, far.Get(), far.Get());
    posix_spawn_file_actions_adddup2(&files, memory_.Get(), memory_.Get());
    posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    // Ctrl-C sends SIGINT to the whole process group, but the pool still waits for pictures under way.
    sigset_t blocked;
    sigemptyset(&blocked);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) sigaddset(&blocked, signal);
    posix_spawnattr_setsigmask(&attributes, &blocked);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK);
    const int why = posix_spawn(&process_, "/proc/self/exe", &files, &attributes, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&files);
    posix_spawnattr_destroy(&attributes);
    if (why != 0) {
      process_ = 0;
      FailToStart(why);
    }
    far = FileDescriptor(-1);
    switch (Receive(kTimeToStart)) {
      case Ending::kAnswered:
      case Ending::kRefused:
        return;
      case Ending::kTooSlow:
        FailToStart(ETIMEDOUT);
      case Ending::kOutOfMemory:
        FailToStart(ENOMEM);
      case Ending::kCrashed:
        FailToStart(ECHILD);
    }
  }

  // Waits in steps: time during which this process is stopped or the machine sleeps counts as at most one step.
  Ending Receive(std::chrono::seconds limit) {
    constexpr Milliseconds kStep(500);
    for (Milliseconds left = limit;;) {
      pollfd event = {socket_.Get(), POLLIN, 0};
      const Clock::time_point begin = Clock::now();
      const int ready = poll(&event, 1, static_cast<int>(std::min(left, kStep).count()));
      if (ready > 0) break;
      left -= std::min(kStep, std::chrono::ceil<Milliseconds>(Clock::now() - begin));
      if (left <= Milliseconds(0)) return Kill(), Ending::kTooSlow;
    }
    Reply reply;
    const ssize_t got = recv(socket_.Get(), &reply, sizeof reply, MSG_DONTWAIT);
    if (got == sizeof reply && reply.outcome <= Outcome::kOutOfMemory) {
      reply_ = reply;
      return Ending::kAnswered;
    }
    status_ = got > 0 ? Kill() : Wait();
    const bool isMemory = WIFEXITED(status_) && WEXITSTATUS(status_) == kOutOfMemoryStatus;
    return isMemory ? Ending::kOutOfMemory : Ending::kCrashed;
  }

  // The exit status of a process that closed its socket. Kills it if it has not ended after a second.
  int Wait() {
    for (int i = 0; i < 100; ++i) {
      int status = 0;
      if (waitpid(process_, &status, WNOHANG) == process_) {
        process_ = 0;
        return status;
      }
      usleep(10000);
    }
    return Kill();
  }

  int Kill() {
    int status = 0;
    if (process_ == 0) return status;
    kill(process_, SIGKILL);
    while (waitpid(process_, &status, 0) < 0 && errno == EINTR) {
    }
    process_ = 0;
    return status;
  }

  void Stop() {
    Kill();
    munmap(const_cast<std::uint8_t*>(shared_), kMostPixelBytes);
  }

  const unsigned megabytes_;
  FileDescriptor memory_;
  FileDescriptor socket_{-1};
  const std::uint8_t* shared_ = nullptr;
  pid_t process_ = 0;  // 0: not running
  int status_ = 0;     // what it ended with
  Reply reply_;
};

// The right to have a worker at work; `alone`, while no other is. Who waits to be alone goes before those who come later.
class PicturePool::Turn {
 public:
  Turn(PicturePool& pool, bool alone) : pool_(pool), places_(alone ? pool.jobs_ : 1) {
    std::unique_lock lock(pool_.mutex_);
    if (alone) ++pool_.waitingToBeAlone_;
    pool_.changed_.wait(
        lock, [&] { return pool_.working_ + places_ <= pool_.jobs_ && (alone || pool_.waitingToBeAlone_ == 0); });
    if (alone) --pool_.waitingToBeAlone_;
    pool_.working_ += places_;
    if (alone) pool_.idle_.clear();  // idle workers hold memory too
  }
  Turn(const Turn&) = delete;
  Turn& operator=(const Turn&) = delete;
  ~Turn() {
    const std::lock_guard lock(pool_.mutex_);
    pool_.working_ -= places_;
    pool_.changed_.notify_all();
  }

 private:
  PicturePool& pool_;
  const unsigned places_;
};

PicturePool::PicturePool(const PictureLimits& limits)
    : limits_(limits), jobs_(std::clamp(limits.megabytes / kLeastMegabytes, 1U, std::max(limits.jobs, 1U))) {
  std::signal(SIGCHLD, SIG_DFL);  // ignored, it would discard the exit status of a worker
  std::signal(SIGXFSZ, SIG_IGN);  // RLIMIT_FSIZE also limits shared memory; the error is reported
}

PicturePool::~PicturePool() = default;

std::unique_ptr<PicturePool::Worker> PicturePool::TakeWorker() {
  {
    const std::lock_guard lock(mutex_);
    if (!idle_.empty()) {
      std::unique_ptr<Worker> worker = std::move(idle_.back());
      idle_.pop_back();
      return worker;
    }
  }
  return std::make_unique<Worker>(limits_.megabytes / jobs_);
}

PicturePool::Ending PicturePool::Attempt(const std::string& packet, const Take& take, bool alone, std::string& reason) {
  const Turn turn(*this, alone);
  std::unique_ptr<Worker> worker = alone ? std::make_unique<Worker>(limits_.megabytes) : TakeWorker();
  Ending ending = worker->Ask(packet, std::chrono::seconds(limits_.seconds));
  reason = ending == Ending::kCrashed ? worker->Death() : TextOf(worker->LastReply().text);
  if (ending == Ending::kAnswered && !take(worker->LastReply(), worker->Shared())) {
    reason = "an invalid reply";
    ending = Ending::kCrashed;
  }
  const bool isAlive = ending == Ending::kAnswered || ending == Ending::kRefused;
  if (!alone && isAlive) {
    const std::lock_guard lock(mutex_);
    idle_.push_back(std::move(worker));
  }
  return ending;
}

void PicturePool::Run(const std::string& packet, const Take& take) {
  std::string reason;
  Ending ending = Attempt(packet, take, false, reason);
  if (ending == Ending::kCrashed || (ending == Ending::kOutOfMemory && jobs_ > 1)) {
    ending = Attempt(packet, take, true, reason);
  }
  switch (ending) {
    case Ending::kAnswered:
      return;
    case Ending::kRefused:
      throw PictureError(reason);
    case Ending::kTooSlow:
      throw PictureError("decoding took longer than " + std::to_string(limits_.seconds) + " s");
    case Ending::kOutOfMemory:
      throw PictureError("decoding needed more than " + std::to_string(limits_.megabytes) + " MB of memory");
    case Ending::kCrashed:
      throw PictureError("the decoder crashed (" + reason + ")");
  }
}

void PicturePool::Decode(const std::filesystem::path& file, const Use& use) {
  Run(Packet(Task::kDecode, 0, file), [&use](const Reply& reply, const std::uint8_t* shared) {
    const std::size_t bytes = PixelBytes(reply);
    if (bytes == 0 || reply.resolution < 0) return false;
    use({reply.width, reply.height, reply.bitsPerPixel, reply.resolution, TextOf(reply.text)}, {shared, bytes});
    return true;
  });
}

PictureFacts PicturePool::ReadFacts(const std::filesystem::path& file) {
  PictureFacts facts;
  Run(Packet(Task::kFacts, 0, file), [&facts](const Reply& reply, const std::uint8_t*) {
    facts = {reply.width, reply.height, reply.resolution, TextOf(reply.date)};
    return facts.width > 0 && facts.height > 0 && facts.resolution >= 0;
  });
  return facts;
}

std::string PicturePool::SmallCopy(const std::filesystem::path& file, int side) {
  std::string copy;
  Run(Packet(Task::kSmallCopy, side, file), [&copy](const Reply& reply, const std::uint8_t* shared) {
    if (reply.copyBytes == 0 || reply.copyBytes > kMostPixelBytes) return false;
    copy.assign(shared, shared + reply.copyBytes);
    return true;
  });
  return copy;
}

}  // namespace catalogcore::app
