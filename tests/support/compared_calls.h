// Makes the same calls on the library and on the model, with valid and invalid records, and compares the results. A
// difference is a failed expectation.
#ifndef CATALOGCORE_TESTS_SUPPORT_COMPARED_CALLS_H_
#define CATALOGCORE_TESTS_SUPPORT_COMPARED_CALLS_H_

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "api/catalogue.h"
#include "api/index_calls.h"
#include "api/index_number.h"
#include "base/file_existence.h"
#include "tests/api/item.h"
#include "tests/support/catalogue_model.h"

namespace catalogcore {

class ComparedCalls {
 public:
  // Returns a number from 0 to `limit` - 1: a random number, or the choice of a fuzzer.
  using Choose = std::function<int(int limit)>;

  // Initialises the library. `names` of images and indexes: short, valid UTF-8, without line feeds.
  ComparedCalls(Choose choose, Keys names) : choose_(std::move(choose)), names_(std::move(names)) {
    AddPresets(model_);
    EXPECT_EQ(IDXInitialize(), IDX_OK);
  }
  ~ComparedCalls() { IDXUninitialize(); }
  ComparedCalls(const ComparedCalls&) = delete;
  ComparedCalls& operator=(const ComparedCalls&) = delete;

  // Adds the preset indexes.
  static void AddPresets(CatalogueModel& model) {
    for (const std::int32_t number : kaPresetIndex) {
      model.AddCell(kIndexTree, PathOf(number), "idx" + std::to_string(number), 7);
    }
  }

  // Makes one call, and compares the whole catalogue afterwards.
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

    IDXSTATUS nameStatus = name.empty() ? IDXERR_MEMORY : IDX_OK;
    if (oddName == 1) nameStatus = IDXERR_FAILED;
    if (!hasName || oddName == 0) nameStatus = IDXERR_PARAM;
    const std::string index = PathOf(number);
    const IDXSTATUS indexStatus = !hasIndex || index.empty() ? IDXERR_PARAM : IDX_OK;
    const std::string folder = name.substr(0, name.rfind('/') == std::string::npos ? 0 : name.rfind('/'));
    const auto addImage = [&]() -> IDXSTATUS {
      if (name.find('/') == std::string::npos) return IDXERR_PARAM;
      if (indexStatus != IDX_OK) return indexStatus;
      return StoreStatus(model_.AddNode(name, index, folder, hasAttribute ? attribute : 0));
    };
    const auto changeImage = [&]() -> IDXSTATUS {
      if (number == -1) return StoreStatus(model_.RemoveNode(name, force));
      if (hasIndex) {
        if (indexStatus != IDX_OK) return indexStatus;
        const unsigned moved = model_.MoveNode(kIndexTree, name, index, force);
        if (moved == StoreImageNotFound) return addImage();
        if (moved != StoreOk) return StoreStatus(moved);
      }
      return hasAttribute ? StoreStatus(model_.ChangeAttributeNode(name, attribute)) : IDXSTATUS{IDX_OK};
    };
    const auto addIndex = [&] {
      return nameStatus != IDX_OK ? nameStatus : AddIndex(index, name, hasAttribute ? attribute : 0);
    };
    const auto changeIndex = [&]() -> IDXSTATUS {
      if (hasName && nameStatus != IDX_OK) return nameStatus;
      unsigned result = hasName ? model_.RenameCell(kIndexTree, index, name, force) : unsigned{StoreOk};
      if (hasAttribute) result = model_.ChangeAttributeCell(kIndexTree, index, attribute);
      return StoreStatus(result);
    };
    const auto removeImage = [&] { return StoreStatus(model_.RemoveNode(name, force)); };
    const auto removeIndex = [&] { return StoreStatus(model_.RemoveCell(kIndexTree, index, force)); };
    const auto same = [](IDXSTATUS ours, IDXSTATUS ofRecord, const auto& inModel) {
      EXPECT_EQ(ours, ofRecord != IDX_OK ? ofRecord : inModel());
    };
    const int kind = choose_(9);
    SCOPED_TRACE(testing::Message() << "call " << kind << " of '" << name << "' " << number << " attribute "
                                    << attribute << " force " << force << " mask " << item.mask);
    if (kind < 2) same(IDXAddImage(&item), nameStatus, addImage);
    if (kind == 2) same(IDXChangeImage(&item), nameStatus, changeImage);
    if (kind == 3) same(IDXRemoveImage(&item), nameStatus, removeImage);
    if (kind == 4) same(IDXAddIndex(&item), indexStatus, addIndex);
    if (kind == 5) same(IDXChangeIndex(&item), indexStatus, changeIndex);
    if (kind == 6) same(IDXRemoveIndex(&item), indexStatus, removeIndex);
    if (kind == 7) Search(name, number);
    if (kind == 8) Find(choose_(3) != 0, choose_(2) ? number : 0, choose_(3) ? folder : "");
    EXPECT_EQ(StateOf(*idData), model_.State());
    EXPECT_EQ(BrokenInvariant(*idData), "");
  }

  // Writes both files to the folder, initialises the library again and loads the files. The model loads the same
  // records.
  void WriteAndLoad(const std::string& folder) {
    CatalogueModel loaded;
    AddPresets(loaded);
    const CatalogueState before = model_.State();
    for (const CellState& cell : before.cells[kIndexTree]) {
      if (cell.attribute != 7) loaded.AddCell(kIndexTree, cell.key, cell.name, cell.attribute);
    }
    for (const CellState& cell : before.cells[kIndexTree]) {
      for (const std::string& image : cell.images) {
        if (IsFileExistAPI(image.c_str()) != 1) continue;
        loaded.AddNode(image, cell.key, image.substr(0, image.rfind('/')), before.attributes.at(image));
      }
    }
    EXPECT_EQ(OnName(IDXSetFilePath, folder), IDX_OK);
    EXPECT_EQ(OnName(IDXWriteIndexFile, "index.plist"), IDX_OK);
    EXPECT_EQ(OnName(IDXWriteImageFile, "images.plist"), IDX_OK);
    EXPECT_EQ(IDXInitialize(), IDX_OK);
    EXPECT_EQ(OnName(IDXSetFilePath, folder), IDX_OK);
    EXPECT_EQ(OnName(IDXLoadIndexFile, "index.plist"), IDX_OK);
    EXPECT_EQ(OnName(IDXLoadImageFile, "images.plist"), IDX_OK);
    EXPECT_EQ(StateOf(*idData), loaded.State());
  }

 private:
  static std::string PathOf(std::int32_t number) {
    CIDXString path;
    return ConvertINTtoPath(path, number, kIndexDigits) < 0 ? "" : path.Text();
  }
  std::string Any(const Keys& keys) { return keys[static_cast<std::size_t>(choose_(static_cast<int>(keys.size())))]; }

  IDXSTATUS AddIndex(const std::string& parent, const std::string& name, int attribute) {
    const CatalogueModel::Cell* const cell = model_.FindCell(kIndexTree, parent);
    if (!cell) return IDXERR_NOINDEX;
    Keys taken;
    for (const CatalogueModel::Cell* child : cell->children) {
      if (child->name == name) return IDXERR_INDEXEXISTS;
      taken.push_back(child->key);
    }
    for (int group = 10; group < 30; ++group) {
      const std::string key = (parent == "." ? "" : parent + "/") + std::to_string(group);
      if (std::count(taken.begin(), taken.end(), key)) continue;
      if (std::count(key.begin(), key.end(), '/') > 3) return IDXERR_PARAM;
      return StoreStatus(model_.AddCell(kIndexTree, key, name, attribute));
    }
    return IDXERR_INDEXFULL;
  }

  // Compares what the search calls write into the record.
  void Search(const std::string& name, std::int32_t number) {
    Item image, index;
    const CatalogueModel::Image* const filed = model_.FindImage(name);
    const IDXSTATUS noImage = name.empty() ? IDXERR_MEMORY : IDXERR_NOIMAGE;
    EXPECT_EQ(IDXSearchImage(&image.Name(name).Index(0).Attribute(99)), filed ? IDXSTATUS{IDX_OK} : noImage);
    EXPECT_TRUE(!filed || Told(image) == name + catalogcore::Told(filed).substr(filed->key.size())) << Told(image);
    const std::string path = PathOf(number);
    const CatalogueModel::Cell* const cell = path.empty() ? nullptr : model_.FindCell(kIndexTree, path);
    const IDXSTATUS noIndex = path.empty() ? IDXERR_PARAM : IDXERR_NOINDEX;
    EXPECT_EQ(IDXSearchIndex(&index.Index(number).Name("?").Attribute(99)), cell ? IDXSTATUS{IDX_OK} : noIndex);
    EXPECT_TRUE(!cell || Told(index) == catalogcore::Told(cell)) << Told(index);
  }

  static std::string Told(const Item& item) {
    return item.NameText() + "=" + PathOf(item.index) + "=" + std::to_string(item.attribute);
  }

  // Compares a whole find. A number of 0 and an empty folder are not marked.
  void Find(bool isOverImages, std::int32_t number, const std::string& folder) {
    const std::string path = PathOf(number);
    const bool isBad = number != 0 && path.empty();
    Keys expected, found;
    CatalogueModel::Walk walk;
    const auto expect = [&](const auto* entry, auto next) {
      for (; entry; entry = (model_.*next)(walk)) expected.push_back(catalogcore::Told(entry));
    };
    if (!isBad && isOverImages) {
      expect(model_.FirstImage(walk, number == 0 ? "." : path, true, folder.empty() ? "." : folder, true),
             &CatalogueModel::NextImage);
    } else if (!isBad) {
      const CatalogueModel::Cell* const first = model_.FirstCell(walk, kIndexTree, path, true);
      expect(number == 0 ? model_.NextCell(walk) : first, &CatalogueModel::NextCell);
    }
    Item item;
    item.Name("").Attribute(99).Operation(IDXOP_GETINFO | (isOverImages || number != 0 ? IDXOP_CONDITION : 0));
    if (number != 0) item.Index(number);
    if (!folder.empty()) item.Path(folder);
    const IDXSTATUS end = isOverImages ? IDXERR_NOIMAGE : IDXERR_NOINDEX;
    IDXSTATUS status = 99;
    const IDXFIND find = (isOverImages ? IDXFindFirstImage : IDXFindFirstIndex)(&item, &status);
    EXPECT_EQ(find != nullptr, status == IDX_OK);
    const bool isFirst = !expected.empty() && expected[0].starts_with(item.NameText() + "=");
    if (find) found.push_back(isFirst ? expected[0] : item.NameText());
    while (status == IDX_OK && found.size() <= expected.size()) {
      Item next;
      status = (isOverImages ? IDXFindNextImage : IDXFindNextIndex)(find, &next.Wanted());
      if (status == IDX_OK) found.push_back(Told(next));
    }
    EXPECT_EQ(status, isBad ? IDXSTATUS{IDXERR_PARAM} : end);
    EXPECT_EQ(found, expected) << number << " " << folder;
    EXPECT_EQ(IDXCloseFind(find), IDX_OK);
  }

  const Choose choose_;
  const Keys names_;
  CatalogueModel model_;
};

}  // namespace catalogcore

#endif  // CATALOGCORE_TESTS_SUPPORT_COMPARED_CALLS_H_
