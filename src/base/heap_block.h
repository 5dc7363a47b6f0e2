// Owns a block of the heap, one from malloc, calloc or realloc.
#ifndef CATALOGCORE_BASE_HEAP_BLOCK_H_
#define CATALOGCORE_BASE_HEAP_BLOCK_H_

#include <cstdlib>
#include <memory>

namespace catalogcore {

struct FreeBlock {
  void operator()(void* block) const { std::free(block); }
};

template <typename T>
using HeapBlock = std::unique_ptr<T, FreeBlock>;

}  // namespace catalogcore

#endif  // CATALOGCORE_BASE_HEAP_BLOCK_H_
