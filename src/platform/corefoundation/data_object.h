#ifndef CATALOGCORE_PLATFORM_COREFOUNDATION_DATA_OBJECT_H_
#define CATALOGCORE_PLATFORM_COREFOUNDATION_DATA_OBJECT_H_

#include <CoreFoundation/CFData.h>

#include <string_view>
#include <utility>

#include "platform/corefoundation/byte_buffer.h"
#include "platform/corefoundation/objects.h"

struct __CFData final : catalogcore::cf::Object {
  explicit __CFData(catalogcore::cf::ByteBuffer&& content)
      : Object(catalogcore::cf::Kind::kData), owned(std::move(content)), bytes(owned.view()) {}
  explicit __CFData(std::string_view borrowed) : Object(catalogcore::cf::Kind::kData), bytes(borrowed) {}
  const catalogcore::cf::ByteBuffer owned;  // what `bytes` are of, unless they are borrowed
  const std::string_view bytes;
};

namespace catalogcore::cf {

// Data that takes the buffer over, or null without memory.
inline CFDataRef CreateData(ByteBuffer&& bytes) {
  bytes.Fit();
  return Create<__CFData>(std::move(bytes));
}

}  // namespace catalogcore::cf

#endif  // CATALOGCORE_PLATFORM_COREFOUNDATION_DATA_OBJECT_H_
