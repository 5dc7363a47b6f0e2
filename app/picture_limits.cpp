#include "app/picture_limits.h"

#include <algorithm>
#include <array>
#include <optional>

namespace catalogcore::app {
namespace {

constexpr std::uint64_t kMegabyte = 1 << 20;

bool IsSet(VipsImage* header, const char* field) {
  int value = 0;
  return vips_image_get_typeof(header, field) == G_TYPE_INT && vips_image_get_int(header, field, &value) == 0 &&
         value != 0;
}

bool HasSeveralPasses(VipsImage* header) { return IsSet(header, "interlaced") || IsSet(header, "jpeg-multiscan"); }

// Reads the bytes of a file in order, with a buffer.
class ByteReader {
 public:
  explicit ByteReader(const PictureFile& file) : file_(file) {}

  std::optional<std::uint8_t> Next() {
    if (at_ >= file_.Size()) return std::nullopt;
    if (at_ < begin_ || at_ - begin_ >= length_) {
      begin_ = at_;
      length_ = std::min<std::uint64_t>(piece_.size(), file_.Size() - at_);
      if (!file_.Read(begin_, std::span(piece_).first(length_))) return std::nullopt;
    }
    return piece_[at_++ - begin_];
  }
  void Skip(std::uint64_t bytes) { at_ += bytes; }

 private:
  const PictureFile& file_;
  std::array<std::uint8_t, 65536> piece_{};
  std::uint64_t at_ = 0;
  std::uint64_t begin_ = 0;
  std::size_t length_ = 0;
};

// The code of the next marker segment (ITU-T T.81, B.1.1.2). In entropy-coded data FF precedes 0 or a restart marker.
std::optional<std::uint8_t> NextMarker(ByteReader& bytes) {
  std::optional<std::uint8_t> byte = bytes.Next();
  for (;;) {
    while (byte && *byte != 0xFF) byte = bytes.Next();
    while (byte && *byte == 0xFF) byte = bytes.Next();
    const bool standsAlone = byte && (*byte <= 0x01 || (*byte >= 0xD0 && *byte <= 0xD8));
    if (!standsAlone) return byte;
  }
}

// The number of scans in a JPEG file, or most + 1 for more than `most`.
int CountScans(const PictureFile& file, int most) {
  constexpr std::uint8_t kEndOfImage = 0xD9;
  constexpr std::uint8_t kStartOfScan = 0xDA;
  ByteReader bytes(file);
  int scans = 0;
  while (scans <= most) {
    const std::optional<std::uint8_t> marker = NextMarker(bytes);
    if (!marker || *marker == kEndOfImage) break;
    if (*marker == kStartOfScan) ++scans;
    const std::optional<std::uint8_t> high = bytes.Next();
    const std::optional<std::uint8_t> low = bytes.Next();
    if (!high || !low) break;
    const int length = *high << 8 | *low;  // includes these two bytes
    bytes.Skip(static_cast<std::uint64_t>(std::max(length, 2) - 2));
  }
  return scans;
}

int RowsThatDecode(VipsImage* image) {
  constexpr int kRowsAtOnce = 16;
  const std::unique_ptr<VipsRegion, Unreference> region(vips_region_new(image));
  const int height = vips_image_get_height(image);
  for (int top = 0; top < height; top += kRowsAtOnce) {
    const VipsRect rows = {0, top, vips_image_get_width(image), std::min(kRowsAtOnce, height - top)};
    if (vips_region_prepare(region.get(), &rows) != 0) return top;
  }
  return height;
}

// Integers of 8 to 32 bits and floating-point numbers of 32 bits.
bool IsKnownFormat(VipsBandFormat format) { return format >= VIPS_FORMAT_UCHAR && format <= VIPS_FORMAT_FLOAT; }

void RefuseBytes(std::uint64_t bytes, std::uint64_t mostMegabytes, const char* what) {
  if (bytes <= mostMegabytes * kMegabyte) return;
  throw PictureError("the image is too large: " + std::to_string(bytes / kMegabyte) + " MB " + what + ", at most " +
                     std::to_string(mostMegabytes) + " MB can be");
}

}  // namespace

void RefuseBeyondLimits(const PictureFile& file, VipsImage* header) {
  const int samples = vips_image_get_bands(header);
  if (samples > kMostSamplesPerPixel) {
    throw PictureError("the image has " + std::to_string(samples) + " samples a pixel, at most " +
                       std::to_string(kMostSamplesPerPixel) + " can be decoded");
  }
  if (!IsKnownFormat(vips_image_get_format(header))) {
    throw PictureError("the image has samples of 64 bits or complex numbers, which cannot be decoded");
  }
  const bool isJpeg = file.Format() == PictureFormat::kJpeg;
  const auto pixels = static_cast<std::uint64_t>(vips_image_get_width(header)) *
                      static_cast<std::uint64_t>(vips_image_get_height(header));
  const auto bytesPerPixel =
      std::uint64_t{vips_format_sizeof(vips_image_get_format(header))} * static_cast<std::uint64_t>(samples);
  RefuseBytes(pixels * bytesPerPixel, kMostDecodedMegabytes, "to decode");
  if (HasSeveralPasses(header) || file.Format() == PictureFormat::kWebP || file.Format() == PictureFormat::kHeif) {
    RefuseBytes(pixels * bytesPerPixel * (isJpeg ? 2 : 1), kMostHeldMegabytes, "to hold at once");
  }
  if (isJpeg && HasSeveralPasses(header) && CountScans(file, kMostPasses) > kMostPasses) {
    throw PictureError("the image has more than " + std::to_string(kMostPasses) + " passes");
  }
}

bool HasMostOf(const PictureFile& file) {
  if (file.Format() != PictureFormat::kJpeg) return false;
  const LibvipsUse use(false);
  try {
    const OwnedImage image = file.Open(VIPS_FAIL_ON_TRUNCATED);
    if (HasSeveralPasses(image.get())) return CountScans(file, 1) > 1;
    return RowsThatDecode(image.get()) >= vips_image_get_height(image.get()) / 2;
  } catch (const LibvipsFailure&) {
    return false;
  }
}

}  // namespace catalogcore::app
