#include "tools/training_data.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <filesystem>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <utility>

#include "tools/picture_variants.h"

namespace catalogcore::tools {
namespace {

// The page number follows the last '-'.
std::string WithoutPageNumber(const std::string& name) {
  const std::size_t dash = name.find_last_of('-');
  const bool numbered = dash != std::string::npos && dash + 1 < name.size() &&
                        name.find_first_not_of("0123456789", dash + 1) == std::string::npos;
  return numbered ? name.substr(0, dash) : name;
}

std::vector<LabelledPicture> ListFolder(const std::string& folder, bool isDocument) {
  std::vector<LabelledPicture> pictures;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    if (!entry.is_regular_file()) continue;
    const std::string name = entry.path().stem().string();
    pictures.push_back(
        {entry.path().string(), name, WithoutPageNumber(name), name.substr(0, name.find('_')), isDocument});
  }
  std::sort(pictures.begin(), pictures.end(), [](const auto& a, const auto& b) { return a.path < b.path; });
  return pictures;
}

// FNV-1a of the picture's name only, so that other pictures in the folder do not change the seed.
std::uint64_t Seed(const std::string& name) {
  std::uint64_t hash = 0xCBF29CE484222325U;
  for (const char c : name) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3U;
  return hash;
}

// Calls `measure` for every picture, in several threads. Each result has a place of its own, so the output does not
// depend on the threads.
template <typename Measure>
std::vector<std::vector<document_type::FeatureVector>> MeasureEach(const std::vector<LabelledPicture>& pictures,
                                                                   unsigned threads, Measure measure) {
  std::vector<std::vector<document_type::FeatureVector>> features(pictures.size());
  std::atomic<std::size_t> next{0};
  std::exception_ptr failure;
  std::mutex failureLock;
  const auto work = [&] {
    try {
      for (std::size_t i = next++; i < pictures.size(); i = next++) features[i] = measure(pictures[i]);
    } catch (...) {
      const std::lock_guard lock(failureLock);
      failure = std::current_exception();
      next = pictures.size();
    }
  };
  {
    std::vector<std::jthread> others;
    for (unsigned i = 1; i < threads; ++i) others.emplace_back(work);
    work();
  }
  if (failure) std::rethrow_exception(failure);
  return features;
}

constexpr std::array<Depth, 4> kDepths = {{{false, false}, {false, true}, {true, false}, {true, true}}};

}  // namespace

std::vector<LabelledPicture> ListPictures(const std::string& documents, const std::string& photographs) {
  std::vector<LabelledPicture> pictures = ListFolder(documents, true);
  const std::vector<LabelledPicture> others = ListFolder(photographs, false);
  if (pictures.empty() || others.empty()) throw std::runtime_error("both folders must hold pictures");
  pictures.insert(pictures.end(), others.begin(), others.end());
  return pictures;
}

std::string Condition::Name() const {
  const std::string dots = resolution == 0 ? "no dpi" : std::to_string(resolution) + " dpi";
  return dots + (prints ? ", prints" : "") + (depth.colour ? ", colour" : ", grey") +
         (depth.wide ? ", 16 bits" : ", 8 bits");
}

std::vector<Condition> AllConditions() {
  std::vector<Condition> conditions;
  for (const std::int32_t resolution : {0, 150, 300}) {
    for (const Depth depth : kDepths) conditions.push_back({resolution, false, depth});
  }
  for (const std::int32_t resolution : {150, 300}) conditions.push_back({resolution, true, {true, false}});
  return conditions;
}

document_type::FeatureVector Measure(const SourcePicture& picture) {
  const PreparedPicture prepared = PreparePicture(picture);
  document_type::CheckedRecord record;
  if (document_type::ReadRecord(prepared.record.data(), record) != document_type::Fault::kNone) {
    throw std::runtime_error("the recognizer refuses a prepared picture");
  }
  return document_type::MeasureFeatures(
      document_type::MakeWorkingCopy(document_type::AnalysedArea(record, prepared.pixels.data())));
}

std::vector<std::vector<document_type::FeatureVector>> MeasureVariants(const std::vector<LabelledPicture>& pictures,
                                                                       std::size_t variants, unsigned threads) {
  return MeasureEach(pictures, threads, [variants](const LabelledPicture& picture) {
    const Raster raster = ReadRaster(picture.path);
    std::vector<document_type::FeatureVector> features;
    for (std::size_t i = 0; i < variants; ++i) {
      features.push_back(Measure(MakeVariant(raster, picture.isDocument, Seed(picture.name), i)));
    }
    return features;
  });
}

}  // namespace catalogcore::tools
