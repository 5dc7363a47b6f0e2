// Eight threads make mixed calls on one catalogue; also built with the thread sanitizer. CATALOGCORE_THREADS_SECONDS
// sets the duration.
#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <future>
#include <iostream>
#include <random>
#include <thread>

#include "api/catalogue.h"
#include "api/internal_calls.h"
#include "tests/api/item.h"
#include "tests/scene/fake_engines.h"
#include "tests/support/catalogue_state.h"
#include "tests/support/store_inspector.h"

namespace catalogcore {

namespace {

namespace fs = std::filesystem;

void DetectScene() {
  static constexpr std::uint8_t kPixels[60 * 60] = {};
  IDXDSDATA data = {kPixels, 60, 60, 60, 8, 0, 0, 0, 0, 0, 0};
  EXPECT_EQ(IDXDetectScene(&data), IDX_OK);
  EXPECT_EQ(data.presetIndex, IDXPRESET_PHOTO_OTHER);
}

class Worker {
 public:
  explicit Worker(unsigned number) : random_(number), number_(std::to_string(number)) {
    EXPECT_EQ(IDXAddImage(&Item().Name("/own/" + number_).Index(IDXPRESET_PHOTO_OTHER)), IDX_OK);
  }
  ~Worker() {
    if (find_) IDXCloseFind(find_);
  }

  // One call on entries that all threads share. The image of this thread alone stays.
  void Step() {
    const std::string name = "/shared/" + std::to_string(Below(4)) + "/" + std::to_string(Below(40));
    constexpr std::int32_t kIndexes[] = {IDXPRESET_PHOTO_FACES, IDXPRESET_PHOTO_OTHER, IDXPRESET_DOCUMENT_PAGE,
                                         1100000};
    const std::int32_t index = kIndexes[Below(4)];
    Item item, own;
    const unsigned kind = Below(14);
    if (kind == 0) IDXAddImage(&item.Name(name).Index(index));
    if (kind == 1) IDXChangeImage(&item.Name(name).Index(index).Attribute(0));
    if (kind == 2) IDXRemoveImage(&item.Name(name));
    if (kind == 3) IDXSearchImage(&item.Name(name).Index(0));
    if (kind == 4) IDXAddIndex(&item.Index(IDXPRESET_PHOTO).Name(name).Operation(IDXOP_GETINFO));
    if (kind == 5) IDXRemoveIndex(&item.Index(1100000 + 10000 * static_cast<std::int32_t>(Below(4))));
    if (kind == 6) DetectScene();
    if (kind == 7) OnName(Below(2) ? IDXWriteImageFile : IDXLoadImageFile, "file" + number_);
    if (kind == 8) FirstHash(name);
    if (kind == 9) {
      IDXCloseFind(find_);
      find_ = IDXFindFirstImage(&item.Path(name.substr(0, 9)).Operation(Below(3) ? IDXOP_CONDITION : 0), nullptr);
    }
    for (unsigned step = kind > 9 && find_ ? Below(20) : 0; step > 0; --step) {
      Item next;
      if (IDXFindNextImage(find_, &next.Wanted()) != IDX_OK) break;
      EXPECT_EQ(next.NameText()[0], '/');
    }
    EXPECT_EQ(IDXSearchImage(&own.Name("/own/" + number_)), IDX_OK);
    ++steps;
  }

  long steps = 0;

 private:
  unsigned Below(unsigned limit) { return static_cast<unsigned>(random_()) % limit; }

  // The first image of a bucket. Another thread may remove the image before its key is read.
  static void FirstHash(const std::string& name) {
    CFStringRef out = nullptr;
    EXPECT_EQ(IDXFindFirstHash(static_cast<std::int32_t>(Key(name).GetHashKey()), &out), 1);
    EXPECT_TRUE(Item::Text(out).empty() || Item::Text(out)[0] == '/');
    CFRelease(out);
  }

  std::minstd_rand random_;
  const std::string number_;
  IDXFIND find_ = nullptr;
};

constexpr unsigned kThreads = 8;

void OnEachThread(const std::function<void(unsigned)>& work) {
  std::thread threads[kThreads];
  for (unsigned i = 0; i < kThreads; ++i) threads[i] = std::thread(work, i);
  for (std::thread& thread : threads) thread.join();
}

TEST(Threads, MixedCallsLeaveASoundCatalogue) {
  const fs::path folder = fs::temp_directory_path() / ("catalogcore_threads_" + std::to_string(getpid()));
  fs::create_directories(folder);
  ASSERT_EQ(IDXInitialize(), IDX_OK);
  ASSERT_EQ(OnName(IDXSetFilePath, folder), IDX_OK);
  std::atomic<int> detections = 0;
  fakeEngines.recognizing = [&detections] {
    EXPECT_EQ(++detections, 1);  // one at a time
    std::this_thread::sleep_for(std::chrono::microseconds(100));
    --detections;
  };
  const char* const seconds = std::getenv("CATALOGCORE_THREADS_SECONDS");
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(seconds ? std::atoi(seconds) : 3);
  std::atomic<long> steps = 0;
  OnEachThread([&](unsigned i) {
    Worker worker(i);
    while (std::chrono::steady_clock::now() < end) worker.Step();
    steps += worker.steps;
  });
  fakeEngines.recognizing = nullptr;
  EXPECT_EQ(BrokenInvariant(*idData), "");
  std::cout << steps << " calls\n";

  // Two threads never choose the same number for an index. The second addition would be refused.
  OnEachThread([](unsigned i) {
    for (int round = 0; round < 10000; ++round) {
      Item added;
      EXPECT_EQ(IDXAddIndex(&added.Index(IDXPRESET_DOCUMENT).Name(std::to_string(i)).Operation(IDXOP_GETINFO)), IDX_OK);
      EXPECT_EQ(IDXRemoveIndex(&added), IDX_OK);
    }
  });
  IDXUninitialize();
  fs::remove_all(folder);
}

TEST(Threads, CatalogueCallsDoNotWaitForADetection) {
  ASSERT_EQ(IDXInitialize(), IDX_OK);
  std::future<IDXSTATUS> call;
  bool isDone = false;
  fakeEngines.recognizing = [&] {
    call =
        std::async(std::launch::async, [] { return IDXAddImage(&Item().Name("/a/b").Index(IDXPRESET_PHOTO_OTHER)); });
    isDone = call.wait_for(std::chrono::seconds(20)) == std::future_status::ready;
  };
  DetectScene();
  fakeEngines.recognizing = nullptr;
  ASSERT_TRUE(call.valid());
  EXPECT_TRUE(isDone);
  EXPECT_EQ(call.get(), IDX_OK);
  IDXUninitialize();
}

}  // namespace

}  // namespace catalogcore
