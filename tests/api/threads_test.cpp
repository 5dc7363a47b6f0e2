// Eight threads on mixed calls, with walks open across them; built with the thread sanitizer too, which has to stay
// silent. CATALOGCORE_THREADS_SECONDS asks for more than the three seconds.
#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <future>
#include <iostream>
#include <random>
#include <thread>

#include "api/catalogue.h"
#include "api/internal_calls.h"
#include "tests/api/item.h"
#include "tests/scene/fake_engines.h"
#include "tests/support/catalogue_state.h"

namespace catalogcore {

namespace {

namespace fs = std::filesystem;

// Calls the detector, which calls the recognizer.
void DetectScene() {
  static constexpr std::uint8_t kPixels[60 * 60] = {};
  IDXDSDATA data = {kPixels, 60, 60, 60, 8, 0, 0, 0, 0, 0, 0};
  EXPECT_EQ(IDXDetectScene(&data), IDX_OK);
  EXPECT_EQ(data.presetIndex, IDXPRESET_PHOTO_OTHER);
}

class Worker {
 public:
  explicit Worker(unsigned number)
      : random_(number), file_("file" + std::to_string(number)), path_("/own/" + std::to_string(number)) {
    EXPECT_EQ(IDXAddImage(&Item().Name(path_).Index(IDXPRESET_PHOTO_OTHER)), IDX_OK);
  }

  void Step() {
    const std::string name = "/shared/" + std::to_string(Below(4)) + "/" + std::to_string(Below(40));
    constexpr std::int32_t kIndexes[] = {IDXPRESET_PHOTO_FACES, IDXPRESET_PHOTO_OTHER, IDXPRESET_DOCUMENT_PAGE,
                                         1100000};
    const std::int32_t index = kIndexes[Below(4)];
    Item item;
    const unsigned kind = Below(14);
    if (kind == 0) IDXAddImage(&item.Name(name).Index(index));
    if (kind == 1) IDXChangeImage(&item.Name(name).Index(index).Attribute(0));
    if (kind == 2) IDXRemoveImage(&item.Name(name));
    if (kind == 3) IDXSearchImage(&item.Name(name).Index(0));
    if (kind == 4) IDXAddIndex(&item.Index(IDXPRESET_PHOTO).Name(name).Operation(IDXOP_GETINFO));
    if (kind == 5) IDXRemoveIndex(&item.Index(1100000 + 10000 * static_cast<std::int32_t>(Below(4))));
    if (kind == 6) DetectScene();
    if (kind == 7) {
      OnName(IDXWriteImageFile, file_);
      OnName(IDXLoadImageFile, file_);
    }
    if (kind == 8) FirstHash();
    if (kind == 9) BeginWalk();
    if (kind > 9) GoOnWithWalk();
    item.Clear().Name(path_).Index(0);
    EXPECT_EQ(IDXSearchImage(&item), IDX_OK);
    ++steps;
  }

  // Once the catalogue is gone.
  void EndWalks() {
    for (const Walk& walk : walks_) {
      Item item;
      EXPECT_EQ(walk.Next(item.Wanted()), walk.isOverImages ? IDXERR_NOIMAGE : IDXERR_NOINDEX);
      EXPECT_EQ(IDXCloseFind(walk.find), IDX_OK);
    }
  }

  long steps = 0, found = 0;

 private:
  struct Walk {
    IDXFIND find;
    bool isOverImages;
    IDXSTATUS Next(Item& item) const { return (isOverImages ? IDXFindNextImage : IDXFindNextIndex)(find, &item); }
  };

  unsigned Below(unsigned limit) { return static_cast<unsigned>(random_()) % limit; }

  void BeginWalk() {
    if (walks_.size() == 4) {
      IDXCloseFind(walks_.front().find);
      walks_.erase(walks_.begin());
    }
    const bool isOverImages = Below(4) != 0;
    Item item;
    if (isOverImages && Below(2)) item.Path("/shared/" + std::to_string(Below(4))).Operation(IDXOP_CONDITION);
    const IDXFIND find = (isOverImages ? IDXFindFirstImage : IDXFindFirstIndex)(&item, nullptr);
    if (find) walks_.push_back({find, isOverImages});
  }

  void GoOnWithWalk() {
    if (walks_.empty()) return;
    const Walk& walk = walks_[Below(static_cast<unsigned>(walks_.size()))];
    for (unsigned step = Below(20); step > 0; --step) {
      Item item;
      if (walk.Next(item.Wanted()) != IDX_OK) return;
      ++found;
      const std::string name = item.NameText();
      EXPECT_TRUE(name[0] == '/' || (!walk.isOverImages && name.rfind("idx", 0) == 0)) << name;
    }
  }

  // An image of the bucket, maybe removed before its key is read.
  void FirstHash() {
    CIDXString key;
    key.CopyString(("/shared/1/" + std::to_string(Below(40))).c_str());
    CFStringRef out = nullptr;
    EXPECT_EQ(IDXFindFirstHash(static_cast<std::int32_t>(key.GetHashKey()), &out), 1);
    EXPECT_TRUE(Item::Text(out).empty() || Item::Text(out)[0] == '/');
    CFRelease(out);
  }

  std::minstd_rand random_;
  const std::string file_, path_;
  std::vector<Walk> walks_;
};

TEST(Threads, MixedCallsLeaveASoundCatalogue) {
  const fs::path folder = fs::temp_directory_path() / ("catalogcore_threads_" + std::to_string(getpid()));
  fs::create_directories(folder);
  ASSERT_EQ(IDXInitialize(), IDX_OK);
  ASSERT_EQ(OnName(IDXSetFilePath, folder), IDX_OK);
  std::unique_ptr<Worker> workers[8];
  std::atomic<int> detections = 0;  // one at a time
  fakeEngines.recognizing = [&detections] {
    EXPECT_EQ(++detections, 1);
    std::this_thread::sleep_for(std::chrono::microseconds(100));
    --detections;
  };
  unsigned number = 0;
  for (auto& worker : workers) worker = std::make_unique<Worker>(++number);
  const char* const seconds = std::getenv("CATALOGCORE_THREADS_SECONDS");
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(seconds ? std::atoi(seconds) : 3);
  std::thread threads[8];
  for (std::size_t i = 0; i < 8; ++i) {
    threads[i] = std::thread([&worker = *workers[i], end] {
      while (std::chrono::steady_clock::now() < end) worker.Step();
    });
  }
  for (std::thread& thread : threads) thread.join();
  fakeEngines.recognizing = nullptr;
  EXPECT_EQ(BrokenInvariant(*idData), "");
  long steps = 0, found = 0;
  for (const auto& worker : workers) {
    steps += worker->steps;
    found += worker->found;
  }
  std::cout << steps << " calls, " << found << " entries found by walks\n";

  // No two of them take one number for the indexes that they add at once, again and again: the second would be refused.
  for (std::size_t i = 0; i < 8; ++i) {
    threads[i] = std::thread([i] {
      for (int round = 0; round < 10000; ++round) {
        Item added;
        added.Index(IDXPRESET_DOCUMENT).Name(std::to_string(i)).Operation(IDXOP_GETINFO);
        EXPECT_EQ(IDXAddIndex(&added), IDX_OK);
        EXPECT_EQ(IDXRemoveIndex(&added), IDX_OK);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  IDXUninitialize();
  for (const auto& worker : workers) worker->EndWalks();
  fs::remove_all(folder);
}

TEST(Threads, CatalogueCallsGetThroughDuringADetection) {
  ASSERT_EQ(IDXInitialize(), IDX_OK);
  std::future<IDXSTATUS> call;
  bool gotThrough = false;
  fakeEngines.recognizing = [&] {
    call =
        std::async(std::launch::async, [] { return IDXAddImage(&Item().Name("/a/b").Index(IDXPRESET_PHOTO_OTHER)); });
    gotThrough = call.wait_for(std::chrono::seconds(20)) == std::future_status::ready;
  };
  DetectScene();
  fakeEngines.recognizing = nullptr;
  ASSERT_TRUE(call.valid());
  EXPECT_TRUE(gotThrough);
  EXPECT_EQ(call.get(), IDX_OK);
  IDXUninitialize();
}

}  // namespace

}  // namespace catalogcore
