// Holds the lock of a catalogue while in scope. REQUIRES: the thread does not hold the lock.
#ifndef CATALOGCORE_STORE_CATALOGUE_GUARD_H_
#define CATALOGCORE_STORE_CATALOGUE_GUARD_H_

#include "base/critical_region.h"
#include "store/index_data.h"

namespace catalogcore {

class CatalogueGuard {
 public:
  explicit CatalogueGuard(CIndexData& data) : region_(data.CriticalRegion()) { data.Finds().Sweep(); }

 private:
  const RegionGuard region_;
};

}  // namespace catalogcore

#endif  // CATALOGCORE_STORE_CATALOGUE_GUARD_H_
