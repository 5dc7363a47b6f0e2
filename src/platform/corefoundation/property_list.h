#ifndef CATALOGCORE_PLATFORM_COREFOUNDATION_PROPERTY_LIST_H_
#define CATALOGCORE_PLATFORM_COREFOUNDATION_PROPERTY_LIST_H_

#include <cstddef>

namespace catalogcore::cf {

// Arrays and dictionaries within each other, the outermost included.
constexpr std::size_t kMaxPropertyListLevels = 512;

}  // namespace catalogcore::cf

#endif  // CATALOGCORE_PLATFORM_COREFOUNDATION_PROPERTY_LIST_H_
