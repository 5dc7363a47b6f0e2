#include <gtest/gtest.h>

#include "tests/support/catalogue_state.h"
#include "tests/support/store_inspector.h"

namespace {

class NodeTest : public testing::Test {
 protected:
  NodeTest() {
    store_.Initialize();
    for (const char* key : {"1", "1/1", "2"}) store_.AddCell(kIndexTree, Key(key), Key(key), 0);
  }
  ~NodeTest() override { EXPECT_EQ(BrokenInvariant(store_), ""); }

  std::uint32_t Add(const char* image, const char* index, const char* folder = "/p") {
    return store_.AddNode(Key(image), Key(index), Key(folder), 0);
  }
  CellState Folder(const char* key) {
    for (const CellState& cell : StateOf(store_).cells[kFolderTree]) {
      if (cell.key == key) return cell;
    }
    return {};
  }

  CIndexData store_;
};

TEST_F(NodeTest, RefusalsComeInTheirOrder) {
  ASSERT_EQ(Add("/p/a", "1"), StoreOk);
  EXPECT_EQ(Add("/p/a", ".", "bad//folder"), StoreImageExists);
  EXPECT_EQ(Add("/p/b", ".", "bad//folder"), StoreInvalidKey);
  EXPECT_EQ(Add("/p/b", "9", "bad//folder"), StoreIndexNotFound);
  EXPECT_EQ(Add("/p/b", "1", "bad//folder"), StoreInvalidKey);
  EXPECT_EQ(Add("/p/b", "1", "/q/r"), StoreOk);
  EXPECT_EQ(Folder("/q/r").images, Keys({"/p/b"}));
}

TEST_F(NodeTest, FolderListIsGroupedByIndexInTreeOrder) {
  for (const auto& [image, index] : {std::pair{"x1", "2"}, {"x2", "1/1"}, {"x3", "1"}, {"x4", "1/1"}})
    Add(image, index);
  EXPECT_EQ(Folder("/p").images, Keys({"x3", "x2", "x4", "x1"}));
  EXPECT_EQ(Folder("/p").groups, Keys({"x3", "x2", "x1"}));
  store_.RemoveNode(Key("x2"), 0);
  EXPECT_EQ(Folder("/p").groups, Keys({"x3", "x4", "x1"}));
  store_.RemoveNode(Key("x4"), 0);
  EXPECT_EQ(Folder("/p").groups, Keys({"x3", "x1"}));
  Add("x5", "");  // the root's group comes first
  EXPECT_EQ(Folder("/p").groups, Keys({"x5", "x3", "x1"}));
}

TEST_F(NodeTest, MovingKeepsTheObjectInPlaceAndMakesANewOneElsewhere) {
  Add("a", "1");
  Add("b", "2");
  const CIDXNode* const object = store_.SearchNode(Key("a"));
  EXPECT_EQ(store_.MoveNode(kIndexTree, Key("a"), Key("1"), 0), StoreOk);
  EXPECT_EQ(store_.SearchNode(Key("a")), object);
  EXPECT_EQ(store_.MoveNode(kIndexTree, Key("a"), Key("2"), 0), StoreOk);
  EXPECT_EQ(Folder("/p").images, Keys({"b", "a"}));
  EXPECT_EQ(store_.MoveNode(kFolderTree, Key("a"), Key("/elsewhere"), 0), StoreIndexNotFound);
}

TEST_F(NodeTest, AnImageThatCannotBeFiledAgainIsGone) {
  Add("a", "");  // in the root, under whose own key nothing is filed
  EXPECT_EQ(store_.MoveNode(kFolderTree, Key("a"), Key(""), 0), StoreInvalidKey);
  EXPECT_EQ(store_.SearchNode(Key("a")), nullptr);
}

TEST_F(NodeTest, FilteredWalkLeavesAFolderOnceItsRunIsOver) {
  for (const char* folder : {"/p", "/p/q", "/p/r"}) {
    for (const auto& [name, index] : {std::pair{"/a", "1"}, {"/b", "1/1"}, {"/c", "2"}, {"/d", "1"}}) {
      Add((std::string(folder) + name).c_str(), index, folder);
    }
  }
  store_.RemoveNode(Key("/p/q/a"), 0);
  const auto walk = [this](const char* index, const char* folder, int recursive) {
    SearchHandle handle{};
    Key indexKey(index), folderKey(folder);
    Keys keys;
    for (auto* node = store_.GetFirstNode(&handle, indexKey, folderKey, recursive); node;
         node = store_.GetNextNode(&handle, recursive)) {
      keys.emplace_back(node->info->key.Text());
    }
    return keys;
  };
  EXPECT_EQ(walk("1", "/p/", 1), Keys({"/p/a", "/p/d", "/p/b", "/p/q/d", "/p/q/b", "/p/r/a", "/p/r/d", "/p/r/b"}));
  EXPECT_EQ(walk("1/1", "/p", 1), Keys({"/p/b", "/p/q/b", "/p/r/b"}));
  EXPECT_EQ(walk("2", "/p", 0), Keys({"/p/c"}));
  EXPECT_EQ(walk("2", ".", 1), Keys({"/p/c", "/p/q/c", "/p/r/c"}));
  EXPECT_EQ(walk("9", "/p", 1), Keys());
}

}  // namespace
