#include "app/picture.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vips/vips.h>

#include <array>
#include <fstream>
#include <memory>
#include <sstream>
#include <thread>

namespace catalogcore::app {
namespace {

namespace fs = std::filesystem;

using Source = std::shared_ptr<VipsImage>;
using Samples = std::vector<std::uint8_t>;

struct Decoded : PictureShape {
  Samples pixels;
};

Decoded Decode(const fs::path& file) {
  Samples pixels;
  const auto allocate = [&pixels](std::size_t bytes) { return (pixels = Samples(bytes)).data(); };
  return {DecodePicture(file, allocate), pixels};
}

Source Made(int width, int height, int bands, const Samples& samples) {
  VipsImage* image =
      vips_image_new_from_memory_copy(samples.data(), samples.size(), width, height, bands, VIPS_FORMAT_UCHAR);
  image->Type = bands < 3 ? VIPS_INTERPRETATION_B_W : VIPS_INTERPRETATION_sRGB;
  return {image, g_object_unref};
}

Source Plain(int width, int height, const Samples& pixel) {
  Samples samples;
  for (int i = 0; i < width * height; ++i) samples.insert(samples.end(), pixel.begin(), pixel.end());
  return Made(width, height, static_cast<int>(pixel.size()), samples);
}

class PictureTest : public testing::Test {
 protected:
  static void SetUpTestSuite() { StartPictures("picture_test"); }
  PictureTest() { fs::create_directories(folder_); }
  ~PictureTest() override { fs::remove_all(folder_); }

  // `name` may end with options of libvips' saver, "a.tif[miniswhite]".
  fs::path Saved(const Source& image, const std::string& name) {
    EXPECT_EQ(vips_image_write_to_file(image.get(), (folder_ / name).c_str(), nullptr), 0) << vips_error_buffer();
    return folder_ / name.substr(0, name.find('['));
  }
  fs::path Written(const std::string& name, const std::string& bytes) {
    std::ofstream(folder_ / name, std::ios::binary) << bytes;
    return folder_ / name;
  }
  static std::string Bytes(const fs::path& file) {
    std::ostringstream bytes;
    bytes << std::ifstream(file, std::ios::binary).rdbuf();
    return bytes.str();
  }
  static std::string ErrorOf(const fs::path& file) {
    try {
      const std::string warning = Decode(file).warning;
      return warning.empty() ? "none" : warning;
    } catch (const PictureError& error) {
      return error.what();
    }
  }

  const fs::path folder_ = fs::temp_directory_path() / ("catalogcore_pictures_" + std::to_string(getpid()));
};

TEST_F(PictureTest, EveryKindOfSamplesBecomesEightBitsGreyOrColour) {
  struct Case {
    const char* name;
    Samples pixel;
    VipsInterpretation as;
    Samples expected;
    int tolerance;
  };
  const Samples colour = {10, 100, 200}, grey = {100}, half = {10, 100, 200, 128}, onWhite = {132, 177, 227};
  for (const Case& c : std::initializer_list<Case>{
           {"a.webp[lossless]", half, VIPS_INTERPRETATION_sRGB, onWhite, 0},
           {"a.avif[compression=av1,lossless]", colour, VIPS_INTERPRETATION_sRGB, colour, 3},
           {"palette.png[palette]", colour, VIPS_INTERPRETATION_sRGB, colour, 0},
           {"alpha.png", half, VIPS_INTERPRETATION_sRGB, onWhite, 0},
           {"alpha16.png", half, VIPS_INTERPRETATION_RGB16, onWhite, 0},
           {"grey_alpha.png", {100, 128}, VIPS_INTERPRETATION_B_W, {177}, 0},
           {"wide.tif", colour, VIPS_INTERPRETATION_RGB16, colour, 0},
           {"lab.tif", colour, VIPS_INTERPRETATION_LAB, colour, 1},
           {"linear.tif", colour, VIPS_INTERPRETATION_scRGB, colour, 1},
           {"inks.jpg", colour, VIPS_INTERPRETATION_CMYK, colour, 35},
           {"grey16.tif", grey, VIPS_INTERPRETATION_GREY16, grey, 0},
           {"inverse.tif[miniswhite]", grey, VIPS_INTERPRETATION_B_W, grey, 0},
           {"fax.tif[compression=ccittfax4,bitdepth=1,miniswhite]", {255}, VIPS_INTERPRETATION_B_W, {255}, 0},
           {"bits.tif[bitdepth=1]", {0}, VIPS_INTERPRETATION_B_W, {0}, 0},
       }) {
    SCOPED_TRACE(c.name);
    if (fs::path(c.name).extension().string().starts_with(".avif") && !HasPictureName("a.avif")) continue;
    VipsImage* converted = nullptr;
    ASSERT_EQ(vips_colourspace(Plain(40, 30, c.pixel).get(), &converted, c.as, nullptr), 0);
    const Decoded picture = Decode(Saved({converted, g_object_unref}, c.name));
    EXPECT_EQ(picture.bitsPerPixel, static_cast<int>(c.expected.size()) * 8);
    ASSERT_EQ(picture.pixels.size(), 1200 * c.expected.size());
    for (std::size_t s = 0; s < c.expected.size(); ++s) EXPECT_NEAR(picture.pixels[s], c.expected[s], c.tolerance);
  }
  EXPECT_TRUE(HasPictureName("a/B.JPEG") && !HasPictureName("a/jpg") && !HasPictureName("a.gif"));
}

TEST_F(PictureTest, PicturesComeUpright) {
  const Source image = Made(3, 2, 1, {10, 20, 30, 40, 50, 60});
  const std::array<Samples, 8> topCorners = {
      {{10, 30}, {30, 10}, {60, 40}, {40, 60}, {10, 40}, {40, 10}, {60, 30}, {30, 60}}};
  for (int orientation = 1; orientation <= 8; ++orientation) {
    SCOPED_TRACE(orientation);
    vips_image_set_int(image.get(), VIPS_META_ORIENTATION, orientation);
    const fs::path file = Saved(image, "a.tif");
    const Decoded picture = Decode(file);
    const int width = orientation < 5 ? 3 : 2;
    EXPECT_TRUE(picture.width == width && picture.height == 5 - width && ReadPictureFacts(file).width == width);
    const Samples corners = {picture.pixels[0], picture.pixels[static_cast<std::size_t>(width) - 1]};
    EXPECT_EQ(corners, topCorners[static_cast<std::size_t>(orientation) - 1]);
  }
}

TEST_F(PictureTest, AResolutionCountsIfAScannerCouldHaveMeantIt) {
  const auto saved = [this](const char* name, double across, double down, const char* field = nullptr) {
    const Source plain = Plain(20, 10, {1, 2, 3});
    VipsImage* out = nullptr;
    vips_copy(plain.get(), &out, "xres", across / 25.4, "yres", down / 25.4, nullptr);
    if (field != nullptr) vips_image_set_string(out, field, "1/125 (1/125, Rational, 1 components, 8 bytes)");
    return Saved({out, g_object_unref}, name);
  };
  struct Case {
    double across, down;
    int expected;
  };
  for (const Case& c : {Case{204, 196, 200}, Case{204, 98, 0}, Case{74, 74, 0}, Case{75, 75, 75}, Case{96, 96, 0},
                        Case{9600, 9600, 9600}, Case{9700, 9700, 0}}) {
    for (const char* const name : {"a.tif", "a.tif[resunit=inch]", "a.png", "a.jpg", "a.webp"}) {
      EXPECT_EQ(ReadPictureFacts(saved(name, c.across, c.down)).resolution, c.expected) << name << " " << c.across;
    }
  }
  EXPECT_EQ(ReadPictureFacts(saved("a.jpg", 300, 300, "exif-ifd2-ExposureTime")).resolution, 0);

  std::string jpeg = Bytes(saved("a.jpg", 72, 72));
  const std::string jfif("\xFF\xE0\0\x10JFIF\0\1\1\1\1\x2C\1\x2C\0\0", 18);  // 300 dots per inch
  EXPECT_EQ(ReadPictureFacts(Written("both.jpg", jpeg.insert(2, jfif))).resolution, 300)
      << "the 72 of EXIF is a default";
  jpeg[13] = 0;
  EXPECT_EQ(ReadPictureFacts(Written("shape.jpg", jpeg)).resolution, 0) << "the shape of pixels";
  std::string png = Bytes(saved("a.png", 300, 300));
  png[png.find("pHYs") + 12] = 0;
  EXPECT_EQ(ReadPictureFacts(Written("shape.png", png)).resolution, 0) << "the shape of pixels";
}

TEST_F(PictureTest, LargePicturesAreReducedWithTheirResolution) {
  struct Case {
    const char* name;
    int width, height, reducedWidth, reducedHeight, resolution;
  };
  for (const Case& c : {Case{"a.tif", 4096, 20, 4096, 20, 600}, Case{"a.tif", 6000, 300, 4096, 205, 410},
                        Case{"a.jpg", 100, 9000, 46, 4096, 273}, Case{"a.webp", 9000, 100, 4096, 46, 273},
                        Case{"a.png", 20000, 1, 4096, 1, 123}}) {
    SCOPED_TRACE(c.name + std::to_string(c.width));
    Samples samples(static_cast<std::size_t>(c.width * c.height), 200);
    std::fill_n(samples.begin(), samples.size() / 2, 50);
    const Source image = Made(c.width, c.height, 1, samples);
    image->Xres = image->Yres = 600 / 25.4;
    const Decoded picture = Decode(Saved(image, c.name));
    EXPECT_TRUE(picture.width == c.reducedWidth && picture.height == c.reducedHeight);
    EXPECT_EQ(picture.resolution, c.resolution);
    EXPECT_TRUE(std::abs(picture.pixels.front() - 50) <= 3 && std::abs(picture.pixels.back() - 200) <= 3);
  }
}

TEST_F(PictureTest, WhatIsNoWholePictureIsRefusedWithItsReason) {
  Samples noise;
  for (unsigned i = 0, value = 1; i < 200 * 150 * 3; ++i)
    noise.push_back(static_cast<std::uint8_t>((value *= 69069) >> 24));
  const Source image = Made(200, 150, 3, noise);
  std::vector<std::pair<fs::path, std::string>> cases;
  for (const char* const name :
       {"a.jpg", "b.jpg[interlace]", "a.png", "b.png[interlace]", "a.tif", "a.webp", "a.avif"}) {
    if (name == std::string("a.avif") && !HasPictureName(name)) continue;
    const fs::path whole = Saved(image, name);
    const std::string bytes = Bytes(whole);
    cases.emplace_back(whole, "none");
    cases.emplace_back(
        Written("cut_" + whole.filename().string(), bytes.substr(0, bytes.size() * 2 / 3)),
        whole.extension() == ".jpg" ? "the image is cut short: its end is missing" : "the image is cut short");
  }
  const std::string jpeg = Bytes(folder_ / "a.jpg");
  std::string stream = jpeg;
  stream.replace(jpeg.find("\xFF\xC0") + 5, 4, "\x4E\x20\x4E\x20");  // 20000 x 20000
  std::string ended = jpeg;
  ended.replace(jpeg.size() / 2, 2, "\xFF\xD9");
  std::string png = Bytes(folder_ / "a.png");
  png.replace(png.size() / 2, 100, 100, '\x55');
  cases.insert(cases.end(),
               {{Written("rows.jpg", jpeg.substr(0, jpeg.size() / 3)), "the image is cut short"},
                {Written("png.jpg", Bytes(folder_ / "a.png")), "none"},
                {Written("warns.jpg", std::string(jpeg).insert(jpeg.find("\xFF\xDB"), 3, '\0')), "none"},
                {Written("ended.jpg", ended), "the image is damaged: Corrupt JPEG data: premature end of data segment"},
                {Written("damaged.png", png), "the image is damaged"},
                {Written("stream.jpg", stream), "the image is damaged: Corrupt JPEG data: premature end"},
                {Written("empty.jpg", ""), "the file is empty"},
                {Written("short.jpg", "\xFF\xD8\xFF"), "not an image file"},
                {Written("svg.jpg", "<svg xmlns='http://www.w3.org/2000/svg'/>"), "not an image file"},
                {Saved(image, "a.gif"), "GIF is not a supported format"},
                {folder_, "a folder"},
                {folder_ / "missing.jpg", "No such file or directory"},
                {folder_ / "pipe.jpg", "not a regular file"}});
  ASSERT_EQ(mkfifo((folder_ / "pipe.jpg").c_str(), 0600), 0);
  if (geteuid() != 0) {
    cases.emplace_back(Written("locked.jpg", jpeg), "Permission denied");
    fs::permissions(folder_ / "locked.jpg", fs::perms::none);
  }
  std::vector<std::thread> threads;  // a thread never gets the reason of another's file
  for (std::size_t first = 0; first < 4; ++first) {
    threads.emplace_back([&cases, first] {
      for (std::size_t i = 0; i < cases.size(); ++i) {
        const auto& [file, reason] = cases[(first * 7 + i) % cases.size()];
        EXPECT_EQ(ErrorOf(file).substr(0, reason.size()), reason) << file;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
}

TEST_F(PictureTest, TheDateIsThatOfTakingOrOfTheFile) {
  const Source image = Plain(20, 10, {1, 2, 3});
  const auto dateWith = [&](const char* field, const char* value) {
    vips_image_set_string(image.get(), field, value);
    return ReadPictureFacts(Saved(image, "a.jpg")).date;
  };
  std::array<char, 32> today = {};
  const std::time_t before = std::time(nullptr);
  const std::string ofFile = ReadPictureFacts(Saved(image, "a.jpg")).date;
  std::strftime(today.data(), today.size(), "%Y-%m-%d %H:", std::localtime(&before));
  EXPECT_TRUE(ofFile.starts_with(today.data()) || before % 3600 > 3590) << ofFile;
  EXPECT_EQ(dateWith("exif-ifd0-DateTime", "2001:02:03 04:05:06"), "2001-02-03 04:05:06");
  EXPECT_EQ(dateWith("exif-ifd2-DateTimeDigitized", "2000:02:29 24:00:00"), "2001-02-03 04:05:06");
  EXPECT_EQ(dateWith("exif-ifd2-DateTimeOriginal", "1999:12:31 23:59:59"), "1999-12-31 23:59:59");
  EXPECT_EQ(dateWith("exif-ifd2-DateTimeOriginal", "2023:02:29 12:00:00"), "2001-02-03 04:05:06");
}

TEST_F(PictureTest, SmallCopiesAreUprightBareAndWhole) {
  const Source image = Plain(300, 200, {10, 100, 200, 128});
  vips_image_set_int(image.get(), VIPS_META_ORIENTATION, 6);
  const fs::path file = Saved(image, "a.tif");
  for (const auto& [side, height] : {std::pair{100, 100}, std::pair{1000, 300}}) {
    const std::string copy = SmallCopy(file, side);
    EXPECT_EQ(copy.find("Exif"), copy.npos);
    const Decoded picture = Decode(Written("copy.jpg", copy));
    EXPECT_TRUE(picture.height == height && picture.width == (height * 2 + 1) / 3);
    EXPECT_NEAR(picture.pixels[0], 132, 3);
  }
  EXPECT_THROW(SmallCopy(Written("cut.tif", Bytes(file).substr(0, 5000)), 50), PictureError);
}

}  // namespace
}  // namespace catalogcore::app
