// find_faces FILE...: prints the faces that the built-in detector finds in pictures, one line for each face: the file,
// the score, and left, top, width and height in pixels. A file without a face has a line without these values.
#include <cstdio>
#include <stdexcept>
#include <string>
#include <vector>

#include "engines/faces/face_search.h"
#include "engines/faces/grey_copy.h"
#include "tools/raster.h"
#include "tools/tool_main.h"

namespace catalogcore::tools {
namespace {

struct FindOptions {
  std::vector<std::string> files;
  int quarterTurns = 0;
  double least = faces::kFaceThreshold;
};

void PrintFaces(const std::string& file, const FindOptions& options) {
  Raster raster = ReadRaster(file);
  for (int turn = 0; turn < options.quarterTurns; ++turn) raster = Upright(raster);
  faces::FaceSource source;
  const auto width = static_cast<std::int32_t>(raster.width), height = static_cast<std::int32_t>(raster.height);
  if (faces::DescribeSource(24, width, height, -3 * width, raster.samples.data(), source) !=
      faces::FaceResult::kSuccess) {
    throw std::runtime_error(file + ": cannot be searched");
  }
  const faces::PictureSize size = faces::WorkingSize(source.size);
  std::vector<std::uint8_t> pixels(size.Area());
  const MutablePixelView grey(pixels.data(), size.height, size.width);
  faces::MakeGreyCopy(source, grey);
  const double across = static_cast<double>(width) / size.width, down = static_cast<double>(height) / size.height;
  const auto found = faces::FindFaces(PixelView(pixels.data(), size.height, size.width), options.least);
  if (found.empty()) std::printf("%s\n", file.c_str());
  for (const faces::FoundFace& face : found) {
    std::printf("%s\t%.3f\t%.1f\t%.1f\t%.1f\t%.1f\n", file.c_str(), face.score, face.left * across, face.top * down,
                (face.right - face.left) * across, (face.bottom - face.top) * down);
  }
}

}  // namespace
}  // namespace catalogcore::tools

int main(int argc, char** argv) {
  using namespace catalogcore::tools;
  FindOptions options;
  return RunTool(
      argc, argv, "Prints the faces that the built-in detector finds in pictures.",
      [&](CLI::App& app) {
        app.add_option("FILE", options.files, "pictures")->required();
        app.add_option("--turn", options.quarterTurns, "quarter turns by which pictures are turned first")
            ->check(CLI::Range(0, 3));
        app.add_option("--least", options.least, "lowest score of a face, a logit")->capture_default_str();
      },
      [&] {
        for (const std::string& file : options.files) PrintFaces(file, options);
      });
}
