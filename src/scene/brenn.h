// The document-type recognizer, as the scene detector calls it. The library needs only these declarations: the build
// chooses the engine that defines them. They stay in the global namespace, because another library may define them.
#ifndef CATALOGCORE_SCENE_BRENN_H_
#define CATALOGCORE_SCENE_BRENN_H_

#include <cstddef>
#include <cstdint>

inline constexpr std::size_t kBrennRecordSize = 52;
inline constexpr std::size_t kBrennResultSize = 16;

// Byte offsets of the fields in the description of a picture (`record`). Integers are in the host's byte order.
enum BrennRecordOffset : std::size_t {
  kBrennTag = 0,              // 16 bits: kBrennRecordTag
  kBrennSamplesPerPixel = 2,  // 16 bits: 1 or 3; 0 if the bit depth is not 8, 16, 24 or 48
  kBrennBitsPerSample = 4,    // 16 bits: 8 or 16; 0 if the bit depth is not 8, 16, 24 or 48
  kBrennFixedTwo = 6,         // 16 bits: 2
  kBrennFixedOne = 8,         // 16 bits: 1
  kBrennWidth = 12,           // 32 bits: pixels per row
  kBrennStride = 16,          // 32 bits: bytes from one row to the next
  kBrennHeight = 20,          // 32 bits: rows
  kBrennResolutionX = 24,     // 32 bits: dots per inch, at least 75
  kBrennResolutionY = 28,     // 32 bits: the same
  kBrennMarginX = 32,         // 32 bits: pixels left of the area to analyse
  kBrennMarginY = 36,         // 32 bits: pixels above it
  kBrennAreaWidth = 40,       // 32 bits: its width in pixels
  kBrennAreaHeight = 44,      // 32 bits: its height in pixels
  kBrennFixedSixteenX = 48,   // 16 bits: 16
  kBrennFixedSixteenY = 50,   // 16 bits: 16
};

inline constexpr std::uint16_t kBrennRecordTag = 0x1080;

// Classifies a picture. Returns 0 and writes the result word (16 bits, host order) to the start of `result`
// (kBrennResultSize bytes). The top four bits of the word are 1 for print or writing on paper, 2 for a document with
// colour or pictures, 3 for a photograph. Any other return value is a failure code of the engine, 1 to 255. `pixels`
// holds stride x height bytes. `paramData` is the whole parameter block of `paramSize` bytes, header included. The
// engine writes only to `result` and keeps no pointer.
extern "C" std::int32_t DocumentTypeRecognize(std::int32_t reserved, const char* caller, const unsigned char* record,
                                              const void* pixels, unsigned char* result, std::uint32_t paramSize,
                                              const void* paramData);

#endif  // CATALOGCORE_SCENE_BRENN_H_
