// Lets every allocation of every exported call fail once: in all modules, in the platform's library and in what both
// use of the standard library.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <thread>
#include <tuple>
#include <type_traits>
#include <utility>

#include "api/catalogue.h"
#include "base/critical_region.h"
#include "scene/detect_scene.h"
#include "tests/api/item.h"
#include "tests/support/catalogue_state.h"
#include "tests/support/failing_allocator.h"

namespace catalogcore {

namespace {

namespace fs = std::filesystem;

// Too long for the buffer within a std::string, so that every copy allocates. One letter is not ASCII.
const std::string kLong = " of some length, \xC3\xA4";
constexpr std::int32_t kFirst = 1100000, kSecond = 1110000;
// In memory where possible: the catalogue file is written and flushed some thousand times.
const fs::path kFolder = (fs::exists("/dev/shm") ? fs::path("/dev/shm") : fs::temp_directory_path()) /
                         ("catalogcore_allocation_" + std::to_string(getpid()));
const std::string kFile = "file" + kLong;

IDXFIND find = nullptr;  // the open find of the steps

// The allowed results of a call in which an allocation fails, beside success where the failure has no effect.
enum Outcome : unsigned {
  kFailed = 1u << IDXERR_FAILED,
  kMemory = 1u << IDXERR_MEMORY,
  kDetector = 1u << IDXERR_DETECTOR,
  kParam = 1u << IDXERR_PARAM,
  kEither = kFailed | kMemory,  // of a call that reads a string or a file
  kLess = 1u << IDX_OK,         // success with a part of the effect
  kPart = 1u << 31,             // a failure with a part of the effect; else a failure has no effect
};

// An exported call with the arguments that it takes.
template <auto kCall>
IDXSTATUS Make(Item& item) {
  using Exported = decltype(kCall);
  if constexpr (std::is_invocable_v<Exported>) {
    return kCall();
  } else if constexpr (std::is_invocable_v<Exported, IDXSTR>) {
    return kCall(item.name);
  } else if constexpr (std::is_invocable_v<Exported, IDXITEM*>) {
    return kCall(&item);
  } else if constexpr (std::is_invocable_v<Exported, IDXFIND>) {
    return kCall(std::exchange(find, nullptr));
  } else if constexpr (std::is_invocable_v<Exported, IDXFIND, IDXITEM*>) {
    return kCall(find, &item);
  } else {
    IDXSTATUS status = 99;
    IDXCloseFind(std::exchange(find, kCall(&item, &status)));
    return (find != nullptr) == (status == IDX_OK) ? status : 99;
  }
}

IDXSTATUS SetNames(Item& item) {
  // Empty names: a name that cannot be read leaves the name of the entry before, and a number may leave the root.
  const IDXSTR names[] = {item.name, item.name, item.name};
  const std::int32_t numbers[] = {IDX_ROOT, IDXPRESET_PHOTO, kFirst};
  return IDXSetPresetIndexName(names, numbers, 3);
}

IDXSTATUS Detect(Item&) {
  static const std::uint8_t pixels[110 * 110 * 3] = {};
  IDXDSDATA data = {pixels, 110, 110, 330, 24, 150, 0, 0, 0, 0, 0};
  const IDXSTATUS status = IDXDetectScene(&data);
  EXPECT_EQ(data.presetIndex, status == IDX_OK ? IDXPRESET_PHOTO_OTHER : -1);
  return status;
}

struct Step {
  const char* name;
  IDXSTATUS (*call)(Item&);
  unsigned allowed;
  void (*prepare)(Item&);
};

// Each call finds the catalogue that the calls before it leave.
constexpr unsigned kStart = kMemory | kDetector | kLess | kPart;
const Step kSteps[] = {
    {"Initialize", Make<IDXInitialize>, kStart, [](Item&) {}},
    {"SetFilePath", Make<IDXSetFilePath>, kEither | kPart, [](Item& i) { i.Name("/a" + kLong + kLong + kLong); }},
    {"ChangeFilePath", Make<IDXSetFilePath>, kEither | kPart, [](Item& i) { i.Name(kFolder); }},
    {"AddIndex", Make<IDXAddIndex>, kEither,
     [](Item& i) { i.Index(IDXPRESET_PHOTO).Name("first" + kLong).Operation(IDXOP_GETINFO); }},
    {"AddSecondIndex", Make<IDXAddIndex>, kEither, [](Item& i) { i.Index(IDXPRESET_PHOTO).Name("second" + kLong); }},
    {"AddImage", Make<IDXAddImage>, kEither | kPart,
     [](Item& i) { i.Name(kFolder / "inner/b").Index(kFirst).Attribute(IDXATTR_NOMOVE); }},
    {"AddSecondImage", Make<IDXAddImage>, kEither | kPart, [](Item& i) { i.Name(kFolder / "a").Index(kFirst); }},
    {"ChangeImage", Make<IDXChangeImage>, kEither | kPart,
     [](Item& i) { i.Name(kFolder / "a").Index(kSecond).Attribute(1); }},
    {"SearchImage", Make<IDXSearchImage>, kEither, [](Item& i) { i.Name(kFolder / "a").Index(0); }},
    {"FindFirstImage", Make<IDXFindFirstImage>, kEither | kLess,
     [](Item& i) { i.Path(kFolder).Index(IDXPRESET_PHOTO).Operation(IDXOP_CONDITION).Wanted(); }},
    {"FindNextImage", Make<IDXFindNextImage>, kLess, [](Item& i) { i.Wanted(); }},
    {"WriteIndexFile", Make<IDXWriteIndexFile>, kEither, [](Item& i) { i.Name(kFile); }},
    {"WriteImageFile", Make<IDXWriteImageFile>, kEither, [](Item& i) { i.Name(kFile); }},
    {"RemoveImage", Make<IDXRemoveImage>, kEither, [](Item& i) { i.Name(kFolder / "a"); }},
    {"CloseFind", Make<IDXCloseFind>, 0, [](Item&) {}},
    {"SearchIndex", Make<IDXSearchIndex>, kMemory | kLess, [](Item& i) { i.Index(kFirst).Wanted(); }},
    {"FindFirstIndex", Make<IDXFindFirstIndex>, kMemory | kLess,
     [](Item& i) { i.Index(IDXPRESET_PHOTO).Operation(IDXOP_CONDITION).Wanted(); }},
    {"FindNextIndex", Make<IDXFindNextIndex>, kLess, [](Item& i) { i.Wanted(); }},
    {"ChangeIndex", Make<IDXChangeIndex>, kEither | kLess | kPart,
     [](Item& i) { i.Index(kFirst).Name("longer" + kLong + kLong).Attribute(1); }},
    {"SetPresetIndexName", SetNames, kParam | kLess | kPart, [](Item& i) { i.Name(""); }},
    {"RemoveIndex", Make<IDXRemoveIndex>, kMemory, [](Item& i) { i.Index(kFirst); }},
    {"DetectScene", Detect, kMemory | kLess, [](Item&) {}},
    {"Restart", Make<IDXInitialize>, kStart, [](Item&) {}},
    {"SetFilePathAgain", Make<IDXSetFilePath>, kEither | kPart, [](Item& i) { i.Name(kFolder); }},
    {"LoadIndexFile", Make<IDXLoadIndexFile>, kEither | kLess | kPart, [](Item& i) { i.Name(kFile); }},
    {"LoadImageFile", Make<IDXLoadImageFile>, kEither | kLess | kPart, [](Item& i) { i.Name(kFile); }},
    {"ChangeImageToNone", Make<IDXChangeImage>, kEither, [](Item& i) { i.Name(kFolder / "a").Index(IDX_ROOT); }},
    {"Uninitialize", Make<IDXUninitialize>, 0, [](Item&) {}},
};

// The steps from `first` up to `end`. Returns whether all succeed.
bool Perform(const Step* first, const Step* end) {
  bool isOk = true;
  for (; first != end; ++first) {
    Item item;
    first->prepare(item);
    isOk = first->call(item) == IDX_OK && isOk;
  }
  return isOk;
}

// The catalogue, the base directory, the file and the names of all files.
using Seen = std::tuple<CatalogueState, std::string, std::string, std::set<std::string>>;

Seen See() {
  std::set<std::string> names;
  for (const auto& entry : fs::recursive_directory_iterator(kFolder)) names.insert(entry.path());
  std::ifstream file(kFolder / kFile, std::ios::binary);
  const std::string base = g_strFilePath.Length() > 0 ? g_strFilePath.Text() : "";
  return {idData ? StateOf(*idData) : CatalogueState(), base, {std::istreambuf_iterator<char>(file), {}}, names};
}

void ExpectSound() {
  EXPECT_EQ(idData ? BrokenInvariant(*idData) : "", "");
  // Waits for ever if a lock is still held.
  std::thread([] {
    if (idData) const RegionGuard store(idData->CriticalRegion());
    if (dsScene) const RegionGuard detector(dsScene->Region());
  }).join();
}

void FailEachAllocation(const Step* step) {
  Seen done;
  int failing = -1;  // the first round has no failure
  for (bool hasFailed = true; failing < 1 || hasFailed; ++failing) {
    SCOPED_TRACE(testing::Message() << step->name << ", allocation " << failing);
    fs::remove(kFolder / kFile);
    EXPECT_TRUE(Perform(kSteps, step));
    Item item;
    step->prepare(item);
    const Seen before = See();
    IDXSTATUS status = 99;
    {
      const FailingAllocation failure(failing);
      status = step->call(item);
      hasFailed = failure.HasFailed();
    }
    ExpectSound();
    const Seen now = See();
    if (failing < 0) done = now;
    const bool isOk = status == IDX_OK;
    EXPECT_TRUE(isOk || (hasFailed && status < 31 && (step->allowed >> status & 1) != 0)) << status;
    const bool isPart = hasFailed && (step->allowed & (isOk ? kLess : kPart)) != 0;
    EXPECT_TRUE(isPart || now == (isOk ? done : before));
    EXPECT_TRUE(std::get<1>(now).empty() || std::get<1>(now) == std::get<1>(isOk ? done : before)) << std::get<1>(now);
    EXPECT_TRUE(failing != 0 || hasFailed == (step->allowed != 0));
    Perform(step, std::end(kSteps));  // calls still work, even without a root
  }
  testing::Test::RecordProperty(step->name, failing - 1);
}

TEST(Allocation, EachFailureIsReportedAndLeavesASoundCatalogue) {
  fs::create_directories(kFolder / "inner");
  for (const char* name : {"a", "inner/b"}) std::ofstream(kFolder / name) << "x";
  for (const Step& step : kSteps) FailEachAllocation(&step);
  IDXCloseFind(find);
  fs::remove_all(kFolder);
}

}  // namespace

}  // namespace catalogcore
