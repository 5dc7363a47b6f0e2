// Cells beyond what the model test covers: limits of keys, and moved cells, which no exported call makes.
#include <gtest/gtest.h>

#include <string>

#include "catalogcore.h"
#include "tests/support/catalogue_state.h"
#include "tests/support/store_inspector.h"

namespace catalogcore {

namespace {

class CellTest : public testing::Test {
 protected:
  CellTest() { store_.Initialize(); }
  ~CellTest() override { EXPECT_EQ(BrokenInvariant(store_), ""); }

  void AddIndexes(const Keys& keys, std::uint8_t attribute = 0) {
    for (const std::string& key : keys) store_.AddCell(kIndexTree, Key(key), Key(key), attribute);
  }
  void AddImage(const std::string& image, const std::string& index) {
    EXPECT_EQ(store_.AddNode(Key(image), Key(index), Key("/p"), 0), StoreOk) << image;
  }
  CIDXCell* Index(const char* key) { return store_.SearchCell(kIndexTree, Key(key)); }
  std::uint32_t Move(const char* from, const char* to, int force = 0) {
    return store_.MoveCell(kIndexTree, Key(from), Key(to), force);
  }
  Keys Indexes() {
    Keys keys;
    for (const CellState& cell : StateOf(store_).cells[kIndexTree]) keys.push_back(cell.key);
    return keys;
  }

  CIndexData store_;
};

TEST_F(CellTest, KeysHaveLimits) {
  for (const auto& [tree, first, maxLevels] : {std::tuple{kIndexTree, "x", 64}, {kFolderTree, "/x", 512}}) {
    std::string key = first;
    for (int level = 1; level < maxLevels; ++level) key += "/x";
    EXPECT_EQ(store_.AddCell(tree, Key(key), Key(""), 0), StoreOk);
    EXPECT_EQ(store_.AddCell(tree, Key(key + "/x"), Key(""), 0), StoreInvalidKey);
    EXPECT_EQ(store_.AddCell(tree, Key(std::string(4096, 'x')), Key(""), 0), StoreOk);
    EXPECT_EQ(store_.AddCell(tree, Key(std::string(4097, 'x')), Key(""), 0), StoreInvalidKey);
  }
  EXPECT_EQ(store_.AddNode(Key("/a/" + std::string(4094, 'x')), Key("x"), Key("/a"), 0), StoreInvalidKey);
}

TEST_F(CellTest, MoveChecksInOrder) {
  AddIndexes({"1/2", "3", "4/5"}, IDXATTR_NOMOVE);
  const struct {
    const char *from, *to;
    std::uint32_t result;
  } refused[] = {
      {"9", "a//b", StoreIndexNotFound}, {"1/2", "3//2", StoreInvalidKey}, {"1/2", "3", StoreIndexExists},
      {"1/2", "", StoreInvalidKey},      {"1/2", "8", StoreIndexNotFound},  // a key of one component names no parent
      {"1/2", "1/7", StoreOk},                                              // the parent stays, and so does the key
      {"1", "1/2/6", StoreInvalidKey},   {".", "1/7", StoreInvalidKey},    {"1/2", "3/2", StoreMoveProtected},
  };
  for (const auto& [from, to, result] : refused) EXPECT_EQ(Move(from, to), result) << from << " to " << to;
  EXPECT_EQ(Indexes(), Keys({".", "1", "1/2", "3", "4", "4/5"}));
  EXPECT_EQ(Move("1/2", "3/2", 1), StoreOk);
  // In the folder tree the parent of a key like /b is the cell with the empty key, not the root.
  store_.AddCell(kFolderTree, Key("/a/b"), Key(""), 0);
  EXPECT_EQ(store_.MoveCell(kFolderTree, Key("/a/b"), Key(""), 0), StoreIndexExists);
  EXPECT_EQ(store_.MoveCell(kFolderTree, Key("/a/b"), Key("/b"), 0), StoreOk);
  EXPECT_STREQ(store_.SearchCell(kFolderTree, Key("/a"))->nextSibling->info->key.Text(), "/a/b");
}

TEST_F(CellTest, MovedCellHasNoKeyAndLosesItsDescendants) {
  AddIndexes({"1", "1/2", "1/2/3", "1/2/3/4", "5", "6"});
  AddImage("/p/a", "1/2");
  AddImage("/p/b", "1/2/3");
  AddImage("/p/c", "1/2/3/4");
  const CIDXCell* const moved = Index("1/2");
  EXPECT_EQ(Move("1/2", "5/2"), StoreOk);
  EXPECT_EQ(Indexes(), Keys({".", "1", "5", "1/2", "6"}));
  for (const char* key : {"1/2", "5/2", "1/2/3", "1/2/3/4"}) EXPECT_EQ(Index(key), nullptr) << key;

  // Its images and those of its former descendants keep their keys and may be moved or removed.
  EXPECT_EQ(store_.SearchNode(Key("/p/a"))->cell[kIndexTree], moved);
  EXPECT_EQ(store_.MoveNode(kIndexTree, Key("/p/b"), Key("1"), 0), StoreOk);
  EXPECT_EQ(store_.RemoveNode(Key("/p/a"), 0), StoreOk);

  // The key may be used again. The new parent has a child, and keeps it when the parent itself is moved.
  AddIndexes({"1/2"});
  EXPECT_EQ(store_.RemoveCell(kIndexTree, Key("5"), 1), StoreIndexHasChildren);
  EXPECT_EQ(Move("5", "6/5"), StoreOk);
  EXPECT_EQ(Indexes(), Keys({".", "1", "1/2", "6", "5"}));
}

TEST_F(CellTest, WalksContinueFromTheNewPlaceOfTheirCell) {
  for (const std::string key : {"1", "1/2", "1/2/3", "5", "7"}) {
    AddIndexes({key});
    for (const char* name : {"a", "b"}) AddImage(key + name, key);
  }
  struct Walk {
    const char *start, *from;
    Keys cells, images;  // found after 1/2 was moved below 5 while the walk stood on the first image of `from`
    SearchHandle overCells{}, overImages{};
  } walks[] = {
      {"", "1/2", {"7"}, {"1/2b", "7a", "7b"}},
      {"", "1/2/3", {"7"}, {"1/2/3b", "7a", "7b"}},
      {"", "1", {"5", "1/2", "7"}, {"1b", "5a", "5b", "1/2a", "1/2b", "7a", "7b"}},
      {"1", "1/2", {}, {}},
      {"1/2", "1/2/3", {}, {"1/2/3b"}},
  };
  for (Walk& walk : walks) {
    Key cells(walk.start), images(walk.start);
    CIDXString noFolder;
    const CIDXCell* cell = store_.GetFirstCell(&walk.overCells, kIndexTree, cells, 1);
    while (cell && cell != Index(walk.from)) cell = store_.GetNextCell(&walk.overCells, 1);
    const CIDXNode* node = store_.GetFirstNode(&walk.overImages, images, noFolder, 1);
    while (node && node->cell[kIndexTree] != Index(walk.from)) node = store_.GetNextNode(&walk.overImages, 1);
    ASSERT_TRUE(cell && node);
  }
  ASSERT_EQ(Move("1/2", "5/2"), StoreOk);
  for (Walk& walk : walks) {
    Keys cells, images;
    while (const CIDXCell* cell = store_.GetNextCell(&walk.overCells, 1)) cells.emplace_back(cell->info->key.Text());
    while (const CIDXNode* node = store_.GetNextNode(&walk.overImages, 1)) images.emplace_back(node->info->key.Text());
    EXPECT_EQ(cells, walk.cells) << walk.start << " at " << walk.from;
    EXPECT_EQ(images, walk.images) << walk.start << " at " << walk.from;
  }
}

TEST_F(CellTest, WalkOverImagesEndsIfItsFolderLeavesTheSubtree) {
  AddIndexes({"1"});
  for (const char* image : {"/p/q/a", "/p/q/b"}) store_.AddNode(Key(image), Key("1"), Key("/p/q"), 0);
  SearchHandle handle{};
  Key everyIndex(""), folder("/p");
  ASSERT_NE(store_.GetFirstNode(&handle, everyIndex, folder, 1), nullptr);
  ASSERT_EQ(store_.MoveCell(kFolderTree, Key("/p/q"), Key("/q"), 0), StoreOk);
  EXPECT_EQ(store_.GetNextNode(&handle, 1), nullptr);
}

TEST_F(CellTest, GroupsOutOfOrderAfterAMoveLoseTheirMarkersWithTheirImages) {
  for (const Keys& order : {Keys{"c", "x2", "x"}, Keys{"c", "x", "x2"}}) {
    store_.Initialize();
    AddIndexes({"1", "2", "3", "4"});
    AddImage("c", "2");
    AddImage("x", "3");
    Move("2", "4/2");
    AddImage("x2", "3");  // before the group of the moved index, although the group of its own index follows that
    AddImage("x3", "3");
    const auto folder = [this] { return StateOf(store_).cells[kFolderTree].back(); };
    EXPECT_EQ(folder().images, Keys({"x2", "x3", "c", "x"}));
    EXPECT_EQ(folder().groups, Keys({"x2", "c", "x"}));
    store_.RemoveNode(Key("x3"), 0);
    for (const std::string& image : order) {
      EXPECT_EQ(store_.RemoveNode(Key(image), 0), StoreOk);
      EXPECT_EQ(folder().groups, folder().images) << image;
    }
  }
}

TEST_F(CellTest, SweepDeletesAFewEntriesAtATime) {
  constexpr std::size_t kImages = 10 * OpenFinds::kSweptAtOnce;
  AddIndexes({"1"});
  SearchHandle handle{};
  ASSERT_TRUE(store_.Finds().Open(handle));
  for (std::size_t i = 0; i < kImages; ++i) AddImage("/p/" + std::to_string(i), "1");
  store_.RemoveCell(kIndexTree, Key("1"), 0);
  store_.Finds().Close(handle);
  for (std::size_t waits = kImages + 1; waits > 1; waits -= OpenFinds::kSweptAtOnce) {
    EXPECT_EQ(StoreInspector(store_).Waiting(), waits);
    store_.Finds().Sweep();
  }
  EXPECT_EQ(StoreInspector(store_).Waiting(), 1u);
}

}  // namespace

}  // namespace catalogcore
