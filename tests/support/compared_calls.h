// The exported calls on the library and on the model side by side, with records made wrong in every way and walks open
// across them. What differs is a failed expectation.
#ifndef CATALOGCORE_TESTS_SUPPORT_COMPARED_CALLS_H_
#define CATALOGCORE_TESTS_SUPPORT_COMPARED_CALLS_H_

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "api/catalogue.h"
#include "api/index_number.h"
#include "api/preset_index.h"
#include "api/store_status.h"
#include "base/file_existence.h"
#include "tests/api/item.h"
#include "tests/support/catalogue_model.h"

class ComparedCalls {
 public:
  // Gives a number from 0 to `limit` - 1: random ones, or what a fuzzer likes to try.
  using Choose = std::function<int(int limit)>;

  // Begins the library anew. `names` are those of images and indexes: valid UTF-8 without line feeds, and short.
  ComparedCalls(Choose choose, Keys names) : choose_(std::move(choose)), names_(std::move(names)) {
    AddPresets(model_);
    EXPECT_EQ(IDXInitialize(), IDX_OK);
  }
  ~ComparedCalls() {
    IDXUninitialize();
    EndWalks(0);
  }
  ComparedCalls(const ComparedCalls&) = delete;
  ComparedCalls& operator=(const ComparedCalls&) = delete;

  // The indexes that the library begins with.
  static void AddPresets(CatalogueModel& model) {
    for (const std::int32_t number : kaPresetIndex) {
      model.AddCell(kIndexTree, PathOf(number), "idx" + std::to_string(number), 7);
    }
  }

  // One call, and all that can be seen of the catalogue afterwards.
  void Step() {
    Item item;
    const std::string name = choose_(12) ? Any(names_) : Any({"", "none", "/"});
    constexpr std::int32_t kNumbers[] = {1000000,  1010000,  1090000, 2010000, 1100000, 1101000,   1110000, 10000000,
                                         10100000, 11000000, -1,      0,       999999,  100000000, 3000000, 1101010};
    const std::int32_t number = kNumbers[choose_(16)];
    const int attribute = choose_(3) ? 0 : choose_(10);
    const bool force = choose_(2);
    const bool hasName = choose_(15), hasIndex = choose_(15), hasAttribute = choose_(2);
    item.Force(force);
    if (hasName) item.Name(name);
    CFStringRef nothing = nullptr;
    const int oddName = choose_(40);
    if (oddName == 0) item.name = nullptr;
    if (oddName == 1) item.name = &nothing;
    item.index = number;
    if (hasIndex) item.Index(number);
    if (hasAttribute) item.Attribute(attribute);
    log_ = " '" + name + "' " + std::to_string(number) + " attribute " + std::to_string(attribute) + " force " +
           std::to_string(force) + " mask " + std::to_string(item.mask);

    IDXSTATUS nameStatus = name.empty() ? IDXERR_MEMORY : IDX_OK;
    if (oddName == 1) nameStatus = IDXERR_FAILED;
    if (!hasName || oddName == 0) nameStatus = IDXERR_PARAM;
    const IDXSTATUS indexStatus = !hasIndex || PathOf(number).empty() ? IDXERR_PARAM : IDX_OK;
    const std::string folder = name.substr(0, name.rfind('/') == std::string::npos ? 0 : name.rfind('/'));
    const auto add = [&]() -> IDXSTATUS {
      if (name.find('/') == std::string::npos) return IDXERR_PARAM;
      if (indexStatus != IDX_OK) return indexStatus;
      return StoreStatus(model_.AddNode(name, PathOf(number), folder, hasAttribute ? attribute : 0));
    };
    const auto first = [](IDXSTATUS a, IDXSTATUS b) { return a != IDX_OK ? a : b; };
    const int kind = choose_(9);
    if (kind < 2) Same("IDXAddImage", IDXAddImage(&item), nameStatus != IDX_OK ? nameStatus : add());
    if (kind == 2) {
      Same(
          "IDXChangeImage", IDXChangeImage(&item), nameStatus != IDX_OK ? nameStatus : [&]() -> IDXSTATUS {
            if (number == -1) return StoreStatus(model_.RemoveNode(name, force));
            if (hasIndex) {
              if (indexStatus != IDX_OK) return indexStatus;
              const unsigned moved = model_.MoveNode(kIndexTree, name, PathOf(number), force);
              if (moved == StoreImageNotFound) return add();
              if (moved != StoreOk) return StoreStatus(moved);
            }
            return hasAttribute ? StoreStatus(model_.ChangeAttributeNode(name, attribute)) : IDXSTATUS{IDX_OK};
          }());
    }
    if (kind == 3) {
      Same("IDXRemoveImage", IDXRemoveImage(&item),
           nameStatus != IDX_OK ? nameStatus : StoreStatus(model_.RemoveNode(name, force)));
    }
    if (kind == 4) {
      Same("IDXAddIndex", IDXAddIndex(&item),
           first(indexStatus, nameStatus) != IDX_OK ? first(indexStatus, nameStatus)
                                                    : AddIndex(PathOf(number), name, hasAttribute ? attribute : 0));
    }
    if (kind == 5) {
      Same(
          "IDXChangeIndex", IDXChangeIndex(&item), indexStatus != IDX_OK ? indexStatus : [&]() -> IDXSTATUS {
            unsigned result = StoreOk;
            if (hasName) {
              if (nameStatus != IDX_OK) return nameStatus;
              result = model_.RenameCell(kIndexTree, PathOf(number), name, force);
            }
            if (hasAttribute) result = model_.ChangeAttributeCell(kIndexTree, PathOf(number), attribute);
            return StoreStatus(result);
          }());
    }
    if (kind == 6) {
      Same("IDXRemoveIndex", IDXRemoveIndex(&item),
           indexStatus != IDX_OK ? indexStatus : StoreStatus(model_.RemoveCell(kIndexTree, PathOf(number), force)));
    }
    if (kind == 7) Search(name, number);
    if (kind == 8) Begin(choose_(2) ? number : 0, choose_(3) ? folder : "");
    for (OpenWalk& walk : walks_) {
      if (choose_(4) == 0) Advance(walk);
    }
    EXPECT_EQ(StateOf(*idData), model_.State()) << log_;
    EXPECT_EQ(BrokenInvariant(*idData), "") << log_;
  }

  // Writes to the folder, begins anew and loads; the model does what loading is to do with the records written.
  void WriteAndLoad(const std::string& folder) {
    CatalogueModel loaded;
    const CatalogueState before = model_.State();
    AddPresets(loaded);
    for (const CellState& cell : before.cells[kIndexTree]) {
      if (cell.attribute != 7) loaded.AddCell(kIndexTree, cell.key, cell.name, cell.attribute);
    }
    for (const CellState& cell : before.cells[kIndexTree]) {
      for (const std::string& image : cell.images) {
        const std::string imageFolder = image.substr(0, image.rfind('/'));
        if (IsFileExistAPI(image.c_str()) == 1)
          loaded.AddNode(image, cell.key, imageFolder, before.attributes.at(image));
      }
    }
    CFStringRef names[] = {Item::Make(folder), Item::Make("index.plist"), Item::Make("images.plist")};
    EXPECT_EQ(IDXSetFilePath(&names[0]), IDX_OK);
    EXPECT_EQ(IDXWriteIndexFile(&names[1]), IDX_OK);
    EXPECT_EQ(IDXWriteImageFile(&names[2]), IDX_OK);
    EXPECT_EQ(IDXInitialize(), IDX_OK);
    EndWalks(walks_.size() / 2);
    EXPECT_EQ(IDXSetFilePath(&names[0]), IDX_OK);
    EXPECT_EQ(IDXLoadIndexFile(&names[1]), IDX_OK);
    EXPECT_EQ(IDXLoadImageFile(&names[2]), IDX_OK);
    EXPECT_EQ(StateOf(*idData), loaded.State());
    for (CFStringRef name : names) CFRelease(name);
  }

 private:
  static std::string PathOf(std::int32_t number) {
    CIDXString path;
    return ConvertINTtoPath(path, number, kIndexDigits) < 0 ? "" : path.Text();
  }
  std::string Any(const Keys& keys) { return keys[static_cast<std::size_t>(choose_(static_cast<int>(keys.size())))]; }

  void Same(const char* call, IDXSTATUS ours, IDXSTATUS expected) {
    log_ = call + log_;
    EXPECT_EQ(ours, expected) << log_;
  }

  bool IsIndex(const std::string& path) const {
    CatalogueModel::Walk walk;
    return !path.empty() && model_.FirstCell(walk, kIndexTree, path, false);
  }

  IDXSTATUS AddIndex(const std::string& parent, const std::string& name, int attribute) {
    if (!IsIndex(parent)) return IDXERR_NOINDEX;
    const std::string prefix = parent == "." ? "" : parent + "/";
    Keys children;
    for (const CellState& cell : model_.State().cells[kIndexTree]) {
      const bool isChild =
          cell.key != "." && cell.key.rfind(prefix, 0) == 0 && cell.key.find('/', prefix.size()) == std::string::npos;
      if (!isChild) continue;
      if (cell.name == name) return IDXERR_INDEXEXISTS;
      children.push_back(cell.key);
    }
    for (int group = 10; group < 30; ++group) {
      const std::string key = prefix + std::to_string(group);
      if (std::count(children.begin(), children.end(), key)) continue;
      if (std::count(key.begin(), key.end(), '/') > 3) return IDXERR_PARAM;
      return StoreStatus(model_.AddCell(kIndexTree, key, name, attribute));
    }
    return IDXERR_INDEXFULL;
  }

  // What the look-ups write into the record.
  void Search(const std::string& name, std::int32_t number) {
    const CatalogueState state = model_.State();
    Item image;
    IDXSTATUS expected = name.empty() ? IDXERR_MEMORY : IDXERR_NOIMAGE;
    const auto isName = [&name](const std::string& key) {
      return ModelHash(key) == ModelHash(name) && ModelEqual(key, name);
    };
    for (const CellState& cell : state.cells[kIndexTree]) {
      const auto filed = std::find_if(cell.images.begin(), cell.images.end(), isName);
      if (filed == cell.images.end()) continue;
      expected = IDX_OK;
      EXPECT_EQ(IDXSearchImage(&image.Name(name).Index(0).Attribute(99)), IDX_OK);
      EXPECT_EQ(PathOf(image.index), cell.key);
      EXPECT_EQ(image.attribute, state.attributes.at(*filed));
    }
    EXPECT_EQ(IDXSearchImage(&image.Name(name)), expected);
    Item index;
    const IDXSTATUS found = IDXSearchIndex(&index.Index(number).Name("?").Attribute(99));
    EXPECT_EQ(found, IsIndex(PathOf(number)) ? IDX_OK : PathOf(number).empty() ? IDXERR_PARAM : IDXERR_NOINDEX);
  }

  struct OpenWalk {
    IDXFIND find;
    CatalogueModel::Walk model;
    bool isOverImages;
    IDXSTATUS Next(Item& item) const { return (isOverImages ? IDXFindNextImage : IDXFindNextIndex)(find, &item); }
    IDXSTATUS End() const { return isOverImages ? IDXERR_NOIMAGE : IDXERR_NOINDEX; }
  };

  static std::string Told(const CatalogueModel::Image* image) {
    return image ? image->key + "=" + image->cell[kIndexTree]->key + "=" + std::to_string(image->attribute) : "the end";
  }
  static std::string Told(const CatalogueModel::Cell* cell) {
    return cell ? cell->name + "=" + cell->key + "=" + std::to_string(cell->attribute) : "the end";
  }
  static std::string Told(const Item& item, IDXSTATUS status) {
    if (status != IDX_OK) return "the end";
    return item.NameText() + "=" + PathOf(item.index) + "=" + std::to_string(item.attribute);
  }

  // Begins a walk, which stays open unless it finds nothing. A number of 0, and an empty folder, are not marked.
  void Begin(std::int32_t number, const std::string& folder) {
    OpenWalk walk{nullptr, {}, choose_(3) != 0};
    const std::string path = PathOf(number);
    const bool isBad = number != 0 && path.empty();
    Item item;
    item.Name("").Operation(IDXOP_GETINFO | (walk.isOverImages || number != 0 ? IDXOP_CONDITION : 0));
    if (number != 0) item.Index(number);
    if (!folder.empty()) item.Path(folder);
    bool isFound = false;
    if (walk.isOverImages) {
      isFound =
          !isBad && model_.FirstImage(walk.model, number == 0 ? "." : path, true, folder.empty() ? "." : folder, true);
    } else if (!isBad) {
      isFound = model_.FirstCell(walk.model, kIndexTree, path, true) && (number != 0 || model_.NextCell(walk.model));
    }
    IDXSTATUS status = IDX_OK;
    walk.find = (walk.isOverImages ? IDXFindFirstImage : IDXFindFirstIndex)(&item, &status);
    EXPECT_EQ(status, isBad     ? IDXSTATUS{IDXERR_PARAM}
                      : isFound ? IDXSTATUS{IDX_OK}
                                : walk.End())
        << number << " " << folder;
    EXPECT_EQ(walk.find != nullptr, isFound);
    if (!isFound) return;
    EXPECT_EQ(item.NameText(), walk.isOverImages ? walk.model.image->key : walk.model.cell->name);
    if (choose_(3) == 0) {
      while (Advance(walk)) {
      }
    }
    walks_.push_back(walk);
    if (walks_.size() < 8) return;
    EXPECT_EQ(IDXCloseFind(walks_.front().find), IDX_OK);
    walks_.erase(walks_.begin());
  }

  // One step, also beyond the end, which is the end.
  bool Advance(OpenWalk& walk) {
    Item item;
    const IDXSTATUS status = walk.Next(item.Wanted());
    EXPECT_EQ(Told(item, status),
              walk.isOverImages ? Told(model_.NextImage(walk.model)) : Told(model_.NextCell(walk.model)))
        << log_;
    EXPECT_TRUE(status == IDX_OK || status == walk.End()) << log_;
    return status == IDX_OK;
  }

  // Once their catalogue is gone they find nothing, and can be closed. The first `count` stay.
  void EndWalks(std::size_t count) {
    for (; walks_.size() > count; walks_.pop_back()) {
      Item item;
      EXPECT_EQ(walks_.back().Next(item.Wanted()), walks_.back().End());
      EXPECT_EQ(IDXCloseFind(walks_.back().find), IDX_OK);
    }
  }

  const Choose choose_;
  const Keys names_;
  CatalogueModel model_;
  std::vector<OpenWalk> walks_;
  std::string log_;
};

#endif  // CATALOGCORE_TESTS_SUPPORT_COMPARED_CALLS_H_
