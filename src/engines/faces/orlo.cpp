// The five operations behind the scene detector's declarations.
//
// Everything that the engine hands out is one plain block of malloc, so that OrloFree need not know what it
// is given: the context's memory is a WorkingCopy with its pixels behind it, a face list's array is OrloFace
// after OrloFace.
#include "scene/orlo.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <new>
#include <type_traits>
#include <vector>

#include "engines/faces/face.h"
#include "engines/faces/face_search.h"
#include "engines/faces/grey_copy.h"
#include "engines/faces/result_codes.h"
#include "engines/faces/source_picture.h"

namespace catalogcore::faces {
namespace {

struct WorkingCopy {
  PictureSize sourceSize;
  PictureSize size;

  std::uint8_t* Pixels() { return reinterpret_cast<std::uint8_t*>(this + 1); }
  GreyView View() { return {size, Pixels()}; }
};
static_assert(std::is_trivially_destructible_v<WorkingCopy> && std::is_trivially_destructible_v<OrloFace>);

struct FreeBlock {
  void operator()(void* block) const { std::free(block); }
};
using Block = std::unique_ptr<void, FreeBlock>;

Block Allocate(std::size_t bytes) {
  Block block(std::malloc(bytes));
  if (!block) throw std::bad_alloc();
  return block;
}

template <typename Operation>
std::int32_t CodeOf(const Operation& operation) {
  try {
    return static_cast<std::int32_t>(operation());
  } catch (const std::bad_alloc&) {
    return static_cast<std::int32_t>(Result::kOutOfMemory);
  } catch (...) {
    return static_cast<std::int32_t>(Result::kDetectorFault);
  }
}

Result SetPicture(OrloContext& context, const SourcePicture& source) {
  const PictureSize size = WorkingSize(source.size);
  Block block = Allocate(sizeof(WorkingCopy) + size.Area());
  auto* const copy = new (block.get()) WorkingCopy{source.size, size};
  MakeGreyCopy(source, size, copy->Pixels());
  context.memory = block.release();
  return Result::kSuccess;
}

std::int32_t ScaledAndClipped(std::int32_t position, std::int32_t from, std::int32_t to) {
  const double scaled = static_cast<double>(position) * to / from;
  return static_cast<std::int32_t>(std::lround(std::clamp(scaled, 0.0, static_cast<double>(to))));
}

OrloFace InSource(const OrloFace& face, const WorkingCopy& copy) {
  const auto column = [&](std::int32_t x) { return ScaledAndClipped(x, copy.size.width, copy.sourceSize.width); };
  const auto row = [&](std::int32_t y) { return ScaledAndClipped(y, copy.size.height, copy.sourceSize.height); };
  return {column(face.left), row(face.top), column(face.right), row(face.bottom)};
}

Result ListFaces(WorkingCopy& copy, OrloFaceList& list) {
  const std::vector<OrloFace> faces = FindFaces(copy.View());
  if (faces.empty()) return Result::kSuccess;
  Block block = Allocate(faces.size() * sizeof(OrloFace));
  std::transform(faces.begin(), faces.end(), static_cast<OrloFace*>(block.get()),
                 [&](const OrloFace& face) { return InSource(face, copy); });
  list.count = faces.size();
  list.faces = block.release();
  return Result::kSuccess;
}

}  // namespace
}  // namespace catalogcore::faces

using catalogcore::faces::Result;

// Only makes the detector early: it stays until the process ends, so nothing is counted here.
std::int32_t Orlo_Initialize() {
  return catalogcore::faces::CodeOf([] {
    catalogcore::faces::PrepareFaceSearch();
    return Result::kSuccess;
  });
}

// The grey copy is made here; the caller's pixels are not looked at again.
std::int32_t Orlo_SetBitmap(OrloContext* context, std::int32_t bitsPerPixel, std::int32_t width, std::int32_t height,
                            std::int32_t negatedStride, const void* pixels) {
  return catalogcore::faces::CodeOf([&] {
    if (!context) return Result::kNoContext;
    OrloFree(context->memory);
    context->memory = nullptr;
    catalogcore::faces::SourcePicture source;
    const Result fault = catalogcore::faces::DescribeSource(bitsPerPixel, width, height, negatedStride, pixels, source);
    return fault == Result::kSuccess ? catalogcore::faces::SetPicture(*context, source) : fault;
  });
}

std::int32_t Orlo_DetectFacePosition(OrloContext* context, OrloFaceList* list) {
  return catalogcore::faces::CodeOf([&] {
    if (!context) return Result::kNoContext;
    if (!list) return Result::kNoFaceList;
    OrloFree(list->faces);
    *list = {};
    if (!context->memory) return Result::kNoPicture;
    return catalogcore::faces::ListFaces(*static_cast<catalogcore::faces::WorkingCopy*>(context->memory), *list);
  });
}

std::int32_t Orlo_Uninitialize() { return static_cast<std::int32_t>(Result::kSuccess); }

void OrloFree(void* memory) { std::free(memory); }
