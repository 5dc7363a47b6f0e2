// The library's lock, and the two guards that wrap every exported call: one holds the lock, one stops exceptions.
#ifndef CATALOGCORE_BASE_CRITICAL_REGION_H_
#define CATALOGCORE_BASE_CRITICAL_REGION_H_

#include <CoreFoundation/CoreFoundation.h>

#include <new>

#include "catalogcore.h"

namespace catalogcore {

class CriticalRegion;
using MPCriticalRegionID = CriticalRegion*;

// Results of the functions below, with the numbers of Multiprocessing Services.
inline constexpr OSStatus kMPNoError = 0;
inline constexpr OSStatus kMPInsufficientResources = -29298;
inline constexpr OSStatus kMPInvalidID = -29299;

// A critical region is a recursive mutex: one thread at a time holds the region, the holder may enter again, and must
// leave as often as it entered. Each function takes a pointer to the owner's field. Enter, leave and delete do nothing
// for a null pointer (kMPNoError) and for a field that is null (kMPInvalidID).

// Creates a region in the field; the pointer must not be null. On allocation failure the field becomes null.
OSStatus InitializeCriticalSectionAPI(MPCriticalRegionID* region);

// Waits without limit until the calling thread holds the region.
OSStatus EnterCriticalSectionAPI(MPCriticalRegionID* region);

// Leaves the region. Returns kMPInvalidID and changes nothing if the calling thread does not hold the region.
OSStatus LeaveCriticalSectionAPI(MPCriticalRegionID* region);

// Waits until no other thread holds the region, deletes the region and sets the field to null. No other thread may
// enter from the start of this call on.
void DeleteCriticalSectionAPI(MPCriticalRegionID* region);

// Holds a critical region during a scope.
class RegionGuard {
 public:
  explicit RegionGuard(MPCriticalRegionID* region) : region_(region) { EnterCriticalSectionAPI(region_); }
  ~RegionGuard() { LeaveCriticalSectionAPI(region_); }
  RegionGuard(const RegionGuard&) = delete;
  RegionGuard& operator=(const RegionGuard&) = delete;

 private:
  MPCriticalRegionID* const region_;
};

// Returns what `call` returns; IDXERR_MEMORY if it throws std::bad_alloc, IDXERR_FAILED for any other exception.
template <typename Call>
IDXSTATUS WithoutExceptions(Call call) noexcept {
  try {
    return call();
  } catch (const std::bad_alloc&) {
    return IDXERR_MEMORY;
  } catch (...) {
    return IDXERR_FAILED;
  }
}

}  // namespace catalogcore

#endif  // CATALOGCORE_BASE_CRITICAL_REGION_H_
