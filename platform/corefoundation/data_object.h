#ifndef CATALOGCORE_PLATFORM_COREFOUNDATION_DATA_OBJECT_H_
#define CATALOGCORE_PLATFORM_COREFOUNDATION_DATA_OBJECT_H_

#include <CoreFoundation/CFData.h>

#include <utility>

#include "platform/corefoundation/byte_buffer.h"
#include "platform/corefoundation/object.h"

struct __CFData final : catalogcore::cf::Object {
  explicit __CFData(catalogcore::cf::ByteBuffer&& content)
      : Object(catalogcore::cf::Kind::kData), bytes(std::move(content)) {}
  const catalogcore::cf::ByteBuffer bytes;
};

namespace catalogcore::cf {

// Data that takes the buffer over, or null without memory.
inline CFDataRef CreateData(ByteBuffer&& bytes) {
  bytes.Fit();
  return Create<__CFData>(std::move(bytes));
}

}  // namespace catalogcore::cf

#endif  // CATALOGCORE_PLATFORM_COREFOUNDATION_DATA_OBJECT_H_
