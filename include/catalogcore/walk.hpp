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
  static constexpr auto kFirst = IDXFindFirstImage;  ///< the find-first call
  static constexpr auto kNext = IDXFindNextImage;    ///< the find-next call
  static constexpr Status kEnd = Status::kNoImage;   ///< the status at the end

  /// Copies the entry that the call found.
  static void Read(Image& image, const OutputText& text, const Record& record) {
    if ((record.mask & IDXMASK_NAME) != 0) image.isText = text.CopyTo(image.path);
    image.index = record.index;
    image.attributes = record.Protections();
  }
};

/// The calls of a walk over indexes.
struct IndexCalls {
  static constexpr auto kFirst = IDXFindFirstIndex;  ///< the find-first call
  static constexpr auto kNext = IDXFindNextIndex;    ///< the find-next call
  static constexpr Status kEnd = Status::kNoIndex;   ///< the status at the end

  /// Copies the entry that the call found.
  static void Read(Index& index, const OutputText& text, const Record& record) {
    index.isText = text.CopyTo(index.name);
    index.number = record.index;
    index.attributes = record.Protections();
  }
};

}  // namespace detail

/// A walk over images or indexes: an input range that can be iterated once. It owns a find handle, which it closes at
/// its end or in its destructor, so a loop may be left at any time. A new walk is at its first entry. catalogcore.h
/// documents at IDXFIND how a walk sees concurrent changes. Clearing or closing the catalogue ends the walk. A walk
/// belongs to one thread at a time.
template <typename Entry, typename Calls>
class Walk : public std::ranges::view_base {
 public:
  /// The position of the walk. All iterators of a walk share one position. They are valid until the walk is moved or
  /// destroyed.
  class Iterator {
   public:
    using value_type = Entry;                          ///< Image or Index
    using difference_type = std::ptrdiff_t;            ///< required by std::input_iterator
    using iterator_concept = std::input_iterator_tag;  ///< can be iterated once

    /// An iterator without a walk, which can only be assigned to.
    Iterator() = default;

    /// The entry, valid until the next step. REQUIRES: not at the end.
    const Entry& operator*() const { return walk_->entry_; }

    /// A member of the entry. REQUIRES: not at the end.
    const Entry* operator->() const { return &walk_->entry_; }

    /// Moves to the next entry. REQUIRES: not at the end.
    Iterator& operator++() {
      walk_->Step();
      return *this;
    }

    /// Moves to the next entry. REQUIRES: not at the end.
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

  /// Takes over the position of `other`, which is then at its end.
  Walk(Walk&& other) noexcept
      : find_(std::exchange(other.find_, nullptr)),
        fields_(other.fields_),
        entry_(std::move(other.entry_)),
        status_(other.status_) {}

  /// Ends this walk and takes over the position of `other`, which is then at its end.
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

  /// The current position: the first entry only before the first step.
  Iterator begin() { return Iterator(this); }

  /// The end.
  static std::default_sentinel_t end() { return {}; }

  /// Status::kOk, or the status of a step that failed, such as Status::kMemory. The end is not a failure.
  Status status() const noexcept { return status_; }

 private:
  friend class Catalog;

  static constexpr std::uint32_t kAllFields = IDXMASK_NAME | IDXMASK_INDEX | IDXMASK_ATTRIBUTE;

  // Begins the walk of the record. A walk without entries is at its end.
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
