// The five operations behind the scene detector's declarations.
//
// Every block that the engine returns comes from one malloc, so OrloFree releases all kinds alike: the context's memory
// is a GreyCopy followed by its pixels, a face list's array consists of OrloFace.
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

namespace catalogcore::faces {
namespace {

struct GreyCopy {
  PictureSize sourceSize;
  PictureSize size;

  std::uint8_t* Pixels() { return reinterpret_cast<std::uint8_t*>(this + 1); }
  MutablePixelView View() { return {Pixels(), size.height, size.width}; }
};
static_assert(std::is_trivially_destructible_v<GreyCopy> && std::is_trivially_destructible_v<OrloFace>);

struct OrloDeleter {
  void operator()(void* block) const { OrloFree(block); }
};
using OrloBlock = std::unique_ptr<void, OrloDeleter>;

OrloBlock Allocate(std::size_t bytes) {
  OrloBlock block(std::malloc(bytes));
  if (!block) throw std::bad_alloc();
  return block;
}

template <typename Operation>
std::int32_t CodeOf(const Operation& operation) {
  try {
    return static_cast<std::int32_t>(operation());
  } catch (const std::bad_alloc&) {
    return static_cast<std::int32_t>(FaceResult::kOutOfMemory);
  } catch (...) {
    return static_cast<std::int32_t>(FaceResult::kDetectorFault);
  }
}

FaceResult SetPicture(OrloContext& context, const FaceSource& source) {
  const PictureSize size = WorkingSize(source.size);
  OrloBlock block = Allocate(sizeof(GreyCopy) + size.Area());
  auto* const copy = new (block.get()) GreyCopy{source.size, size};
  MakeGreyCopy(source, copy->View());
  context.memory = block.release();
  return FaceResult::kSuccess;
}

std::int32_t ScaledAndClipped(double position, std::int32_t from, std::int32_t to) {
  const double scaled = position * to / from;
  return static_cast<std::int32_t>(std::lround(std::clamp(scaled, 0.0, static_cast<double>(to))));
}

OrloFace InSource(const FoundFace& face, const GreyCopy& copy) {
  const auto column = [&](double x) { return ScaledAndClipped(x, copy.size.width, copy.sourceSize.width); };
  const auto row = [&](double y) { return ScaledAndClipped(y, copy.size.height, copy.sourceSize.height); };
  return {column(face.left), row(face.top), column(face.right), row(face.bottom)};
}

FaceResult ListFaces(GreyCopy& copy, OrloFaceList& list) {
  std::vector<OrloFace> faces;
  for (const FoundFace& found : FindFaces(PixelView(copy.Pixels(), copy.size.height, copy.size.width))) {
    const OrloFace face = InSource(found, copy);
    if (face.left < face.right && face.top < face.bottom) faces.push_back(face);
  }
  if (faces.empty()) return FaceResult::kSuccess;
  OrloBlock block = Allocate(faces.size() * sizeof(OrloFace));
  std::copy(faces.begin(), faces.end(), static_cast<OrloFace*>(block.get()));
  list.count = faces.size();
  list.faces = block.release();
  return FaceResult::kSuccess;
}

}  // namespace
}  // namespace catalogcore::faces

using catalogcore::faces::FaceResult;

// Reads the networks early. They live until the process ends, so calls are not counted.
std::int32_t Orlo_Initialize() {
  return catalogcore::faces::CodeOf([] {
    catalogcore::faces::PrepareFaceSearch();
    return FaceResult::kSuccess;
  });
}

// Makes the grey copy; later operations do not read the caller's pixels.
std::int32_t Orlo_SetBitmap(OrloContext* context, std::int32_t bitsPerPixel, std::int32_t width, std::int32_t height,
                            std::int32_t negatedStride, const void* pixels) {
  return catalogcore::faces::CodeOf([&] {
    if (!context) return FaceResult::kNoContext;
    OrloFree(context->memory);
    context->memory = nullptr;
    catalogcore::faces::FaceSource source;
    const FaceResult fault =
        catalogcore::faces::DescribeSource(bitsPerPixel, width, height, negatedStride, pixels, source);
    return fault == FaceResult::kSuccess ? catalogcore::faces::SetPicture(*context, source) : fault;
  });
}

std::int32_t Orlo_DetectFacePosition(OrloContext* context, OrloFaceList* list) {
  return catalogcore::faces::CodeOf([&] {
    if (!context) return FaceResult::kNoContext;
    if (!list) return FaceResult::kNoFaceList;
    OrloFree(list->faces);
    *list = {};
    if (!context->memory) return FaceResult::kNoPicture;
    return catalogcore::faces::ListFaces(*static_cast<catalogcore::faces::GreyCopy*>(context->memory), *list);
  });
}

std::int32_t Orlo_Uninitialize() { return static_cast<std::int32_t>(FaceResult::kSuccess); }

void OrloFree(void* memory) { std::free(memory); }
