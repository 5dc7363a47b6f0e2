#include "engines/document_type/model.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <string_view>

namespace catalogcore::document_type {

FeatureVector Standardised(const std::array<Standard, kFeatureCount>& standards, const FeatureVector& features) {
  FeatureVector standardised;
  for (std::size_t i = 0; i < kFeatureCount; ++i) {
    const double distance = (features[i] - standards[i].mean) / standards[i].scale;
    standardised[i] = std::clamp(distance, -kFarthest, kFarthest);
  }
  return standardised;
}

double Model::Score(const FeatureVector& features) const {
  const FeatureVector values = Standardised(standards, features);
  double score = bias;
  for (const Term& term : terms) {
    const double other = term.second == Term::kAlone ? 1 : values[term.second];
    score += term.weight * values[term.first] * other;
  }
  return score;
}

std::uint16_t Model::Decide(const FeatureVector& features) const {
  if (Score(features) <= 0) return kPhotograph;
  const bool pictures = std::any_of(limits.begin(), limits.end(),
                                    [&](const Limit& limit) { return features[limit.feature] > limit.most; });
  return pictures ? kDocumentWithPictures : kPrintOnPaper;
}

namespace {

constexpr std::string_view kTag = "SGIPPDEF";
constexpr std::size_t kSizeAt = 12;
constexpr std::size_t kCheckSumAt = 16;
constexpr std::size_t kCheckedFrom = 20;
constexpr std::size_t kHeaderSize = 32;
constexpr std::size_t kEntrySize = 8;  // of a standard, a term or a limit

std::uint32_t Number(std::span<const std::uint8_t> bytes, std::size_t at, std::size_t size) {
  std::uint32_t value = 0;
  for (std::size_t i = size; i > 0; --i) value = value << 8U | bytes[at + i - 1];
  return value;
}

// Reads the values in order. REQUIRES: the block is as long as its counts say.
class BlockReader {
 public:
  BlockReader(std::span<const std::uint8_t> block, std::size_t start) : block_(block), at_(start) {}

  std::uint16_t Short() { return static_cast<std::uint16_t>(Next(2)); }
  float Real() { return std::bit_cast<float>(Next(4)); }

 private:
  std::uint32_t Next(std::size_t size) {
    at_ += size;
    return Number(block_, at_ - size, size);
  }

  std::span<const std::uint8_t> block_;
  std::size_t at_;
};

class BlockWriter {
 public:
  void Text(std::string_view text) { bytes_.insert(bytes_.end(), text.begin(), text.end()); }
  void Short(std::size_t value) { Append(static_cast<std::uint32_t>(value), 2); }
  void Long(std::size_t value) { Append(static_cast<std::uint32_t>(value), 4); }
  void Real(float value) { Append(std::bit_cast<std::uint32_t>(value), 4); }

  // The block with its size and check sum set.
  std::vector<std::uint8_t> Finish() {
    Set(kSizeAt, static_cast<std::uint32_t>(bytes_.size()));
    Set(kCheckSumAt, CheckSum(std::span<const std::uint8_t>(bytes_).subspan(kCheckedFrom)));
    return std::move(bytes_);
  }

 private:
  void Append(std::uint32_t value, std::size_t size) {
    for (std::size_t i = 0; i < size; ++i) bytes_.push_back(static_cast<std::uint8_t>(value >> (8 * i) & 0xFFU));
  }
  void Set(std::size_t at, std::uint32_t value) {
    for (std::size_t i = 0; i < 4; ++i) bytes_[at + i] = static_cast<std::uint8_t>(value >> (8 * i) & 0xFFU);
  }

  std::vector<std::uint8_t> bytes_;
};

struct BlockCounts {
  std::size_t features, terms, limits;
};

BlockCounts CountsOf(std::span<const std::uint8_t> block) {
  return {Number(block, 20, 2), Number(block, 22, 2), Number(block, 24, 2)};
}

Fault CheckHeader(std::span<const std::uint8_t> block) {
  if (block.size() < kHeaderSize) return Fault::kBlockTooShort;
  if (!std::equal(kTag.begin(), kTag.end(), block.begin())) return Fault::kBlockTag;
  if (Number(block, kSizeAt, 4) != block.size()) return Fault::kBlockSize;
  if (Number(block, kTag.size(), 4) != kBlockVersion) return Fault::kBlockVersion;
  // Before the check sum, whose cost grows with the size of the block.
  const auto [features, terms, limits] = CountsOf(block);
  const bool fits = block.size() == kHeaderSize + (features + terms + limits) * kEntrySize;
  if (features != kFeatureCount || !fits) return Fault::kBlockCounts;
  return Number(block, kCheckSumAt, 4) == CheckSum(block.subspan(kCheckedFrom)) ? Fault::kNone : Fault::kBlockChecksum;
}

Fault CheckModel(const Model& model) {
  bool finite = std::isfinite(model.bias);
  for (const auto& [mean, scale] : model.standards) finite &= std::isfinite(mean) && std::isfinite(scale) && scale > 0;
  for (const Term& term : model.terms) finite &= std::isfinite(term.weight);
  for (const Limit& limit : model.limits) finite &= std::isfinite(limit.most);
  if (!finite) return Fault::kBlockNumber;

  const auto known = [](const Term& term) {
    return term.first < kFeatureCount && (term.second < kFeatureCount || term.second == Term::kAlone);
  };
  const bool allKnown =
      std::all_of(model.terms.begin(), model.terms.end(), known) &&
      std::all_of(model.limits.begin(), model.limits.end(), [](const Limit& l) { return l.feature < kFeatureCount; });
  return allKnown ? Fault::kNone : Fault::kBlockCounts;
}

}  // namespace

Fault ReadParameterBlock(std::span<const std::uint8_t> block, Model& model) {
  if (const Fault fault = CheckHeader(block); fault != Fault::kNone) return fault;

  const BlockCounts counts = CountsOf(block);
  model.terms.resize(counts.terms);
  model.limits.resize(counts.limits);
  BlockReader reader(block, kHeaderSize - 4);
  model.bias = reader.Real();
  for (Standard& standard : model.standards) {
    standard.mean = reader.Real();
    standard.scale = reader.Real();
  }
  for (Term& term : model.terms) {
    term.first = reader.Short();
    term.second = reader.Short();
    term.weight = reader.Real();
  }
  for (Limit& limit : model.limits) {
    limit.feature = reader.Short();
    reader.Short();
    limit.most = reader.Real();
  }
  return CheckModel(model);
}

std::vector<std::uint8_t> MakeParameterBlock(const Model& model) {
  BlockWriter writer;
  writer.Text(kTag);
  writer.Long(kBlockVersion);
  writer.Long(0);  // size
  writer.Long(0);  // check sum
  writer.Short(model.standards.size());
  writer.Short(model.terms.size());
  writer.Short(model.limits.size());
  writer.Short(0);
  writer.Real(model.bias);
  for (const Standard& standard : model.standards) {
    writer.Real(standard.mean);
    writer.Real(standard.scale);
  }
  for (const Term& term : model.terms) {
    writer.Short(term.first);
    writer.Short(term.second);
    writer.Real(term.weight);
  }
  for (const Limit& limit : model.limits) {
    writer.Short(limit.feature);
    writer.Short(0);
    writer.Real(limit.most);
  }
  return writer.Finish();
}

std::uint32_t CheckSum(std::span<const std::uint8_t> bytes) {
  std::uint32_t sum = 0xFFFFFFFFU;
  for (const std::uint8_t byte : bytes) {
    sum ^= byte;
    for (int bit = 0; bit < 8; ++bit) sum = sum >> 1U ^ ((sum & 1U) != 0 ? 0xEDB88320U : 0U);
  }
  return ~sum;
}

}  // namespace catalogcore::document_type
