#include "tests/support/failing_allocator.h"

#include <cstddef>
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
void* __real__ZnwmRKSt9nothrow_t(std::size_t size, const std::nothrow_t& tag);

void* __wrap_malloc(std::size_t size) { return FailsNow() ? nullptr : __real_malloc(size); }
void* __wrap_calloc(std::size_t count, std::size_t size) { return FailsNow() ? nullptr : __real_calloc(count, size); }
void* __wrap_realloc(void* block, std::size_t size) { return FailsNow() ? nullptr : __real_realloc(block, size); }
void* __wrap__ZnwmRKSt9nothrow_t(std::size_t size, const std::nothrow_t& tag) {
  return FailsNow() ? nullptr : __real__ZnwmRKSt9nothrow_t(size, tag);
}
}
