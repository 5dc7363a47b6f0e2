// Hand-over of heap blocks to callers who know of no heap.
#ifndef CATALOGCORE_BASE_HEAP_H_
#define CATALOGCORE_BASE_HEAP_H_

namespace catalogcore {

// Returns its argument, null included.
void* GlobalLockAPI(void* block);

// Releases a block that came from malloc; null is ignored.
void GlobalFreeAPI(void* block);

}  // namespace catalogcore

#endif  // CATALOGCORE_BASE_HEAP_H_
