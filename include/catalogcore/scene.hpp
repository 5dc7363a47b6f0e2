/// @file
/// Pictures in memory, and what they are found to be.
#ifndef CATALOGCORE_SCENE_HPP_
#define CATALOGCORE_SCENE_HPP_

#include <catalogcore.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "catalogcore/entries.hpp"

namespace catalogcore {

/// What the application knows of a picture.
enum class Hint {
  kNone,             ///< nothing
  kFixedDocument,    ///< it is to be filed as a declared document, whatever it shows; nothing is analysed
  kDocument,         ///< a document
  kPhotograph,       ///< a photograph, in which faces are looked for
  kPhotographAlone,  ///< a photograph, in which no faces are looked for
};

/// One picture in memory. Byte b of the pixel in column x of row y is
/// pixels[y * rowBytes + x * (bitsPerPixel / 8) + b].
struct PixelBuffer {
  std::span<const std::byte> pixels = {};  ///< at least rowBytes * height bytes; empty: decided by hint and sizes alone
  std::int32_t width = 0;                  ///< pixels in a row, 1 to 4096
  std::int32_t height = 0;                 ///< rows, 1 to 4096
  std::int32_t bitsPerPixel = 0;           ///< 8 or 16: one sample a pixel; 24 or 48: three
  std::int32_t rowBytes = 0;               ///< bytes from one row to the next; 0: rows without padding
  std::int32_t resolution = 0;             ///< dots per inch; 0 or less: unknown
  Hint hint = Hint::kNone;                 ///< what is known of it
};

/// What a picture is.
enum class SceneKind {
  kUndecided,   ///< there was nothing to decide by
  kDocument,    ///< a document
  kPhotograph,  ///< a photograph
};

/// The size of a document.
enum class Paper {
  kCard,      ///< a card's
  kPostcard,  ///< a postcard's, or 4 x 6 inches
  kPage,      ///< A5, B5, A4, Letter or Legal
  kOther,     ///< any other
};

/// What Catalog::Classify found.
class Scene {
 public:
  /// What belongs in that preset index, or is undecided for kRoot.
  constexpr explicit Scene(IndexNumber number) : preset_(number) {}

  /// The number of the preset index that the picture belongs in; kRoot if undecided.
  constexpr IndexNumber Preset() const { return preset_; }

  /// Document, photograph or undecided.
  constexpr SceneKind Kind() const {
    const bool isPhotograph = preset_ == preset::kPhotoFaces || preset_ == preset::kPhotoOther;
    if (isPhotograph) return SceneKind::kPhotograph;
    return PaperSize() || preset_ == preset::kDocumentFixed ? SceneKind::kDocument : SceneKind::kUndecided;
  }

  /// The size of a document; none for a declared one, a photograph, or an undecided picture.
  constexpr std::optional<Paper> PaperSize() const {
    if (preset_ == preset::kDocumentCard) return Paper::kCard;
    if (preset_ == preset::kDocumentPost) return Paper::kPostcard;
    if (preset_ == preset::kDocumentPage) return Paper::kPage;
    if (preset_ == preset::kDocumentOther) return Paper::kOther;
    return std::nullopt;
  }

  /// Whether it is a photograph in which faces were found.
  constexpr bool HasFaces() const { return preset_ == preset::kPhotoFaces; }

 private:
  IndexNumber preset_;
};

}  // namespace catalogcore

#endif  // CATALOGCORE_SCENE_HPP_
