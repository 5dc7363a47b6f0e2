// Decodes pictures in worker processes, one a job. A picture that makes its decoder crash, hang or run out of memory is
// reported and affects no other picture.
//
// When a worker crashes or runs out of memory, its picture is decoded once more in a new worker, which has all the memory
// while no other worker runs: the share of the first worker may have been too small, or an earlier picture may have
// damaged it.
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
  unsigned megabytes = 0;  // for all jobs together, at least kLeastMegabytes
  unsigned seconds = 60;   // for one picture
};

inline constexpr unsigned kLeastMegabytes = 256;  // for one job

// Half of the machine's memory, at most 4096.
unsigned DefaultMegabytes();

// Any thread may call Decode, ReadFacts and SmallCopy; at most Jobs() pictures are decoded at a time. These functions throw
// PictureError, also for a picture that exceeds the limits or crashes its decoder, and std::runtime_error if a worker
// cannot be started.
class PicturePool {
 public:
  explicit PicturePool(const PictureLimits& limits);
  PicturePool(const PicturePool&) = delete;
  PicturePool& operator=(const PicturePool&) = delete;
  ~PicturePool();

  // The number of jobs in the limits, reduced until each job has kLeastMegabytes.
  unsigned Jobs() const { return jobs_; }

  // Decodes a picture as DecodePicture does and calls `use`. The pixels lie in memory shared with the worker; they are
  // valid until `use` returns.
  using Use = std::function<void(const PictureShape& shape, std::span<const std::uint8_t> pixels)>;
  void Decode(const std::filesystem::path& file, const Use& use);

  PictureFacts ReadFacts(const std::filesystem::path& file);
  std::string SmallCopy(const std::filesystem::path& file, int side);

 private:
  class Worker;
  class Turn;
  enum class Ending { kAnswered, kRefused, kTooSlow, kOutOfMemory, kCrashed };
  using Take =
      std::function<bool(const Reply& reply, const std::uint8_t* shared)>;  // returns whether the reply is valid

  void Run(const std::string& packet, const Take& take);
  Ending Attempt(const std::string& packet, const Take& take, bool alone, std::string& reason);
  std::unique_ptr<Worker> TakeWorker();

  const PictureLimits limits_;
  const unsigned jobs_;
  std::mutex mutex_;  // guards the members below
  std::condition_variable changed_;
  std::vector<std::unique_ptr<Worker>> idle_;
  unsigned working_ = 0;
  unsigned waitingToBeAlone_ = 0;
};

}  // namespace catalogcore::app

#endif  // CATALOGCORE_APP_PICTURE_POOL_H_
