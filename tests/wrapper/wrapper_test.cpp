// What the C++ layer adds to the calls: ownership, results, text, ranges. The calls have tests of their own.
#include <gtest/gtest.h>

#include <algorithm>
#include <catalogcore.hpp>
#include <climits>
#include <filesystem>
#include <fstream>
#include <functional>
#include <thread>
#include <vector>

static_assert(std::ranges::input_range<catalogcore::ImageWalk> && std::ranges::view<catalogcore::IndexWalk>);
static_assert(!std::is_copy_constructible_v<catalogcore::Catalog> &&
              !std::is_copy_assignable_v<catalogcore::ImageWalk>);
static_assert(std::is_nothrow_move_assignable_v<catalogcore::Catalog> && std::movable<catalogcore::ImageWalk>);

// The linker sends the test's own calls here.
namespace {
int openFinds = 0;
std::function<void()> duringInitialize;
}  // namespace
extern "C" {
IDXSTATUS __real_IDXInitialize();
IDXSTATUS __wrap_IDXInitialize() {
  if (const auto once = std::exchange(duringInitialize, nullptr)) once();
  return __real_IDXInitialize();
}
IDXFIND __real_IDXFindFirstImage(IDXITEM* item, IDXSTATUS* status);
IDXFIND __real_IDXFindFirstIndex(IDXITEM* item, IDXSTATUS* status);
IDXSTATUS __real_IDXCloseFind(IDXFIND find);
IDXFIND __wrap_IDXFindFirstImage(IDXITEM* item, IDXSTATUS* status) {
  const IDXFIND find = __real_IDXFindFirstImage(item, status);
  openFinds += find ? 1 : 0;
  return find;
}
IDXFIND __wrap_IDXFindFirstIndex(IDXITEM* item, IDXSTATUS* status) {
  const IDXFIND find = __real_IDXFindFirstIndex(item, status);
  openFinds += find ? 1 : 0;
  return find;
}
IDXSTATUS __wrap_IDXCloseFind(IDXFIND find) {
  openFinds -= find ? 1 : 0;
  return __real_IDXCloseFind(find);
}
}

namespace catalogcore {
namespace {

using Paths = std::vector<std::string>;

class WrapperTest : public testing::Test {
 protected:
  ~WrapperTest() override { EXPECT_EQ(openFinds, 0); }

  static Paths PathsOf(ImageWalk walk) {
    Paths paths;
    for (const Image& image : walk) paths.push_back(image.path);
    std::ranges::sort(paths);
    return paths;
  }

  Catalog catalog_ = Catalog::Open().value();
};

TEST_F(WrapperTest, AProcessHasOneOwnerOfOneCatalogue) {
  catalog_.AddImage("/a/b", preset::kOther).value();
  EXPECT_EQ(Catalog::Open().error(), Status::kAlreadyOpen);
  Catalog other = std::move(catalog_);
  EXPECT_EQ(other.FindImage("/a/b").value().index, preset::kOther);
  EXPECT_FALSE(catalog_.IsOpen());  // NOLINT(bugprone-use-after-move): what is left is told
  const auto gives = [this](Status expected) {
    const std::vector<Status> statuses = {catalog_.Clear().error(),
                                          catalog_.FindImage("/a/b").error(),
                                          catalog_.Images().error(),
                                          catalog_.Indexes().error(),
                                          catalog_.SetDirectory("/").error(),
                                          catalog_.SetPresetName(preset::kPhoto, "x").error(),
                                          catalog_.Classify({.hint = Hint::kFixedDocument}).error()};
    return std::ranges::all_of(statuses, [expected](Status status) { return status == expected; });
  };
  EXPECT_TRUE(gives(Status::kFailed));
  EXPECT_EQ(Catalog::Open().error(), Status::kAlreadyOpen);
  catalog_ = std::move(other);
  catalog_.Clear().value();
  EXPECT_EQ(catalog_.FindImage("/a/b").error(), Status::kNoImage);
  { const Catalog dropped = std::move(catalog_); }
  EXPECT_EQ(IDXInitialize(), IDX_OK);
  EXPECT_EQ(Catalog::Open().error(), Status::kAlreadyOpen) << "a catalogue of someone else's";
  IDXUninitialize();
  catalog_ = Catalog::Open().value();
  EXPECT_TRUE(catalog_.HasRecognizer());
  EXPECT_EQ(catalog_.FindImage("/a/b").error(), Status::kNoImage);
}

TEST(Wrapper, OfTwoThatOpenAtOnceOneGetsTheCatalogue) {
  Status second = Status::kOk;
  duringInitialize = [&second] { std::thread([&second] { second = Catalog::Open().error(); }).join(); };
  EXPECT_TRUE(Catalog::Open());
  EXPECT_EQ(second, Status::kAlreadyOpen);
}

TEST_F(WrapperTest, WalksCloseTheirHandlesHoweverTheyAreLeft) {
  for (const char* path : {"/a/1", "/a/2", "/a/b/3", "/c/4"}) catalog_.AddImage(path, preset::kPhotoOther).value();
  catalog_.AddImage("/c/5", preset::kPhotoFaces).value();
  for (const Image& image : catalog_.Images().value()) {
    EXPECT_EQ(openFinds, 1);
    if (image.path != "/none") break;
  }
  EXPECT_EQ(openFinds, 0);
  EXPECT_THROW(for (const Index& index : catalog_.Indexes().value()) catalog_.RemoveIndex(index.number).value(), Error);
  EXPECT_EQ(openFinds, 0);

  ImageWalk walk = catalog_.Images({.index = preset::kPhotoOther}).value();
  ImageWalk rest = std::move(walk);
  walk = catalog_.Images().value();
  EXPECT_EQ(openFinds, 2);
  walk = std::move(rest);
  EXPECT_EQ(openFinds, 1);
  EXPECT_EQ(std::ranges::distance(walk), 4);
  EXPECT_EQ(openFinds, 0) << "at its end";
  EXPECT_EQ(std::ranges::distance(walk), 0) << "passed once";

  ImageWalk outliving = catalog_.Images().value();
  catalog_.Clear().value();
  EXPECT_EQ(std::ranges::distance(outliving), 1);  // where it stood
  EXPECT_EQ(outliving.status(), Status::kOk);
}

TEST_F(WrapperTest, QueriesChooseByIndexAndFolder) {
  const std::pair<const char*, IndexNumber> images[] = {
      {"/a/1", preset::kPhotoOther}, {"/a/b/2", preset::kPhotoFaces}, {"/c/3", preset::kOther}};
  for (const auto& [path, index] : images) catalog_.AddImage(path, index, Attributes::kNoMove).value();
  const std::pair<ImageQuery, Paths> cases[] = {
      {{}, {"/a/1", "/a/b/2", "/c/3"}},       {{.index = preset::kPhoto}, {"/a/1", "/a/b/2"}},
      {{.folder = "/a"}, {"/a/1", "/a/b/2"}}, {{preset::kPhotoFaces, "/a"}, {"/a/b/2"}},
      {{.index = preset::kDocument}, {}},     {{.folder = "/d"}, {}}};
  for (const auto& [query, expected] : cases) EXPECT_EQ(PathsOf(catalog_.Images(query).value()), expected);
  EXPECT_EQ(std::ranges::distance(catalog_.Indexes().value()), 10);
  EXPECT_EQ(std::ranges::distance(catalog_.Indexes(preset::kPhoto).value()), 3);
  EXPECT_EQ(catalog_.Images().value().begin()->attributes, Attributes::kNoMove);
  for (const Image& image : catalog_.Images({.index = preset::kPhoto, .withPaths = false}).value()) {
    EXPECT_EQ(image.path, "");
    EXPECT_EQ(image.index / 1000000, 1);
  }
}

TEST_F(WrapperTest, EachFailureIsToldAndThrown) {
  const IndexNumber deep = catalog_.AddIndex(preset::kPhotoFaces, "3")
                               .and_then([this](IndexNumber n) { return catalog_.AddIndex(n, "4"); })
                               .value();
  catalog_.AddImage("/a/b", preset::kOther, Attributes::kNoMove | Attributes::kNoRemove).value();
  const auto at = [](auto result) { return result.error(); };
  const std::string zero("/a/b\0c", 6);
  const std::pair<Status, Status> cases[] = {
      {at(catalog_.AddImage("/a/b", preset::kOther)), Status::kImageExists},
      {at(catalog_.AddImage("b", preset::kOther)), Status::kParam},
      {at(catalog_.AddImage("", preset::kOther)), Status::kMemory},
      {at(catalog_.AddImage("/a/\xff", preset::kOther)), Status::kFailed},
      {at(catalog_.AddImage(zero, preset::kOther)), Status::kFailed},
      {at(catalog_.ChangeImage("/a/b", {.index = preset::kPhoto})), Status::kProtected},
      {at(catalog_.ChangeImage("/a/c", {.attributes = Attributes::kNone})), Status::kNoImage},
      {at(catalog_.RemoveImage("/a/b")), Status::kProtected},
      {at(catalog_.Images({.index = 7})), Status::kParam},
      {at(catalog_.Images({.folder = "/\xc3"})), Status::kFailed},
      {at(catalog_.AddIndex(preset::kPhotoFaces, "3")), Status::kIndexExists},
      {at(catalog_.EnsureIndex(deep, "5")), Status::kParam},
      {at(catalog_.ChangeIndex(preset::kPhoto, {.name = "x"})), Status::kProtected},
      {at(catalog_.ChangeIndex(deep, {.name = "\xff"})), Status::kFailed},
      {at(catalog_.FindIndex(55000000)), Status::kNoIndex},
      {at(catalog_.Indexes(7)), Status::kParam},
      {at(catalog_.SetPresetName(7, "would be the root's")), Status::kParam},
      {at(catalog_.SetPresetName(preset::kOther, "\xff")), Status::kFailed},
      {at(catalog_.LoadImages("/nowhere")), Status::kNoData}};
  for (const auto& [status, expected] : cases) EXPECT_EQ(status, expected) << &status - &cases[0].first;

  try {
    static_cast<void>(catalog_.FindImage("/a/c").value());
    FAIL() << "no image is there";
  } catch (const Error& error) {
    EXPECT_EQ(error.status(), Status::kNoImage);
    EXPECT_STREQ(error.what(), "not in the catalogue");
  }
  EXPECT_EQ(catalog_.FindImage("/a/c").value_or({.index = 5}).index, 5);
  EXPECT_EQ(Message(static_cast<Status>(IDXERR_FACES + 7)), "the face detector fails with code 7");
  EXPECT_EQ(RecognizerCode(static_cast<Status>(511)) + FacesCode(static_cast<Status>(511)), 255u);
}

TEST_F(WrapperTest, ChangesDoWhatTheyAreTold) {
  catalog_.AddImage("/a/b", preset::kOther, Attributes::kNoMove).value();
  catalog_.ChangeImage("/a/b", {preset::kPhoto, ~Attributes::kNoMove}, Options::kForce).value();
  const Filing filing = *catalog_.FindImage("/a/b");
  EXPECT_EQ(filing.index, preset::kPhoto);
  EXPECT_EQ(filing.attributes, static_cast<Attributes>(0xFE));
  EXPECT_FALSE(HasAny(filing.attributes, Attributes::kNoMove));
  catalog_.RemoveImage("/a/b", Options::kForce).value();

  const IndexNumber added = *catalog_.AddIndex(kRoot, "Été", Attributes::kNoRename);
  EXPECT_EQ(*catalog_.EnsureIndex(kRoot, "Été"), added);
  catalog_.ChangeIndex(added, {.name = "Summer"}, Options::kForce).value();
  catalog_.ChangeIndex(added, {.attributes = Attributes::kNoRemove}).value();
  const Index index = *catalog_.FindIndex(added);
  EXPECT_EQ(index.name, "Summer");
  EXPECT_EQ(index.attributes, Attributes::kNoRemove);
  catalog_.SetPresetName(added, "").value();
  EXPECT_TRUE(catalog_.FindIndex(added)->isText && catalog_.FindIndex(added)->name.empty());
  catalog_.RemoveIndex(added, Options::kForce).value();
}

TEST_F(WrapperTest, TextOfAnyLengthComesBackAsItWas) {
  const auto directory = std::filesystem::path(testing::TempDir()) / ("wrapper_" + std::to_string(::getpid()));
  std::filesystem::create_directories(directory / "ärger 写真");
  const std::string existing = (directory / "ärger 写真" / "\xf0\x9f\x8e\x89.jpg").string();
  std::ofstream(existing) << "a picture";
  std::string longOne = "/";
  for (const std::size_t size : {1022u, 1023u, 1024u, 1025u, 4000u}) {
    while (longOne.size() + 3 <= size) longOne += "写";
    catalog_.AddImage(longOne + std::string(size - longOne.size(), 'x'), preset::kOther).value();
  }
  catalog_.AddImage(existing, preset::kPhoto).value();
  std::vector<std::size_t> sizes;
  for (const Image& image : catalog_.Images({.index = preset::kOther}).value()) {
    sizes.push_back(image.path.size());
    EXPECT_TRUE(catalog_.FindImage(image.path));
  }
  std::ranges::sort(sizes);
  EXPECT_EQ(sizes, (std::vector<std::size_t>{1022, 1023, 1024, 1025, 4000}));

  catalog_.AddIndex(preset::kPhoto, "Été, 写真").value();
  catalog_.SetDirectory(directory.string()).value();
  catalog_.SaveIndexes("indexes.plist").value();
  catalog_.SaveImages("images.plist").value();
  catalog_.Clear().value();
  catalog_.SetDirectory(directory.string()).value();
  catalog_.LoadIndexes("indexes.plist").value();
  catalog_.LoadImages("images.plist").value();
  EXPECT_EQ(catalog_.FindIndex(1100000)->name, "Été, 写真");
  EXPECT_EQ(PathsOf(*catalog_.Images()), Paths({existing}));

  catalog_.Clear().value();
  catalog_.SetDirectory(directory.string()).value();
  std::ofstream(directory / "bytes.plist")  // 1/10,0,\xff
      << "<plist "
         "version=\"1.0\"><dict><key>IDXIndex</key><data>Q2F0YWxvZ0NvcmVWZXIxLjAKMS8xMCwwLP8KAA==</data></dict></"
         "plist>";
  catalog_.LoadIndexes("bytes.plist").value();
  EXPECT_FALSE(catalog_.FindIndex(1100000)->isText);
  for (const Index& index : catalog_.Indexes().value()) EXPECT_EQ(index.isText, index.number != 1100000);
  std::filesystem::remove_all(directory);
}

TEST_F(WrapperTest, PicturesAreCheckedBeforeTheyAreLookedAt) {
  const std::vector<std::byte> pixels(std::size_t{60} * 60 * 3);
  const auto status = [&](std::int32_t width, std::int32_t height, std::int32_t bits, std::int32_t rowBytes) {
    return catalog_.Classify({pixels, width, height, bits, rowBytes}).error();
  };
  EXPECT_EQ(status(60, 60, 24, 0), Status::kOk);
  EXPECT_EQ(status(60, 60, 8, 180), Status::kOk);
  EXPECT_EQ(status(5000, 1, 8, 0), Status::kOk) << "too thin to tell";
  const std::array<std::int32_t, 4> wrong[] = {
      {60, 61, 24, 0}, {60, 60, 24, 181}, {60, 60, 24, 179},   {60, 60, 12, 0},           {60, 60, 24, -180},
      {-1, 60, 8, 0},  {60, 0, 8, 0},     {60, 2, 8, INT_MAX}, {INT_MAX, INT_MAX, 48, 0}, {60, INT_MAX, 8, 0}};
  for (const auto& [width, height, bits, rowBytes] : wrong) {
    EXPECT_EQ(status(width, height, bits, rowBytes), Status::kParam) << width << ' ' << height << ' ' << rowBytes;
  }
  EXPECT_EQ(catalog_.Classify({.width = 4097, .height = 60}).error(), Status::kImageSize);

  const auto scene = [&](Hint hint, std::int32_t resolution) {
    return catalog_.Classify({.width = 1240, .height = 1754, .resolution = resolution, .hint = hint}).value();
  };
  EXPECT_EQ(scene(Hint::kNone, 150).Kind(), SceneKind::kUndecided);
  EXPECT_EQ(scene(Hint::kDocument, 150).PaperSize(), Paper::kPage);
  EXPECT_EQ(scene(Hint::kDocument, 520).PaperSize(), Paper::kCard);
  EXPECT_EQ(scene(Hint::kFixedDocument, 150).Preset(), preset::kDocumentFixed);
  EXPECT_EQ(scene(Hint::kFixedDocument, 150).PaperSize(), std::nullopt);
  EXPECT_EQ(scene(Hint::kPhotographAlone, 150).Kind(), SceneKind::kPhotograph);
  EXPECT_FALSE(catalog_.Classify({pixels, 60, 60, 24, 0, 0, Hint::kPhotograph}).value().HasFaces());
}

}  // namespace
}  // namespace catalogcore
