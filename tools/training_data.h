// The labelled pictures of two folders, and what the recognizer measures on them.
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
  std::string name;      // the file's, without its ending
  std::string document;  // the name without the page's number
  std::string source;    // the name up to the first '_'
  bool isDocument = false;
};

// Every file of both folders, documents first, each sorted by name. Throws std::filesystem::filesystem_error, or
// std::runtime_error when a folder holds no file.
std::vector<LabelledPicture> ListPictures(const std::string& documents, const std::string& photographs);

// How a picture reaches the library. Documents are scaled to what a scanner gives at the resolution; photographs
// stay as they are, whatever resolution their file claims, or are scaled like prints on the scanner.
struct Condition {
  std::int32_t resolution;  // dots per inch, 0: none, and nothing is scaled
  bool prints;
  Depth depth;

  std::string Name() const;
};
std::vector<Condition> AllConditions();

// What the recognizer measures on the picture.
document_type::FeatureVector Measure(const SourcePicture& picture);

// How many variants of a picture it takes to train on.
inline constexpr std::size_t kVariants = 8;

// For every picture the features of its first `variants` variants.
std::vector<std::vector<document_type::FeatureVector>> MeasureVariants(const std::vector<LabelledPicture>& pictures,
                                                                       std::size_t variants, unsigned threads);

}  // namespace catalogcore::tools

#endif  // CATALOGCORE_TOOLS_TRAINING_DATA_H_
