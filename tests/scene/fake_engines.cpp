#include "tests/scene/fake_engines.h"

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <new>

#include "scene/brenn.h"
#include "scene/orlo.h"

namespace catalogcore {

FakeEngines fakeEngines;

namespace {

std::vector<std::uint8_t> Copy(const void* bytes, std::int64_t count) {
  const auto* const first = static_cast<const std::uint8_t*>(bytes);
  return {first, first + count};
}

void ExpectZero(const void* bytes, std::int64_t count) {
  fakeEngines.isZeroed &= Copy(bytes, count) == std::vector<std::uint8_t>(static_cast<std::size_t>(count));
}

void* Allocate() {
  if (!fakeEngines.allocates) return nullptr;
  ++fakeEngines.blocksHeld;
  return std::malloc(1);
}

std::int32_t Called(char letter) {
  fakeEngines.calls += letter;
  return 0;
}

}  // namespace

}  // namespace catalogcore

using namespace catalogcore;

std::int32_t DocumentTypeRecognize(std::int32_t reserved, const char* caller, const unsigned char* record,
                                   const void* pixels, unsigned char* result, std::uint32_t paramSize,
                                   const void* paramData) {
  Called('R');
  std::int32_t rows[2];  // stride and height
  std::memcpy(rows, record + kBrennStride, sizeof rows);
  fakeEngines.caller = caller;
  fakeEngines.record = Copy(record, kBrennRecordSize);
  fakeEngines.recognized = Copy(pixels, std::int64_t{rows[0]} * rows[1]);
  fakeEngines.block = Copy(paramData, paramSize);
  fakeEngines.isZeroed &= reserved == 0;
  ExpectZero(result, sizeof(std::uint16_t));
  std::memcpy(result, &fakeEngines.recognizeWord, sizeof fakeEngines.recognizeWord);
  if (fakeEngines.recognizing) fakeEngines.recognizing();
  return fakeEngines.recognizeResult;
}

std::int32_t Orlo_Initialize() { return Called('I'); }

std::int32_t Orlo_SetBitmap(OrloContext* context, std::int32_t bitsPerPixel, std::int32_t width, std::int32_t height,
                            std::int32_t negatedStride, const void* pixels) {
  Called('B');
  ExpectZero(context, offsetof(OrloContext, block) + sizeof context->block);
  context->memory = Allocate();
  fakeEngines.sizes = {bitsPerPixel, width, height, negatedStride};
  fakeEngines.bitmap = Copy(pixels, -std::int64_t{negatedStride} * height);
  return fakeEngines.setBitmapResult;
}

std::int32_t Orlo_DetectFacePosition(OrloContext*, OrloFaceList* list) {
  Called('D');
  ExpectZero(list, sizeof *list);
  *list = {Allocate(), fakeEngines.faces, 0};
  if (fakeEngines.throws) throw std::bad_alloc();
  return fakeEngines.detectResult;
}

std::int32_t Orlo_Uninitialize() { return Called('U'); }

void OrloFree(void* memory) {
  Called('F');
  --fakeEngines.blocksHeld;
  std::free(memory);
}
