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

std::string ContentOf(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

// The state before a call: a catalogue of two indexes with an image each, and its file.
struct World {
  explicit World(const fs::path& path) : folder(path), file(Item::Make("file" + kLong)), base(Item::Make(folder)) {
    Begin();
    IDXAddIndex(&Item().Index(IDXPRESET_PHOTO).Name("first" + kLong));
    IDXAddIndex(&Item().Index(IDXPRESET_PHOTO).Name("second" + kLong));
    IDXAddImage(&Item().Name(folder / "a").Index(kFirst));
    IDXAddImage(&Item().Name(folder / "inner/b").Index(kSecond).Attribute(IDXATTR_NOMOVE));
    std::ofstream(File(), std::ios::binary) << written;
  }
  ~World() {
    // Calls still work, even without a root.
    IDXAddImage(&Item().Name("/last/image").Index(IDXPRESET_PHOTO_OTHER));
    IDXCloseFind(IDXFindFirstImage(&Item().Path("/last").Operation(IDXOP_CONDITION), nullptr));
    IDXChangeImage(&Item().Name("/last/image").Index(IDXPRESET_PHOTO_FACES));
    IDXRemoveImage(&Item().Name("/last/image"));
    IDXCloseFind(find);
    IDXUninitialize();
    CFRelease(file);
    CFRelease(base);
  }
  World(const World&) = delete;
  World& operator=(const World&) = delete;

  void Begin() {
    EXPECT_EQ(IDXInitialize(), IDX_OK);
    EXPECT_EQ(IDXSetFilePath(&base), IDX_OK);
  }
  fs::path File() const { return folder / ("file" + kLong); }

  static std::string written;  // a file with the whole catalogue

  const fs::path folder;
  CFStringRef file, base;
  Item item;
  IDXFIND find = nullptr;
};
std::string World::written = "<plist><dict/></plist>";

// The catalogue, the base directory, the file and the names of all files.
using Seen = std::tuple<CatalogueState, std::string, std::string, std::set<std::string>>;

Seen See(const World& world) {
  std::set<std::string> names;
  for (const auto& entry : fs::recursive_directory_iterator(world.folder)) names.insert(entry.path());
  const char* const base = g_strFilePath.Length() > 0 ? g_strFilePath.Text() : "";
  return {idData ? StateOf(*idData) : CatalogueState(), base, ContentOf(world.File()), names};
}

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

using Call = IDXSTATUS (*)(World&);
using Prepare = void (*)(World&);

struct Case {
  const char* name;
  Call call;
  unsigned allowed;
  Prepare prepare;
};

std::ostream& operator<<(std::ostream& out, const Case& c) { return out << c.name; }

template <IDXSTATUS (*kCall)(IDXITEM*)>
IDXSTATUS OnItem(World& world) {
  return kCall(&world.item);
}

template <IDXSTATUS (*kCall)(IDXSTR)>
IDXSTATUS OnFile(World& world) {
  return kCall(&world.file);
}

template <IDXFIND (*kCall)(IDXITEM*, IDXSTATUS*)>
IDXSTATUS First(World& world) {
  IDXSTATUS status = 99;
  world.find = kCall(&world.item, &status);
  return (world.find != nullptr) == (status == IDX_OK) ? status : 99;
}

template <IDXSTATUS (*kCall)(IDXFIND, IDXITEM*)>
IDXSTATUS Next(World& world) {
  return kCall(world.find, &world.item);
}

IDXSTATUS SetNames(World& world) {
  // Empty names: a name that cannot be read leaves the name of the entry before, and a number may leave the root.
  const IDXSTR names[] = {world.item.name, world.item.name, world.item.name};
  const std::int32_t numbers[] = {IDX_ROOT, IDXPRESET_PHOTO, kFirst};
  return IDXSetPresetIndexName(names, numbers, 3);
}

IDXSTATUS Detect(World&) {
  static const std::uint8_t pixels[110 * 110 * 3] = {};
  IDXDSDATA data = {pixels, 110, 110, 330, 24, 150, 0, 0, 0, 0, 0};
  const IDXSTATUS status = IDXDetectScene(&data);
  EXPECT_EQ(data.presetIndex, status == IDX_OK ? IDXPRESET_PHOTO_OTHER : -1);
  return status;
}

IDXSTATUS Initialize(World&) { return IDXInitialize(); }
IDXSTATUS SetFilePath(World& world) { return IDXSetFilePath(world.item.name); }

void RemoveFirst(World&) { IDXRemoveIndex(&Item().Index(kFirst)); }

// Prepares a find-next call that fills every field.
void Goes(World& world, IDXFIND find) {
  world.find = find;
  world.item.Wanted();
}

const Case kCases[] = {
    {"Initialize", Initialize, kMemory | kDetector | kLess | kPart, [](World&) { IDXUninitialize(); }},
    {"Uninitialize", [](World&) { return IDXUninitialize(); }, 0, [](World&) {}},
    {"CloseFind", [](World& w) { return IDXCloseFind(std::exchange(w.find, nullptr)); }, 0,
     [](World& w) { Goes(w, IDXFindFirstImage(&w.item, nullptr)); }},
    {"SetFilePath", SetFilePath, kEither | kPart, [](World& w) { w.item.Name("/elsewhere" + kLong + kLong + kLong); }},
    {"AddImage", OnItem<IDXAddImage>, kEither | kPart,
     [](World& w) { w.item.Name(w.folder / "fresh/deep/c").Index(kFirst).Attribute(1); }},
    {"ChangeImage", OnItem<IDXChangeImage>, kEither | kPart,
     [](World& w) { w.item.Name(w.folder / "a").Index(kSecond).Attribute(1); }},
    {"ChangeImageToNone", OnItem<IDXChangeImage>, kEither,
     [](World& w) { w.item.Name(w.folder / "a").Index(IDX_ROOT); }},
    {"RemoveImage", OnItem<IDXRemoveImage>, kEither,
     [](World& w) { Goes(w, IDXFindFirstImage(&w.item.Name(w.folder / "a"), nullptr)); }},
    {"SearchImage", OnItem<IDXSearchImage>, kEither, [](World& w) { w.item.Name(w.folder / "a").Index(0); }},
    {"FindFirstImage", First<IDXFindFirstImage>, kEither | kLess,
     [](World& w) { w.item.Path(w.folder).Index(kFirst).Operation(IDXOP_CONDITION).Wanted(); }},
    {"FindNextImage", Next<IDXFindNextImage>, kLess, [](World& w) { Goes(w, IDXFindFirstImage(&w.item, nullptr)); }},
    {"AddIndex", OnItem<IDXAddIndex>, kEither,
     [](World& w) { w.item.Index(IDXPRESET_PHOTO).Name("third" + kLong).Operation(IDXOP_GETINFO); }},
    {"ChangeIndex", OnItem<IDXChangeIndex>, kEither | kLess | kPart,
     [](World& w) { w.item.Index(kFirst).Name("longer" + kLong + kLong).Attribute(1); }},
    {"RemoveIndex", OnItem<IDXRemoveIndex>, kMemory,
     [](World& w) { Goes(w, IDXFindFirstIndex(&w.item.Index(kFirst).Operation(IDXOP_CONDITION), nullptr)); }},
    {"SearchIndex", OnItem<IDXSearchIndex>, kMemory | kLess, [](World& w) { w.item.Index(kFirst).Wanted(); }},
    {"FindFirstIndex", First<IDXFindFirstIndex>, kMemory | kLess,
     [](World& w) { w.item.Index(kFirst).Operation(IDXOP_CONDITION).Wanted(); }},
    {"FindNextIndex", Next<IDXFindNextIndex>, kLess, [](World& w) { Goes(w, IDXFindFirstIndex(&w.item, nullptr)); }},
    {"SetPresetIndexName", SetNames, kParam | kLess | kPart, [](World& w) { w.item.Name(""); }},
    {"LoadIndexFile", OnFile<IDXLoadIndexFile>, kEither | kLess | kPart, [](World& w) { w.Begin(); }},
    {"LoadImageFile", OnFile<IDXLoadImageFile>, kEither | kLess | kPart,
     [](World& w) { w.Begin(), IDXLoadIndexFile(&w.file); }},
    {"WriteIndexFile", OnFile<IDXWriteIndexFile>, kEither, RemoveFirst},
    {"WriteImageFile", OnFile<IDXWriteImageFile>, kEither, RemoveFirst},
    {"DetectScene", Detect, kMemory | kLess, [](World&) {}},
};

void ExpectSound() {
  EXPECT_EQ(idData ? BrokenInvariant(*idData) : "", "");
  // Waits for ever if a lock is still held.
  std::thread([] {
    if (idData) const RegionGuard store(idData->CriticalRegion());
    if (dsScene) const RegionGuard detector(dsScene->Region());
  }).join();
}

class AllocationTest : public testing::TestWithParam<Case> {
 protected:
  AllocationTest() : folder_(fs::temp_directory_path() / ("catalogcore_allocation_" + std::to_string(getpid()))) {
    fs::remove_all(folder_);
    fs::create_directories(folder_ / "inner");
    for (const char* name : {"a", "inner/b"}) std::ofstream(folder_ / name) << "x";
    World world(folder_);
    EXPECT_EQ(IDXWriteIndexFile(&world.file), IDX_OK);
    EXPECT_EQ(IDXWriteImageFile(&world.file), IDX_OK);
    World::written = ContentOf(world.File());
  }
  ~AllocationTest() override { fs::remove_all(folder_); }

  const fs::path folder_;
};

TEST_P(AllocationTest, EachFailureIsReportedAndLeavesASoundCatalogue) {
  const Case& c = GetParam();
  Seen done;
  int failing = -1;  // the first round has no failure
  for (bool hasFailed = true; failing < 1 || hasFailed; ++failing) {
    SCOPED_TRACE(testing::Message() << "allocation " << failing);
    World world(folder_);
    c.prepare(world);
    const Seen before = See(world);
    IDXSTATUS status = 99;
    {
      const FailingAllocation failure(failing);
      status = c.call(world);
      hasFailed = failure.HasFailed();
    }
    ExpectSound();
    const Seen now = See(world);
    if (failing < 0) done = now;
    const bool isOk = status == IDX_OK;
    EXPECT_TRUE(isOk || (hasFailed && status < 31 && (c.allowed >> status & 1) != 0)) << status;
    const bool isPart = hasFailed && (c.allowed & (isOk ? kLess : kPart)) != 0;
    EXPECT_TRUE(isPart || now == (isOk ? done : before));
    EXPECT_TRUE(std::get<1>(now).empty() || std::get<1>(now) == std::get<1>(isOk ? done : before)) << std::get<1>(now);
    EXPECT_TRUE(failing != 0 || hasFailed == (c.allowed != 0));
  }
}

INSTANTIATE_TEST_SUITE_P(EveryCall, AllocationTest, testing::ValuesIn(kCases),
                         [](const auto& test) { return test.param.name; });

}  // namespace

}  // namespace catalogcore
