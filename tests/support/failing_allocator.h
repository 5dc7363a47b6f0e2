// Makes the allocations of the rooms under test fail: malloc, calloc, realloc and
// every operator new.
#ifndef CATALOGCORE_TESTS_SUPPORT_FAILING_ALLOCATOR_H_
#define CATALOGCORE_TESTS_SUPPORT_FAILING_ALLOCATOR_H_

// While one lives, the allocation number `failing` (0: the next; -1: none) of this thread fails; none does
// before or after.
class FailingAllocation {
 public:
  explicit FailingAllocation(int failing);
  ~FailingAllocation();
  FailingAllocation(const FailingAllocation&) = delete;
  FailingAllocation& operator=(const FailingAllocation&) = delete;

  // Whether that allocation was reached.
  bool HasFailed() const;
};

#endif  // CATALOGCORE_TESTS_SUPPORT_FAILING_ALLOCATOR_H_
