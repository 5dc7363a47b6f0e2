#include "base/critical_region.h"

#include <atomic>
#include <mutex>
#include <new>
#include <thread>

namespace catalogcore {

class CriticalRegion {
 public:
  void Enter() {
    mutex_.lock();
    holder_.store(std::this_thread::get_id(), std::memory_order_relaxed);
    ++depth_;
  }

  bool Leave() {
    // Only the calling thread can have stored its own id, so the comparison needs no memory order.
    if (holder_.load(std::memory_order_relaxed) != std::this_thread::get_id()) return false;
    if (--depth_ == 0) holder_.store({}, std::memory_order_relaxed);
    mutex_.unlock();
    return true;
  }

 private:
  std::recursive_mutex mutex_;
  std::atomic<std::thread::id> holder_;
  int depth_ = 0;
};

OSStatus InitializeCriticalSectionAPI(MPCriticalRegionID* region) {
  *region = new (std::nothrow) CriticalRegion;
  return *region ? kMPNoError : kMPInsufficientResources;
}

OSStatus EnterCriticalSectionAPI(MPCriticalRegionID* region) {
  if (!region) return kMPNoError;
  if (!*region) return kMPInvalidID;
  (*region)->Enter();
  return kMPNoError;
}

OSStatus LeaveCriticalSectionAPI(MPCriticalRegionID* region) {
  if (!region) return kMPNoError;
  return *region && (*region)->Leave() ? kMPNoError : kMPInvalidID;
}

void DeleteCriticalSectionAPI(MPCriticalRegionID* region) {
  if (!region || !*region) return;
  (*region)->Enter();
  while ((*region)->Leave()) {
    // Leaves as often as the calling thread entered.
  }
  delete *region;
  *region = nullptr;
}

}  // namespace catalogcore
