// train_recognizer DOCUMENTS PHOTOS -o brennparam.dat: trains the recognizer's parameter block on two folders of
// pictures. The same folders give the same bytes.
#include <algorithm>
#include <cstdio>
#include <fstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "engines/document_type/model.h"
#include "tools/model_training.h"
#include "tools/tool_main.h"
#include "tools/training_data.h"

namespace catalogcore::tools {
namespace {

struct TrainOptions {
  std::string documents, photographs, output;
  std::size_t variants = kVariants;
  unsigned threads = std::max(1U, std::thread::hardware_concurrency());
};

void WriteBlock(const std::vector<Example>& examples, const std::string& path) {
  const std::vector<std::uint8_t> block = document_type::MakeParameterBlock(TrainModel(examples));
  std::ofstream file(path, std::ios::binary);
  for (const std::uint8_t byte : block) file.put(static_cast<char>(byte));
  file.close();
  if (!file) throw std::runtime_error("cannot write " + path);
  std::printf("%s: %zu bytes from %zu examples\n", path.c_str(), block.size(), examples.size());
}

void Run(const TrainOptions& options) {
  const std::vector<LabelledPicture> pictures = ListPictures(options.documents, options.photographs);
  WriteBlock(TrainingExamples(pictures, MeasureVariants(pictures, options.variants, options.threads)), options.output);
}

}  // namespace
}  // namespace catalogcore::tools

int main(int argc, char** argv) {
  using namespace catalogcore::tools;
  TrainOptions options;
  return RunTool(
      argc, argv, "Trains the document-type recognizer from a folder of documents and one of photographs.",
      [&options](CLI::App& app) {
        AddPictureFolders(app, options.documents, options.photographs);
        app.add_option("-o,--output", options.output, "parameter block to write")->required();
        app.add_option("--variants", options.variants, "variants of each picture to train on")
            ->check(CLI::Range(1, 1000));
        app.add_option("--threads", options.threads, "number of threads; the result does not depend on it")
            ->check(CLI::Range(1, 256));
      },
      [&options] { Run(options); });
}
