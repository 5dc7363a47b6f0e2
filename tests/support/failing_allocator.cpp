#include "tests/support/failing_allocator.h"

#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

thread_local int allocationsLeft = -1;  // -1: no failure is asked for, or it is over
thread_local bool hasFailed = false;

bool FailsNow() {
  if (allocationsLeft < 0 || allocationsLeft-- > 0) return false;
  hasFailed = true;
  return true;
}

}  // namespace

FailingAllocation::FailingAllocation(int failing) {
  allocationsLeft = failing;
  hasFailed = false;
}
FailingAllocation::~FailingAllocation() { allocationsLeft = -1; }
bool FailingAllocation::HasFailed() const { return hasFailed; }

extern "C" {
void* __real_malloc(std::size_t size);
void* __real_calloc(std::size_t count, std::size_t size);
void* __real_realloc(void* block, std::size_t size);

void* __wrap_malloc(std::size_t size) { return FailsNow() ? nullptr : __real_malloc(size); }
void* __wrap_calloc(std::size_t count, std::size_t size) { return FailsNow() ? nullptr : __real_calloc(count, size); }
void* __wrap_realloc(void* block, std::size_t size) { return FailsNow() ? nullptr : __real_realloc(block, size); }
}

// Every operator new of the program, the standard library's included, fails with malloc.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return std::malloc(size > 0 ? size : 1); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return std::malloc(size > 0 ? size : 1); }
void* operator new(std::size_t size) {
  if (void* const block = operator new(size, std::nothrow)) return block;
  throw std::bad_alloc();
}
void* operator new[](std::size_t size) { return operator new(size); }
void operator delete(void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }
void operator delete[](void* block) noexcept { std::free(block); }
void operator delete[](void* block, std::size_t) noexcept { std::free(block); }
