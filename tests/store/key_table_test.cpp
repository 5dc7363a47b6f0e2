// The key table beyond what the model reaches: many entries, keys of one hash, growth that finds no memory.
#include "store/key_table.h"

#include <gtest/gtest.h>

#include <deque>
#include <random>

#include "tests/support/catalogue_model.h"
#include "tests/support/failing_allocator.h"
#include "tests/support/store_inspector.h"

namespace catalogcore {

namespace {

struct Entry {
  struct Info {
    CIDXString key;
    std::uint32_t keyHash = 0;
    std::uint16_t bucket = 0;
  };
  Info record;
  Info* info = &record;
  Entry* tableNext = nullptr;
};

class KeyTableTest : public testing::Test {
 protected:
  Entry* Make(const std::string& key) {
    Entry& entry = entries_.emplace_back();
    entry.info->key.CopyString(key.c_str());
    entry.info->bucket = static_cast<std::uint16_t>(entry.info->key.GetHashKey());
    return &entry;
  }
  void Insert(Entry* entry) { table_.Insert(HashedKey(entry->info->key), entry); }
  Entry* Insert(const std::string& key) {
    Entry* const entry = Make(key);
    Insert(entry);
    return entry;
  }
  Entry* InsertNumber(int number) { return Insert("/pictures/" + std::to_string(number)); }
  Entry* Find(const std::string& text) {
    const Key key(text);
    return table_.Find(HashedKey(key));
  }
  void ExpectAllFound() {
    for (Entry& entry : entries_) ASSERT_EQ(table_.Find(HashedKey(entry.info->key)), &entry) << entry.info->key.Text();
    EXPECT_EQ(Find("/pictures/none"), nullptr);
  }

  std::deque<Entry> entries_;
  KeyTable<Entry> table_;
};

TEST_F(KeyTableTest, FindsWhatIsThereAfterEveryGrowth) {
  for (int i = 0; i < 2000; ++i) {
    InsertNumber(i);
    if (i < 100 || i % 97 == 0) ExpectAllFound();
  }
  // So many that some pairs have one hash: 2^17 squared over 2^33 are two.
  for (int i = 2000; i < 1 << 17; ++i) InsertNumber(i);
  ExpectAllFound();
  std::vector<Entry*> order;
  for (Entry& entry : entries_) order.push_back(&entry);
  std::shuffle(order.begin(), order.end(), std::mt19937(1));
  for (Entry* entry : order) {
    table_.Remove(entry);
    ASSERT_EQ(table_.Find(HashedKey(entry->info->key)), nullptr);
    table_.Remove(entry);  // leaves the table as it is
  }
  EXPECT_EQ(table_.Count(), 0u);
  table_.Clear();
  Insert(order[0]);
  EXPECT_EQ(table_.Find(HashedKey(order[0]->info->key)), order[0]);
}

TEST_F(KeyTableTest, SameKeyInAnotherCaseIsFoundInTheSameBucketAlone) {
  // Two spellings of one bucket and one of another, at each length around the words that are compared at once.
  for (const std::size_t size : {13u, 15u, 16u, 17u, 40u}) {
    const std::string lower(size, 'z');
    std::string same, other;
    for (unsigned bits = 1; same.empty() || other.empty(); ++bits) {
      std::string spelling = lower;
      for (std::size_t i = 0; i < 13; ++i) spelling[i] = bits >> i & 1u ? 'Z' : 'z';
      (ModelHash(spelling) == ModelHash(lower) ? same : other) = spelling;
    }
    Entry* const entry = Insert(lower);
    EXPECT_EQ(Find(same), entry);
    EXPECT_EQ(Find(other), nullptr);
    Entry* const second = Insert(other);
    Insert(lower);
    EXPECT_EQ(Find(lower), entry);  // the first of the two
    EXPECT_EQ(Find(other), second);
    // '@', '[', '`' and '{' lie beside the letters; 0xDA differs from 'Z' in its high bit alone.
    for (const char neighbour : {'[', '{', '@', '`', '\xDA', '\xFA'}) {
      std::string text = lower;
      text.back() = neighbour;
      EXPECT_EQ(Find(text), nullptr) << text;
    }
  }
}

TEST_F(KeyTableTest, WithoutMemoryToGrowNothingIsLost) {
  for (int failing = 0; failing < 8; ++failing) {
    for (int i = 0; i < 100; ++i) {
      Entry* const entry = Make("/pictures/" + std::to_string(entries_.size()));
      const FailingAllocation failure(0);
      Insert(entry);
    }
    ExpectAllFound();
    InsertNumber(static_cast<int>(entries_.size()));  // now there is memory
    ExpectAllFound();
  }
}

}  // namespace

}  // namespace catalogcore
