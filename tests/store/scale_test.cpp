// The store with more entries than the model test has, with unfavourable keys, and without memory to grow.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <random>
#include <set>

#include "tests/support/catalogue_model.h"
#include "tests/support/failing_allocator.h"
#include "tests/support/store_inspector.h"

namespace catalogcore {

namespace {

class ScaleTest : public testing::Test {
 protected:
  ScaleTest() {
    store_.Initialize();
    store_.AddCell(kIndexTree, Key("1"), Key("1"), 0);
  }
  static Key ImageKey(int number) { return Key("/p/" + std::to_string(number)); }
  // Adds the image with the next number; `failing` is the allocation that fails, -1 for none.
  void Add(int failing = -1) {
    const Key key = ImageKey(images_++), index("1"), folder("/p");
    const FailingAllocation failure(failing);
    ASSERT_EQ(store_.AddNode(key, index, folder, 0), StoreOk);
  }
  void ExpectAllFound() {
    for (int i = 0; i < images_; ++i) ASSERT_NE(store_.SearchNode(ImageKey(i)), nullptr) << i;
    EXPECT_EQ(store_.SearchNode(Key("/p/none")), nullptr);
  }

  CIndexData store_;
  int images_ = 0;
};

TEST_F(ScaleTest, FindsEveryEntryAfterEveryGrowth) {
  while (images_ < 1 << 17) {  // so many that some pairs have the same hash: 2^17 squared over 2^33 is 2
    Add();
    if (images_ < 100 || (images_ < 2000 && images_ % 97 == 0)) ExpectAllFound();
  }
  ExpectAllFound();
  for (int i = 0; i < images_; ++i) {
    const Key key = ImageKey(i * 4099 % images_);  // each number once
    ASSERT_EQ(store_.RemoveNode(key, 0), StoreOk);
    ASSERT_EQ(store_.SearchNode(key), nullptr);
  }
  EXPECT_EQ(BrokenInvariant(store_), "");
  store_.Initialize();
  for (int i = 0; i < 100; ++i) EXPECT_EQ(store_.SearchNode(ImageKey(i)), nullptr);
}

TEST_F(ScaleTest, LosesNothingWithoutMemoryToGrow) {
  Add();
  for (int round = 0; round < 8; ++round) {
    for (int i = 0; i < 100; ++i) Add(1);  // the first allocation is that of the image
    ExpectAllFound();
    Add();
    ExpectAllFound();
  }
}

TEST_F(ScaleTest, FindsTheFirstOfManyGroupsInASubtree) {
  Add();
  for (int i = 0; i < 100; ++i) {
    const Key index(i == 0 ? "2" : "2/" + std::to_string(i));
    store_.AddCell(kIndexTree, index, index, 0);
    ASSERT_EQ(store_.AddNode(ImageKey(1000 + i), index, Key("/p"), 0), StoreOk);
  }
  for (int first = 1000; first < 1002; ++first) {  // the subtree's top has a group only in the first round
    SearchHandle handle{};
    Key index("2"), folder("/p");
    EXPECT_EQ(store_.GetFirstNode(&handle, index, folder, 1), store_.SearchNode(ImageKey(first)));
    store_.RemoveNode(ImageKey(first), 0);
  }
}

using Record = std::pair<std::string, std::string>;  // an image and its index

// The shortest of three times of filing the images in one folder and removing them, in random order.
double TimeOf(std::vector<Record> records) {
  double shortest = 1e9;
  for (int round = 0; round < 3; ++round) {
    CIndexData store;
    store.Initialize();
    for (const auto& [image, index] : records) store.AddCell(kIndexTree, Key(index), Key(""), 0);
    std::shuffle(records.begin(), records.end(), std::mt19937(1));
    const auto begin = std::chrono::steady_clock::now();
    for (const auto& [image, index] : records) {
      EXPECT_EQ(store.AddNode(Key(image), Key(index), Key("/p"), 0), StoreOk);
    }
    for (const Record& record : records) EXPECT_EQ(store.RemoveNode(Key(record.first), 0), StoreOk);
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
    shortest = std::min(shortest, taken.count());
  }
  return shortest;
}

TEST(Scale, UnfavourableKeysCostLittleMoreThanOrdinaryOnes) {
  constexpr int kImages = 10000;
  std::vector<Record> ordinary, ownIndexes, spellings;
  for (int i = 0; i < kImages; ++i) {
    const std::string number = std::to_string(100000 + i);
    ordinary.emplace_back("/p/aaaabbbbccccdddd" + number, "1");
    ownIndexes.emplace_back("/p/aaaabbbbccccdddd" + number, "1/" + number);
  }
  for (int name = 0; static_cast<int>(spellings.size()) < kImages; ++name) {
    std::set<unsigned> buckets;
    for (unsigned bits = 0; buckets.size() < CIDXString::kBucketCount && spellings.size() < kImages; ++bits) {
      std::string spelling = "/p/aaaabbbbccccdddd" + std::to_string(100000 + name);
      for (std::size_t i = 0; i < 16; ++i) spelling[3 + i] -= bits >> i & 1u ? 'a' - 'A' : 0;
      if (buckets.insert(ModelHash(spelling)).second) spellings.emplace_back(spelling, "1");
    }
  }
  const double limit = 20 * TimeOf(ordinary);
  EXPECT_LT(TimeOf(ownIndexes), limit);
  EXPECT_LT(TimeOf(spellings), limit);
}

}  // namespace

}  // namespace catalogcore
