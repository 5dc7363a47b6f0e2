// The face detector, as the scene detector calls it. The library builds against these declarations alone: the engine
// behind them is chosen when the library is built.
#ifndef CATALOGCORE_SCENE_ORLO_H_
#define CATALOGCORE_SCENE_ORLO_H_

#include <cstdint>

// One detection's state. All zero before Orlo_SetBitmap; what `memory` then points at is released with OrloFree.
struct OrloContext {
  void* words[3];
  void* memory;
  unsigned char block[132];
};

// The faces found. All zero before Orlo_DetectFacePosition; `faces` is released with OrloFree.
struct OrloFaceList {
  void* faces;
  std::uintptr_t count;
  std::uintptr_t reserved;
};

// Every result but OrloFree's is 0 for success, else a failure code of the engine, 1 to 255. The detector holds its
// critical region around a detection, so no two threads are in the engine at once. Orlo_Initialize and
// Orlo_Uninitialize may be called unevenly: after a failed detection Orlo_Uninitialize is not called.
extern "C" {
std::int32_t Orlo_Initialize();

// Describes the picture: `bitsPerPixel` 8, 16, 24 or 48; `negatedStride` is minus the bytes from one row to the next,
// which run downward in memory from the first byte of `pixels`. The pixels must stay until the detection is over.
std::int32_t Orlo_SetBitmap(OrloContext* context, std::int32_t bitsPerPixel, std::int32_t width, std::int32_t height,
                            std::int32_t negatedStride, const void* pixels);

std::int32_t Orlo_DetectFacePosition(OrloContext* context, OrloFaceList* list);

std::int32_t Orlo_Uninitialize();

// Releases what the engine handed out. The detector never hands in null.
void OrloFree(void* memory);
}

#endif  // CATALOGCORE_SCENE_ORLO_H_
