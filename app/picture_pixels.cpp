// The pixels of a picture file: reduced and upright, for scene detection or as a small copy.
//
// Memory stays bounded by about one picture: rows are decoded, converted and reduced as they are read, and a picture is
// turned after it was reduced. picture_limits.h bounds decoders that hold the whole picture.
#include <algorithm>
#include <array>
#include <cmath>

#include "app/picture_file.h"
#include "app/picture_limits.h"

namespace catalogcore::app {
namespace {

constexpr int kQuality = 80;  // of small copies, as JPEG counts it

int LongSide(VipsImage* image) { return std::max(vips_image_get_width(image), vips_image_get_height(image)); }

// How far the decoder itself can reduce, which is faster, without going below `side`.
int ShrinkOnLoad(const PictureFile& file, VipsImage* header, int side) {
  if (file.Format() != PictureFormat::kJpeg && file.Format() != PictureFormat::kWebP) return 1;
  int shrink = 1;
  while (shrink < 8 && LongSide(header) / (shrink * 2) >= side) shrink *= 2;
  return shrink;
}

OwnedImage Copied(const OwnedImage& image, VipsInterpretation interpretation) {
  VipsImage* out = nullptr;
  return Taken(vips_copy(image.get(), &out, "interpretation", interpretation, nullptr), out);
}

OwnedImage Cast(const OwnedImage& image, VipsBandFormat format) {
  VipsImage* out = nullptr;
  return Taken(vips_cast(image.get(), &out, format, "shift", TRUE, nullptr), out);
}

OwnedImage FirstBands(const OwnedImage& image, int count) {
  VipsImage* out = nullptr;
  return Taken(vips_extract_band(image.get(), &out, 0, "n", count, nullptr), out);
}

OwnedImage ThreeTimes(const OwnedImage& image) {
  std::array<VipsImage*, 3> same = {image.get(), image.get(), image.get()};
  VipsImage* out = nullptr;
  return Taken(vips_bandjoin(same.data(), &out, 3, nullptr), out);
}

// Loaders give unusual samples an interpretation that would convert them wrongly. Here floating-point samples are linear
// light, with 1 as white, and integers of more than 8 bits become 16 bits.
OwnedImage WithTrueInterpretation(OwnedImage image) {
  const bool grey = vips_image_get_bands(image.get()) < 3;
  switch (vips_image_get_interpretation(image.get())) {
    case VIPS_INTERPRETATION_CMYK:
    case VIPS_INTERPRETATION_LAB:
    case VIPS_INTERPRETATION_LABQ:
    case VIPS_INTERPRETATION_LABS:
    case VIPS_INTERPRETATION_XYZ:
      return image;
    default:
      break;
  }
  switch (vips_image_get_format(image.get())) {
    case VIPS_FORMAT_UCHAR:
      return Copied(image, grey ? VIPS_INTERPRETATION_B_W : VIPS_INTERPRETATION_sRGB);
    case VIPS_FORMAT_FLOAT:
      image = FirstBands(Cast(image, VIPS_FORMAT_FLOAT), grey ? 1 : 3);
      return Copied(grey ? ThreeTimes(image) : std::move(image), VIPS_INTERPRETATION_scRGB);
    default:
      return Copied(Cast(image, VIPS_FORMAT_USHORT), grey ? VIPS_INTERPRETATION_GREY16 : VIPS_INTERPRETATION_RGB16);
  }
}

// 8 bits a sample, one or three samples a pixel. Embedded profiles are used only for inks, which have no colours without
// a profile.
OwnedImage EightBits(OwnedImage image) {
  VipsImage* out = nullptr;
  const bool grey = vips_image_get_bands(image.get()) < 3;
  image = WithTrueInterpretation(std::move(image));
  image = Taken(vips_colourspace(image.get(), &out, grey ? VIPS_INTERPRETATION_B_W : VIPS_INTERPRETATION_sRGB, nullptr),
                out);
  image = Cast(image, VIPS_FORMAT_UCHAR);
  const int samples = grey ? 1 : 3;
  if (vips_image_get_bands(image.get()) == samples + 1) {
    const std::unique_ptr<VipsArrayDouble, void (*)(VipsArrayDouble*)> white(
        vips_array_double_newv(1, 255.0), [](VipsArrayDouble* array) { vips_area_unref(VIPS_AREA(array)); });
    image = Taken(vips_flatten(image.get(), &out, "background", white.get(), nullptr), out);
  }
  return vips_image_get_bands(image.get()) == samples ? std::move(image) : FirstBands(image, samples);
}

OwnedImage Reduced(OwnedImage image, int side) {
  const int longSide = LongSide(image.get());
  if (longSide <= side) return image;
  // The short side of a long thin picture keeps one pixel.
  const double scale = static_cast<double>(side) / longSide;
  const double across = std::max(scale, 1.0 / vips_image_get_width(image.get()));
  const double down = std::max(scale, 1.0 / vips_image_get_height(image.get()));
  VipsImage* out = nullptr;
  return Taken(vips_resize(image.get(), &out, across, "vscale", down, nullptr), out);
}

OwnedImage Upright(OwnedImage image) {
  if (vips_image_get_orientation(image.get()) == 1) return image;
  const OwnedImage whole(vips_image_copy_memory(image.get()));  // autorot reads rows in any order
  if (whole == nullptr) throw LibvipsFailure();
  VipsImage* out = nullptr;
  return Taken(vips_autorot(whole.get(), &out, nullptr), out);
}

// The first picture of the file, upright, with the samples of PictureShape, reduced until no side exceeds `side` and never
// enlarged. Read the rows from the top down, inside UseLibvips. Throws PictureError for a file beyond the limits.
OwnedImage ReducedPixels(const PictureFile& file, VipsFailOn failOn, int side) {
  OwnedImage image = file.Open(failOn);
  RefuseBeyondLimits(file, image.get());
  if (const int shrink = ShrinkOnLoad(file, image.get(), side); shrink > 1) {
    image.reset();
    image = file.Open(failOn, shrink);
  }
  return Upright(Reduced(EightBits(std::move(image)), side));
}

PictureShape Rendered(VipsImage* image, const PixelAllocator& allocate) {
  PictureShape picture;
  picture.width = vips_image_get_width(image);
  picture.height = vips_image_get_height(image);
  picture.bitsPerPixel = vips_image_get_bands(image) * 8;
  const std::size_t bytes = static_cast<std::size_t>(picture.width) * static_cast<std::size_t>(picture.height) *
                            static_cast<std::size_t>(vips_image_get_bands(image));
  const OwnedImage memory(vips_image_new_from_memory(allocate(bytes), bytes, picture.width, picture.height,
                                                     vips_image_get_bands(image), VIPS_FORMAT_UCHAR));
  if (memory == nullptr || vips_image_write(image, memory.get()) != 0) throw LibvipsFailure();
  return picture;
}

using Memory = std::unique_ptr<void, decltype(&g_free)>;

struct Jpeg {
  Memory bytes{nullptr, g_free};
  std::size_t size = 0;
};

// Converts to sRGB, so that the colours of small copies can be compared. Ignores a profile that does not fit the samples.
OwnedImage TrueColours(OwnedImage image) {
  const bool isColour = vips_image_get_bands(image.get()) == 3;
  if (!isColour || vips_image_get_typeof(image.get(), VIPS_META_ICC_NAME) == 0) return image;
  VipsImage* out = nullptr;
  if (vips_icc_transform(image.get(), &out, "srgb", "embedded", TRUE, "depth", 8, nullptr) != 0) return image;
  return OwnedImage(out);
}

Jpeg Compressed(VipsImage* image) {
  void* bytes = nullptr;
  Jpeg jpeg;
  if (vips_jpegsave_buffer(image, &bytes, &jpeg.size, "Q", kQuality, "strip", TRUE, nullptr) != 0)
    throw LibvipsFailure();
  jpeg.bytes.reset(bytes);
  return jpeg;
}

}  // namespace

PictureShape DecodePicture(const std::filesystem::path& path, const PixelAllocator& allocate) {
  const PictureFile file(path);
  return UseMostOf(file, [&](VipsFailOn failOn) {
    const PictureFacts facts = FactsOf(file, file.Open(VIPS_FAIL_ON_ERROR).get());
    PictureShape picture = Rendered(ReducedPixels(file, failOn, kLongestSide).get(), allocate);
    const double ratio =
        static_cast<double>(std::max(picture.width, picture.height)) / std::max(facts.width, facts.height);
    picture.resolution = static_cast<std::int32_t>(std::lround(facts.resolution * ratio));
    if (failOn == VIPS_FAIL_ON_NONE) picture.warning = "the image is cut short: its end is missing";
    return picture;
  });
}

std::string SmallCopy(const std::filesystem::path& path, int side) {
  const PictureFile file(path);
  const Jpeg jpeg = UseMostOf(file, [&file, side](VipsFailOn failOn) {
    return Compressed(TrueColours(ReducedPixels(file, failOn, side)).get());
  });
  return {static_cast<const char*>(jpeg.bytes.get()), jpeg.size};
}

}  // namespace catalogcore::app
