// Bytes that grow at their end. Large blocks move by the system's page tables rather than by copying, which is why this
// is not a std::vector.
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

// Functions that need memory throw std::bad_alloc without it.
class ByteBuffer {
 public:
  ByteBuffer() = default;
  // Leaves the other empty.
  ByteBuffer(ByteBuffer&& other) noexcept
      : bytes_(std::move(other.bytes_)),
        size_(std::exchange(other.size_, 0)),
        capacity_(std::exchange(other.capacity_, 0)) {}

  const UInt8* data() const { return bytes_.get(); }
  std::size_t size() const { return size_; }
  std::string_view view() const { return {reinterpret_cast<const char*>(bytes_.get()), size_}; }

  // Adds `count` bytes whose content the caller sets. The pointer is good until the next addition.
  UInt8* Extend(std::size_t count) {
    if (count > capacity_ - size_) Grow(count);
    UInt8* const added = bytes_.get() + size_;
    size_ += count;
    return added;
  }

  void Append(std::string_view bytes) {
    if (!bytes.empty()) std::memcpy(Extend(bytes.size()), bytes.data(), bytes.size());
  }

  // REQUIRES: `size` is at most the present one.
  void Truncate(std::size_t size) { size_ = size; }

  // Gives back the memory beyond the content.
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
    const std::size_t spare = count / 64;  // so that the little that follows much does not move it
    if (count > kMaxSize - size_ - spare) throw std::bad_alloc();
    const std::size_t capacity = std::max(size_ + count + spare, capacity_ + capacity_ / 2);
    void* const block = std::realloc(bytes_.get(), capacity);
    if (!block) throw std::bad_alloc();
    AdviseLargeBlock(block, capacity);
    Hold(block, capacity);
  }

  void Hold(void* block, std::size_t capacity) {
    static_cast<void>(bytes_.release());  // realloc has taken it
    bytes_.reset(static_cast<UInt8*>(block));
    capacity_ = capacity;
  }

  std::unique_ptr<UInt8, Deleter> bytes_;
  std::size_t size_ = 0;
  std::size_t capacity_ = 0;
};

}  // namespace catalogcore::cf

#endif  // CATALOGCORE_PLATFORM_COREFOUNDATION_BYTE_BUFFER_H_
