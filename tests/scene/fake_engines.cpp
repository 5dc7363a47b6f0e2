#include "tests/scene/fake_engines.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <new>

#include "scene/brenn.h"
#include "scene/orlo.h"

namespace catalogcore {

FakeEngines fakeEngines;

namespace {

// As many bytes as a stride and a number of rows make, also where both are negative.
std::size_t BytesOf(std::int32_t stride, std::int32_t height) {
  return static_cast<std::size_t>(std::int64_t{stride} * height);
}

std::vector<std::uint8_t> Copy(const void* bytes, std::size_t count) {
  const auto* const first = static_cast<const std::uint8_t*>(bytes);
  return {first, first + count};
}

void ExpectZero(const void* bytes, std::size_t count) {
  const std::vector<std::uint8_t> given = Copy(bytes, count);
  fakeEngines.zeroed &= std::count(given.begin(), given.end(), 0) == static_cast<std::ptrdiff_t>(count);
}

void* HandOut() {
  if (!fakeEngines.handsOut) return nullptr;
  ++fakeEngines.blocksHeld;
  return std::malloc(1);
}

}  // namespace

}  // namespace catalogcore

using namespace catalogcore;

std::int32_t DocumentTypeRecognize(std::int32_t reserved, const char* caller, const unsigned char* record,
                                   const void* pixels, unsigned char* result, std::uint32_t paramSize,
                                   const void* paramData) {
  fakeEngines.calls += 'R';
  fakeEngines.caller = caller;
  fakeEngines.record = Copy(record, kBrennRecordSize);
  std::int32_t stride = 0, height = 0;
  std::memcpy(&stride, record + kBrennStride, sizeof stride);
  std::memcpy(&height, record + kBrennHeight, sizeof height);
  fakeEngines.recognized = Copy(pixels, BytesOf(stride, height));
  fakeEngines.block = Copy(paramData, paramSize);
  fakeEngines.zeroed &= reserved == 0;
  ExpectZero(result, sizeof(std::uint16_t));
  if (fakeEngines.writesWord) std::memcpy(result, &fakeEngines.recognizeWord, sizeof fakeEngines.recognizeWord);
  if (fakeEngines.recognizing) fakeEngines.recognizing();
  return fakeEngines.recognizeResult;
}

std::int32_t Orlo_Initialize() {
  fakeEngines.calls += 'I';
  return 0;
}

std::int32_t Orlo_SetBitmap(OrloContext* context, std::int32_t bitsPerPixel, std::int32_t width, std::int32_t height,
                            std::int32_t negatedStride, const void* pixels) {
  fakeEngines.calls += 'B';
  ExpectZero(context, offsetof(OrloContext, block) + sizeof context->block);
  context->memory = HandOut();
  fakeEngines.bitsPerPixel = bitsPerPixel;
  fakeEngines.width = width;
  fakeEngines.height = height;
  fakeEngines.negatedStride = negatedStride;
  fakeEngines.bitmap = Copy(pixels, BytesOf(-negatedStride, height));
  return fakeEngines.setBitmapResult;
}

std::int32_t Orlo_DetectFacePosition(OrloContext*, OrloFaceList* list) {
  fakeEngines.calls += 'D';
  ExpectZero(list, sizeof *list);
  list->faces = HandOut();
  list->count = fakeEngines.faces;
  if (fakeEngines.throws) throw std::bad_alloc();
  return fakeEngines.detectResult;
}

std::int32_t Orlo_Uninitialize() {
  fakeEngines.calls += 'U';
  return 0;
}

void OrloFree(void* memory) {
  fakeEngines.calls += memory ? 'F' : '0';
  fakeEngines.blocksHeld -= memory ? 1 : 0;
  std::free(memory);
}
