#include <algorithm>
#include <cstdlib>
#include <deque>
#include <memory>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include "bench/store/store_bench.h"
#include "bench/support/ratios.h"
#include "store/index_data.h"

namespace catalogcore {

namespace {

// A catalogue of a certain shape; `folder` returns the folder of an image.
struct Shape {
  const char* name;
  int images;
  int indexes;
  std::string (*folder)(int image);
};

std::string OneFolder(int) { return "/home/user/Pictures"; }
// The latest image of an index is usually in the other folder.
std::string TwoFoldersInTurn(int image) { return "/home/user/Pictures/" + std::to_string(image / 8000 % 2); }
std::string FolderOf3000(int image) { return "/home/user/Pictures/" + std::to_string(image / 3000); }
std::string FolderOfItsOwn(int image) { return "/home/user/Pictures/" + std::to_string(image); }
std::string OneOf50Levels(int image) {
  std::string folder;
  for (int level = 0; level <= image % 50; ++level) folder += "/level-" + std::to_string(level);
  return folder;
}

class Catalogue {
 public:
  explicit Catalogue(const Shape& shape) : order_(static_cast<std::size_t>(shape.images)) {
    for (int image = 0; image < shape.images; ++image) {
      const std::string folder = shape.folder(image);
      folders_.emplace_back().CopyString(folder.c_str());
      keys_.emplace_back().CopyString((folder + "/IMG_" + std::to_string(image) + ".jpg").c_str());
    }
    store_.Initialize();
    const CIDXString name;
    for (int index = 0; index < shape.indexes + 1; ++index) {  // the last one is the target of Move
      indexes_.emplace_back().CopyString(("1/" + std::to_string(10 + index)).c_str());
      store_.AddCell(kIndexTree, indexes_.back(), name, 0);
    }
    std::iota(order_.begin(), order_.end(), std::size_t{0});
    std::shuffle(order_.begin(), order_.end(), std::mt19937(1));
  }

  void Add() {
    const std::size_t used = indexes_.size() - 1;
    for (std::size_t i = 0; i < keys_.size(); ++i)
      Require(store_.AddNode(keys_[i], indexes_[i % used], folders_[i], 0));
  }
  void AddAgain() {
    for (const std::size_t i : order_) {
      if (store_.AddNode(keys_[i], indexes_[0], folders_[i], 0) != StoreImageExists) std::abort();
    }
  }
  void Move() {
    for (const std::size_t i : order_) Require(store_.MoveNode(kIndexTree, keys_[i], indexes_.back(), 0));
  }
  void Remove() {
    for (const std::size_t i : order_) Require(store_.RemoveNode(keys_[i], 0));
  }
  void Walk() {
    SearchHandle handle{};
    CIDXString everything, root;
    root.CopyString("/");
    std::size_t count = 0;
    for (const CIDXNode* node = store_.GetFirstNode(&handle, everything, root, 1); node;
         node = store_.GetNextNode(&handle, 1)) {
      ++count;
    }
    if (count != keys_.size()) std::abort();
  }
  // Removes all folders with their images, the deepest first.
  void RemoveFolders() {
    for (std::size_t i = folders_.size(); i-- > 0;) {
      const std::uint32_t result = store_.RemoveCell(kFolderTree, folders_[i], 0);
      if (result != StoreOk && result != StoreIndexNotFound) std::abort();
    }
  }

 private:
  static void Require(std::uint32_t result) {
    if (result != StoreOk) std::abort();
  }

  std::deque<CIDXString> keys_, folders_, indexes_;
  std::vector<std::size_t> order_;
  CIndexData store_;
};

Round Measure(const Shape& shape, void (Catalogue::*operation)()) {
  return [shape, operation] {
    Catalogue catalogue(shape);
    if (operation != &Catalogue::Add) catalogue.Add();
    return ThreadTime(shape.images, [&] { (catalogue.*operation)(); });
  };
}

}  // namespace

void AddShapeRows() {
  const int many = std::getenv("CATALOGCORE_BENCH_IMAGES") ? 3000000 : 300000;
  const Shape shapes[] = {{"one_folder", many, 20, OneFolder},
                          {"one_index", many, 1, FolderOf3000},
                          {"own_folders", 100000, 20, FolderOfItsOwn},
                          {"deep_folders", many, 20, OneOf50Levels},
                          {"one_folder_400_indexes", 100000, 400, OneFolder},
                          {"one_folder_8000_indexes", 100000, 8000, OneFolder},
                          {"two_folders_8000_indexes", 100000, 8000, TwoFoldersInTurn}};
  const struct {
    const char* name;
    void (Catalogue::*operation)();
  } operations[] = {{"add", &Catalogue::Add},   {"add_again", &Catalogue::AddAgain},
                    {"move", &Catalogue::Move}, {"remove", &Catalogue::Remove},
                    {"walk", &Catalogue::Walk}, {"drop", &Catalogue::RemoveFolders}};
  for (const Shape& shape : shapes) {
    const Shape usual{"usual", shape.images, 20, FolderOf3000};
    const int rounds = shape.images > 1000000 ? 1 : 3;
    for (const auto& [name, operation] : operations) {
      AddRow(std::string(shape.name) + "_" + name + "_" + std::to_string(shape.images), Measure(shape, operation),
             "folders of 3,000", Measure(usual, operation), rounds);
    }
  }
}

}  // namespace catalogcore
