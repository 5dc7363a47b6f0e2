#include "base/critical_region.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

namespace catalogcore {

namespace {

TEST(CriticalRegion, IsHeldByOneThreadAtATime) {
  MPCriticalRegionID region = nullptr;
  ASSERT_EQ(InitializeCriticalSectionAPI(&region), kMPNoError);
  int inside = 0;
  const auto work = [&] {
    for (int i = 0; i < 2000; ++i) {
      EnterCriticalSectionAPI(&region);
      EnterCriticalSectionAPI(&region);
      EXPECT_EQ(++inside, 1);
      --inside;
      // The third must not affect other threads.
      for (int leave = 0; leave < 3; ++leave) LeaveCriticalSectionAPI(&region);
    }
  };
  { const std::jthread threads[] = {std::jthread(work), std::jthread(work), std::jthread(work), std::jthread(work)}; }
  EnterCriticalSectionAPI(&region);
  DeleteCriticalSectionAPI(&region);  // by its holder
  EXPECT_EQ(region, nullptr);
  EXPECT_EQ(EnterCriticalSectionAPI(&region), kMPInvalidID);
  EXPECT_EQ(LeaveCriticalSectionAPI(&region), kMPInvalidID);
}

TEST(CriticalRegion, DeletionWaitsForTheHolder) {
  MPCriticalRegionID region = nullptr;
  InitializeCriticalSectionAPI(&region);
  MPCriticalRegionID sameRegion = region;
  std::atomic<bool> isInside = false, hasLeft = false;
  std::thread holder([&] {
    EnterCriticalSectionAPI(&sameRegion);
    isInside = true;
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    hasLeft = true;
    LeaveCriticalSectionAPI(&sameRegion);
  });
  while (!isInside) std::this_thread::yield();
  EXPECT_EQ(LeaveCriticalSectionAPI(&region), kMPInvalidID);
  DeleteCriticalSectionAPI(&region);
  EXPECT_TRUE(hasLeft);
  holder.join();
}

}  // namespace

}  // namespace catalogcore
