// What the C++ layer adds to the calls: ownership, results, text, ranges.
#include <gtest/gtest.h>

#include <catalogcore.hpp>
#include <climits>
#include <fstream>
#include <functional>
#include <thread>
#include <vector>

static_assert(std::ranges::input_range<catalogcore::ImageWalk> && std::ranges::view<catalogcore::IndexWalk>);

// The linker redirects the calls of this test to the __wrap_ functions.
static int closedFinds = 0;
static std::function<void()> duringInitialize;
extern "C" {
IDXSTATUS __real_IDXInitialize();
IDXSTATUS __wrap_IDXInitialize() {
  if (const auto once = std::exchange(duringInitialize, nullptr)) once();
  return __real_IDXInitialize();
}
IDXSTATUS __real_IDXCloseFind(IDXFIND find);
IDXSTATUS __wrap_IDXCloseFind(IDXFIND find) {
  closedFinds += find ? 1 : 0;
  return __real_IDXCloseFind(find);
}
}

namespace catalogcore {

struct WrapperTest : testing::Test {
  Catalog catalog_ = Catalog::Open().value();
};

TEST_F(WrapperTest, AProcessHasOneOwnerOfOneCatalogue) {
  catalog_.AddImage("/a/b", preset::kOther).value();
  Catalog other = std::move(catalog_);
  EXPECT_EQ(Catalog::Open().error(), Status::kAlreadyOpen);
  EXPECT_EQ(other.FindImage("/a/b").value().index, preset::kOther);
  EXPECT_EQ(catalog_.Indexes().error(), Status::kFailed);
  EXPECT_EQ(catalog_.SetPresetName(preset::kPhoto, "x").error(), Status::kFailed);
  catalog_ = std::move(other);
  { const Catalog dropped = std::move(catalog_); }
  EXPECT_EQ(IDXInitialize(), IDX_OK);
  EXPECT_EQ(Catalog::Open().error(), Status::kAlreadyOpen);  // made by the C call
  IDXUninitialize();
  duringInitialize = [] { std::thread([] { EXPECT_EQ(Catalog::Open().error(), Status::kAlreadyOpen); }).join(); };
  catalog_ = Catalog::Open().value();
  EXPECT_TRUE(catalog_.HasRecognizer());
  EXPECT_EQ(catalog_.FindImage("/a/b").error(), Status::kNoImage);
}

TEST_F(WrapperTest, WalksCloseTheirHandles) {
  for (const char* path : {"/a/1", "/a/2", "/a/b/3", "/c/4"}) catalog_.AddImage(path, preset::kPhotoOther).value();
  closedFinds = 0;
  for (const Image& image : catalog_.Images().value())
    if (image.path != "/none") break;
  EXPECT_EQ(closedFinds, 1);
  ImageWalk walk = catalog_.Images({.folder = "/c"}).value();
  ImageWalk rest = std::move(walk);
  walk = catalog_.Images().value();
  rest = std::move(walk);
  EXPECT_EQ(closedFinds, 2);
  EXPECT_EQ(std::ranges::distance(rest), 4);
  EXPECT_EQ(closedFinds, 3);
  walk = catalog_.Images().value();
  catalog_.Clear().value();
  EXPECT_EQ(std::ranges::distance(walk), 1);  // the entry on which it stood
  EXPECT_EQ(walk.status(), Status::kOk);
}

TEST_F(WrapperTest, QueriesChooseByIndexAndFolder) {
  catalog_.AddImage("/a/1", preset::kPhotoOther).value();
  catalog_.AddImage("/c/3", preset::kPhotoFaces).value();
  catalog_.AddImage("/a/2", preset::kOther, Attributes::kNoMove).value();
  EXPECT_EQ(std::ranges::distance(catalog_.Images({preset::kPhoto, "/a"}).value()), 1);
  EXPECT_EQ(std::ranges::distance(catalog_.Indexes().value()), 10);
  EXPECT_EQ(std::ranges::distance(catalog_.Indexes(preset::kPhoto).value()), 3);
  const Image image = *catalog_.Images({.index = preset::kOther, .withPaths = false}).value().begin();
  EXPECT_TRUE(image.path.empty() && image.index == preset::kOther && image.attributes == Attributes::kNoMove);
}

TEST_F(WrapperTest, ChangesAndFailures) {
  catalog_.AddImage("/a/b", preset::kOther, Attributes::kNoMove).value();
  catalog_.ChangeImage("/a/b", {preset::kPhoto, ~Attributes::kNoMove}, Options::kForce).value();
  EXPECT_EQ(catalog_.FindImage("/a/b")->index, preset::kPhoto);
  EXPECT_EQ(catalog_.FindImage("/a/b")->attributes, static_cast<Attributes>(0xFE));
  catalog_.RemoveImage("/a/b", Options::kForce).value();
  const IndexNumber added = *catalog_.AddIndex(kRoot, "Été", Attributes::kNoRename);
  EXPECT_EQ(*catalog_.EnsureIndex(kRoot, "Été"), added);
  EXPECT_EQ(catalog_.AddIndex(added, "2").and_then([this](int n) { return catalog_.FindIndex(n); })->name, "2");
  catalog_.ChangeIndex(added, {.name = "Summer"}, Options::kForce).value();
  catalog_.ChangeIndex(added, {.attributes = Attributes::kNoRemove}).value();
  EXPECT_EQ(catalog_.FindIndex(added)->name, "Summer");
  EXPECT_EQ(catalog_.FindIndex(added)->attributes, Attributes::kNoRemove);

  EXPECT_EQ(catalog_.AddImage({"/a/b\0c", 6}, preset::kOther).error(), Status::kFailed);
  EXPECT_EQ(catalog_.SetPresetName(7, "must not rename the root").error(), Status::kParam);
  EXPECT_EQ(catalog_.SetPresetName(added, "\xff").error(), Status::kFailed);
  EXPECT_THROW(catalog_.FindImage("/a/c").and_then([](Filing) { return Result<void>(); }).value(), Error);
  EXPECT_STREQ(Error(static_cast<Status>(IDXERR_FACES + 7)).what(), "the face detector failed with code 7");
  EXPECT_EQ(RecognizerCode(static_cast<Status>(511)), 255u);
  EXPECT_EQ(RecognizerCode(static_cast<Status>(519)), 0u);
}

TEST_F(WrapperTest, TextOfAnyLengthIsReturnedUnchanged) {
  for (const std::size_t size : {1022u, 1023u, 1024u, 1025u, 4000u}) {
    std::string path = "/" + std::string(size % 3, 'x');
    while (path.size() < size) path += "写";
    catalog_.AddImage(path, preset::kOther).value();
    EXPECT_EQ(catalog_.Images().value().begin()->path, path);
    catalog_.RemoveImage(path).value();
  }
  const std::string folder = testing::TempDir();
  std::ofstream(folder + "wrapper_bytes.plist")  // 1/10,0,\xff
      << "<plist><dict><key>IDXIndex</key><data>Q2F0YWxvZ0NvcmVWZXIxLjAKMS8xMCwwLP8KAA==</data></dict></plist>";
  catalog_.SetDirectory(folder).value();
  catalog_.LoadIndexes("wrapper_bytes.plist").value();
  for (const Index& index : catalog_.Indexes().value()) EXPECT_EQ(index.isText, index.number != 1100000);
}

TEST_F(WrapperTest, PicturesAreCheckedBeforeTheyAreRead) {
  const std::vector<std::byte> pixels(std::size_t{60} * 60 * 3);
  const auto status = [&](int width, int height, int bits, int rowBytes) {
    return catalog_.Classify({pixels, width, height, bits, rowBytes}).error();
  };
  EXPECT_EQ(status(60, 60, 24, 0), Status::kOk);
  EXPECT_EQ(status(60, 60, 8, 180), Status::kOk);
  const int wrong[][4] = {{60, 61, 24, 0}, {60, 60, 24, 179},   {60, 60, 12, 0},          {-1, 60, 8, 0},
                          {60, 0, 8, 0},   {60, 2, 8, INT_MAX}, {INT_MAX, INT_MAX, 48, 0}};
  for (const auto& [width, height, bits, rowBytes] : wrong) {
    EXPECT_EQ(status(width, height, bits, rowBytes), Status::kParam) << width << ' ' << height << ' ' << rowBytes;
  }
  const auto scene = [&](Hint hint) {
    return catalog_.Classify({.width = 1240, .height = 1754, .resolution = 150, .hint = hint}).value();
  };
  EXPECT_EQ(scene(Hint::kDocument).PaperSize(), Paper::kPage);
  EXPECT_EQ(scene(Hint::kFixedDocument).Kind(), SceneKind::kDocument);
  EXPECT_EQ(scene(Hint::kPhotographAlone).Kind(), SceneKind::kPhotograph);
}

}  // namespace catalogcore
