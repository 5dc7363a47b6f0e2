// What the fuzzers share. They say what has to hold with GoogleTest's expectations; one that fails ends the run, and
// libFuzzer keeps the input.
#ifndef CATALOGCORE_FUZZ_SUPPORT_FUZZER_H_
#define CATALOGCORE_FUZZ_SUPPORT_FUZZER_H_

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace catalogcore {

// Expects, at its end, that the heap never held more than 512 times `size` bytes beyond what it held at the beginning, and
// a megabyte for what costs the same whatever the file. One at a time.
class ProportionalMemory {
 public:
  explicit ProportionalMemory(std::size_t size);
  ~ProportionalMemory();
  ProportionalMemory(const ProportionalMemory&) = delete;
  ProportionalMemory& operator=(const ProportionalMemory&) = delete;

 private:
  const std::size_t size_;
};

// A folder of this process in memory, with a "/" at its end; removed when the process ends.
const std::string& ScratchFolder();

void WriteFile(const std::string& path, std::string_view content);

inline std::string_view AsText(const std::uint8_t* data, std::size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

}  // namespace catalogcore

#endif  // CATALOGCORE_FUZZ_SUPPORT_FUZZER_H_
