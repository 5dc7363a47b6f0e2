/// @file
/// Images and indexes as calls of catalogcore.hpp show them, and what is asked for and changed: numbers, bits and
/// records.
#ifndef CATALOGCORE_ENTRIES_HPP_
#define CATALOGCORE_ENTRIES_HPP_

#include <catalogcore.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>

namespace catalogcore {

/// The number of an index: 1000000 to 99999999, two decimal digits a level from the top down, or kRoot.
using IndexNumber = std::int32_t;

/// The root of the tree, which holds no image.
inline constexpr IndexNumber kRoot = IDX_ROOT;

/// The indexes that every catalogue has.
namespace preset {
inline constexpr IndexNumber kPhoto = IDXPRESET_PHOTO;                   ///< parent of those of photographs
inline constexpr IndexNumber kPhotoFaces = IDXPRESET_PHOTO_FACES;        ///< photographs that show faces
inline constexpr IndexNumber kPhotoOther = IDXPRESET_PHOTO_OTHER;        ///< other photographs
inline constexpr IndexNumber kDocument = IDXPRESET_DOCUMENT;             ///< parent of those of documents
inline constexpr IndexNumber kDocumentCard = IDXPRESET_DOCUMENT_CARD;    ///< documents of a card's size
inline constexpr IndexNumber kDocumentPost = IDXPRESET_DOCUMENT_POST;    ///< of a postcard's, or 4 x 6 inches
inline constexpr IndexNumber kDocumentPage = IDXPRESET_DOCUMENT_PAGE;    ///< A5, B5, A4, Letter or Legal
inline constexpr IndexNumber kDocumentFixed = IDXPRESET_DOCUMENT_FIXED;  ///< documents by Hint::kFixedDocument
inline constexpr IndexNumber kDocumentOther = IDXPRESET_DOCUMENT_OTHER;  ///< documents of any other size
inline constexpr IndexNumber kOther = IDXPRESET_OTHER;                   ///< never chosen by Classify
}  // namespace preset

/// What may not be done to an image or an index: a set of bits. The other five bits are an application's own, made with
/// a cast, and are kept.
enum class Attributes : std::uint8_t {
  kNone = 0,                     ///< no bit
  kNoMove = IDXATTR_NOMOVE,      ///< not moved to another index
  kNoRemove = IDXATTR_NOREMOVE,  ///< not removed
  kNoRename = IDXATTR_NORENAME,  ///< not renamed (indexes)
};

/// How a change is made: a set of bits.
enum class Options : std::uint8_t {
  kNone = 0,                ///< as the attributes allow
  kForce = IDXSTATE_FORCE,  ///< move, remove or rename also what its attributes protect
};

/// The enumerations that are sets of bits.
template <typename E>
concept BitSet = std::is_same_v<E, Attributes> || std::is_same_v<E, Options>;

/// The bits of either set.
template <BitSet E>
constexpr E operator|(E a, E b) {
  return static_cast<E>(static_cast<std::uint8_t>(a) | static_cast<std::uint8_t>(b));
}

/// The bits of both sets.
template <BitSet E>
constexpr E operator&(E a, E b) {
  return static_cast<E>(static_cast<std::uint8_t>(a) & static_cast<std::uint8_t>(b));
}

/// The bits of one set alone.
template <BitSet E>
constexpr E operator^(E a, E b) {
  return static_cast<E>(static_cast<std::uint8_t>(a) ^ static_cast<std::uint8_t>(b));
}

/// The bits that are not in the set, all eight counted.
template <BitSet E>
constexpr E operator~(E a) {
  return static_cast<E>(static_cast<std::uint8_t>(~static_cast<std::uint8_t>(a)));
}

/// Adds bits.
template <BitSet E>
constexpr E& operator|=(E& a, E b) {
  return a = a | b;
}

/// Keeps only these bits.
template <BitSet E>
constexpr E& operator&=(E& a, E b) {
  return a = a & b;
}

/// Turns bits over.
template <BitSet E>
constexpr E& operator^=(E& a, E b) {
  return a = a ^ b;
}

/// Whether the set holds one of these bits at least.
template <BitSet E>
constexpr bool HasAny(E set, E bits) {
  return (set & bits) != E::kNone;
}

/// Where an image is filed.
struct Filing {
  IndexNumber index = 0;                      ///< the index that it is filed under
  Attributes attributes = Attributes::kNone;  ///< its protections
};

/// One image of the catalogue, as a walk shows it.
struct Image {
  std::string path;                           ///< full path of its file
  IndexNumber index = 0;                      ///< the index that it is filed under
  Attributes attributes = Attributes::kNone;  ///< its protections
  bool isText = true;  ///< false: no valid UTF-8 (a file brought it), or no memory for it; `path` is empty
};

/// One index of the catalogue.
struct Index {
  std::string name;                           ///< what it is called; may be empty
  IndexNumber number = 0;                     ///< its number
  Attributes attributes = Attributes::kNone;  ///< its protections
  bool isText = true;  ///< false: no valid UTF-8 (a file brought it), or no memory for it; `name` is empty
};

/// What Catalog::ChangeImage changes.
struct ImageChange {
  std::optional<IndexNumber> index = std::nullopt;      ///< the index to move it to; kRoot: remove it
  std::optional<Attributes> attributes = std::nullopt;  ///< in place of those that it has
};

/// What Catalog::ChangeIndex changes.
struct IndexChange {
  std::optional<std::string_view> name = std::nullopt;  ///< in place of its name
  std::optional<Attributes> attributes = std::nullopt;  ///< in place of those that it has
};

/// Which images Catalog::Images walks: those that fit both fields. There is no way to leave out what lies below.
struct ImageQuery {
  IndexNumber index = kRoot;     ///< filed under it or an index below it; kRoot: under any
  std::string_view folder = {};  ///< full path of the folder in or below which the files lie; empty: in any
  bool withPaths = true;         ///< false: each `path` stays empty, which saves most of the time of a count
};

}  // namespace catalogcore

#endif  // CATALOGCORE_ENTRIES_HPP_
