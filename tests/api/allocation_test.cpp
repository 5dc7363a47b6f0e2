// Every allocation of every exported call fails once, one after the other: in all rooms, in the platform's library and in
// what both use of the standard library.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <thread>
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

// What no std::string holds within itself, so that every copy of it is an allocation. The letter is none of ASCII's.
const std::string kLong = " of some length, \xC3\xA4";
constexpr std::int32_t kFirst = 1100000, kSecond = 1110000;

std::string ContentOf(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

// What one round of a call begins with: a catalogue of two indexes with an image each, and its file.
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
    // What can be done with what is there is done, even without a root, and freed at the end.
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

  static std::string written;  // a file with all of it

  const fs::path folder;
  CFStringRef file, base;
  Item item;
  IDXFIND find = nullptr;
};
std::string World::written = "<plist><dict/></plist>";

// All that can be told of the catalogue and its folder, each fact for itself.
using Facts = std::set<std::string>;

Facts FactsOf(const World& world) {
  Facts facts = {"content " + ContentOf(world.File())};
  for (const auto& entry : fs::recursive_directory_iterator(world.folder)) facts.insert(entry.path());
  if (g_strFilePath.Length() > 0) facts.insert(std::string("base ") + g_strFilePath.Text());
  if (!idData) return facts;
  const CatalogueState state = StateOf(*idData);
  std::map<std::string, std::string> images;
  for (int tree = 0; tree < kTreeCount; ++tree) {
    for (const CellState& cell : state.cells[tree]) {
      const std::string name = "cell " + std::to_string(tree) + " " + cell.key;
      facts.insert({name, name + " named " + cell.name, name + " attribute " + std::to_string(cell.attribute)});
      for (const std::string& image : cell.images) images[image] += " in " + name;
    }
  }
  for (const auto& [image, cells] : images) {
    facts.insert("image " + image + cells + " attribute " + std::to_string(state.attributes.at(image)));
  }
  return facts;
}

// What may come of a call in which an allocation fails, beside its success where the failure did no harm.
enum Outcome : unsigned {
  kFailed = 1u << IDXERR_FAILED,
  kMemory = 1u << IDXERR_MEMORY,
  kDetector = 1u << IDXERR_DETECTOR,
  kParam = 1u << IDXERR_PARAM,
  kEither = kFailed | kMemory,  // of what reads a string or a file
  kLess = 1u << IDX_OK,         // success, with less done than without the failure
  kPart = 1u << 31,             // a failure that leaves a part of the change done; else it is all or nothing
};

using Call = IDXSTATUS (*)(World&);
using Prepare = void (*)(World&);

struct Case {
  const char* name;
  Call call;
  int leastAllocations;
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
  // Empty names, as one that cannot be read leaves that of the entry before, or none; a number may leave the root.
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
IDXSTATUS Uninitialize(World&) { return IDXUninitialize(); }
IDXSTATUS SetFilePath(World& world) { return IDXSetFilePath(world.item.name); }
IDXSTATUS CloseFind(World& world) { return IDXCloseFind(std::exchange(world.find, nullptr)); }

void RemoveFirst(World&) { IDXRemoveIndex(&Item().Index(kFirst)); }

// Where a walk goes on: its record wants everything.
void Goes(World& world, IDXFIND find) {
  world.find = find;
  world.item.Wanted();
}

const Case kCases[] = {
    {"Initialize", Initialize, 80, kMemory | kDetector | kLess | kPart, [](World&) { IDXUninitialize(); }},
    {"Uninitialize", Uninitialize, 0, 0, [](World&) {}},
    {"SetFilePath", SetFilePath, 3, kEither | kPart,
     [](World& w) { w.item.Name("/elsewhere" + kLong + kLong + kLong); }},
    {"AddImage", OnItem<IDXAddImage>, 12, kEither | kPart,
     [](World& w) { w.item.Name(w.folder / "fresh/deep/c").Index(kFirst).Attribute(1); }},
    {"ChangeImage", OnItem<IDXChangeImage>, 6, kEither | kPart,
     [](World& w) { w.item.Name(w.folder / "a").Index(kSecond).Attribute(1); }},
    {"ChangeImageToNone", OnItem<IDXChangeImage>, 4, kEither,
     [](World& w) { w.item.Name(w.folder / "a").Index(IDX_ROOT); }},
    {"RemoveImage", OnItem<IDXRemoveImage>, 2, kEither,
     [](World& w) { Goes(w, IDXFindFirstImage(&w.item.Name(w.folder / "a"), nullptr)); }},
    {"SearchImage", OnItem<IDXSearchImage>, 2, kEither, [](World& w) { w.item.Name(w.folder / "a").Index(0); }},
    {"FindFirstImage", First<IDXFindFirstImage>, 5, kEither | kLess,
     [](World& w) { w.item.Path(w.folder).Index(kFirst).Operation(IDXOP_CONDITION).Wanted(); }},
    {"FindNextImage", Next<IDXFindNextImage>, 1, kLess, [](World& w) { Goes(w, IDXFindFirstImage(&w.item, nullptr)); }},
    {"CloseFind", CloseFind, 0, 0, [](World& w) { Goes(w, IDXFindFirstImage(&w.item, nullptr)); }},
    {"AddIndex", OnItem<IDXAddIndex>, 8, kEither,
     [](World& w) { w.item.Index(IDXPRESET_PHOTO).Name("third" + kLong).Operation(IDXOP_GETINFO); }},
    {"ChangeIndex", OnItem<IDXChangeIndex>, 4, kEither | kLess | kPart,
     [](World& w) { w.item.Index(kFirst).Name("longer" + kLong + kLong).Attribute(1); }},
    {"RemoveIndex", OnItem<IDXRemoveIndex>, 1, kMemory,
     [](World& w) { Goes(w, IDXFindFirstIndex(&w.item.Index(kFirst).Operation(IDXOP_CONDITION), nullptr)); }},
    {"SearchIndex", OnItem<IDXSearchIndex>, 2, kMemory | kLess, [](World& w) { w.item.Index(kFirst).Wanted(); }},
    {"FindFirstIndex", First<IDXFindFirstIndex>, 3, kMemory | kLess,
     [](World& w) { w.item.Index(kFirst).Operation(IDXOP_CONDITION).Wanted(); }},
    {"FindNextIndex", Next<IDXFindNextIndex>, 1, kLess, [](World& w) { Goes(w, IDXFindFirstIndex(&w.item, nullptr)); }},
    {"SetPresetIndexName", SetNames, 6, kParam | kLess | kPart, [](World& w) { w.item.Name(""); }},
    {"LoadIndexFile", OnFile<IDXLoadIndexFile>, 50, kEither | kLess | kPart, [](World& w) { w.Begin(); }},
    {"LoadImageFile", OnFile<IDXLoadImageFile>, 50, kEither | kLess | kPart,
     [](World& w) { w.Begin(), IDXLoadIndexFile(&w.file); }},
    {"WriteIndexFile", OnFile<IDXWriteIndexFile>, 50, kEither, RemoveFirst},
    {"WriteImageFile", OnFile<IDXWriteImageFile>, 50, kEither, RemoveFirst},
    {"DetectScene", Detect, 5, kMemory | kLess, [](World&) {}},
};

void ExpectSound() {
  EXPECT_EQ(idData ? BrokenInvariant(*idData) : "", "");
  // Waits for ever if a region is still held.
  std::thread([] {
    if (idData) const RegionGuard store(idData->CriticalRegion());
    if (dsScene) const RegionGuard detector(dsScene->Region());
  }).join();
}

// What of the facts is not among the others.
Facts Missing(const Facts& facts, const Facts& others) {
  Facts missing;
  std::ranges::set_difference(facts, others, std::inserter(missing, missing.end()));
  return missing;
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
  Facts done;
  int failing = -1;  // first none, to see what is done without a failure
  for (bool hasFailed = true; failing < 1 || hasFailed; ++failing) {
    SCOPED_TRACE(testing::Message() << "allocation " << failing);
    World world(folder_);
    c.prepare(world);
    const Facts before = FactsOf(world);
    IDXSTATUS status = 99;
    {
      const FailingAllocation failure(failing);
      status = c.call(world);
      hasFailed = failure.HasFailed();
    }
    ExpectSound();
    const Facts now = FactsOf(world);
    if (failing < 0) done = now;
    const bool isOk = status == IDX_OK;
    EXPECT_TRUE(isOk || (hasFailed && status < 31 && (c.allowed >> status & 1) != 0)) << status;
    const bool isPart = hasFailed && (c.allowed & (isOk ? kLess : kPart)) != 0;
    const Facts& all = isOk ? done : before;
    const Facts& other = isPart ? (isOk ? before : done) : all;
    // What is there was there before or is there when all is done; what both have is there.
    EXPECT_EQ(Missing(Missing(now, all), other), Facts());
    EXPECT_EQ(Missing(Missing(all, Missing(all, other)), now), Facts());
  }
  EXPECT_GE(failing - 1, c.leastAllocations);
  RecordProperty("allocations", failing - 1);
}

INSTANTIATE_TEST_SUITE_P(EveryCall, AllocationTest, testing::ValuesIn(kCases),
                         [](const auto& test) { return test.param.name; });

}  // namespace

}  // namespace catalogcore
