#include "scene/detect_scene.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "api/catalogue.h"
#include "base/critical_region.h"
#include "scene/brenn.h"
#include "scene/parameter_resource.h"
#include "scene/tone_curve.h"
#include "tests/scene/fake_engines.h"

namespace catalogcore {

namespace {

// A grey picture of tone 100 at every depth, with 4 bytes of padding a row.
struct GreyTestPicture {
  GreyTestPicture(std::int32_t width, std::int32_t height, std::int32_t bits = 24, std::int32_t resolution = 0)
      : bytes(static_cast<std::size_t>((width * (bits / 8) + 4) * height), 100),
        record{bytes.data(), width, height, width * (bits / 8) + 4, bits, resolution, 0, 0, 0, 0, 7} {}
  std::vector<std::uint8_t> bytes;
  IDXDSDATA record;
};

class DetectSceneTest : public testing::Test {
 protected:
  DetectSceneTest() {
    fakeEngines = {};
    dsScene = &detector_;
    EXPECT_EQ(detector_.Initialize(), IDX_OK);
  }
  ~DetectSceneTest() override {
    EXPECT_EQ(fakeEngines.blocksHeld, 0);
    EXPECT_TRUE(fakeEngines.isZeroed);
    dsScene = nullptr;
  }

  static void Expect(IDXDSDATA record, IDXSTATUS status, std::int32_t preset, const char* calls) {
    fakeEngines.calls.clear();
    EXPECT_EQ(IDXDetectScene(&record), status);
    EXPECT_EQ(record.presetIndex, preset);
    EXPECT_EQ(fakeEngines.calls, calls);
  }

  CDetectScene detector_;
};

TEST_F(DetectSceneTest, HintsAndSizesDecideInTheirOrder) {
  const GreyTestPicture picture(200, 150);
  const auto expect = [&picture](auto change, IDXSTATUS status, std::int32_t preset, const char* calls = "") {
    IDXDSDATA record = picture.record;
    change(record);
    Expect(record, status, preset, calls);
  };
  // The fixed scene comes before the sizes, the sizes before the hints.
  expect([](IDXDSDATA& r) { r.fixedScene = 1, r.pixels = nullptr, r.width = 5000; }, IDX_OK, 2040000);
  expect([](IDXDSDATA& r) { r.width = 49, r.height = 5000, r.typeHint = 1; }, IDX_OK, 1090000);
  expect([](IDXDSDATA& r) { r.width = 4097, r.typeHint = 1; }, IDXERR_IMAGESIZE, -1);
  expect([](IDXDSDATA& r) { r.width = 5000, r.height = 0, r.typeHint = 1; }, IDX_OK, -1);
  expect([](IDXDSDATA& r) { r.typeHint = 1, r.photoHint = 3, r.photoKind = 3; }, IDX_OK, 2030000);
  expect([](IDXDSDATA& r) { r.photoKind = 1; }, IDX_OK, 1090000);
  expect([](IDXDSDATA& r) { r.photoKind = 2; }, IDX_OK, 1090000, "IBDUFF");
  expect([](IDXDSDATA& r) { r.photoKind = 4, r.typeHint = 3, r.photoHint = 1; }, IDX_OK, 1090000, "RIBDUFF");
  // Without pixels only the hints decide.
  expect([](IDXDSDATA& r) { r.pixels = nullptr; }, IDX_OK, -1);
  expect([](IDXDSDATA& r) { r.rowBytes = 0, r.photoHint = 3; }, IDX_OK, -1);
  // A size that cannot be allocated comes before the hints.
  expect([](IDXDSDATA& r) { r.rowBytes = -604, r.photoHint = 3; }, IDXERR_MEMORY, -1);
  expect([](IDXDSDATA& r) { r.bitsPerPixel = -24, r.resolution = 200; }, IDXERR_MEMORY, -1);
}

TEST_F(DetectSceneTest, RecognizerGetsTheReducedCopyAndItsRecord) {
  using Fields = std::vector<std::int64_t>;  // six words and nine numbers
  const auto fields = [] {
    std::array<std::uint16_t, 6> words;
    std::array<std::uint32_t, 9> numbers;
    std::memcpy(words.data(), fakeEngines.record.data(), sizeof words);
    std::memcpy(numbers.data(), &fakeEngines.record[sizeof words], sizeof numbers);
    Fields all(words.begin(), words.end());
    all.insert(all.end(), numbers.begin(), numbers.end());
    return all;
  };
  Expect(GreyTestPicture(830, 626, 24, 300).record, IDX_OK, 1090000, "RIBDUFF");
  EXPECT_EQ(fakeEngines.caller, "CatalogCr       ");
  EXPECT_EQ(fields(), Fields({0x1080, 3, 8, 2, 1, 0, 207, 624, 156, 75, 75, 14, 14, 179, 128}));
  EXPECT_EQ(fakeEngines.recognized[620], ka1DLUT[100]);
  EXPECT_EQ(fakeEngines.recognized[621], 0);  // padding
  std::uint32_t size = 0;
  std::free(OpenParamFile(&size));
  EXPECT_EQ(fakeEngines.block.size(), size);
  EXPECT_EQ(std::memcmp(fakeEngines.block.data(), "SGIPPDEF", 8), 0);

  const struct {
    int width, height, bits, resolution;
    int samples, bitsPerSample, recordResolution, marginX, marginY;
  } cases[] = {
      {600, 400, 8, 0, 1, 8, 75, 14, 14},
      {600, 400, 16, 100, 1, 16, 100, 19, 19},
      {600, 400, 48, 149, 3, 16, 149, 29, 29},
      {77, 78, 24, 0, 3, 8, 75, 0, 14},
      {400, 400, 24, 2147483647, 3, 8, 2147483647, 0, 0},
  };
  for (const auto& c : cases) {
    const GreyTestPicture picture(c.width, c.height, c.bits, c.resolution);
    Expect(picture.record, IDX_OK, 1090000, "RIBDUFF");
    EXPECT_EQ(fields(), Fields({0x1080, c.samples, c.bitsPerSample, 2, 1, 0, c.width, picture.record.rowBytes, c.height,
                                c.recordResolution, c.recordResolution, c.marginX, c.marginY, c.width - 2 * c.marginX,
                                c.height - 2 * c.marginY}))
        << c.width << " x " << c.height << " x " << c.bits << " at " << c.resolution;
  }
}

TEST_F(DetectSceneTest, RecognizersWordAndFailureDecide) {
  const GreyTestPicture picture(200, 150);
  for (const auto& [word, preset] :
       {std::pair{0x1000, 2030000}, {0x2fff, 2030000}, {0x3000, 1090000}, {0, 1090000}, {0xD000, 1090000}}) {
    fakeEngines.recognizeWord = static_cast<std::uint16_t>(word);
    Expect(picture.record, IDX_OK, preset, preset == 2030000 ? "R" : "RIBDUFF");
  }
  fakeEngines.recognizeResult = 5;
  Expect(picture.record, 261, -1, "R");
  fakeEngines.recognizeResult = -3;
  Expect(picture.record, 253, -1, "R");
  detector_.InitializeWith(CDetectScene::ParameterBlock(static_cast<unsigned char*>(std::malloc(1))), 0);
  Expect(picture.record, IDXERR_DETECTOR, -1, "");
  detector_.Uninitialize();
  Expect(picture.record, IDXERR_DETECTOR, -1, "");
  dsScene = nullptr;
  Expect(picture.record, IDXERR_FAILED, -1, "");
  EXPECT_EQ(IDXDetectScene(nullptr), IDXERR_PARAM);
}

TEST_F(DetectSceneTest, FaceDetectorGetsTheFullCopyAndIsReleasedOnEveryPath) {
  GreyTestPicture picture(200, 150, 48, 300);
  picture.bytes[5] = 3;
  picture.record.typeHint = 2;
  fakeEngines.faces = 2;
  Expect(picture.record, IDX_OK, 1010000, "IBDUFF");
  EXPECT_EQ(fakeEngines.bitmap, picture.bytes);
  EXPECT_EQ(fakeEngines.sizes, std::vector({48, 200, 150, -1204}));
  fakeEngines.allocates = false;
  Expect(picture.record, IDX_OK, 1010000, "IBDU");
  fakeEngines.allocates = true;
  fakeEngines.detectResult = 9;
  Expect(picture.record, 521, -1, "IBDFF");
  fakeEngines.setBitmapResult = 8;
  Expect(picture.record, 520, -1, "IBF");
  fakeEngines.setBitmapResult = 0;
  fakeEngines.throws = true;
  Expect(picture.record, IDXERR_MEMORY, -1, "IBDFF");
  std::thread([this] { const RegionGuard free(detector_.Region()); }).join();  // blocks for ever if it is still held
}

TEST_F(DetectSceneTest, PaperIsChosenBySizeOrProportions) {
  const auto paper = [this](int width, int height, int resolution) {
    const IDXDSDATA record = {nullptr, width, height, 0, 0, resolution, 0, 1, 0, 0, 0};
    std::int32_t sceneClass = 0, value = 0;
    EXPECT_EQ(detector_.DetectScene(&record, sceneClass, value), IDX_OK);
    EXPECT_EQ(sceneClass, kClassDocument);
    return value;
  };
  const int hundredths[][2] = {{216, 358},  {393, 582},  {400, 600},  {582, 826},
                               {716, 1011}, {826, 1169}, {850, 1100}, {850, 1400}};  // of an inch
  const int thousandths[] = {1654, 1480, 1500, 1419, 1412, 1415, 1294, 1647};        // of the short side
  for (int i = 0; i < 8; ++i) {
    const auto [shortSide, longSide] = hundredths[i];
    EXPECT_EQ(paper(shortSide, longSide, 100), i);
    EXPECT_EQ(paper(longSide, shortSide, 100), i);
    EXPECT_EQ(paper(1000, thousandths[i], i - 7), i);  // every resolution here is at most 0
  }
  EXPECT_EQ(paper(1016, 1100, 100), 6);  // just within the tolerance of Letter, and just outside
  EXPECT_EQ(paper(1021, 1100, 100), 99);
  EXPECT_EQ(paper(-1000, 1414, 0), -1);
}

TEST(ParameterResource, ReadsFilesWithTheTagAtTheSizeInTheirHeader) {
  const std::string path = std::filesystem::temp_directory_path() / ("brennparam_" + std::to_string(getpid()));
  const std::string header("SGIPPDEF....\x14\0\0\0", 16);
  for (const auto& [content, block] : {std::pair{header + "data and more", header + "data"},
                                       {header + "da", header + std::string("da\0\0", 4)},
                                       {"SGIPPDEX" + header.substr(8), ""},
                                       {"SGIPP", ""}}) {
    std::ofstream(path, std::ios::binary) << content;
    std::uint32_t size = 99;
    const HeapBlock<unsigned char[]> read(ReadParamFile(path.c_str(), &size));
    EXPECT_EQ(size, block.size());
    EXPECT_EQ(read ? std::string(read.get(), read.get() + size) : "", block);
  }
  std::filesystem::remove(path);
  EXPECT_FALSE(ReadParamFile(path.c_str(), nullptr));
}

}  // namespace

}  // namespace catalogcore
