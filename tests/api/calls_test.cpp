// Random sequences of exported calls, compared with the model; and cases that they do not reach: the codec, invalid
// arguments, and fields of records.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <filesystem>
#include <fstream>
#include <random>
#include <thread>
#include <tuple>

#include "api/catalogue.h"
#include "api/index_number.h"
#include "api/internal_calls.h"
#include "tests/api/item.h"
#include "tests/support/compared_calls.h"
#include "tests/support/store_inspector.h"

namespace catalogcore {

namespace {

namespace fs = std::filesystem;

class CallsTest : public testing::Test {
 protected:
  CallsTest() { EXPECT_EQ(IDXInitialize(), IDX_OK); }
  ~CallsTest() override { IDXUninitialize(); }

  static IDXSTATUS AddImage(const char* name, std::int32_t index) {
    return IDXAddImage(&Item().Name(name).Index(index));
  }
};

// At the end of each sequence both files are written and loaded, and the loaded catalogue is compared.
TEST(RandomCalls, LibraryAndModelAgreeAndSoDoesWhatIsLoaded) {
  const fs::path folder = fs::temp_directory_path() / ("catalogcore_calls_" + std::to_string(getpid()));
  Keys names;
  for (int i = 0; i < 30; ++i) {
    const fs::path path = folder / ("f" + std::to_string(i % 3)) / ("image, " + std::to_string(i) + ".jpg");
    fs::create_directories(path.parent_path());
    if (i % 10) std::ofstream(path) << "x";  // some files are missing
    names.push_back(path);
  }
  for (unsigned long seed = 1; seed <= 30 && !testing::Test::HasFailure(); ++seed) {
    std::mt19937_64 random(seed);
    ComparedCalls run([&random](int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); },
                      names);
    for (int step = 0; step < 300; ++step) {
      run.Step();
      ASSERT_FALSE(testing::Test::HasFailure()) << "seed " << seed << ", step " << step;
    }
    run.WriteAndLoad(folder);
    EXPECT_FALSE(testing::Test::HasFailure()) << "seed " << seed;
  }
  fs::remove_all(folder);
}

TEST(IndexNumber, StandsForAPathAndBack) {
  for (const auto& [number, path] :
       {std::pair{1000000, "1"}, {29101010, "29/10/10/10"}, {1100000, "1/10"}, {-1, "."}, {99999999, "99/99/99/99"}}) {
    CIDXString text;
    int result = 0;
    EXPECT_GE(ConvertINTtoPath(text, number, 2), 0);
    EXPECT_STREQ(text.Text(), path);
    ConvertPathtoINT(result, text, 4, 2);
    EXPECT_EQ(result, number);
    EXPECT_EQ(IndexPath(number), path);
    EXPECT_EQ(NumberOfIndexPath(path), number);
  }
  EXPECT_EQ(IndexPath(1000100), "1");  // a group of 0 ends the path
  Key unchanged("x");
  for (const int number : {0, 999999, 100000000, INT_MIN, INT_MAX}) {
    EXPECT_EQ(ConvertINTtoPath(unchanged, number, 2), -1);
    EXPECT_EQ(IndexPath(number), "");
  }
  EXPECT_STREQ(unchanged.Text(), "x");
  const std::tuple<const char*, int, int> oddPaths[] = {
      {"1/1/2/3/4", 101020304, 4}, {"1/x", 1000000, 0}, {"1/100", 2000000, 100}, {"x", 0, 0}, {"1/01", 1010000, 1}};
  for (const auto& [path, number, last] : oddPaths) {
    int result = 0;
    EXPECT_EQ(ConvertPathtoINT(result, Key(path), 4, 2), last);
    EXPECT_EQ(result, number);
    EXPECT_EQ(NumberOfIndexPath(path), 0) << path;
  }
  int wrapped = 0;
  EXPECT_EQ(ConvertPathtoINT(wrapped, Key("99999999999/1/1/1/1/1/1/1/1"), 4, 2), 1);
}

TEST(StoreStatus, MapsEveryCode) {
  const std::pair<int, IDXSTATUS> cases[] = {{0, 0},  {1, 12}, {2, 9}, {3, 7},   {4, 10},  {5, 8},   {6, 13},
                                             {7, 13}, {8, 2},  {9, 1}, {17, 14}, {18, 14}, {19, 14}, {20, 1}};
  for (const auto& [code, status] : cases) EXPECT_EQ(ConvertErrorCode(code, 0x1000), status) << code;
  EXPECT_EQ(ConvertErrorCode(5, 100), 105u);
}

TEST(FilePath, TwoSlashesBeginAsTheNormalFormOfAPath) {
  for (const auto& [key, norm] : {std::pair{"//x", "s:x"}, {"//", "s:"}, {"/x", "/x"}, {"", ""}}) {
    Key text(key);
    EXPECT_EQ(NormFilePathKey(text), 1);
    EXPECT_STREQ(text.Text(), norm);
  }
}

TEST(Lifecycle, NothingWorksBeforeAndEverythingIsGoneAfter) {
  Item item;
  item.Name("/a/b").Index(1010000);
  for (IDXSTATUS (*const call)(IDXITEM*) : {IDXAddImage, IDXChangeImage, IDXRemoveImage, IDXSearchImage, IDXAddIndex,
                                            IDXChangeIndex, IDXRemoveIndex, IDXSearchIndex}) {
    EXPECT_EQ(call(&item), IDXERR_FAILED);
    EXPECT_EQ(call(nullptr), IDXERR_PARAM);
  }
  for (IDXFIND (*const call)(IDXITEM*, IDXSTATUS*) : {IDXFindFirstImage, IDXFindFirstIndex})
    EXPECT_EQ(call(&item, nullptr), nullptr);

  ASSERT_EQ(IDXInitialize(), IDX_OK);
  EXPECT_EQ(IDXAddImage(&item), IDX_OK);
  EXPECT_EQ(OnName(IDXSetFilePath, "/tmp/"), IDX_OK);
  EXPECT_STREQ(g_strFilePath.Text(), "/tmp//");
  const IDXFIND images = IDXFindFirstImage(&Item().Operation(0), nullptr),
                indexes = IDXFindFirstIndex(&Item().Operation(0), nullptr);
  EXPECT_EQ(IDXFindNextIndex(indexes, nullptr), IDXERR_PARAM);
  EXPECT_EQ(IDXSetFilePath(nullptr), IDXERR_PARAM);
  ASSERT_EQ(IDXInitialize(), IDX_OK);
  EXPECT_STREQ(g_strFilePath.Text(), "");
  EXPECT_EQ(IDXSearchImage(&item), IDXERR_NOIMAGE);
  EXPECT_EQ(IDXFindNextImage(images, &item), IDXERR_NOIMAGE);  // finds of the earlier catalogue
  EXPECT_EQ(IDXFindNextIndex(indexes, &item), IDXERR_NOINDEX);
  EXPECT_EQ(IDXCloseFind(images) + IDXCloseFind(indexes) + IDXCloseFind(nullptr), IDX_OK);

  EXPECT_EQ(IDXAddImage(&item), IDX_OK);
  const IDXFIND open = IDXFindFirstImage(&Item().Operation(0), nullptr);
  EXPECT_EQ(IDXRemoveImage(&item), IDX_OK);
  EXPECT_EQ(StoreInspector(*idData).Waiting(), 1u);
  IDXCloseFind(open);
  IDXSearchImage(&item);
  EXPECT_EQ(StoreInspector(*idData).Waiting(), 0u);  // every call deletes removed entries that no find needs
  IDXUninitialize();
}

TEST_F(CallsTest, ResultsAreWrittenWhereTheyAreWanted) {
  ASSERT_EQ(AddImage("/a/b", 1010000), IDX_OK);
  Item item;
  item.Name("/a/b");
  item.index = 5;
  EXPECT_EQ(IDXSearchImage(&item), IDX_OK);
  EXPECT_EQ(item.index, 5);
  // Without IDXOP_GETINFO no field is written.
  ASSERT_EQ(AddImage("/a/c", 1010000), IDX_OK);
  Item untouched;
  untouched.Name("n").Path("p").Index(1000000).Attribute(3);
  const auto expectUntouched = [&untouched](IDXSTATUS status, IDXSTATUS expected) {
    EXPECT_EQ(status, expected);
    EXPECT_EQ(untouched.NameText() + untouched.PathText(), "np");
    EXPECT_EQ(untouched.index + untouched.attribute, 1000003);
  };
  for (const auto& [first, next] :
       {std::pair{&IDXFindFirstIndex, &IDXFindNextIndex}, {&IDXFindFirstImage, &IDXFindNextImage}}) {
    IDXSTATUS status = 99;
    const IDXFIND find = first(&untouched, &status);
    expectUntouched(status, IDX_OK);
    expectUntouched(next(find, &untouched), IDX_OK);
    IDXCloseFind(find);
  }
  expectUntouched(IDXAddIndex(&untouched), IDX_OK);
  expectUntouched(IDXAddIndex(&untouched), IDXERR_INDEXEXISTS);
}

TEST_F(CallsTest, AddedIndexesTakeTheLowestFreeNumber) {
  const auto add = [](std::int32_t parent, const std::string& name, IDXSTATUS expected) {
    Item item;
    EXPECT_EQ(IDXAddIndex(&item.Index(parent).Name(name).Operation(IDXOP_GETINFO)), expected) << name;
    return item.index;
  };
  for (int i = 0; i < 20; ++i) EXPECT_EQ(add(1000000, "n" + std::to_string(i), IDX_OK), 1100000 + i * 10000);
  EXPECT_EQ(add(1000000, "one more", IDXERR_INDEXFULL), 1000000);
  EXPECT_EQ(IDXRemoveIndex(&Item().Index(1130000)), IDX_OK);
  EXPECT_EQ(add(1000000, "N3", IDX_OK), 1130000);
  // A fourth level whose next number would wrap into the range. Only a file can have such a level.
  ASSERT_EQ(idData->AddCell(kIndexTree, Key("43/10/10/10"), Key("x"), 0), StoreOk);
  EXPECT_EQ(add(43101010, "5", IDXERR_PARAM), 43101010);
}

TEST_F(CallsTest, PresetNamesCarryOverToTheNextEntry) {
  CFStringRef names[] = {Item::Make("Root"), Item::Make("Photos"), Item::Make(""), nullptr, Item::Make("Docs")};
  const IDXSTR variables[] = {&names[0], &names[1], &names[2], &names[3], &names[4]};
  const std::int32_t numbers[] = {5, 1000000, 99, 2000000, 3000000};
  EXPECT_EQ(IDXSetPresetIndexName(variables, numbers, 5), IDXERR_PARAM);  // 3000000 is missing
  const auto nameOf = [](std::int32_t number) {
    Item item;
    IDXSearchIndex(&item.Index(number).Name("?"));
    return item.NameText();
  };
  EXPECT_EQ(nameOf(-1), "Root");
  EXPECT_EQ(nameOf(1000000), "");  // the third entry: the number of the second, and an empty name
  EXPECT_EQ(nameOf(2000000), "");
  EXPECT_EQ(IDXSetPresetIndexName(nullptr, numbers, 1), IDXERR_PARAM);
  for (CFStringRef name : names) CFRelease(name);
}

TEST_F(CallsTest, InternalCallsFindFoldersAndBuckets) {
  ASSERT_EQ(AddImage("/Volumes/card/a", 1010000), IDX_OK);
  ASSERT_EQ(AddImage("/p/b", 1010000), IDX_OK);
  const auto find = [](Item& item) {
    std::string folders;
    IDXSTATUS status = 99;
    const IDXFIND handle = IDXFindFirstPath(&item.Operation(IDXOP_GETINFO | IDXOP_CONDITION), &status);
    EXPECT_EQ(status, handle ? IDX_OK : IDXERR_NOINDEX);
    for (bool isFound = handle; isFound; isFound = IDXFindNextPath(handle, &item.Clear()) == IDX_OK) {
      folders += item.PathText() + ";";
    }
    IDXCloseFind(handle);
    return folders;
  };
  Item everything, unmounted, missing;
  everything.Path("").mask = 0;
  EXPECT_EQ(find(unmounted.Path("/")), ";/p;");
  EXPECT_EQ(find(missing.Path("/q")), "");
  std::thread([] { AddImage("/p/c", 1010000); }).join();  // the lock is free after a find that finds nothing
  const std::string folders = find(everything);
  EXPECT_EQ(std::count(folders.begin(), folders.end(), ';'), 4);

  CFStringRef out = nullptr;
  EXPECT_EQ(IDXFindFirstHash(1987, &out) + IDXFindFirstHash(-1, &out), 0);
  EXPECT_EQ(out, nullptr);
  EXPECT_EQ(IDXFindFirstHash(static_cast<std::int32_t>(Key("/p/b").GetHashKey()), &out), 1);
  EXPECT_EQ(Item::Text(out), "/p/b");
  CFRelease(out);
}

}  // namespace

}  // namespace catalogcore
