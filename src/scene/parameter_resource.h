// The recognizer's parameter block, as it lies in the library's bundle: "brennparam.dat".
#ifndef CATALOGCORE_SCENE_PARAMETER_RESOURCE_H_
#define CATALOGCORE_SCENE_PARAMETER_RESOURCE_H_

#include <cstdint>

// The identifier of the library's bundle.
#define CATALOGCORE_BUNDLE_IDENTIFIER "org.catalogcore.library"

namespace catalogcore {

// Reads the block of the bundle. The caller frees what it returns with free(); null when there is no bundle, resource
// or tag, or no memory. `*size` (may be null) gets the size that the block's header gives, 0 when there is none.
unsigned char* OpenParamFile(std::uint32_t* size);

// The same from a file. The header's size holds also where the file is shorter: the rest of the block is then zero.
unsigned char* ReadParamFile(const char* path, std::uint32_t* size);

}  // namespace catalogcore

#endif  // CATALOGCORE_SCENE_PARAMETER_RESOURCE_H_
