// The recognizer's only operation: checks the arguments, measures the picture and lets the model decide. No state
// survives a call; several threads may call at once.
#include <cstdint>
#include <cstring>
#include <new>
#include <span>

#include "engines/document_type/fault.h"
#include "engines/document_type/features.h"
#include "engines/document_type/model.h"
#include "engines/document_type/picture.h"
#include "scene/brenn.h"

namespace catalogcore::document_type {
namespace {

Fault Recognize(const unsigned char* record, const void* pixels, unsigned char* result, std::uint32_t paramSize,
                const void* paramData) {
  if (record == nullptr) return Fault::kNullRecord;
  if (pixels == nullptr) return Fault::kNullPixels;
  if (result == nullptr) return Fault::kNullResult;
  if (paramData == nullptr) return Fault::kNullParameters;

  CheckedRecord checked;
  if (const Fault fault = ReadRecord(record, checked); fault != Fault::kNone) return fault;
  Model model;
  const std::span block(static_cast<const std::uint8_t*>(paramData), paramSize);
  if (const Fault fault = ReadParameterBlock(block, model); fault != Fault::kNone) return fault;

  const std::uint16_t word = model.Decide(MeasureFeatures(MakeWorkingCopy(AnalysedArea(checked, pixels))));
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

// Ignores the reserved word and the caller's name.
extern "C" std::int32_t DocumentTypeRecognize(std::int32_t, const char*, const unsigned char* record,
                                              const void* pixels, unsigned char* result, std::uint32_t paramSize,
                                              const void* paramData) {
  return static_cast<std::int32_t>(
      catalogcore::document_type::RecognizeWithoutThrowing(record, pixels, result, paramSize, paramData));
}
