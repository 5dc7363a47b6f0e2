#include "bench/persist/picture_folder.h"

#include <unistd.h>

#include <fstream>

namespace catalogcore {

namespace fs = std::filesystem;

namespace {

constexpr int kPicturesPerFolder = 3000;

}  // namespace

PictureFolder::PictureFolder(int count)
    : root_(fs::temp_directory_path() / ("bench-" + std::to_string(getpid()) + '-' + std::to_string(count))) {
  fs::path folder;
  for (int picture = 0; picture < count; ++picture) {
    const std::string tail(static_cast<std::size_t>(picture) * 7 % 20, 'x');
    const bool isFirst = picture % kPicturesPerFolder == 0;
    if (isFirst) {
      folder = root_ / ("holiday-" + std::to_string(picture / kPicturesPerFolder));
      fs::create_directories(folder);
    }
    const fs::path file = folder / ("IMG_" + std::to_string(1000000 + picture) + tail + ".jpg");
    if (isFirst) {
      std::ofstream{file};
    } else {
      fs::create_hard_link(paths_[static_cast<std::size_t>(picture / kPicturesPerFolder * kPicturesPerFolder)], file);
    }
    paths_.push_back(file);
  }
}

PictureFolder::~PictureFolder() {
  std::error_code ignored;
  fs::remove_all(root_, ignored);
}

}  // namespace catalogcore
