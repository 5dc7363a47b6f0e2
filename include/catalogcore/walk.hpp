/// @file
/// Walks over images and indexes, as ranges.
#ifndef CATALOGCORE_WALK_HPP_
#define CATALOGCORE_WALK_HPP_

#include <catalogcore.h>

#include <cstddef>
#include <iterator>
#include <ranges>
#include <utility>

#include "catalogcore/call.hpp"
#include "catalogcore/entries.hpp"
#include "catalogcore/result.hpp"

namespace catalogcore {

namespace detail {

/// The calls of a walk over images.
struct ImageCalls {
  static constexpr auto kFirst = IDXFindFirstImage;  ///< begins it
  static constexpr auto kNext = IDXFindNextImage;    ///< goes on
  static constexpr Status kEnd = Status::kNoImage;   ///< ends it

  /// Writes what the call found.
  static void Read(Image& image, const OutputText& text, const Record& record) {
    if ((record.mask & IDXMASK_NAME) != 0) image.isText = text.CopyTo(image.path);
    image.index = record.index;
    image.attributes = record.Protections();
  }
};

/// The calls of a walk over indexes.
struct IndexCalls {
  static constexpr auto kFirst = IDXFindFirstIndex;  ///< begins it
  static constexpr auto kNext = IDXFindNextIndex;    ///< goes on
  static constexpr Status kEnd = Status::kNoIndex;   ///< ends it

  /// Writes what the call found.
  static void Read(Index& index, const OutputText& text, const Record& record) {
    index.isText = text.CopyTo(index.name);
    index.number = record.index;
    index.attributes = record.Protections();
  }
};

}  // namespace detail

/// A walk over images or indexes: an input range, passed once, that owns its find handle and closes it at its end or
/// when it goes, whichever is first; so a loop may be left at any time. It stands on its first entry when it is made.
/// What is added, moved or removed meanwhile shows as catalogcore.h says of IDXFIND. After the catalogue was cleared or
/// closed it is at its end. One thread at a time.
template <typename Entry, typename Calls>
class Walk : public std::ranges::view_base {
 public:
  /// A place in the walk, of which there is one: all iterators of a walk move together. Valid until the walk is moved
  /// or goes.
  class Iterator {
   public:
    using value_type = Entry;                          ///< Image or Index
    using difference_type = std::ptrdiff_t;            ///< asked for by std::input_iterator
    using iterator_concept = std::input_iterator_tag;  ///< passed once

    /// No place; only to be assigned to.
    Iterator() = default;

    /// The entry, until the next step. REQUIRES: not at the end.
    const Entry& operator*() const { return walk_->entry_; }

    /// A member of the entry. REQUIRES: not at the end.
    const Entry* operator->() const { return &walk_->entry_; }

    /// Goes on to the next entry. REQUIRES: not at the end.
    Iterator& operator++() {
      walk_->Step();
      return *this;
    }

    /// Goes on to the next entry. REQUIRES: not at the end.
    void operator++(int) { ++*this; }

    /// Whether the walk is at its end.
    bool operator==(std::default_sentinel_t) const { return !walk_->find_; }

   private:
    friend class Walk;
    explicit Iterator(Walk* walk) : walk_(walk) {}

    Walk* walk_ = nullptr;
  };

  /// A walk that is at its end.
  Walk() = default;

  /// Takes the other's place; the other is at its end.
  Walk(Walk&& other) noexcept
      : find_(std::exchange(other.find_, nullptr)),
        fields_(other.fields_),
        entry_(std::move(other.entry_)),
        status_(other.status_) {}

  /// Ends this walk and takes the other's place; the other is at its end.
  Walk& operator=(Walk&& other) noexcept {
    if (this == &other) return *this;
    Close();
    find_ = std::exchange(other.find_, nullptr);
    fields_ = other.fields_;
    entry_ = std::move(other.entry_);
    status_ = other.status_;
    return *this;
  }

  /// Ends the walk.
  ~Walk() { Close(); }

  /// Where the walk stands, which is its first entry only before the first step.
  Iterator begin() { return Iterator(this); }

  /// The end.
  static std::default_sentinel_t end() { return {}; }

  /// Status::kOk; after a step that failed for another reason than the end, such as no memory, its status.
  Status status() const noexcept { return status_; }

 private:
  friend class Catalog;

  static constexpr std::uint32_t kAllFields = IDXMASK_NAME | IDXMASK_INDEX | IDXMASK_ATTRIBUTE;

  // Begins the walk that the record asks for; one that finds nothing is at its end.
  static Result<Walk> Begin(detail::Record& record, std::uint32_t fields = kAllFields) {
    Walk walk;
    walk.fields_ = fields;
    detail::OutputText text;
    record.Wanted(text, fields);
    IDXSTATUS status = IDX_OK;
    walk.find_ = Calls::kFirst(&record, &status);
    if (walk.find_) {
      Calls::Read(walk.entry_, text, record);
    } else if (static_cast<Status>(status) != Calls::kEnd) {
      return static_cast<Status>(status);
    }
    return walk;
  }

  void Step() {
    detail::OutputText text;
    detail::Record record;
    const auto status = static_cast<Status>(Calls::kNext(find_, &record.Wanted(text, fields_)));
    if (status == Status::kOk) return Calls::Read(entry_, text, record);
    if (status != Calls::kEnd) status_ = status;
    Close();
  }

  void Close() { IDXCloseFind(std::exchange(find_, nullptr)); }

  IDXFIND find_ = nullptr;
  std::uint32_t fields_ = kAllFields;
  Entry entry_;
  Status status_ = Status::kOk;
};

/// A walk over images.
using ImageWalk = Walk<Image, detail::ImageCalls>;

/// A walk over indexes, parents before children.
using IndexWalk = Walk<Index, detail::IndexCalls>;

}  // namespace catalogcore

#endif  // CATALOGCORE_WALK_HPP_
