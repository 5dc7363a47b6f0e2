// Classifies and files a picture in memory, walks the catalogue and writes it: file_buffer DIRECTORY. The directory must
// exist.
#include <catalogcore.hpp>
#include <cstdio>
#include <vector>

int main(int argc, char** argv) try {
  const std::string directory = argc > 1 ? argv[1] : ".";
  std::vector<std::byte> page(1240 * 1754, std::byte{245});  // A4 at 150 dots per inch, 8 bits a pixel
  for (std::size_t i = 0; i < page.size(); ++i) {
    if (i / 1240 % 28 < 14 && i % 1240 * 7 / 40 % 3 == 0) page[i] = std::byte{40};
  }
  catalogcore::Catalog catalog = catalogcore::Catalog::Open().value();
  catalog.SetDirectory(directory).value();
  const catalogcore::Scene scene =
      catalog.Classify({.pixels = page, .width = 1240, .height = 1754, .bitsPerPixel = 8, .resolution = 150}).value();
  catalog.AddImage(directory + "/page.png", scene.Preset()).value();
  for (const catalogcore::Image& image : catalog.Images().value())
    std::printf("%d %s\n", image.index, image.path.c_str());
  catalog.SaveImages("images.plist").value();
} catch (const std::exception& failure) {
  std::fprintf(stderr, "file_buffer: %s\n", failure.what());
  return 1;
}
