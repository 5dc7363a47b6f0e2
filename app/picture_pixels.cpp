#include "app/picture_pixels.h"

#include <algorithm>
#include <array>

#include "app/picture_limits.h"

namespace catalogcore::app {
namespace {

int LongSide(VipsImage* image) { return std::max(vips_image_get_width(image), vips_image_get_height(image)); }

// How far a decoder can reduce by itself, at less cost, without going below `side`.
int ShrinkOnLoad(const PictureFile& file, VipsImage* header, int side) {
  if (file.FileContent() != Content::kJpeg && file.FileContent() != Content::kWebP) return 1;
  int shrink = 1;
  while (shrink < 8 && LongSide(header) / (shrink * 2) >= side) shrink *= 2;
  return shrink;
}

Image Copied(const Image& image, VipsInterpretation interpretation) {
  VipsImage* out = nullptr;
  return Taken(vips_copy(image.get(), &out, "interpretation", interpretation, nullptr), out);
}

Image Cast(const Image& image, VipsBandFormat format) {
  VipsImage* out = nullptr;
  return Taken(vips_cast(image.get(), &out, format, "shift", TRUE, nullptr), out);
}

Image FirstBands(const Image& image, int count) {
  VipsImage* out = nullptr;
  return Taken(vips_extract_band(image.get(), &out, 0, "n", count, nullptr), out);
}

Image ThreeTimes(const Image& image) {
  std::array<VipsImage*, 3> same = {image.get(), image.get(), image.get()};
  VipsImage* out = nullptr;
  return Taken(vips_bandjoin(same.data(), &out, 3, nullptr), out);
}

// Loaders call samples of unusual kinds by names that would let them be converted wrongly: floating-point samples are
// linear light, 1 is white, and wide integers are brought to 16 bits.
Image WithTrueInterpretation(Image image) {
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

// 8 bits a sample, one or three samples a pixel. An embedded profile counts only for inks, which mean nothing without.
Image EightBits(Image image) {
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

Image Reduced(Image image, int side) {
  const int longSide = LongSide(image.get());
  if (longSide <= side) return image;
  // A long thin picture keeps one pixel of the short side.
  const double scale = static_cast<double>(side) / longSide;
  const double across = std::max(scale, 1.0 / vips_image_get_width(image.get()));
  const double down = std::max(scale, 1.0 / vips_image_get_height(image.get()));
  VipsImage* out = nullptr;
  return Taken(vips_resize(image.get(), &out, across, "vscale", down, nullptr), out);
}

Image Upright(Image image) {
  if (vips_image_get_orientation(image.get()) == 1) return image;
  const Image whole(vips_image_copy_memory(image.get()));  // turning takes rows in any order
  if (whole == nullptr) throw LibvipsFailure();
  VipsImage* out = nullptr;
  return Taken(vips_autorot(whole.get(), &out, nullptr), out);
}

}  // namespace

Image ReducedPixels(const PictureFile& file, VipsFailOn failOn, int side) {
  Image image = file.Open(failOn);
  RefuseBeyondLimits(file, image.get());
  if (const int shrink = ShrinkOnLoad(file, image.get(), side); shrink > 1) {
    image.reset();
    image = file.Open(failOn, shrink);
  }
  return Upright(Reduced(EightBits(std::move(image)), side));
}

}  // namespace catalogcore::app
