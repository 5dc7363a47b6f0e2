// The description of the reduced picture for the recognizer. scene/brenn.h defines its layout.
#ifndef CATALOGCORE_SCENE_IMAGE_RECORD_H_
#define CATALOGCORE_SCENE_IMAGE_RECORD_H_

#include <array>
#include <cstdint>
#include <cstring>

#include "scene/brenn.h"
#include "scene/idx_image.h"

namespace catalogcore {

// The resolution toward which a picture is reduced for the recognizer, in dots per inch.
inline constexpr int kRecognizerResolution = 75;

class ImageRecord {
 public:
  // REQUIRES: `reduced` is filled.
  explicit ImageRecord(const CIDXImage& reduced);

  // kBrennRecordSize bytes.
  const unsigned char* Bytes() const { return bytes_.data(); }

 private:
  template <typename Field>
  void Put(BrennRecordOffset offset, std::int32_t value) {
    const auto field = static_cast<Field>(value);
    std::memcpy(&bytes_[offset], &field, sizeof field);
  }

  std::array<unsigned char, kBrennRecordSize> bytes_{};
};

}  // namespace catalogcore

#endif  // CATALOGCORE_SCENE_IMAGE_RECORD_H_
