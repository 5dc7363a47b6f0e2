// Reads the recognizer's parameter block, the resource "brennparam.dat" of the library's bundle.
#ifndef CATALOGCORE_SCENE_PARAMETER_RESOURCE_H_
#define CATALOGCORE_SCENE_PARAMETER_RESOURCE_H_

#include <cstdint>

// The identifier of the library's bundle.
#define CATALOGCORE_BUNDLE_IDENTIFIER "org.catalogcore.library"

namespace catalogcore {

// Reads the block from the bundle. Returns null if the bundle, the resource or its tag is missing or memory cannot be
// allocated; otherwise a block that the caller releases with free(). Unless `size` is null, sets `*size` to the size in
// the block's header, or to 0 without a valid tag.
unsigned char* OpenParamFile(std::uint32_t* size);

// Reads the block from a file. If the file is shorter than the size in its header, the rest of the block is 0.
unsigned char* ReadParamFile(const char* path, std::uint32_t* size);

}  // namespace catalogcore

#endif  // CATALOGCORE_SCENE_PARAMETER_RESOURCE_H_
