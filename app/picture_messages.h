// What the pool and its workers say to each other: one packet a request, one a reply. Both are the same program, so
// the structures go as they lie in memory. What a worker says is not trusted: a picture may have taken it over.
//
// The pixels, or the bytes of a small copy, lie in a file in memory of kMostPixelBytes that both have mapped. Its size is
// sealed, so that no worker can pull it away from under the pool.
#ifndef CATALOGCORE_APP_PICTURE_MESSAGES_H_
#define CATALOGCORE_APP_PICTURE_MESSAGES_H_

#include <array>
#include <cstdint>

namespace catalogcore::app {

// The first argument of a worker's command line. Behind it: the descriptors of the socket and of the file in memory, and
// the megabytes that it may allocate.
inline constexpr char kWorkerArgument[] = "--decode-pictures";

enum class Task : std::uint32_t { kDecode, kFacts, kSmallCopy };

struct Request {  // the file's path follows
  Task task = Task::kDecode;
  std::int32_t side = 0;  // of a small copy
};

enum class Outcome : std::uint32_t { kDone, kRefused, kOutOfMemory };

struct Reply {
  Outcome outcome = Outcome::kDone;
  std::int32_t width = 0;
  std::int32_t height = 0;
  std::int32_t bitsPerPixel = 0;
  std::int32_t resolution = 0;
  std::uint32_t copyBytes = 0;
  std::array<char, 20> date{};   // ends with a 0
  std::array<char, 400> text{};  // why it failed, or a warning; ends with a 0
};

// The status of a worker that ends because it got no memory.
inline constexpr int kOutOfMemoryStatus = 112;

}  // namespace catalogcore::app

#endif  // CATALOGCORE_APP_PICTURE_MESSAGES_H_
