// From measured pictures to the recognizer's model.
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

// The examples of all pictures but those whose `isHeldOut` is set (as many as pictures, or none at all).
std::vector<Example> TrainingExamples(const std::vector<LabelledPicture>& pictures,
                                      const std::vector<std::vector<document_type::FeatureVector>>& variants,
                                      const std::vector<bool>& isHeldOut = {});

// Both kinds weigh the same, however many examples there are of each. The same examples give the same model.
// REQUIRES: examples of both kinds. Throws std::runtime_error.
document_type::Model TrainModel(const std::vector<Example>& examples);

}  // namespace catalogcore::tools

#endif  // CATALOGCORE_TOOLS_MODEL_TRAINING_H_
