// The library's one lock: a region that one thread at a time holds.
#ifndef CATALOGCORE_BASE_CRITICAL_REGION_H_
#define CATALOGCORE_BASE_CRITICAL_REGION_H_

#include <CoreFoundation/CoreFoundation.h>

namespace catalogcore {

class CriticalRegion;
using MPCriticalRegionID = CriticalRegion*;

// Results of the calls below, as Multiprocessing Services numbers them.
inline constexpr OSStatus kMPNoError = 0;
inline constexpr OSStatus kMPInsufficientResources = -29298;
inline constexpr OSStatus kMPInvalidID = -29299;

// Each call takes a pointer to the field in which the owner keeps its region. A null pointer does nothing and
// gives kMPNoError; a field that holds no region gives kMPInvalidID.

// Makes a region into the field; the pointer must not be null. Without memory the field is null afterwards.
OSStatus InitializeCriticalSectionAPI(MPCriticalRegionID* region);

// Waits, without limit, until the calling thread holds the region. A holder may enter again, and leaves as
// often.
OSStatus EnterCriticalSectionAPI(MPCriticalRegionID* region);

// Leaves the region. A thread that does not hold it changes nothing and gets kMPInvalidID.
OSStatus LeaveCriticalSectionAPI(MPCriticalRegionID* region);

// Waits until no other thread holds the region, deletes it and clears the field. No thread may be on its way in.
void DeleteCriticalSectionAPI(MPCriticalRegionID* region);

}  // namespace catalogcore

#endif  // CATALOGCORE_BASE_CRITICAL_REGION_H_
