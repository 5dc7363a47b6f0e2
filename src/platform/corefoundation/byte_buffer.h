// A buffer that grows at its end. Unlike std::vector it uses realloc, which moves large blocks in the page tables
// instead of copying them.
#ifndef CATALOGCORE_PLATFORM_COREFOUNDATION_BYTE_BUFFER_H_
#define CATALOGCORE_PLATFORM_COREFOUNDATION_BYTE_BUFFER_H_

#include <CoreFoundation/CFBase.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <string_view>
#include <utility>

#include "platform/large_block.h"

namespace catalogcore::cf {

// Functions that allocate may throw std::bad_alloc.
class ByteBuffer {
 public:
  ByteBuffer() = default;
  // The other buffer is empty afterwards.
  ByteBuffer(ByteBuffer&& other) noexcept
      : bytes_(std::move(other.bytes_)),
        size_(std::exchange(other.size_, 0)),
        capacity_(std::exchange(other.capacity_, 0)) {}

  const UInt8* data() const { return bytes_.get(); }
  std::size_t size() const { return size_; }
  std::string_view view() const { return {reinterpret_cast<const char*>(bytes_.get()), size_}; }

  // Adds `count` bytes, which the caller fills. The pointer is valid until the next addition.
  UInt8* Extend(std::size_t count) {
    if (count > capacity_ - size_) Grow(count);
    UInt8* const added = bytes_.get() + size_;
    size_ += count;
    return added;
  }

  void Append(std::string_view bytes) {
    if (!bytes.empty()) std::memcpy(Extend(bytes.size()), bytes.data(), bytes.size());
  }

  // REQUIRES: `size` is at most the current size.
  void Truncate(std::size_t size) { size_ = size; }

  // Frees the memory beyond the content.
  void Fit() {
    if (size_ == 0) {
      bytes_.reset();
      capacity_ = 0;
    } else if (size_ < capacity_) {
      if (void* const block = std::realloc(bytes_.get(), size_)) Hold(block, size_);
    }
  }

 private:
  struct Deleter {
    void operator()(UInt8* bytes) const { std::free(bytes); }
  };

  void Grow(std::size_t count) {
    constexpr std::size_t kMaxSize = std::numeric_limits<CFIndex>::max();
    const std::size_t spare = count / 64;  // so that a small addition after a large one does not move the block
    if (count > kMaxSize - size_ - spare) throw std::bad_alloc();
    const std::size_t capacity = std::max(size_ + count + spare, capacity_ + capacity_ / 2);
    void* const block = std::realloc(bytes_.get(), capacity);
    if (!block) throw std::bad_alloc();
    AdviseLargeBlock(block, capacity);
    Hold(block, capacity);
  }

  void Hold(void* block, std::size_t capacity) {
    static_cast<void>(bytes_.release());  // realloc has freed or moved the block
    bytes_.reset(static_cast<UInt8*>(block));
    capacity_ = capacity;
  }

  std::unique_ptr<UInt8, Deleter> bytes_;
  std::size_t size_ = 0;
  std::size_t capacity_ = 0;
};

}  // namespace catalogcore::cf

#endif  // CATALOGCORE_PLATFORM_COREFOUNDATION_BYTE_BUFFER_H_
