// Trains the recognizer's model on measured pictures.
#ifndef CATALOGCORE_TOOLS_MODEL_TRAINING_H_
#define CATALOGCORE_TOOLS_MODEL_TRAINING_H_

#include <vector>

#include "engines/document_type/model.h"
#include "tools/training_data.h"

namespace catalogcore::tools {

struct Example {
  document_type::FeatureVector features;
  bool isDocument;
};

// The examples of all pictures whose `isHeldOut` is not set. `isHeldOut` has an element for each picture or is empty.
std::vector<Example> TrainingExamples(const std::vector<LabelledPicture>& pictures,
                                      const std::vector<std::vector<document_type::FeatureVector>>& variants,
                                      const std::vector<bool>& isHeldOut = {});

// The two kinds have equal weight, whatever their numbers of examples. The same examples give the same model.
// REQUIRES: examples of both kinds. Throws std::runtime_error.
document_type::Model TrainModel(const std::vector<Example>& examples);

}  // namespace catalogcore::tools

#endif  // CATALOGCORE_TOOLS_MODEL_TRAINING_H_
