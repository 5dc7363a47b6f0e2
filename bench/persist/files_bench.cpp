#include "bench/persist/files_bench.h"

#include <sqlite3.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <string>
#include <unordered_map>
#include <vector>

#include "base/owners.h"
#include "bench/persist/picture_folder.h"
#include "bench/support/ratios.h"
#include "catalogcore.h"

namespace catalogcore {

namespace {

constexpr int kIndexCount = 20;

void Require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "catalogcore_bench: %s failed\n", what);
  std::abort();
}

CFReference<CFStringRef> Text(const std::string& text) {
  return CFReference<CFStringRef>(CFStringCreateWithCString(nullptr, text.c_str(), kCFStringEncodingUTF8));
}

// Calls a file operation of the library's with the name.
void Call(IDXSTATUS (*operation)(IDXSTR), const std::string& name) {
  const CFReference<CFStringRef> text = Text(name);
  CFStringRef variable = text.get();
  Require(operation(&variable) == IDX_OK, name.c_str());
}

// The application's own indexes come after the presets.
int IndexOf(std::size_t picture) { return static_cast<int>(picture % kIndexCount); }
int NumberOf(int index) { return 1100000 + index * 10000; }

// The library with its indexes and no image; there is one at a time.
class Catalogue {
 public:
  explicit Catalogue(const std::filesystem::path& folder) {
    Require(IDXInitialize() == IDX_OK, "IDXInitialize");
    Call(IDXSetFilePath, folder);
    for (int index = 0; index < kIndexCount; ++index) {
      Add(IDXAddIndex, "index " + std::to_string(index), IDXPRESET_PHOTO);
    }
  }
  ~Catalogue() { IDXUninitialize(); }
  Catalogue(const Catalogue&) = delete;
  Catalogue& operator=(const Catalogue&) = delete;

  static void Add(IDXSTATUS (*operation)(IDXITEM*), const std::string& name, int number) {
    const CFReference<CFStringRef> text = Text(name);
    CFStringRef variable = text.get();
    IDXITEM item{};
    item.mask = IDXMASK_NAME | IDXMASK_INDEX;
    item.name = &variable;
    item.index = number;
    Require(operation(&item) == IDX_OK, name.c_str());
  }
};

// A file of SQLite's with a table of the images and nothing beside it, which is the least that it can write and read.
class Database {
 public:
  explicit Database(const std::filesystem::path& file) {
    Require(sqlite3_open(file.c_str(), &database_) == SQLITE_OK, "sqlite3_open");
  }
  ~Database() { sqlite3_close(database_); }
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;

  void Run(const char* sql) { Require(sqlite3_exec(database_, sql, nullptr, nullptr, nullptr) == SQLITE_OK, sql); }

  // Hands the statement to `use`.
  template <typename Use>
  void With(const char* sql, Use use) {
    sqlite3_stmt* statement = nullptr;
    Require(sqlite3_prepare_v2(database_, sql, -1, &statement, nullptr) == SQLITE_OK, sql);
    use(statement);
    sqlite3_finalize(statement);
  }

 private:
  sqlite3* database_ = nullptr;
};

struct Filed {
  int index;
  unsigned char attribute;
};
using Map = std::unordered_map<std::string, Filed>;

// The pictures of one row's size, and the two files.
class Bed {
 public:
  explicit Bed(int count) : pictures_(count), count_(count) {
    const Catalogue catalogue(pictures_.Root());
    for (std::size_t picture = 0; picture < pictures_.Paths().size(); ++picture) {
      Catalogue::Add(IDXAddImage, pictures_.Paths()[picture], NumberOf(IndexOf(picture)));
    }
    Call(IDXWriteImageFile, "loaded");
    WriteDatabase("loaded.db");
  }

  double Load() {
    const Catalogue catalogue(pictures_.Root());
    return ThreadTime(count_, [] { Call(IDXLoadImageFile, "loaded"); });
  }

  double LoadDatabase() {
    Map map;
    const double taken = ThreadTime(count_, [&] { ReadDatabase(map); });
    Require(map.size() == pictures_.Paths().size(), "reading every row");
    return taken;
  }

  // Of a catalogue that is loaded first.
  double Write() {
    const Catalogue catalogue(pictures_.Root());
    Call(IDXLoadImageFile, "loaded");
    const double taken = Time(count_, [] { Call(IDXWriteImageFile, "written"); });
    std::filesystem::remove(pictures_.Root() / "written");
    return taken;
  }

  double WriteNewDatabase() {
    const double taken = Time(count_, [&] { WriteDatabase("written.db"); });
    std::filesystem::remove(pictures_.Root() / "written.db");
    return taken;
  }

 private:
  void ReadDatabase(Map& map) const {
    Database database(pictures_.Root() / "loaded.db");
    database.With("SELECT category, attribute, path FROM image", [&map](sqlite3_stmt* rows) {
      while (sqlite3_step(rows) == SQLITE_ROW) {
        const char* const path = reinterpret_cast<const char*>(sqlite3_column_text(rows, 2));
        if (access(path, F_OK) != 0) continue;
        const auto attribute = static_cast<unsigned char>(sqlite3_column_int(rows, 1));
        map.emplace(std::string(path, static_cast<std::size_t>(sqlite3_column_bytes(rows, 2))),
                    Filed{sqlite3_column_int(rows, 0), attribute});
      }
    });
  }

  // One transaction, flushed to the disk as SQLite does it unless told otherwise (synchronous = FULL).
  void WriteDatabase(const char* name) const {
    Database database(pictures_.Root() / name);
    database.Run("CREATE TABLE image(category INTEGER, attribute INTEGER, path TEXT); BEGIN");
    database.With("INSERT INTO image VALUES(?1, 0, ?2)", [this](sqlite3_stmt* insert) {
      for (std::size_t picture = 0; picture < pictures_.Paths().size(); ++picture) {
        const std::string& path = pictures_.Paths()[picture];
        sqlite3_bind_int(insert, 1, IndexOf(picture));
        sqlite3_bind_text(insert, 2, path.data(), static_cast<int>(path.size()), SQLITE_STATIC);
        Require(sqlite3_step(insert) == SQLITE_DONE, "INSERT");
        sqlite3_reset(insert);
      }
    });
    database.Run("COMMIT");
  }

  PictureFolder pictures_;
  int count_;
};

}  // namespace

void AddFileRows() {
  static std::map<int, Bed> beds;  // by size, made on first use: a filter may leave a row out
  std::vector<int> counts = {10000, 100000, 1000000};
  if (const char* const more = std::getenv("CATALOGCORE_BENCH_IMAGES")) counts.push_back(std::atoi(more));
  for (const int count : counts) {
    const auto round = [count](double (Bed::*measure)()) -> Round {
      return [count, measure] { return (beds.try_emplace(count, count).first->second.*measure)(); };
    };
    const int rounds = count > 1000000 ? 1 : count > 100000 ? 5 : 9;
    AddRow("load_" + std::to_string(count), round(&Bed::Load), "SQLite, map", round(&Bed::LoadDatabase), rounds);
    AddRow("write_" + std::to_string(count), round(&Bed::Write), "SQLite", round(&Bed::WriteNewDatabase), rounds);
  }
}

}  // namespace catalogcore
