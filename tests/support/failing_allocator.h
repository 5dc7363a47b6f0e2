// Makes allocations of the modules under test fail: malloc, calloc, realloc and every operator new.
#ifndef CATALOGCORE_TESTS_SUPPORT_FAILING_ALLOCATOR_H_
#define CATALOGCORE_TESTS_SUPPORT_FAILING_ALLOCATOR_H_

// In its scope, allocation number `failing` of this thread fails (0: the next; -1: none), and no other.
class FailingAllocation {
 public:
  explicit FailingAllocation(int failing);
  ~FailingAllocation();
  FailingAllocation(const FailingAllocation&) = delete;
  FailingAllocation& operator=(const FailingAllocation&) = delete;

  // Whether the allocation was reached.
  bool HasFailed() const;
};

#endif  // CATALOGCORE_TESTS_SUPPORT_FAILING_ALLOCATOR_H_
