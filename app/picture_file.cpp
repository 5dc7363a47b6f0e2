#include "app/picture_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <mutex>
#include <new>
#include <shared_mutex>
#include <string_view>
#include <system_error>

namespace catalogcore::app {
namespace {

// Held by a thread while it waits for `use`, so that later threads cannot starve a thread that waits for exclusive use.
std::mutex entry;
std::shared_mutex use;

[[noreturn]] void FailBySystem() { throw PictureError(std::generic_category().message(errno)); }

bool StartsWith(std::span<const std::uint8_t> bytes, std::string_view start) {
  return std::equal(start.begin(), start.end(), bytes.begin(),
                    [](char a, std::uint8_t b) { return static_cast<std::uint8_t>(a) == b; });
}

bool Contains(std::string_view text, std::initializer_list<std::string_view> phrases) {
  return std::any_of(phrases.begin(), phrases.end(),
                     [text](std::string_view phrase) { return text.find(phrase) != text.npos; });
}

// The cause among the messages of libvips: the first line that is not empty and that intact files do not cause. Drops the
// name of the libvips domain and replaces unprintable characters: messages may quote the file.
std::string Detail(std::string_view errors) {
  while (!errors.empty()) {
    std::string_view line = errors.substr(0, errors.find('\n'));
    errors.remove_prefix(std::min(errors.size(), line.size() + 1));
    if (const std::size_t domain = line.find(": "); domain != line.npos) line.remove_prefix(domain + 2);
    if (line.empty() || Contains(line, {"bad seek", "extraneous bytes", "read error"})) continue;
    std::string detail(line.substr(0, 100));
    std::replace_if(
        detail.begin(), detail.end(), [](char c) { return c < ' ' || c > '~'; }, '?');
    return detail;
  }
  return {};
}

}  // namespace

PictureFile::PictureFile(const std::filesystem::path& path) {
  try {
    Examine(path);
  } catch (...) {
    if (descriptor_ >= 0) close(descriptor_);
    throw;
  }
}

PictureFile::~PictureFile() {
  source_.reset();
  close(descriptor_);
}

void PictureFile::Examine(const std::filesystem::path& path) {
  // O_NONBLOCK: opening a pipe without a writer must not wait.
  descriptor_ = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
  if (descriptor_ < 0) FailBySystem();
  struct stat status = {};
  if (fstat(descriptor_, &status) != 0) FailBySystem();
  if (!S_ISREG(status.st_mode)) throw PictureError(S_ISDIR(status.st_mode) ? "a folder" : "not a regular file");
  size_ = static_cast<std::uint64_t>(status.st_size);
  changeTime_ = status.st_mtime;
  std::array<std::uint8_t, 12> start = {};
  if (!Read(0, start)) throw PictureError(size_ == 0 ? "the file is empty" : "not an image file");
  const std::optional<PictureFormat> format = FormatOf(start);
  if (!format) throw PictureError(WhyNotDecoded(start));
  format_ = *format;
  source_.reset(vips_source_new_from_descriptor(descriptor_));
  if (source_ == nullptr) FailBySystem();  // it duplicates the descriptor
}

OwnedImage PictureFile::Open(VipsFailOn failOn, int shrink) const {
  VipsImage* out = nullptr;
  const auto load = [&](auto loader, auto... reduction) {
    return Taken(
        loader(source_.get(), &out, "access", VIPS_ACCESS_SEQUENTIAL, "fail_on", failOn, reduction..., nullptr), out);
  };
  switch (format_) {
    case PictureFormat::kJpeg:
      return load(vips_jpegload_source, "shrink", shrink);
    case PictureFormat::kPng:
      return load(vips_pngload_source);
    case PictureFormat::kTiff:
      return load(vips_tiffload_source);
    case PictureFormat::kWebP:
      return load(vips_webpload_source, "scale", 1.0 / shrink);
    case PictureFormat::kHeif:
      break;
  }
  return load(vips_heifload_source);
}

bool PictureFile::Read(std::uint64_t offset, std::span<std::uint8_t> bytes) const {
  if (offset > size_ || bytes.size() > size_ - offset) return false;
  for (std::size_t done = 0; done < bytes.size();) {
    const ssize_t got = pread(descriptor_, &bytes[done], bytes.size() - done, static_cast<off_t>(offset + done));
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) FailBySystem();
    if (got == 0) return false;
    done += static_cast<std::size_t>(got);
  }
  return true;
}

bool PictureFile::IsCutShort() const {
  if (format_ == PictureFormat::kPng) {
    std::array<std::uint8_t, 8> end = {};  // name and checksum of the last chunk
    return !Read(size_ - end.size(), end) || !StartsWith(end, "IEND");
  }
  if (format_ == PictureFormat::kWebP) {
    std::array<std::uint8_t, 4> stated = {};  // number of bytes behind these
    if (!Read(4, stated)) return true;
    std::uint64_t bytes = 0;
    for (std::size_t i = stated.size(); i-- > 0;) bytes = bytes << 8 | stated[i];
    return bytes + 8 > size_;
  }
  return false;
}

LibvipsUse::LibvipsUse(bool isExclusive) : isExclusive_(isExclusive) {
  const std::lock_guard waiting(entry);
  isExclusive_ ? use.lock() : use.lock_shared();
}

LibvipsUse::~LibvipsUse() { isExclusive_ ? use.unlock() : use.unlock_shared(); }

void ThrowReason(const PictureFile& file, VipsFailOn failOn) {
  const std::string errors = vips_error_buffer();
  vips_error_clear();
  if (Contains(errors, {"out of memory", "Out of memory", "OUT_OF_MEMORY", "Insufficient memory", "No space for",
                        "Memory allocation error", "Cannot allocate memory"})) {
    throw std::bad_alloc();
  }
  if (file.IsCutShort() ||
      Contains(errors, {"Premature end of", "Unexpected end of file", "Can not read TIFF directory", "Seek error",
                        "IO error during reading", "Read error", "Not enough data", "got 0 bytes"})) {
    throw CutShort();
  }
  // Warnings about bytes between segments and the like, which do not affect the pixels.
  const bool isWarning = failOn == VIPS_FAIL_ON_WARNING;
  if (isWarning && !Contains(errors, {"premature end of data segment", "bad Huffman code", "instead of RST"})) return;
  const std::string detail = Detail(errors);
  throw PictureError(detail.empty() ? "the image is damaged" : "the image is damaged: " + detail);
}

void StartPictures(const char* program) {
  // Messages reach the person only through PictureError. A fatal message is printed before the process ends.
  g_log_set_default_handler(
      [](const char* domain, GLogLevelFlags level, const char* message, void* data) {
        if ((level & G_LOG_FLAG_FATAL) != 0) g_log_default_handler(domain, level, message, data);
      },
      nullptr);
  if (VIPS_INIT(program) != 0) throw std::runtime_error(std::string("cannot start libvips: ") + vips_error_buffer());
  vips_concurrency_set(1);
  vips_cache_set_max(0);
}

}  // namespace catalogcore::app
