#include "tools/picture_preparation.h"

#include <algorithm>
#include <new>
#include <stdexcept>

#include "scene/idx_image.h"
#include "scene/image_record.h"

namespace catalogcore::tools {

IDXDSDATA RecordOf(const SourcePicture& source) {
  IDXDSDATA record{};
  record.pixels = source.pixels.data();
  record.width = source.width;
  record.height = source.height;
  record.rowBytes = source.rowBytes;
  record.bitsPerPixel = source.bitsPerPixel;
  record.resolution = source.resolution;
  return record;
}

PreparedPicture PreparePicture(const SourcePicture& source) {
  const IDXDSDATA record = RecordOf(source);
  CIDXImage reduced;
  reduced.SetImageData(&record);
  const IDXSTATUS status = reduced.SetImageBufferWithResolution(record.pixels, kRecognizerResolution, 1);
  if (status == IDXERR_MEMORY) throw std::bad_alloc();
  if (status != IDX_OK) throw std::runtime_error("a picture's sizes contradict each other");

  PreparedPicture prepared;
  std::copy_n(ImageRecord(reduced).Bytes(), prepared.record.size(), prepared.record.begin());
  prepared.pixels.assign(reduced.pixels.get(), reduced.pixels.get() + reduced.bufferSize);
  return prepared;
}

}  // namespace catalogcore::tools
