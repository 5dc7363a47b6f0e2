// Every allocation of every operation fails once, one after the other.
#include <gtest/gtest.h>

#include <functional>

#include "tests/support/catalogue_state.h"
#include "tests/support/failing_allocator.h"
#include "tests/support/store_inspector.h"

namespace {

using Operation = std::function<std::uint32_t(CIndexData&)>;

void Fill(CIndexData& store) {
  store.Initialize();
  for (const char* key : {"1", "2", "3"}) store.AddCell(kIndexTree, Key(key), Key(key), 2);
  store.AddNode(Key("/p/a"), Key("2"), Key("/p"), 0);
}

// Runs the operation with its first, second, third ... allocation failing, until none is left to fail;
// `check` looks at the store and the result after each failure. Returns how many failed.
int FailEach(const Operation& operation,
             const std::function<void(const CatalogueState& before, CIndexData&, int)>& check) {
  for (int failing = 0;; ++failing) {
    CIndexData store;
    Fill(store);
    const CatalogueState before = StateOf(store);
    std::uint32_t result = StoreOk;
    bool hasFailed = false;
    {
      const FailingAllocation failure(failing);
      result = operation(store);
      hasFailed = failure.HasFailed();
    }
    EXPECT_EQ(result, hasFailed ? StoreFailed : StoreOk) << failing;
    EXPECT_EQ(BrokenInvariant(store), "") << failing;
    if (!hasFailed) return failing;
    check(before, store, failing);
  }
}

void ExpectUnchanged(const CatalogueState& before, CIndexData& store, int) { EXPECT_EQ(StateOf(store), before); }

TEST(FailedAllocation, AddingACellRemovesWhatItMade) {
  const Key index("4/5/6"), folder("/x/y"), name("name");
  EXPECT_GE(FailEach([&](CIndexData& s) { return s.AddCell(kIndexTree, index, name, 0); }, ExpectUnchanged), 12);
  EXPECT_GE(FailEach([&](CIndexData& s) { return s.AddCell(kFolderTree, folder, name, 0); }, ExpectUnchanged), 8);
}

TEST(FailedAllocation, RollingBackTakesAChildlessAncestorAndItsImagesToo) {
  const Key key("/p/q/r"), name("name");
  const int failures = FailEach([&](CIndexData& s) { return s.AddCell(kFolderTree, key, name, 0); },
                                [](const CatalogueState& before, CIndexData& store, int failing) {
                                  if (failing == 0)
                                    return ExpectUnchanged(before, store, 0);  // the working copy, before any cell
                                  EXPECT_EQ(StateOf(store).cells[kFolderTree].size(), 1u);
                                  EXPECT_TRUE(StateOf(store).attributes.empty());
                                });
  EXPECT_GE(failures, 8);
}

TEST(FailedAllocation, AddingAnImageLeavesNoTraceButItsFolder) {
  const Key image("/p/b"), index("1"), known("/p"), fresh("/q");
  EXPECT_GE(FailEach([&](CIndexData& s) { return s.AddNode(image, index, known, 0); }, ExpectUnchanged), 2);
  FailEach([&](CIndexData& s) { return s.AddNode(image, index, fresh, 0); },
           [](const CatalogueState& before, CIndexData& store, int) {
             CatalogueState state = StateOf(store);
             EXPECT_EQ(state.cells[kIndexTree], before.cells[kIndexTree]);
             EXPECT_EQ(state.imageChains, before.imageChains);
             if (state.cells[kFolderTree].back().key == "/q") state.cells[kFolderTree].pop_back();
             EXPECT_EQ(state.cells[kFolderTree], before.cells[kFolderTree]);
           });
}

TEST(FailedAllocation, MovingAnImageMayLoseIt) {
  const Key image("/p/a"), index("3"), newParent("1/2"), two("2");
  int lost = 0;
  FailEach([&](CIndexData& s) { return s.MoveNode(kIndexTree, image, index, 0); },
           [&lost](const CatalogueState& before, CIndexData& store, int) {
             if (StateOf(store) == before) return;
             EXPECT_TRUE(StateOf(store).attributes.empty());
             ++lost;
           });
  EXPECT_GE(lost, 2);
  const Key name("a longer name");
  FailEach([&](CIndexData& s) { return s.RenameCell(kIndexTree, two, name, 0); }, ExpectUnchanged);
  FailEach([&](CIndexData& s) { return s.MoveCell(kIndexTree, two, newParent, 0); }, ExpectUnchanged);
}

TEST(FailedAllocation, FindsAreOpenOrNotAndKeepWhatIsRemovedWithoutAny) {
  CIndexData store;
  Fill(store);
  SearchHandle refused{}, open{};
  const Key one("1"), two("2"), image("/p/a");
  const FailingAllocation opening(0);
  EXPECT_FALSE(store.Finds().Open(refused));
  EXPECT_EQ(store.RemoveCell(kIndexTree, one, 1), StoreOk);
  EXPECT_EQ(StoreInspector(store).Waiting(), 0u);
  EXPECT_TRUE(store.Finds().Open(open));
  {
    const FailingAllocation removing(0);
    EXPECT_EQ(store.RemoveNode(image, 1), StoreOk);
    EXPECT_EQ(store.RemoveCell(kIndexTree, two, 1), StoreOk);
    EXPECT_FALSE(removing.HasFailed());
  }
  EXPECT_EQ(StoreInspector(store).Waiting(), 2u);
  store.Finds().Close(refused);
  store.Finds().Sweep();
  EXPECT_EQ(StoreInspector(store).Waiting(), 2u);
  store.Finds().Close(open);
  store.Finds().Sweep();
  EXPECT_EQ(StoreInspector(store).Waiting(), 0u);
}

TEST(FailedAllocation, MissingRootsLeakNothing) {
  for (int failing = 0; failing < 9; ++failing) {
    CIndexData store;
    {
      const FailingAllocation failure(failing);
      EXPECT_EQ(store.Initialize(), StoreOk);
      EXPECT_TRUE(failure.HasFailed());
    }
    // What can be done without a root is done, and freed at the end.
    store.AddCell(kIndexTree, Key("1/2"), Key("name"), 0);
    store.AddNode(Key("/p/a"), Key("1/2"), Key("/p"), 0);
    store.AddNode(Key("/b"), Key(""), Key(""), 0);
    SearchHandle handle{};
    Key index("1"), folder("/");
    store.GetFirstNode(&handle, index, folder, 1);
    store.MoveNode(kIndexTree, Key("/b"), Key("1/2"), 0);
    store.RemoveNode(Key("/p/a"), 1);
  }
}

}  // namespace
