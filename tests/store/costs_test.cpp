// What chosen keys cost beside ordinary ones, as many in the same run.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <deque>
#include <random>
#include <set>

#include "tests/support/catalogue_model.h"
#include "tests/support/store_inspector.h"

namespace catalogcore {

namespace {

struct Record {
  std::string image, index;
};

// The shortest time of three in which the images are filed in one folder and removed, in random order.
double TimeOf(const std::vector<Record>& records) {
  const Key folder("/p");
  std::deque<Key> images, indexes;
  for (const auto& [image, index] : records) {
    images.emplace_back(image);
    indexes.emplace_back(index);
  }
  std::vector<std::size_t> order(records.size());
  for (std::size_t i = 0; i < order.size(); ++i) order[i] = i;
  std::shuffle(order.begin(), order.end(), std::mt19937(1));
  double shortest = 1e9;
  for (int round = 0; round < 3; ++round) {
    CIndexData store;
    store.Initialize();
    for (const Key& index : indexes) store.AddCell(kIndexTree, index, index, 0);
    const auto begin = std::chrono::steady_clock::now();
    for (const std::size_t i : order) EXPECT_EQ(store.AddNode(images[i], indexes[i], folder, 0), StoreOk);
    for (const std::size_t i : order) EXPECT_EQ(store.RemoveNode(images[i], 0), StoreOk);
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
    shortest = std::min(shortest, taken.count());
  }
  return shortest;
}

TEST(Costs, ChosenKeysCostLittleMoreThanOthers) {
  constexpr int kImages = 10000;
  constexpr double kMostTimes = 20;
  std::vector<Record> ordinary, ownIndexes, spellings;
  for (int i = 0; i < kImages; ++i) {
    const std::string number = std::to_string(100000 + i);
    ordinary.push_back({"/p/aaaabbbbccccdddd" + number, "1"});
    ownIndexes.push_back({"/p/aaaabbbbccccdddd" + number, "1/" + number});
  }
  for (int name = 0; static_cast<int>(spellings.size()) < kImages; ++name) {
    std::set<unsigned> buckets;
    for (unsigned bits = 0; buckets.size() < CIDXString::kBucketCount && spellings.size() < kImages; ++bits) {
      std::string spelling = "/p/aaaabbbbccccdddd" + std::to_string(100000 + name);
      for (std::size_t i = 0; i < 16; ++i) spelling[3 + i] -= bits >> i & 1u ? 'a' - 'A' : 0;
      if (buckets.insert(ModelHash(spelling)).second) spellings.push_back({spelling, "1"});
    }
  }
  const double usual = TimeOf(ordinary);
  EXPECT_LT(TimeOf(ownIndexes), usual * kMostTimes);
  EXPECT_LT(TimeOf(spellings), usual * kMostTimes);
}

}  // namespace

}  // namespace catalogcore
