// The labelled pictures of two folders, and their features.
#ifndef CATALOGCORE_TOOLS_TRAINING_DATA_H_
#define CATALOGCORE_TOOLS_TRAINING_DATA_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "engines/document_type/features.h"
#include "tools/raster.h"

namespace catalogcore::tools {

// "pages_TAMReview-02.jpg" is page 2 of the document "pages_TAMReview" of the source "pages".
struct LabelledPicture {
  std::string path;
  std::string name;      // of the file, without the extension
  std::string document;  // the name without the page number
  std::string source;    // the name up to the first '_'
  bool isDocument = false;
};

// Every file of both folders, documents first, each sorted by name. Throws std::filesystem::filesystem_error, or
// std::runtime_error when a folder holds no file.
std::vector<LabelledPicture> ListPictures(const std::string& documents, const std::string& photographs);

// The form in which a picture reaches the library. Documents are scaled to the size of a scan at the resolution.
// Photographs keep their size, or are scaled like prints on a scanner.
struct Condition {
  std::int32_t resolution;  // dots per inch; 0: none, and the picture keeps its size
  bool prints;
  Depth depth;

  std::string Name() const;
};
std::vector<Condition> AllConditions();

// The features that the recognizer measures.
document_type::FeatureVector Measure(const SourcePicture& picture);

// The number of variants of a picture for training.
inline constexpr std::size_t kVariants = 8;

// The features of the first `variants` variants of every picture.
std::vector<std::vector<document_type::FeatureVector>> MeasureVariants(const std::vector<LabelledPicture>& pictures,
                                                                       std::size_t variants, unsigned threads);

}  // namespace catalogcore::tools

#endif  // CATALOGCORE_TOOLS_TRAINING_DATA_H_
