// Holds a critical region for as long as it lives, whatever way the scope is left.
#ifndef CATALOGCORE_BASE_REGION_GUARD_H_
#define CATALOGCORE_BASE_REGION_GUARD_H_

#include "base/critical_region.h"

namespace catalogcore {

class RegionGuard {
 public:
  explicit RegionGuard(MPCriticalRegionID* region) : region_(region) { EnterCriticalSectionAPI(region_); }
  ~RegionGuard() { LeaveCriticalSectionAPI(region_); }
  RegionGuard(const RegionGuard&) = delete;
  RegionGuard& operator=(const RegionGuard&) = delete;

 private:
  MPCriticalRegionID* const region_;
};

}  // namespace catalogcore

#endif  // CATALOGCORE_BASE_REGION_GUARD_H_
