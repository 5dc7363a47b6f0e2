/// @file
/// Pictures in memory, and the results of their classification.
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
  kFixedDocument,    ///< a document, whatever it shows; Classify gives preset::kDocumentFixed
  kDocument,         ///< a document
  kPhotograph,       ///< a photograph; the face detector looks for faces
  kPhotographAlone,  ///< a photograph; the face detector is not used
};

/// A picture in memory. Byte b of the pixel in column x of row y is
/// pixels[y * rowBytes + x * (bitsPerPixel / 8) + b].
struct PixelBuffer {
  std::span<const std::byte> pixels = {};  ///< at least rowBytes * height bytes; empty: hint and sizes alone decide
  std::int32_t width = 0;                  ///< pixels in a row, 1 to 4096
  std::int32_t height = 0;                 ///< rows, 1 to 4096
  std::int32_t bitsPerPixel = 0;           ///< 8 or 16: one sample a pixel; 24 or 48: three
  std::int32_t rowBytes = 0;               ///< bytes from one row to the next; 0: rows without padding
  std::int32_t resolution = 0;             ///< dots per inch; 0 or less: unknown
  Hint hint = Hint::kNone;                 ///< what the application knows of the picture
};

/// The kind of a picture.
enum class SceneKind {
  kUndecided,   ///< the pixels and the hint do not suffice
  kDocument,    ///< a document
  kPhotograph,  ///< a photograph
};

/// The size of a document.
enum class Paper {
  kCard,      ///< a card
  kPostcard,  ///< a postcard, or 4 x 6 inches
  kPage,      ///< A5, B5, A4, Letter or Legal
  kOther,     ///< any other size
};

/// The result of Catalog::Classify.
class Scene {
 public:
  /// The result for a preset index; kRoot: undecided.
  constexpr explicit Scene(IndexNumber number) : preset_(number) {}

  /// The number of the preset index for the picture; kRoot if undecided.
  constexpr IndexNumber Preset() const { return preset_; }

  /// Document, photograph or undecided.
  constexpr SceneKind Kind() const {
    const bool isPhotograph = preset_ == preset::kPhotoFaces || preset_ == preset::kPhotoOther;
    if (isPhotograph) return SceneKind::kPhotograph;
    return PaperSize() || preset_ == preset::kDocumentFixed ? SceneKind::kDocument : SceneKind::kUndecided;
  }

  /// The size of a document. No value for a declared document, a photograph or an undecided picture.
  constexpr std::optional<Paper> PaperSize() const {
    if (preset_ == preset::kDocumentCard) return Paper::kCard;
    if (preset_ == preset::kDocumentPost) return Paper::kPostcard;
    if (preset_ == preset::kDocumentPage) return Paper::kPage;
    if (preset_ == preset::kDocumentOther) return Paper::kOther;
    return std::nullopt;
  }

  /// Whether the picture is a photograph that shows faces.
  constexpr bool HasFaces() const { return preset_ == preset::kPhotoFaces; }

 private:
  IndexNumber preset_;
};

}  // namespace catalogcore

#endif  // CATALOGCORE_SCENE_HPP_
