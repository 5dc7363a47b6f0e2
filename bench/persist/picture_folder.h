// Existing files for a catalogue to load: names of 40 to 70 bytes, 3,000 in a folder.
#ifndef CATALOGCORE_BENCH_PERSIST_PICTURE_FOLDER_H_
#define CATALOGCORE_BENCH_PERSIST_PICTURE_FOLDER_H_

#include <filesystem>
#include <string>
#include <vector>

namespace catalogcore {

// Made in the system's folder for temporary files, and removed again with this object. The names of a folder are links
// to one empty file, so that millions of them take few inodes. What cannot be made ends the program.
class PictureFolder {
 public:
  explicit PictureFolder(int count);
  ~PictureFolder();
  PictureFolder(const PictureFolder&) = delete;
  PictureFolder& operator=(const PictureFolder&) = delete;

  const std::filesystem::path& Root() const { return root_; }
  const std::vector<std::string>& Paths() const { return paths_; }

 private:
  std::filesystem::path root_;
  std::vector<std::string> paths_;
};

}  // namespace catalogcore

#endif  // CATALOGCORE_BENCH_PERSIST_PICTURE_FOLDER_H_
