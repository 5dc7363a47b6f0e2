// Random sequences of the store's operations, on the store and on the model side by side.
#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <random>

#include "tests/support/catalogue_model.h"
#include "tests/support/store_inspector.h"

namespace {

// CATALOGCORE_MODEL_OPERATIONS and CATALOGCORE_MODEL_SEED ask for more, or for the same again.
unsigned long Setting(const char* name, unsigned long standard) {
  const char* const value = std::getenv(name);
  return value ? std::strtoul(value, nullptr, 10) : standard;
}

// Two spellings of one word, different in letter case alone, that share a bucket, and so are one key.
std::pair<std::string, std::string> SameKeyInTwoCases(const std::string& word) {
  std::map<unsigned, std::string> byBucket;
  for (unsigned bits = 0; bits < 1u << word.size(); ++bits) {
    std::string spelling = word;
    for (std::size_t i = 0; i < word.size(); ++i) {
      if (bits >> i & 1u) spelling[i] = static_cast<char>(spelling[i] - 'a' + 'A');
    }
    const auto [found, isNew] = byBucket.emplace(ModelHash(spelling), spelling);
    if (!isNew) return {found->second, spelling};
  }
  return {};
}

struct KeyPool {
  Keys indexes, folders, images;
};

// With `crowded`, all images and half of the cells lie in three buckets.
KeyPool MakePool(bool crowded) {
  const auto [lower, upper] = SameKeyInTwoCases("summerholiday");
  KeyPool pool;
  pool.indexes = {"",    ".",         "1",          "1/1",        "1/10",    "1/10/3", "1/9", "2",     "2/1",
                  "2/9", "2/9/4/5/6", "3",          "9",          "/1",      "1//2",   "2/",  "A/b/c", "a/B",
                  lower, upper,       lower + "/1", upper + "/1", "1/10/3/", "10",     "./x", "./x/y"};
  pool.folders = {"",         "/",        ".",           "/Users",   "/Users/a",        "/Users/a/Pictures",
                  "/Users/b", "/users/b", "/volumes/x",  "/Volumes", "/Volumes/disk/x", "/Volumes2",
                  "/x",       "rel",      "rel/deep/er", "./rel",    "/a//b",           "/Users/a/"};
  pool.folders.insert(pool.folders.end(), {"/" + lower, "/" + upper, "/\xC3\xA4\xE2\x82\xAC"});
  for (int i = 0; pool.images.size() < 60; ++i) {
    const std::string name = "/Users/a/img_" + std::to_string(i) + ".jpg";
    if (!crowded || ModelHash(name) < 3) pool.images.push_back(name);
  }
  for (int i = 0; crowded && pool.indexes.size() < 48; ++i) {
    const std::string name = "3/x" + std::to_string(i);
    if (ModelHash(name) < 3) pool.indexes.push_back(name);
  }
  pool.images.insert(pool.images.end(), {"", "/" + lower, "/" + upper, "/Users/a/IMG_0.jpg"});
  return pool;
}

class SideBySide {
 public:
  SideBySide(const KeyPool& pool, unsigned long seed) : pool_(pool), random_(seed) { store_.Initialize(); }

  // One random operation on both; adds to `log_` what it was.
  void Step() {
    const Key image(Any(pool_.images));
    const int tree = Below(2);
    const Key index(Any(pool_.indexes)), folder(Any(pool_.folders));
    const Key cell(Any(tree == kIndexTree ? pool_.indexes : pool_.folders)), name(Any(pool_.images));
    const int force = Below(2);
    const auto attribute = static_cast<std::uint8_t>(Below(3) ? 0 : Below(16));
    log_ = std::string(" tree ") + std::to_string(tree) + " image " + image.Text() + " index " + index.Text() +
           " folder " + folder.Text() + " cell " + cell.Text() + " force " + std::to_string(force);
    const int kind = Below(100);
    if (kind < 32) {
      Same("AddNode", store_.AddNode(image, index, folder, attribute),
           model_.AddNode(image.Text(), index.Text(), folder.Text(), attribute));
    } else if (kind < 40) {
      Same("RemoveNode", store_.RemoveNode(image, force), model_.RemoveNode(image.Text(), force));
    } else if (kind < 54) {
      Same("MoveNode", store_.MoveNode(tree, image, cell, force),
           model_.MoveNode(tree, image.Text(), cell.Text(), force));
    } else if (kind < 58) {
      Same("ChangeAttributeNode", store_.ChangeAttributeNode(image, attribute),
           model_.ChangeAttributeNode(image.Text(), attribute));
    } else if (kind < 74) {
      Same("AddCell", store_.AddCell(tree, cell, name, attribute),
           model_.AddCell(tree, cell.Text(), name.Text(), attribute));
    } else if (kind < 82) {
      Same("RemoveCell", store_.RemoveCell(tree, cell, force), model_.RemoveCell(tree, cell.Text(), force));
    } else if (kind < 85) {
      Same("RenameCell", store_.RenameCell(tree, cell, name, force),
           model_.RenameCell(tree, cell.Text(), name.Text(), force));
    } else if (kind < 88) {
      Same("ChangeAttributeCell", store_.ChangeAttributeCell(tree, cell, attribute),
           model_.ChangeAttributeCell(tree, cell.Text(), attribute));
    } else if (kind < 92) {
      Same("WalkCells", WalkCells(tree, cell.Text(), force), model_.WalkCells(tree, cell.Text(), force));
    } else {
      const bool hasFolder = Below(4) != 0;
      Same("WalkImages", WalkImages(index.Text(), hasFolder, folder.Text(), force),
           model_.WalkImages(index.Text(), hasFolder, folder.Text(), force));
    }
    EXPECT_EQ(BrokenInvariant(store_), "") << log_;
    EXPECT_EQ(StateOf(store_), model_.State()) << log_;
  }

 private:
  int Below(int limit) { return static_cast<int>(random_() % static_cast<unsigned>(limit)); }
  const std::string& Any(const Keys& keys) {
    return keys[static_cast<std::size_t>(Below(static_cast<int>(keys.size())))];
  }

  template <typename Result>
  void Same(const char* operation, const Result& ours, const Result& expected) {
    log_ = operation + log_;
    EXPECT_EQ(ours, expected) << log_;
  }

  Keys WalkCells(int tree, const char* key, int recursive) {
    SearchHandle handle{};
    Key start(key);
    Keys keys;
    for (auto* cell = store_.GetFirstCell(&handle, tree, start, recursive); cell;
         cell = store_.GetNextCell(&handle, recursive)) {
      keys.emplace_back(cell->info->key.Text());
    }
    EXPECT_EQ(store_.GetNextCell(&handle, recursive), nullptr);
    return keys;
  }

  Keys WalkImages(const char* indexKey, bool hasFolder, const char* folderKey, int recursive) {
    SearchHandle handle{};
    Key index(indexKey), folder(hasFolder ? folderKey : nullptr);
    Keys keys;
    for (auto* node = store_.GetFirstNode(&handle, index, folder, recursive); node;
         node = store_.GetNextNode(&handle, recursive)) {
      keys.emplace_back(node->info->key.Text());
    }
    EXPECT_EQ(store_.GetNextNode(&handle, recursive), nullptr);
    return keys;
  }

  const KeyPool& pool_;
  std::mt19937_64 random_;
  CIndexData store_;
  CatalogueModel model_;
  std::string log_;
};

class ModelTest : public testing::TestWithParam<bool> {};

TEST_P(ModelTest, StoreAndModelAgreeAfterEveryStep) {
  constexpr unsigned long kStepsPerRun = 1000;
  const unsigned long operations = Setting("CATALOGCORE_MODEL_OPERATIONS", 100000);
  const unsigned long firstSeed = Setting("CATALOGCORE_MODEL_SEED", 1);
  const KeyPool pool = MakePool(GetParam());
  std::cout << operations << " operations, seeds from " << firstSeed << "\n";
  for (unsigned long done = 0; done < operations; done += kStepsPerRun) {
    const unsigned long seed = firstSeed + done / kStepsPerRun;
    SideBySide run(pool, seed);
    for (unsigned long step = 0; step < kStepsPerRun; ++step) {
      run.Step();
      ASSERT_FALSE(HasFailure()) << "seed " << seed << ", step " << step;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Keys, ModelTest, testing::Bool(),
                         [](const auto& test) { return test.param ? "InFewBuckets" : "Spread"; });

}  // namespace
