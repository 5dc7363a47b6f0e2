// Fast memory for large blocks.
#ifndef CATALOGCORE_PLATFORM_LARGE_BLOCK_H_
#define CATALOGCORE_PLATFORM_LARGE_BLOCK_H_

#include <sys/mman.h>

#include <cstddef>
#include <cstdint>

namespace catalogcore {

// Asks the system to back a new large heap block with huge pages. With small pages, providing the memory takes the
// system several times as long as the program takes to fill it. This is only a hint: the block is used and freed like
// any other.
inline void AdviseLargeBlock([[maybe_unused]] void* block, [[maybe_unused]] std::size_t size) {
#ifdef MADV_HUGEPAGE
  constexpr std::uintptr_t kPage = std::uintptr_t{1} << 16;  // no system has a larger normal page
  constexpr std::size_t kLarge = std::size_t{8} << 20;
  if (!block || size < kLarge) return;
  const auto address = reinterpret_cast<std::uintptr_t>(block);
  const std::uintptr_t first = (address + kPage - 1) & ~(kPage - 1);
  madvise(reinterpret_cast<void*>(first), address + size - first, MADV_HUGEPAGE);
#endif
}

}  // namespace catalogcore

#endif  // CATALOGCORE_PLATFORM_LARGE_BLOCK_H_
