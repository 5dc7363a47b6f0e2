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
    // Only the thread itself can have stored its own number, so no order is needed to compare it.
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
    // As often as the calling thread had entered.
  }
  delete *region;
  *region = nullptr;
}

}  // namespace catalogcore
