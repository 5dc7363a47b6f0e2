#include <gtest/gtest.h>

#include <string>

#include "tests/support/catalogue_state.h"
#include "tests/support/store_inspector.h"

namespace catalogcore {

namespace {

class CellTest : public testing::Test {
 protected:
  CellTest() { store_.Initialize(); }
  ~CellTest() override { EXPECT_EQ(BrokenInvariant(store_), ""); }

  std::uint32_t AddIndex(const char* key, std::uint8_t attribute = 0) {
    return store_.AddCell(kIndexTree, Key(key), Key(key), attribute);
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

TEST_F(CellTest, KeysKeepTheRulesOfTheirTree) {
  const auto levels = [](int count) {
    std::string key = "x";
    for (int i = 1; i < count; ++i) key += "/x";
    return key;
  };
  const struct {
    std::string key;
    bool inIndexTree, inFolderTree;
  } cases[] = {
      {"", false, true},
      {"/a", false, true},
      {"a//b", false, false},
      {"/", false, false},
      {levels(64), true, true},
      {levels(65), false, true},
      {"/" + levels(512), false, true},
      {"/" + levels(513), false, false},
      {std::string(4096, 'x'), true, true},
      {std::string(4097, 'x'), false, false},
  };
  for (const auto& [key, inIndexTree, inFolderTree] : cases) {
    EXPECT_EQ(StoreInspector::IsValidKey(kIndexTree, Key(key)), inIndexTree) << key;
    EXPECT_EQ(StoreInspector::IsValidKey(kFolderTree, Key(key)), inFolderTree) << key;
  }
  AddIndex("1");
  EXPECT_EQ(store_.AddNode(Key("/a/" + std::string(4094, 'x')), Key("1"), Key("/a"), 0), StoreInvalidKey);
}

TEST_F(CellTest, MoveChecksInOrder) {
  for (const char* key : {"1/2", "3", "4/5"}) AddIndex(key, 1);
  EXPECT_EQ(Move("9", "a//b"), StoreIndexNotFound);
  EXPECT_EQ(Move("1/2", "3//2"), StoreInvalidKey);
  EXPECT_EQ(Move("1/2", "3"), StoreIndexExists);
  EXPECT_EQ(Move("1/2", ""), StoreInvalidKey);  // before it is found to name the root
  EXPECT_EQ(Move("1/2", "8/9"), StoreIndexNotFound);
  EXPECT_EQ(Move("1/2", "8"), StoreIndexNotFound);  // a key of one component names no parent
  EXPECT_EQ(Move("1/2", "1/7"), StoreOk);           // it hangs there already: nothing changes, not even its key
  EXPECT_EQ(Move("1", "1/2/6"), StoreInvalidKey);
  EXPECT_EQ(Move(".", "1/7", 1), StoreInvalidKey);
  EXPECT_EQ(Move("1/2", "3/2"), StoreMoveProtected);
  EXPECT_EQ(Indexes(), Keys({".", "1", "1/2", "3", "4", "4/5"}));
  EXPECT_EQ(Move("1/2", "3/2", 1), StoreOk);
  // In the folder tree a key right below "/" names the cell with the empty key, not the root.
  for (const char* key : {"/a/b", "rel"}) store_.AddCell(kFolderTree, Key(key), Key(""), 0);
  EXPECT_EQ(store_.MoveCell(kFolderTree, Key("/a/b"), Key(""), 0), StoreIndexExists);
  EXPECT_EQ(store_.MoveCell(kFolderTree, Key("/a/b"), Key("/b"), 0), StoreOk);
  EXPECT_STREQ(store_.SearchCell(kFolderTree, Key("/a"))->nextSibling->info->key.Text(), "/a/b");
}

TEST_F(CellTest, MovedCellIsFoundByWalksAloneAndLeavesItsDescendants) {
  for (const char* key : {"1", "1/2", "1/2/3", "1/2/3/4", "5", "6"}) AddIndex(key);
  for (const auto& [image, index] : {std::pair{"/p/a", "1/2"}, {"/p/b", "1/2/3"}, {"/p/c", "1/2/3/4"}, {"/p/d", "5"}}) {
    ASSERT_EQ(store_.AddNode(Key(image), Key(index), Key("/p"), 0), StoreOk);
  }
  const CIDXCell* const moved = Index("1/2");
  EXPECT_EQ(Move("1/2", "5/2"), StoreOk);
  EXPECT_EQ(Indexes(), Keys({".", "1", "5", "1/2", "6"}));
  EXPECT_EQ(Index("5")->firstChild, moved);
  for (const char* key : {"1/2", "5/2", "1/2/3", "1/2/3/4"}) EXPECT_EQ(Index(key), nullptr) << key;

  // Its images and those left behind are found by key, and may be moved back into the tree or removed.
  EXPECT_EQ(store_.SearchNode(Key("/p/a"))->cell[kIndexTree], moved);
  EXPECT_EQ(store_.MoveNode(kIndexTree, Key("/p/b"), Key("1"), 0), StoreOk);
  EXPECT_EQ(store_.RemoveNode(Key("/p/a"), 0), StoreOk);
  EXPECT_NE(store_.SearchNode(Key("/p/c")), nullptr);

  // The key is free again; the parent cannot go, and takes the moved cell along when it is moved itself.
  EXPECT_EQ(AddIndex("1/2"), StoreOk);
  EXPECT_EQ(store_.RemoveCell(kIndexTree, Key("5"), 1), StoreIndexHasChildren);
  EXPECT_EQ(Move("5", "6/5"), StoreOk);
  EXPECT_EQ(Indexes(), Keys({".", "1", "1/2", "6", "5"}));
}

TEST_F(CellTest, WalksGoOnFromWhereTheirCellWasMovedTo) {
  for (const char* key : {"1", "1/2", "1/2/3", "1/4", "5", "5/6", "7"}) {
    AddIndex(key);
    for (const char* name : {"/a", "/b"}) {
      ASSERT_EQ(store_.AddNode(Key(std::string("/p/") + key + name), Key(key), Key("/p"), 0), StoreOk);
    }
  }
  struct Walk {
    const char *start, *from;
    Keys cells, images;  // what is still found after 1/2 was moved below 5, from the first image of `from` on
    SearchHandle overCells{}, overImages{};
  } walks[] = {
      {"", "1/2", {"7"}, {"/p/1/2/b", "/p/7/a", "/p/7/b"}},
      {"", "1/2/3", {"7"}, {"/p/1/2/3/b", "/p/7/a", "/p/7/b"}},
      {"",
       "1",
       {"1/4", "5", "5/6", "1/2", "7"},
       {"/p/1/b", "/p/1/4/a", "/p/1/4/b", "/p/5/a", "/p/5/b", "/p/5/6/a", "/p/5/6/b", "/p/1/2/a", "/p/1/2/b", "/p/7/a",
        "/p/7/b"}},
      {"1", "1/2", {}, {}},
      {"1", "1/2/3", {}, {}},
      {"1/2", "1/2/3", {}, {"/p/1/2/3/b"}},
  };
  for (Walk& walk : walks) {
    Key cells(walk.start), images(walk.start);
    CIDXString folder;
    const CIDXCell* cell = store_.GetFirstCell(&walk.overCells, kIndexTree, cells, 1);
    while (cell && cell != Index(walk.from)) cell = store_.GetNextCell(&walk.overCells, 1);
    const CIDXNode* node = store_.GetFirstNode(&walk.overImages, images, folder, 1);
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

TEST_F(CellTest, WalkInAFolderThatIsMovedOutOfItsSubtreeEnds) {
  AddIndex("1");
  for (const char* image : {"/p/q/a", "/p/q/b"}) {
    ASSERT_EQ(store_.AddNode(Key(image), Key("1"), Key("/p/q"), 0), StoreOk);
  }
  store_.AddCell(kFolderTree, Key("/r"), Key(""), 0);
  SearchHandle handle{};
  CIDXString everyIndex;
  Key folder("/p");
  ASSERT_NE(store_.GetFirstNode(&handle, everyIndex, folder, 1), nullptr);
  ASSERT_EQ(store_.MoveCell(kFolderTree, Key("/p/q"), Key("/r/q"), 0), StoreOk);
  EXPECT_EQ(store_.GetNextNode(&handle, 1), nullptr);
}

TEST_F(CellTest, WhatAClosedFindKeptIsDeletedAFewEntriesAtATime) {
  constexpr std::size_t kImages = 10 * OpenFinds::kSweptAtOnce;
  AddIndex("1");
  SearchHandle handle{};
  ASSERT_TRUE(store_.Finds().Open(handle));
  for (std::size_t i = 0; i < kImages; ++i) {
    ASSERT_EQ(store_.AddNode(Key("/p/a"), Key("1"), Key("/p"), 0), StoreOk);
    ASSERT_EQ(store_.RemoveNode(Key("/p/a"), 0), StoreOk);
  }
  store_.Finds().Close(handle);
  for (std::size_t waits = kImages; waits > 0; waits -= OpenFinds::kSweptAtOnce) {
    EXPECT_EQ(StoreInspector(store_).Waiting(), waits);
    store_.Finds().Sweep();
  }
  EXPECT_EQ(StoreInspector(store_).Waiting(), 0u);
}

TEST_F(CellTest, GroupsLeftOutOfOrderByAMoveAreDroppedWhole) {
  for (const Keys& order : {Keys{"c", "x2", "x"}, Keys{"c", "x", "x2"}}) {
    store_.Initialize();
    for (const char* key : {"1", "2", "3", "4"}) AddIndex(key);
    const auto add = [this](const char* image, const char* index) {
      EXPECT_EQ(store_.AddNode(Key(image), Key(index), Key("/p"), 0), StoreOk);
    };
    add("c", "2");
    add("x", "3");
    Move("2", "4/2");
    add("x2", "3");  // ahead of the moved index's group, although its own lies behind that
    const CellState folder = StateOf(store_).cells[kFolderTree].back();
    EXPECT_EQ(folder.images, Keys({"x2", "c", "x"}));
    EXPECT_EQ(folder.groups, folder.images);
    for (const std::string& image : order) {
      EXPECT_EQ(store_.RemoveNode(Key(image), 0), StoreOk);
      EXPECT_EQ(StateOf(store_).cells[kFolderTree].back().groups, StateOf(store_).cells[kFolderTree].back().images);
      EXPECT_EQ(BrokenInvariant(store_), "") << image;
    }
  }
}

static_assert(StoreFailed == 1 && StoreImageExists == 2 && StoreImageNotFound == 3 && StoreIndexExists == 4 &&
              StoreIndexNotFound == 5 && StoreIndexHasChildren == 6 && StoreInvalidKey == 8 &&
              StoreMoveProtected == 17 && StoreRemoveProtected == 18 && StoreRenameProtected == 19);

}  // namespace

}  // namespace catalogcore
