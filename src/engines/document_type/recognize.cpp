// The recognizer's one operation: it checks what it is given, measures the picture and lets the model decide.
// It keeps nothing from one call to the next and may be called by several threads at once.
#include <cstring>
#include <new>

#include "engines/document_type/fault.h"
#include "engines/document_type/features.h"
#include "engines/document_type/parameter_block.h"
#include "engines/document_type/picture.h"
#include "engines/document_type/working_copy.h"
#include "scene/brenn.h"

namespace catalogcore::document_type {
namespace {

Fault Recognize(const unsigned char* record, const void* pixels, unsigned char* result, std::uint32_t paramSize,
                const void* paramData) {
  if (record == nullptr) return Fault::kNullRecord;
  if (pixels == nullptr) return Fault::kNullPixels;
  if (result == nullptr) return Fault::kNullResult;
  if (paramData == nullptr) return Fault::kNullParameters;

  PictureRecord picture;
  if (const Fault fault = ReadRecord(record, picture); fault != Fault::kNone) return fault;
  Model model;
  const std::span block(static_cast<const std::uint8_t*>(paramData), paramSize);
  if (const Fault fault = ReadParameterBlock(block, model); fault != Fault::kNone) return fault;

  const std::uint16_t word = model.Decide(MeasureFeatures(MakeWorkingCopy(Picture(picture, pixels))));
  std::memcpy(result, &word, sizeof word);
  return Fault::kNone;
}

Fault RecognizeWithoutThrowing(const unsigned char* record, const void* pixels, unsigned char* result,
                               std::uint32_t paramSize, const void* paramData) noexcept {
  try {
    return Recognize(record, pixels, result, paramSize, paramData);
  } catch (const std::bad_alloc&) {
    return Fault::kOutOfMemory;
  } catch (...) {
    return Fault::kUnexpected;
  }
}

}  // namespace
}  // namespace catalogcore::document_type

// The reserved word and the caller's name decide nothing.
extern "C" std::int32_t DocumentTypeRecognize(std::int32_t, const char*, const unsigned char* record,
                                              const void* pixels, unsigned char* result, std::uint32_t paramSize,
                                              const void* paramData) {
  return static_cast<std::int32_t>(
      catalogcore::document_type::RecognizeWithoutThrowing(record, pixels, result, paramSize, paramData));
}
