#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <system_error>

#include "app/picture_file.h"
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

[[noreturn]] void FailToWrite(const std::filesystem::path& target, int why) {
  throw PictureError("cannot write " + target.string() + ": " + std::generic_category().message(why));
}

// 0, or the reason.
int WriteAll(int descriptor, const Jpeg& jpeg) {
  const auto* const bytes = static_cast<const char*>(jpeg.bytes.get());
  for (std::size_t done = 0; done < jpeg.size;) {
    const ssize_t put = write(descriptor, bytes + done, jpeg.size - done);
    if (put < 0 && errno == EINTR) continue;
    if (put < 0) return errno;
    done += static_cast<std::size_t>(put);
  }
  return 0;
}

// Beside the target, as another file system could not be renamed from; no two threads or processes have the same.
std::filesystem::path TemporaryName(const std::filesystem::path& target) {
  static std::atomic<unsigned> count = 0;
  std::filesystem::path name = target;
  name += "." + std::to_string(getpid()) + "-" + std::to_string(++count) + ".part";
  return name;
}

}  // namespace

void WriteSmallCopy(const std::filesystem::path& path, const std::filesystem::path& target, int side) {
  const PictureFile file(path);
  const Jpeg jpeg = UseLibvips(file, [&file, side](VipsFailOn failOn) {
    return Compressed(TrueColours(ReducedPixels(file, failOn, side)).get());
  });
  const std::filesystem::path temporary = TemporaryName(target);
  const int descriptor = open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
  if (descriptor < 0) FailToWrite(target, errno);
  int why = WriteAll(descriptor, jpeg);
  if (close(descriptor) != 0 && why == 0) why = errno;
  if (why == 0 && rename(temporary.c_str(), target.c_str()) != 0) why = errno;
  if (why == 0) return;
  unlink(temporary.c_str());
  FailToWrite(target, why);
}

}  // namespace catalogcore::app
