// Failed allocations that tests/api/allocation_test.cpp does not cover: the roll-back of AddCell, moved cells, the runs
// of a skip list, and a missing root.
#include <gtest/gtest.h>

#include "tests/support/catalogue_state.h"
#include "tests/support/failing_allocator.h"
#include "tests/support/store_inspector.h"

namespace catalogcore {

namespace {

void Fill(CIndexData& store) {
  store.Initialize();
  for (const char* key : {"1", "2", "3"}) store.AddCell(kIndexTree, Key(key), Key(key), 2);
  store.AddNode(Key("/p/a"), Key("2"), Key("/p"), 0);
}

// Performs the operation on new stores, with its first, second, third ... allocation failing, until the operation
// succeeds. `check` compares the states before and after each failure. Returns the number of failures.
template <typename Operation, typename Check>
int FailEach(Operation operation, Check check) {
  for (int failing = 0;; ++failing) {
    SCOPED_TRACE(failing);
    CIndexData store;
    Fill(store);
    const CatalogueState before = StateOf(store);
    const std::uint32_t result = [&] {
      const FailingAllocation failure(failing);
      return operation(store);
    }();
    EXPECT_EQ(BrokenInvariant(store), "");
    if (result == StoreOk) return failing;
    EXPECT_EQ(result, StoreFailed);
    check(before, StateOf(store), failing);
  }
}

TEST(FailedAllocation, RollsBackAddingOrMovingACell) {
  const Key index("3/4/5/6"), folder("/x/y"), below("/p/q/r"), name("name"), two("2"), newParent("1/2");
  const auto same = [](const CatalogueState& before, const CatalogueState& now, int) { EXPECT_EQ(now, before); };
  // The roll-back ends at the index 3, which is protected.
  EXPECT_GE(FailEach([&](CIndexData& s) { return s.AddCell(kIndexTree, index, name, 0); }, same), 12);
  EXPECT_GE(FailEach([&](CIndexData& s) { return s.AddCell(kFolderTree, folder, name, 0); }, same), 8);
  EXPECT_GE(FailEach([&](CIndexData& s) { return s.MoveCell(kIndexTree, two, newParent, 0); }, same), 1);
  // It includes an older folder without children or protection, with its images. Only the first allocation, the copy of
  // the key, fails before that.
  const auto all = [](const CatalogueState& before, const CatalogueState& now, int failing) {
    EXPECT_EQ(now.cells[kFolderTree].size(), failing == 0 ? before.cells[kFolderTree].size() : 1u);
    EXPECT_EQ(now.attributes.size(), failing == 0 ? 1u : 0u);
  };
  EXPECT_GE(FailEach([&](CIndexData& s) { return s.AddCell(kFolderTree, below, name, 0); }, all), 8);
}

TEST(FailedAllocation, LeavesGroupsWithoutRuns) {
  CIndexData store;
  store.Initialize();
  int failures = 0;
  for (int index = 0; index < 400; ++index) store.AddCell(kIndexTree, Key(std::to_string(index)), Key(""), 0);
  for (int image = 0; image < 400; ++image) {
    const Key index(std::to_string(image * 7 % 400)), key("/p/" + std::to_string(image)), folder("/p");
    const FailingAllocation failure(image == 0 ? -1 : 2);  // after the image and its marker
    ASSERT_EQ(store.AddNode(key, index, folder, 0), StoreOk);
    failures += failure.HasFailed();
  }
  EXPECT_GT(failures, 300);
  EXPECT_EQ(BrokenInvariant(store), "");
}

TEST(FailedAllocation, WithoutARootTheOldestOfEqualKeysIsFound) {
  CIndexData store;
  for (int i = 0; i < 3; ++i) EXPECT_EQ(store.AddCell(kFolderTree, Key(""), Key(""), 0), StoreOk);
  EXPECT_EQ(BrokenInvariant(store), "");
}

}  // namespace

}  // namespace catalogcore
