/// @file
/// Images and indexes, queries and changes.
#ifndef CATALOGCORE_ENTRIES_HPP_
#define CATALOGCORE_ENTRIES_HPP_

#include <catalogcore.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>

namespace catalogcore {

/// The number of an index: 1000000 to 99999999, or kRoot. catalogcore.h explains the digits at IDX_ROOT.
using IndexNumber = std::int32_t;

/// The root of the tree, which holds no image.
inline constexpr IndexNumber kRoot = IDX_ROOT;

/// The numbers of the preset indexes.
namespace preset {
inline constexpr IndexNumber kPhoto = IDXPRESET_PHOTO;                   ///< parent of the presets of photographs
inline constexpr IndexNumber kPhotoFaces = IDXPRESET_PHOTO_FACES;        ///< photographs that show faces
inline constexpr IndexNumber kPhotoOther = IDXPRESET_PHOTO_OTHER;        ///< other photographs
inline constexpr IndexNumber kDocument = IDXPRESET_DOCUMENT;             ///< parent of the presets of documents
inline constexpr IndexNumber kDocumentCard = IDXPRESET_DOCUMENT_CARD;    ///< documents of the size of a card
inline constexpr IndexNumber kDocumentPost = IDXPRESET_DOCUMENT_POST;    ///< of a postcard or of 4 x 6 inches
inline constexpr IndexNumber kDocumentPage = IDXPRESET_DOCUMENT_PAGE;    ///< A5, B5, A4, Letter or Legal
inline constexpr IndexNumber kDocumentFixed = IDXPRESET_DOCUMENT_FIXED;  ///< documents declared by Hint::kFixedDocument
inline constexpr IndexNumber kDocumentOther = IDXPRESET_DOCUMENT_OTHER;  ///< documents of any other size
inline constexpr IndexNumber kOther = IDXPRESET_OTHER;                   ///< never chosen by Classify
}  // namespace preset

/// The protections of an image or index: a set of bits. The other five bits are free for the application, which makes
/// them with a cast; the catalogue keeps them.
enum class Attributes : std::uint8_t {
  kNone = 0,                     ///< no bit
  kNoMove = IDXATTR_NOMOVE,      ///< not moved to another index
  kNoRemove = IDXATTR_NOREMOVE,  ///< not removed
  kNoRename = IDXATTR_NORENAME,  ///< not renamed (indexes)
};

/// Options of a change: a set of bits.
enum class Options : std::uint8_t {
  kNone = 0,                ///< respect the attributes
  kForce = IDXSTATE_FORCE,  ///< override the protection of the attributes
};

/// An enumeration that is a set of bits.
template <typename E>
concept BitSet = std::is_same_v<E, Attributes> || std::is_same_v<E, Options>;

/// The union of two sets.
template <BitSet E>
constexpr E operator|(E a, E b) {
  return static_cast<E>(static_cast<std::uint8_t>(a) | static_cast<std::uint8_t>(b));
}

/// The intersection of two sets.
template <BitSet E>
constexpr E operator&(E a, E b) {
  return static_cast<E>(static_cast<std::uint8_t>(a) & static_cast<std::uint8_t>(b));
}

/// The bits that are in exactly one of the sets.
template <BitSet E>
constexpr E operator^(E a, E b) {
  return static_cast<E>(static_cast<std::uint8_t>(a) ^ static_cast<std::uint8_t>(b));
}

/// The complement among all eight bits.
template <BitSet E>
constexpr E operator~(E a) {
  return static_cast<E>(static_cast<std::uint8_t>(~static_cast<std::uint8_t>(a)));
}

/// Adds bits.
template <BitSet E>
constexpr E& operator|=(E& a, E b) {
  return a = a | b;
}

/// Removes all other bits.
template <BitSet E>
constexpr E& operator&=(E& a, E b) {
  return a = a & b;
}

/// Inverts bits.
template <BitSet E>
constexpr E& operator^=(E& a, E b) {
  return a = a ^ b;
}

/// Whether the set has at least one of the bits.
template <BitSet E>
constexpr bool HasAny(E set, E bits) {
  return (set & bits) != E::kNone;
}

/// The index and the attributes of an image.
struct Filing {
  IndexNumber index = 0;                      ///< the index that the image is filed under
  Attributes attributes = Attributes::kNone;  ///< its protections
};

/// An image of the catalogue.
struct Image {
  std::string path;                           ///< full path of its file
  IndexNumber index = 0;                      ///< the index that the image is filed under
  Attributes attributes = Attributes::kNone;  ///< its protections
  bool isText = true;  ///< false: not valid UTF-8 (loaded from a file), or not allocated; `path` is empty
};

/// An index of the catalogue.
struct Index {
  std::string name;                           ///< the display name; may be empty
  IndexNumber number = 0;                     ///< its number
  Attributes attributes = Attributes::kNone;  ///< its protections
  bool isText = true;  ///< false: not valid UTF-8 (loaded from a file), or not allocated; `name` is empty
};

/// What Catalog::ChangeImage changes.
struct ImageChange {
  std::optional<IndexNumber> index = std::nullopt;      ///< the new index; kRoot removes the image
  std::optional<Attributes> attributes = std::nullopt;  ///< the new attributes
};

/// What Catalog::ChangeIndex changes.
struct IndexChange {
  std::optional<std::string_view> name = std::nullopt;  ///< the new name
  std::optional<Attributes> attributes = std::nullopt;  ///< the new attributes
};

/// Restricts the walk of Catalog::Images to the images that match both the index and the folder.
struct ImageQuery {
  IndexNumber index = kRoot;     ///< images of this index and of the indexes below it; kRoot: of any index
  std::string_view folder = {};  ///< images in this folder (full path) and in the folders below it; empty: in any
  bool withPaths = true;         ///< false: `path` stays empty, which makes counting several times faster
};

}  // namespace catalogcore

#endif  // CATALOGCORE_ENTRIES_HPP_
