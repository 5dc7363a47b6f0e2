// measure_scene DOCUMENTS PHOTOS [--cross-validate | --exchange | --faces FACES.csv]: measures how well IDXDetectScene
// separates documents from photographs, and photographs with faces from photographs without.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <map>
#include <new>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "api/catalogue.h"
#include "engines/document_type/model.h"
#include "scene/detect_scene.h"
#include "tools/model_training.h"
#include "tools/picture_variants.h"
#include "tools/tool_main.h"
#include "tools/training_data.h"

namespace catalogcore::tools {
namespace {

struct MeasureOptions {
  std::string documents, photographs, faces;
  bool crossValidate = false;
  bool exchange = false;
};

enum class Verdict { kDocument, kPhotograph, kNone };

Verdict Decide(const SourcePicture& picture) {
  IDXDSDATA record = RecordOf(picture);
  if (IDXDetectScene(&record) != IDX_OK || record.presetIndex < 0) return Verdict::kNone;
  return record.presetIndex / IDXPRESET_DOCUMENT == 1 ? Verdict::kDocument : Verdict::kPhotograph;
}

// Exchanges the first and the third sample of every pixel.
SourcePicture Exchanged(SourcePicture picture) {
  const auto sample = static_cast<std::size_t>(picture.bitsPerPixel / 24);
  for (std::size_t row = 0; row < picture.pixels.size(); row += static_cast<std::size_t>(picture.rowBytes)) {
    std::uint8_t* pixel = &picture.pixels[row];
    for (std::int32_t x = 0; x < picture.width; ++x, pixel += 3 * sample) {
      std::swap_ranges(pixel, pixel + sample, pixel + 2 * sample);
    }
  }
  return picture;
}

struct Misfiled {
  int documents = 0;
  int photographs = 0;
};

class Table {
 public:
  explicit Table(const std::vector<LabelledPicture>& pictures) : pictures_(pictures) {
    for (const LabelledPicture& picture : pictures) ++(picture.isDocument ? total_.documents : total_.photographs);
  }

  // Decides one picture under every condition.
  void Add(const LabelledPicture& picture) {
    const Raster raster = ReadRaster(picture.path);
    std::map<std::int32_t, Raster> pages;  // by resolution
    for (const Condition& condition : AllConditions()) {
      const bool isPage = condition.resolution > 0 && (picture.isDocument || condition.prints);
      if (isPage && pages.count(condition.resolution) == 0) {
        pages[condition.resolution] = ScaledTo(raster, kPageLength * condition.resolution);
      }
      const Raster& seen = isPage ? pages[condition.resolution] : raster;
      const Verdict decision = Decide(ToSource(seen, condition.depth, condition.resolution));
      if (decision == (picture.isDocument ? Verdict::kDocument : Verdict::kPhotograph)) continue;
      Misfiled& misfiled = misfiled_[condition.Name()];
      ++(picture.isDocument ? misfiled.documents : misfiled.photographs);
      names_[picture.name].push_back(condition.Name());
    }
    if (++done_ % 50 == 0) std::fprintf(stderr, "%zu of %zu pictures\n", done_, pictures_.size());
  }

  void Print() {
    std::printf("%d documents, %d photographs\n\n", total_.documents, total_.photographs);
    std::printf("| condition | documents as photographs | photographs as documents | balanced accuracy |\n");
    std::printf("|---|---|---|---|\n");
    for (const Condition& condition : AllConditions()) {
      const Misfiled& misfiled = misfiled_[condition.Name()];
      const double balanced = 1 - (static_cast<double>(misfiled.documents) / total_.documents +
                                   static_cast<double>(misfiled.photographs) / total_.photographs) /
                                      2;
      std::printf("| %s | %d | %d | %.4f |\n", condition.Name().c_str(), misfiled.documents, misfiled.photographs,
                  balanced);
    }
    std::printf("\nMisfiled:\n");
    for (const auto& [name, conditions] : names_) {
      std::printf("- %s:", name.c_str());
      for (const std::string& condition : conditions) std::printf(" %s;", condition.c_str());
      std::printf("\n");
    }
  }

 private:
  const std::vector<LabelledPicture>& pictures_;
  Misfiled total_;
  std::map<std::string, Misfiled> misfiled_;
  std::map<std::string, std::vector<std::string>> names_;
  std::size_t done_ = 0;
};

// The name of each picture's part; the pictures of a part are held out together. A part is a source of pictures. The
// two large sources of documents, sroie and pages, are divided into five parts: whole documents, in turn, by name.
std::vector<std::string> Parts(const std::vector<LabelledPicture>& pictures) {
  constexpr std::size_t kPartsOfASource = 5;
  std::set<std::string> documents;
  for (const LabelledPicture& picture : pictures) documents.insert(picture.document);
  std::vector<std::string> parts;
  parts.reserve(pictures.size());
  for (const LabelledPicture& picture : pictures) {
    const bool isDealt = picture.source == "sroie" || picture.source == "pages";
    const auto place = static_cast<std::size_t>(std::distance(documents.begin(), documents.find(picture.document)));
    parts.push_back(isDealt ? "documents " + std::to_string(place % kPartsOfASource) : picture.source);
  }
  return parts;
}

void SetBlock(CDetectScene& detector, const std::vector<std::uint8_t>& bytes) {
  CDetectScene::ParameterBlock block(static_cast<unsigned char*>(std::malloc(bytes.size())));
  if (!block) throw std::bad_alloc();
  std::memcpy(block.get(), bytes.data(), bytes.size());
  detector.InitializeWith(std::move(block), static_cast<std::uint32_t>(bytes.size()));
}

// Decides each part with a recognizer trained on the other parts.
void CrossValidate(CDetectScene& detector, const std::vector<LabelledPicture>& pictures, Table& table) {
  const unsigned threads = std::max(1U, std::thread::hardware_concurrency());
  const auto variants = MeasureVariants(pictures, kVariants, threads);
  const std::vector<std::string> parts = Parts(pictures);
  for (const std::string& part : std::set<std::string>(parts.begin(), parts.end())) {
    std::vector<bool> isHeldOut;
    isHeldOut.reserve(parts.size());
    for (const std::string& other : parts) isHeldOut.push_back(other == part);
    SetBlock(detector, document_type::MakeParameterBlock(TrainModel(TrainingExamples(pictures, variants, isHeldOut))));
    for (std::size_t i = 0; i < pictures.size(); ++i) {
      if (isHeldOut[i]) table.Add(pictures[i]);
    }
  }
}

// Decides every picture twice, the second time with the first and the third sample exchanged.
void MeasureExchange(const std::vector<LabelledPicture>& pictures) {
  int decisions = 0;
  int changed = 0;
  for (const LabelledPicture& picture : pictures) {
    const Raster raster = ReadRaster(picture.path);
    for (const bool wide : {false, true}) {
      const SourcePicture source = ToSource(raster, {true, wide}, 0);
      ++decisions;
      if (Decide(source) == Decide(Exchanged(source))) continue;
      ++changed;
      std::printf("- %s, %d bits\n", picture.name.c_str(), wide ? 16 : 8);
    }
  }
  std::printf("with the first and the third sample exchanged, %d of %d decisions change\n", changed, decisions);
}

// FACES.csv has a line "file,1" or "file,0" for each labelled photograph.
void MeasureFaces(const MeasureOptions& options) {
  std::ifstream labels(options.faces);
  if (!labels) throw std::runtime_error("cannot read " + options.faces);
  int count[2] = {}, found[2] = {};
  for (std::string line; std::getline(labels, line);) {
    const std::size_t comma = line.find(',');
    if (comma == std::string::npos || (line[comma + 1] != '0' && line[comma + 1] != '1')) continue;
    const int label = line[comma + 1] - '0';
    const SourcePicture picture =
        ToSource(ReadRaster(options.photographs + "/" + line.substr(0, comma)), {true, false}, 0);
    IDXDSDATA record = RecordOf(picture);
    record.typeHint = 2;  // photograph: measures the face detector only
    if (IDXDetectScene(&record) != IDX_OK) throw std::runtime_error("IDXDetectScene fails on " + line);
    const bool isFound = record.presetIndex == IDXPRESET_PHOTO_FACES;
    ++count[label];
    if (isFound) ++found[label];
    if (isFound != (label == 1))
      std::printf("- %s: %s\n", line.c_str(), isFound ? "a face is found" : "no face is found");
  }
  if (count[0] == 0 || count[1] == 0) throw std::runtime_error("both labels must occur in " + options.faces);
  std::printf("\nfaces found in %d of %d photographs with faces (%.3f), and in %d of %d without\n", found[1], count[1],
              static_cast<double>(found[1]) / count[1], found[0], count[0]);
}

void Run(const MeasureOptions& options) {
  static CDetectScene detector;
  if (detector.Initialize() != IDX_OK && !options.crossValidate) throw std::runtime_error("no parameter resource");
  dsScene = &detector;
  if (!options.faces.empty()) return MeasureFaces(options);
  const std::vector<LabelledPicture> pictures = ListPictures(options.documents, options.photographs);
  if (options.exchange) return MeasureExchange(pictures);
  Table table(pictures);
  if (options.crossValidate) {
    CrossValidate(detector, pictures, table);
  } else {
    for (const LabelledPicture& picture : pictures) table.Add(picture);
  }
  table.Print();
}

}  // namespace
}  // namespace catalogcore::tools

int main(int argc, char** argv) {
  using namespace catalogcore::tools;
  MeasureOptions options;
  return RunTool(
      argc, argv, "Measures how well IDXDetectScene decides labelled pictures.",
      [&options](CLI::App& app) {
        AddPictureFolders(app, options.documents, options.photographs);
        app.add_flag("--cross-validate", options.crossValidate,
                     "decide each picture by a recognizer trained without its source, not by the library's own");
        app.add_flag("--exchange", options.exchange, "count the decisions that change with the order of the samples");
        app.add_option("--faces", options.faces, "measure the face detector on the photographs that this file labels")
            ->check(CLI::ExistingFile);
      },
      [&options] { Run(options); });
}
