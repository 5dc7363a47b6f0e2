// make_gallery FOLDER: makes a gallery of the images on standard input, one a line: an index number, 0 or 1 (missing), and
// the path, with tabs between. Prints how many thumbnails it made, then a line for each file that failed.
#include <cstdio>
#include <iostream>
#include <sstream>

#include "app/gallery/gallery.h"
#include "app/picture.h"

using namespace catalogcore;

int main(int, char** arguments) try {
  using namespace catalogcore::app;
  StartPictures(arguments[0]);
  GalleryRequest request;
  request.folder = arguments[1];
  request.jobs = 2;
  request.indexes = {{1000000, -1, "Photographs", "photographs"},
                     {1010000, 1000000, "People", "photographs that show faces"},
                     {1090000, 1000000, "Other photographs", "photographs without faces"},
                     {2000000, -1, "Documents", "documents"},
                     {2030000, 2000000, "Pages", "documents of A5, B5, A4, Letter or Legal size"},
                     {2090000, 2000000, "Other documents", "documents of any other size"},
                     {9000000, -1, "Other", ""}};
  for (std::string line; std::getline(std::cin, line);) {
    GalleryImage image;
    std::istringstream fields(line);
    fields >> image.index >> image.missing;
    std::getline(fields.ignore(), image.path);
    request.images.push_back(image);
  }
  const GalleryReport report = WriteGallery(request);
  std::printf("%zu\n", report.made);
  for (const auto& [file, why] : report.failed) std::printf("%s: %s\n", file.c_str(), why.c_str());
} catch (const std::exception& error) {
  std::fprintf(stderr, "make_gallery: %s\n", error.what());
  return 1;
}
