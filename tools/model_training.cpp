#include "tools/model_training.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "tools/logistic_regression.h"

namespace catalogcore::tools {
namespace {

using document_type::FeatureVector;
using document_type::kFeatureCount;
using document_type::Term;

// Chosen by cross-validation with whole sources held out.
constexpr double kPenaltyOfAnExample = 0.02;

// Above these a document counts as one with colour or pictures: coloured cells beyond a stamp or a letterhead, a
// spread of colour that no tinted paper has, soft texture beyond that of a scanned page.
constexpr document_type::Limit kLimits[] = {{document_type::kColourfulShare, 0.04F},
                                            {document_type::kMiddlingBlocks, 0.35F}};

std::array<document_type::Standard, kFeatureCount> Standards(const std::vector<Example>& examples) {
  std::array<document_type::Standard, kFeatureCount> standards{};
  const auto count = static_cast<double>(examples.size());
  for (std::size_t i = 0; i < kFeatureCount; ++i) {
    double sum = 0;
    double square = 0;
    for (const Example& example : examples) sum += example.features[i];
    const double mean = sum / count;
    for (const Example& example : examples) square += (example.features[i] - mean) * (example.features[i] - mean);
    standards[i] = {static_cast<float>(mean), static_cast<float>(std::sqrt(square / count) + 1e-6)};
  }
  return standards;
}

// Every feature, and its product with the picture's size: the width of a thin line on a page is the width of a branch
// on a thumbnail. The size has no term of its own, because it must not decide. Squares and other products classified no
// more pictures of unseen sources.
std::vector<Term> AllTerms() {
  std::vector<Term> terms;
  for (std::uint16_t feature = 0; feature < kFeatureCount; ++feature) {
    if (feature == document_type::kPictureSize) continue;
    terms.push_back({feature, Term::kAlone, 0});
    terms.push_back({feature, document_type::kPictureSize, 0});
  }
  return terms;
}

Design MakeDesign(const std::vector<Example>& examples, const document_type::Model& model) {
  const auto documents = static_cast<double>(
      std::count_if(examples.begin(), examples.end(), [](const Example& example) { return example.isDocument; }));
  const auto all = static_cast<double>(examples.size());

  Design design;
  design.columns = model.terms.size() + 1;
  design.values.reserve(examples.size() * design.columns);
  for (const Example& example : examples) {
    const FeatureVector values = document_type::Standardised(model.standards, example.features);
    for (const Term& term : model.terms) {
      design.values.push_back(values[term.first] * (term.second == Term::kAlone ? 1 : values[term.second]));
    }
    design.values.push_back(1);
    design.targets.push_back(example.isDocument ? 1 : 0);
    design.weights.push_back(all / 2 / (example.isDocument ? documents : all - documents));
  }
  return design;
}

}  // namespace

std::vector<Example> TrainingExamples(const std::vector<LabelledPicture>& pictures,
                                      const std::vector<std::vector<document_type::FeatureVector>>& variants,
                                      const std::vector<bool>& isHeldOut) {
  std::vector<Example> examples;
  for (std::size_t i = 0; i < pictures.size(); ++i) {
    if (!isHeldOut.empty() && isHeldOut[i]) continue;
    for (const auto& features : variants[i]) examples.push_back({features, pictures[i].isDocument});
  }
  return examples;
}

document_type::Model TrainModel(const std::vector<Example>& examples) {
  document_type::Model model{Standards(examples), 0, AllTerms(), {std::begin(kLimits), std::end(kLimits)}};
  const std::vector<double> coefficients =
      FitLogistic(MakeDesign(examples, model), kPenaltyOfAnExample * static_cast<double>(examples.size()));
  for (std::size_t i = 0; i < model.terms.size(); ++i) model.terms[i].weight = static_cast<float>(coefficients[i]);
  model.bias = static_cast<float>(coefficients.back());
  return model;
}

}  // namespace catalogcore::tools
