// The face detector, as the scene detector calls it. The library needs only these declarations: the build chooses the
// engine that defines them. They stay in the global namespace, because another library may define them.
#ifndef CATALOGCORE_SCENE_ORLO_H_
#define CATALOGCORE_SCENE_ORLO_H_

#include <cstdint>

// The state of one detection. All zero before Orlo_SetBitmap; the caller releases `memory` with OrloFree.
struct OrloContext {
  void* words[3];
  void* memory;
  unsigned char block[132];
};

// The faces found. All zero before Orlo_DetectFacePosition; the caller releases `faces` with OrloFree.
struct OrloFaceList {
  void* faces;
  std::uintptr_t count;
  std::uintptr_t reserved;
};

// Each operation except OrloFree returns 0 for success or a failure code of the engine, 1 to 255. The scene detector
// holds its critical region during a detection, so only one thread at a time is in the engine. Calls of Orlo_Initialize
// and Orlo_Uninitialize need not match: after a failed detection Orlo_Uninitialize is not called.
extern "C" {
std::int32_t Orlo_Initialize();

// Describes the picture. `bitsPerPixel` is 8, 16, 24 or 48. `negatedStride` is the number of bytes from one row to the
// next, with its sign reversed. Nevertheless `pixels` points to the top row, and each row is followed by the row below
// it. The pixels must stay valid until the detection ends.
std::int32_t Orlo_SetBitmap(OrloContext* context, std::int32_t bitsPerPixel, std::int32_t width, std::int32_t height,
                            std::int32_t negatedStride, const void* pixels);

std::int32_t Orlo_DetectFacePosition(OrloContext* context, OrloFaceList* list);

std::int32_t Orlo_Uninitialize();

// Releases memory that the engine allocated. The scene detector never passes null.
void OrloFree(void* memory);
}

#endif  // CATALOGCORE_SCENE_ORLO_H_
