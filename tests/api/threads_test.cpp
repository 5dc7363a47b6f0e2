// Eight threads on mixed calls; built with the thread sanitizer too, which has to stay silent.
#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <random>
#include <set>
#include <thread>

#include "api/catalogue.h"
#include "api/internal_calls.h"
#include "tests/api/item.h"
#include "tests/support/catalogue_state.h"

namespace {

namespace fs = std::filesystem;

class Worker {
 public:
  explicit Worker(unsigned number)
      : random_(number), file_(Item::Make("file" + std::to_string(number))), path_("/own/" + std::to_string(number)) {
    EXPECT_EQ(IDXAddImage(&Item().Name(path_).Index(IDXPRESET_PHOTO_OTHER)), IDX_OK);
  }
  ~Worker() { CFRelease(file_); }
  Worker(const Worker&) = delete;
  Worker& operator=(const Worker&) = delete;

  void Step() {
    const std::string name = "/shared/" + std::to_string(Below(4)) + "/" + std::to_string(Below(40));
    constexpr std::int32_t kIndexes[] = {IDXPRESET_PHOTO_FACES, IDXPRESET_PHOTO_OTHER, IDXPRESET_DOCUMENT_PAGE,
                                         1100000};
    const std::int32_t index = kIndexes[Below(4)];
    Item item;
    const unsigned kind = Below(10);
    if (kind == 0) IDXAddImage(&item.Name(name).Index(index));
    if (kind == 1) IDXChangeImage(&item.Name(name).Index(index).Attribute(0));
    if (kind == 2) IDXRemoveImage(&item.Name(name));
    if (kind == 3) IDXSearchImage(&item.Name(name).Index(0));
    if (kind == 4) IDXAddIndex(&item.Index(IDXPRESET_PHOTO).Name(name).Operation(IDXOP_GETINFO));
    if (kind == 5) IDXRemoveIndex(&item.Index(1100000 + 10000 * static_cast<std::int32_t>(Below(4))));
    if (kind == 6) DetectScene();
    if (kind == 7) {
      IDXWriteImageFile(&file_);
      IDXLoadImageFile(&file_);
    }
    if (kind == 8) FirstHash();
    if (kind == 9) {
      // A first result alone: what a walk stands on must not be removed before it goes on.
      IDXCloseFind(Below(2) ? IDXFindFirstImage(&item.Wanted(), nullptr) : IDXFindFirstIndex(&item.Wanted(), nullptr));
    }
    item.Clear().Name(path_).Index(0);
    EXPECT_EQ(IDXSearchImage(&item), IDX_OK);
  }

 private:
  unsigned Below(unsigned limit) { return static_cast<unsigned>(random_()) % limit; }

  void DetectScene() {
    IDXDSDATA data{};
    std::uint8_t pixels[60 * 60] = {};
    data.pixels = pixels;
    data.width = data.height = data.rowBytes = 60;
    data.bitsPerPixel = 8;
    EXPECT_EQ(IDXDetectScene(&data), IDX_OK);
    EXPECT_EQ(data.presetIndex, IDXPRESET_PHOTO_OTHER);
  }

  // The first image of the bucket of the worker's own, which nobody removes: it was filed before all others.
  void FirstHash() {
    CIDXString key;
    key.CopyString(path_.c_str());
    CFStringRef out = nullptr;
    EXPECT_EQ(IDXFindFirstHash(static_cast<std::int32_t>(key.GetHashKey()), &out), 1);
    EXPECT_EQ(Item::Text(out).rfind("/own/", 0), 0u);
    CFRelease(out);
  }

  std::minstd_rand random_;
  CFStringRef file_;
  const std::string path_;
};

TEST(Threads, MixedCallsLeaveASoundCatalogue) {
  const fs::path folder = fs::temp_directory_path() / ("catalogcore_threads_" + std::to_string(getpid()));
  fs::create_directories(folder);
  ASSERT_EQ(IDXInitialize(), IDX_OK);
  CFStringRef base = Item::Make(folder);
  ASSERT_EQ(IDXSetFilePath(&base), IDX_OK);
  CFRelease(base);
  std::unique_ptr<Worker> workers[8];
  unsigned number = 0;
  for (auto& worker : workers) worker = std::make_unique<Worker>(++number);
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(3);
  std::thread threads[8];
  for (std::size_t i = 0; i < 8; ++i) {
    threads[i] = std::thread([&worker = *workers[i], end] {
      while (std::chrono::steady_clock::now() < end) worker.Step();
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(BrokenInvariant(*idData), "");
  for (auto& worker : workers) worker.reset();

  // No two of them take one number for the indexes that they add at once.
  std::int32_t numbers[16] = {};
  for (std::size_t i = 0; i < 8; ++i) {
    threads[i] = std::thread([&numbers, i] {
      for (std::size_t n = i; n < 16; n += 8) {
        Item item;
        EXPECT_EQ(IDXAddIndex(&item.Index(IDXPRESET_DOCUMENT).Name("n" + std::to_string(n)).Operation(IDXOP_GETINFO)),
                  IDX_OK);
        numbers[n] = item.index;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(std::set<std::int32_t>(numbers, numbers + 16).size(), 16u);
  IDXUninitialize();
  fs::remove_all(folder);
}

}  // namespace
