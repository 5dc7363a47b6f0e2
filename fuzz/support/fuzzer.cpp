#include "fuzz/support/fuzzer.h"

#include <sanitizer/allocator_interface.h>
#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <fstream>

namespace catalogcore {

namespace {

// Signed: what was there before the hooks may be freed after.
std::atomic<std::int64_t> heapSize = 0, heapPeak = 0;
std::int64_t sizeBefore = 0;

void Allocated(const volatile void*, std::size_t size) {
  const std::int64_t now = heapSize += static_cast<std::int64_t>(size);
  for (std::int64_t peak = heapPeak; now > peak && !heapPeak.compare_exchange_weak(peak, now);) {
  }
}

void Freed(const volatile void* block) {
  if (block) heapSize -= static_cast<std::int64_t>(__sanitizer_get_allocated_size(block));
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  GTEST_FLAG_SET(throw_on_failure, true);
  __sanitizer_install_malloc_and_free_hooks(&Allocated, &Freed);
  return 0;
}

ProportionalMemory::ProportionalMemory(std::size_t size) : size_(size) { heapPeak = sizeBefore = heapSize; }

ProportionalMemory::~ProportionalMemory() {
  constexpr std::int64_t kMost = 512, kAlways = 1 << 20;
  EXPECT_LE(heapPeak - sizeBefore, kMost * static_cast<std::int64_t>(size_) + kAlways) << "of " << size_ << " bytes";
}

const std::string& ScratchFolder() {
  static const struct Folder {
    Folder() { std::filesystem::create_directories(path); }
    ~Folder() { std::filesystem::remove_all(path); }
    const std::string path = "/dev/shm/catalogcore_fuzz_" + std::to_string(getpid()) + "/";
  } folder;
  return folder.path;
}

void WriteFile(const std::string& path, std::string_view content) { std::ofstream(path, std::ios::binary) << content; }

}  // namespace catalogcore
