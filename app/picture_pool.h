// Pictures decoded in other processes, one for each job. Whatever a picture does to its decoder (take its memory, hang,
// crash), the picture alone is lost, and the reason is told.
//
// A picture whose worker crashes or runs out of memory is tried once more, alone, with the whole memory, in a new worker:
// its share may have been too small, or an earlier picture may have damaged the worker.
#ifndef CATALOGCORE_APP_PICTURE_POOL_H_
#define CATALOGCORE_APP_PICTURE_POOL_H_

#include <condition_variable>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <vector>

#include "app/picture.h"

namespace catalogcore::app {

struct Reply;

struct PictureLimits {
  unsigned jobs = 1;
  unsigned megabytes = 0;  // for all jobs together; at least kLeastMegabytes
  unsigned seconds = 60;   // for one picture
};

inline constexpr unsigned kLeastMegabytes = 256;  // that a job works with

// 4096, or half of the machine's memory where that is less.
unsigned DefaultMegabytes();

// Any thread may call the operations; at most Jobs() are at work at a time. They throw PictureError, also for a picture
// that exceeds the limits or crashes its decoder, and std::runtime_error if no process can be started.
class PicturePool {
 public:
  explicit PicturePool(const PictureLimits& limits);
  PicturePool(const PicturePool&) = delete;
  PicturePool& operator=(const PicturePool&) = delete;
  ~PicturePool();

  // As many as asked for, but no more than have kLeastMegabytes each.
  unsigned Jobs() const { return jobs_; }

  // Decodes a picture, as DecodePicture does, and calls `use` with it. The pixels lie in memory shared with the worker and
  // are valid during that call.
  using Use = std::function<void(const PictureShape& shape, std::span<const std::uint8_t> pixels)>;
  void Decode(const std::filesystem::path& file, const Use& use);

  PictureFacts ReadFacts(const std::filesystem::path& file);
  std::string SmallCopy(const std::filesystem::path& file, int side);

 private:
  class Worker;
  class Turn;
  enum class Ending { kAnswered, kRefused, kTooSlow, kOutOfMemory, kCrashed };
  using Take = std::function<bool(const Reply& reply, const std::uint8_t* shared)>;  // false: the reply is invalid

  void Run(const std::string& packet, const Take& take);
  Ending Attempt(const std::string& packet, const Take& take, bool alone, std::string& reason);
  std::unique_ptr<Worker> TakeWorker();

  const PictureLimits limits_;
  const unsigned jobs_;
  std::mutex mutex_;  // of what follows
  std::condition_variable changed_;
  std::vector<std::unique_ptr<Worker>> idle_;
  unsigned working_ = 0;
  unsigned waitingToBeAlone_ = 0;
};

}  // namespace catalogcore::app

#endif  // CATALOGCORE_APP_PICTURE_POOL_H_
