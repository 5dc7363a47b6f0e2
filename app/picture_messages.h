// The messages between the pool and its workers: each request and each reply is one packet. Pool and worker are the same
// program, so the structures are sent as they lie in memory. The pool does not trust a reply: a picture may have taken
// control of the worker.
//
// The pixels, or the bytes of a small copy, lie in a memory file of kMostPixelBytes that both processes map. Its size is
// sealed, so a worker cannot shrink it while the pool reads.
#ifndef CATALOGCORE_APP_PICTURE_MESSAGES_H_
#define CATALOGCORE_APP_PICTURE_MESSAGES_H_

#include <array>
#include <cstdint>

namespace catalogcore::app {

// The first argument of a worker's command line. The others: the descriptors of the socket and of the memory file, and the
// megabytes that the worker may allocate.
inline constexpr char kWorkerArgument[] = "--decode-pictures";

enum class Task : std::uint32_t { kDecode, kFacts, kSmallCopy };

struct Request {  // the path of the file follows in the packet
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
  std::array<char, 400> text{};  // the reason of a failure, or a warning; ends with a 0
};

// The exit status of a worker that is out of memory.
inline constexpr int kOutOfMemoryStatus = 112;

}  // namespace catalogcore::app

#endif  // CATALOGCORE_APP_PICTURE_MESSAGES_H_
