// The store's key table and hash tables of other libraries, all with the same entries.
#include <absl/container/flat_hash_set.h>
#include <malloc.h>

#include <algorithm>
#include <boost/intrusive/unordered_set.hpp>
#include <cstdlib>
#include <deque>
#include <memory>
#include <optional>
#include <unordered_set>
#include <vector>

#include "bench/store/catalogues.h"
#include "bench/store/store_bench.h"
#include "bench/support/ratios.h"
#include "store/key_table.h"

namespace catalogcore {

namespace {

using BoostHook = boost::intrusive::unordered_set_base_hook<boost::intrusive::link_mode<boost::intrusive::normal_link>>;

struct Entry : BoostHook {
  struct Info {
    CIDXString key;
    std::uint32_t keyHash = 0;
    std::uint16_t bucket = 0;
  };
  Info record;
  Info* info = &record;
  Entry* tableNext = nullptr;
  std::optional<HashedKey> hashed;
};

// All other tables use the hash stored in the entry, and find a HashedKey without constructing an entry.
struct Hash {
  using is_transparent = void;
  std::size_t operator()(const HashedKey& key) const { return key.hash * std::size_t{0x9E3779B97F4A7C15u}; }
  std::size_t operator()(const Entry* entry) const { return entry->info->keyHash * std::size_t{0x9E3779B97F4A7C15u}; }
  std::size_t operator()(const Entry& entry) const { return operator()(&entry) >> 32; }
};

struct Equal {
  using is_transparent = void;
  bool operator()(const HashedKey& key, const Entry* entry) const { return key.IsKeyOf(*entry->info); }
  bool operator()(const Entry* entry, const HashedKey& key) const { return key.IsKeyOf(*entry->info); }
  bool operator()(const HashedKey& key, const Entry& entry) const { return key.IsKeyOf(*entry.info); }
  bool operator()(const Entry* a, const Entry* b) const { return a == b; }  // no key is inserted twice
  bool operator()(const Entry& a, const Entry& b) const { return &a == &b; }
};

struct OurTable {
  void Insert(Entry& entry) { table.Insert(*entry.hashed, &entry); }
  bool Has(const HashedKey& key) const { return table.Find(key) != nullptr; }
  KeyTable<Entry> table;
};

template <typename Set>
struct SetTable {
  void Insert(Entry& entry) { set.insert(&entry); }
  bool Has(const HashedKey& key) const { return set.find(key) != set.end(); }
  Set set;
};
using StandardTable = SetTable<std::unordered_set<Entry*, Hash, Equal>>;
using AbseilTable = SetTable<absl::flat_hash_set<Entry*, Hash, Equal>>;

// Links the entries themselves, as the store's table does. The caller provides the buckets; doubling them moves all
// entries at once.
struct BoostTable {
  using Set = boost::intrusive::unordered_set<Entry, boost::intrusive::hash<Hash>, boost::intrusive::equal<Equal>,
                                              boost::intrusive::power_2_buckets<true>>;
  ~BoostTable() { set.clear(); }
  void Insert(Entry& entry) {
    if (set.size() == buckets.size()) {
      std::vector<Set::bucket_type> more(buckets.size() * 2);
      set.rehash({more.data(), more.size()});
      buckets.swap(more);
    }
    set.insert(entry);
  }
  bool Has(const HashedKey& key) const {
    const auto hash = [](const HashedKey& sought) { return Hash()(sought) >> 32; };
    return set.find(key, hash, Equal()) != set.end();
  }
  std::vector<Set::bucket_type> buckets{16};
  Set set{{buckets.data(), buckets.size()}};
};

struct Entries {
  explicit Entries(int count) : images(count) {
    for (const CIDXString& key : images.keys) {
      Entry::Info& info = *entries.emplace_back().info;
      info.key.CopyString(key.Text());
      info.keyHash = entries.back().hashed.emplace(info.key).hash;
      info.bucket = static_cast<std::uint16_t>(key.GetHashKey());
    }
  }
  Images images;
  std::deque<Entry> entries;
};

template <typename Table>
std::unique_ptr<Table> Filled(Entries& all) {
  auto table = std::make_unique<Table>();
  for (Entry& entry : all.entries) table->Insert(entry);
  return table;
}

template <typename Table>
double InsertAll(Entries& all) {
  auto table = std::make_unique<Table>();
  return ThreadTime(all.images.count, [&] {
    for (Entry& entry : all.entries) table->Insert(entry);
  });
}

template <typename Table>
double WorstInsert(Entries& all) {
  auto table = std::make_unique<Table>();
  double worst = 0;
  for (Entry& entry : all.entries) worst = std::max(worst, ThreadTime(1, [&] { table->Insert(entry); }));
  return worst;
}

template <typename Table>
double FindAll(Entries& all) {
  const auto table = Filled<Table>(all);
  return ThreadTime(all.images.count, [&] {
    for (const int image : all.images.shuffled) {
      if (!table->Has(HashedKey(all.images.keys[static_cast<std::size_t>(image)]))) std::abort();
    }
  });
}

template <typename Table>
double BytesPerEntry(Entries& all) {
  const auto bytes = [] {
    const struct mallinfo2 info = mallinfo2();
    return static_cast<double>(info.uordblks + info.hblkhd);
  };
  const double before = bytes();
  const auto table = Filled<Table>(all);
  return (bytes() - before) / all.images.count;
}

}  // namespace

void AddKeyTableRows() {
  static constexpr int kCount = 1000000, kRounds = 3;
  const auto entries = std::make_shared<std::unique_ptr<Entries>>();
  const auto round = [entries](double (*measure)(Entries&)) -> Round {
    return [entries, measure] {
      if (!*entries) *entries = std::make_unique<Entries>(kCount);
      return measure(**entries);
    };
  };
  const auto rows = [&](const char* name, double (*ours)(Entries&), double (*standard)(Entries&),
                        double (*abseil)(Entries&), double (*boost)(Entries&), const char* unit) {
    const std::string row = std::string("table_") + name;
    AddRow(row + "_std", round(ours), "unordered_set", round(standard), kRounds, unit);
    AddRow(row + "_absl", round(ours), "flat_hash_set", round(abseil), kRounds, unit);
    AddRow(row + "_boost", round(ours), "boost::intrusive", round(boost), kRounds, unit);
  };
  rows("find", FindAll<OurTable>, FindAll<StandardTable>, FindAll<AbseilTable>, FindAll<BoostTable>, "ns");
  rows("insert", InsertAll<OurTable>, InsertAll<StandardTable>, InsertAll<AbseilTable>, InsertAll<BoostTable>, "ns");
  rows("worst_insert", WorstInsert<OurTable>, WorstInsert<StandardTable>, WorstInsert<AbseilTable>,
       WorstInsert<BoostTable>, "ns");
  rows("memory", BytesPerEntry<OurTable>, BytesPerEntry<StandardTable>, BytesPerEntry<AbseilTable>,
       BytesPerEntry<BoostTable>, "B");
}

}  // namespace catalogcore
