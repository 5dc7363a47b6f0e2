#include "base/critical_region.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

namespace catalogcore {

namespace {

TEST(CriticalRegion, HoldsOneThreadAtATime) {
  MPCriticalRegionID region = nullptr;
  ASSERT_EQ(InitializeCriticalSectionAPI(&region), kMPNoError);
  int inside = 0;
  int entries = 0;
  const auto work = [&] {
    for (int i = 0; i < 2000; ++i) {
      EnterCriticalSectionAPI(&region);
      EnterCriticalSectionAPI(&region);  // the holder may enter again
      EXPECT_EQ(++inside, 1);
      ++entries;
      --inside;
      LeaveCriticalSectionAPI(&region);
      LeaveCriticalSectionAPI(&region);
      LeaveCriticalSectionAPI(&region);  // once too often: another may be inside by now, and must not be let go
    }
  };
  std::thread threads[4];
  for (std::thread& thread : threads) thread = std::thread(work);
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(entries, 8000);
  EnterCriticalSectionAPI(&region);
  DeleteCriticalSectionAPI(&region);  // by its own holder
  EXPECT_EQ(region, nullptr);
  // As one that there was no memory for.
  EXPECT_EQ(EnterCriticalSectionAPI(&region), kMPInvalidID);
  EXPECT_EQ(LeaveCriticalSectionAPI(&region), kMPInvalidID);
  DeleteCriticalSectionAPI(&region);
}

TEST(CriticalRegion, DeletionWaitsForTheHolder) {
  MPCriticalRegionID region = nullptr;
  InitializeCriticalSectionAPI(&region);
  MPCriticalRegionID holders = region;
  std::atomic<bool> isInside = false;
  std::atomic<bool> hasLeft = false;
  std::thread holder([&] {
    EnterCriticalSectionAPI(&holders);
    isInside = true;
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    hasLeft = true;
    LeaveCriticalSectionAPI(&holders);
  });
  while (!isInside) std::this_thread::yield();
  EXPECT_EQ(LeaveCriticalSectionAPI(&region), kMPInvalidID);
  DeleteCriticalSectionAPI(&region);
  EXPECT_TRUE(hasLeft);
  holder.join();
}

}  // namespace

}  // namespace catalogcore
