#include "app/picture_file.h"
#include "app/picture_limits.h"
#include "app/picture_pixels.h"

namespace catalogcore::app {
namespace {

constexpr int kQuality = 80;

using Memory = std::unique_ptr<void, decltype(&g_free)>;

struct Jpeg {
  Memory bytes{nullptr, g_free};
  std::size_t size = 0;
};

// Small copies are looked at beside each other, so their colours are true. A profile that does not fit the samples is
// as good as none.
Image TrueColours(Image image) {
  const bool colour = vips_image_get_bands(image.get()) == 3;
  if (!colour || vips_image_get_typeof(image.get(), VIPS_META_ICC_NAME) == 0) return image;
  VipsImage* out = nullptr;
  if (vips_icc_transform(image.get(), &out, "srgb", "embedded", TRUE, "depth", 8, nullptr) != 0) return image;
  return Image(out);
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

std::string SmallCopy(const std::filesystem::path& path, int side) {
  const PictureFile file(path);
  const Jpeg jpeg = UseMostOf(file, [&file, side](VipsFailOn failOn) {
    return Compressed(TrueColours(ReducedPixels(file, failOn, side)).get());
  });
  return {static_cast<const char*>(jpeg.bytes.get()), jpeg.size};
}

}  // namespace catalogcore::app
