#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <future>
#include <iterator>
#include <limits>
#include <new>
#include <random>
#include <thread>
#include <tuple>

#include "api/catalogue.h"
#include "api/internal_calls.h"
#include "base/file_existence.h"
#include "persist/catalogue_records.h"
#include "persist/existing_files.h"
#include "persist/payload.h"
#include "persist/property_file.h"
#include "persist/replace_file.h"
#include "tests/api/item.h"
#include "tests/persist/failing_calls.h"
#include "tests/support/catalogue_state.h"

namespace catalogcore {

namespace {

namespace fs = std::filesystem;

using Load = IDXSTATUS (*)(IDXSTR);
constexpr Load kFileCalls[] = {IDXLoadIndexFile, IDXLoadImageFile, IDXWriteIndexFile, IDXWriteImageFile};

class FilesTest : public testing::Test {
 protected:
  FilesTest() : folder_(fs::temp_directory_path() / ("catalogcore_files_" + std::to_string(getpid()))) {
    fs::remove_all(folder_);
    fs::create_directories(folder_);
    Begin();
  }
  ~FilesTest() override {
    IDXUninitialize();
    fs::remove_all(folder_);
  }

  void Begin() {
    EXPECT_EQ(IDXInitialize(), IDX_OK);
    EXPECT_EQ(OnName(IDXSetFilePath, folder_), IDX_OK);
  }
  static IDXSTATUS Call(Load call, const std::string& name = "file") { return OnName(call, name); }
  std::string Content() const {
    std::ifstream file(folder_ / "file", std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  void SetContent(const std::string& content) { std::ofstream(folder_ / "file", std::ios::binary) << content; }
  // A file with this payload, its terminator included, under both keys.
  void SetPayloads(const std::string& payload) {
    CIDXBuffer buffer;
    buffer.CopyBuffer(payload.c_str(), -1);
    for (const CFStringRef key : {CATALOGCORE_INDEX_KEY, CATALOGCORE_IMAGE_KEY}) {
      EXPECT_EQ(_WriteKeyData(Url().get(), key, buffer), 1);
    }
  }
  CFReference<CFURLRef> Url() const {
    const CFReference<CFStringRef> path(Item::Make(folder_ / "file"));
    return CFReference<CFURLRef>(CFURLCreateWithFileSystemPath(nullptr, path.get(), kCFURLPOSIXPathStyle, false));
  }
  static std::ptrdiff_t EntriesOf(const fs::path& folder) {
    return std::distance(fs::directory_iterator(folder), fs::directory_iterator());
  }
  std::size_t FileCount() const { return static_cast<std::size_t>(EntriesOf(folder_)); }
  // Makes each system call of `call` fail once, after `begin`. `check` gets whether `call` succeeded.
  template <typename Begins, typename Check>
  void FailEachCall(Load call, int error, Begins begin, Check check) {
    int at = 0;
    for (bool isReached = true; isReached; ++at) {
      SCOPED_TRACE(testing::Message() << std::strerror(error) << " at call " << at);
      begin();
      const std::ptrdiff_t descriptors = EntriesOf("/proc/self/fd");
      ArmCalls(OnCall::kFail, at, error);
      const IDXSTATUS status = Call(call);
      isReached = CallsWereReached();
      ArmCalls(OnCall::kNothing, 0);
      EXPECT_TRUE(status == IDX_OK || (isReached && status == IDXERR_FAILED)) << status;
      check(status == IDX_OK);
      EXPECT_EQ(EntriesOf("/proc/self/fd"), descriptors);
      EXPECT_EQ(FileCount(), 1u);
    }
    EXPECT_GE(at, 5);
  }
  // `process` is the result of fork(). Does the work in the child; in the parent, returns whether a signal ended the
  // child.
  template <typename Work>
  static bool IsKilled(pid_t process, Work work) {
    if (process == 0) {
      work();
      _exit(0);
    }
    int end = 0;
    EXPECT_EQ(waitpid(process, &end, 0), process);
    return WIFSIGNALED(end);
  }
  static std::vector<CellState> AddedIndexes() {
    std::vector<CellState> added;
    for (const CellState& cell : StateOf(*idData).cells[kIndexTree]) {
      if (cell.attribute != 7) added.push_back(cell);
    }
    return added;
  }

  const fs::path folder_;
};

TEST_F(FilesTest, BothPayloadsLiveInOneFileAmongOtherEntries) {
  SetContent("<?xml version='1.0'?><!-- no DOCTYPE --><plist><dict><key>Other</key><array/></dict></plist>");
  EXPECT_EQ(Call(IDXLoadIndexFile), IDXERR_NODATA);
  EXPECT_EQ(IDXAddIndex(&Item().Index(1000000).Name("Beach, north").Attribute(2)), IDX_OK);
  EXPECT_EQ(IDXAddIndex(&Item().Index(1000000).Name("gone").Attribute(7)), IDX_OK);
  EXPECT_EQ(IDXAddImage(&Item().Name(folder_ / "file").Index(1100000).Attribute(1)), IDX_OK);
  EXPECT_EQ(IDXAddImage(&Item().Name(folder_ / "missing").Index(1100000)), IDX_OK);
  EXPECT_EQ(Call(IDXWriteIndexFile), IDX_OK);
  EXPECT_EQ(Call(IDXWriteImageFile), IDX_OK);

  const std::string content = Content();
  EXPECT_EQ(content.find('\0'), content.size() - 1);
  EXPECT_NE(content.find("<key>Other</key>\n\t<array/>"), std::string::npos);
  EXPECT_NE(content.find("<key>IDXImage</key>"), std::string::npos);
  std::int32_t status = 99;
  CFStringRef name = Item::Make("file");
  char* const payload = LoadIndexBuffer(&name, &status);
  EXPECT_STREQ(payload, "CatalogCoreVer1.0\n1/10,2,Beach, north\n");
  std::free(payload);
  CFRelease(name);

  Begin();
  EXPECT_EQ(Call(IDXLoadIndexFile), IDX_OK);
  EXPECT_EQ(Call(IDXLoadIndexFile), IDX_OK);  // existing indexes are skipped
  EXPECT_EQ(Call(IDXLoadImageFile), IDX_OK);
  ASSERT_EQ(AddedIndexes().size(), 1u);
  EXPECT_EQ(AddedIndexes()[0].name, "Beach, north");
  EXPECT_EQ(AddedIndexes()[0].images, Keys({folder_ / "file"}));
}

TEST_F(FilesTest, OtherFilesStayUnchanged) {
  const std::string head = "<?xml version=\"1.0\"?><plist version=\"1.0\">";
  for (const std::string& content : {std::string("garbage"), std::string(), head + "<array/></plist>",
                                     head + "<dict><key>IDXIndex</key><data>AAAA</dat"}) {
    SetContent(content);
    EXPECT_EQ(Call(IDXLoadIndexFile), IDXERR_FAILED) << content;
    EXPECT_EQ(Call(IDXWriteIndexFile), IDXERR_FAILED) << content;
    EXPECT_EQ(Content(), content);
  }
  SetContent(head + "<dict><key>IDXIndex</key><string>x</string></dict></plist>");
  EXPECT_EQ(Call(IDXLoadIndexFile), IDXERR_FAILED);
  EXPECT_EQ(Call(IDXLoadImageFile), IDXERR_NODATA);
  EXPECT_EQ(Call(IDXWriteIndexFile), IDX_OK);  // replaces a value of another kind
  SetContent(head + "<dict><key>IDXIndex</key><data></data></dict></plist>");
  EXPECT_EQ(Call(IDXLoadIndexFile), IDXERR_NODATA);
  for (const std::string& missing : {std::string("missing"), std::string("file/below"), std::string(300, 'n')}) {
    EXPECT_EQ(Call(IDXLoadIndexFile, missing), IDXERR_NODATA);
  }
  for (const Load call : kFileCalls) {
    EXPECT_EQ(call(nullptr), IDXERR_PARAM);
    EXPECT_EQ(Call(call, ""), IDXERR_FAILED);  // the directory itself
  }
  ASSERT_EQ(mkfifo((folder_ / "pipe").c_str(), 0600), 0);  // without a writer
  fs::create_symlink("/dev/zero", folder_ / "endless");
  for (const char* name : {"pipe", "endless"}) {
    EXPECT_EQ(Call(IDXLoadIndexFile, name), IDXERR_FAILED);
    EXPECT_EQ(Call(IDXWriteIndexFile, name), IDXERR_FAILED);
  }
  IDXUninitialize();
  for (const Load call : kFileCalls) EXPECT_EQ(Call(call), IDXERR_FAILED);
}

TEST_F(FilesTest, KeyDataIsReadInTwoStepsOrUpToTheGivenSize) {
  char block[8] = "???????";
  std::int32_t size = 99;
  EXPECT_EQ(_ReadKeyData(Url().get(), CATALOGCORE_INDEX_KEY, block, &size) + size, 1);  // a missing file has 0 bytes
  SetPayloads("abcd");
  EXPECT_EQ(_ReadKeyData(Url().get(), CATALOGCORE_INDEX_KEY, nullptr, &size), 1);
  EXPECT_EQ(size, 5);  // with its terminator
  size = 3;
  EXPECT_EQ(_ReadKeyData(Url().get(), CATALOGCORE_INDEX_KEY, block, &size), 1);
  EXPECT_EQ(std::string(block, 7) + std::to_string(size), "abc????3");
  EXPECT_EQ(_ReadKeyData(Url().get(), nullptr, nullptr, &size), 0);
  EXPECT_EQ(_ReadKeyData(Url().get(), CATALOGCORE_INDEX_KEY, nullptr, nullptr), 0);
}

TEST_F(FilesTest, RecordsAreTokens) {
  const std::string version = "CatalogCoreVer1.0\n";
  const std::tuple<std::string, IDXSTATUS, IDXSTATUS, std::string> cases[] = {
      // payload, status of both loads, indexes "key=name=attribute;"
      {"", IDXERR_EMPTY, IDXERR_VERSION, ""},
      {"\n\n", IDXERR_EMPTY, IDXERR_VERSION, ""},
      {"CatalogCoreVer1.0\r\n", IDXERR_VERSION, IDXERR_VERSION, ""},
      {"CatalogCoreVer1.01\n", IDXERR_VERSION, IDXERR_VERSION, ""},
      {"\n" + version + "1/10,300,a\n1/11,-1,b\n1/12,x,c,d\n", 0, 0, "1/10=a=44;1/11=b=255;1/12=c,d=0;"},
      {version + "1/10,0,\n1/11,0,b\n", 0, 0, "1/10=1/11,0,b=0;"},
      {version + "1/10,0,a\n\n1/11,0,b\n", 0, 0, "1/10=a=0;\n1=b=0;\n1/11=b=0;"},
      {version + "1/10,99999999999,a\n1/11,0", 0, 0, "1/10=a=255;"},
      {version + "1//2,0,a\n/x,0,b\n8/1,0,c\n,,", 0, 0, "8=c=0;8/1=c=0;"},
  };
  for (const auto& [payload, index, image, added] : cases) {
    SCOPED_TRACE(payload);
    fs::remove(folder_ / "file");
    SetPayloads(payload);
    Begin();
    EXPECT_EQ(Call(IDXLoadIndexFile), index);
    EXPECT_EQ(Call(IDXLoadImageFile), image);
    std::string found;
    for (const CellState& cell : AddedIndexes()) {
      found += cell.key + "=" + cell.name + "=" + std::to_string(cell.attribute) + ";";
    }
    EXPECT_EQ(found, added);
  }
  for (const auto& [payload, isCut] : {std::pair("v\nk,0,n\n", false), {"v\nk,0,n\nk", true}, {"v\nk,0,", true}}) {
    PayloadReader reader(payload);
    reader.VersionLine();
    for (PayloadRecord record{}; reader.NextRecord(record);) {
    }
    EXPECT_EQ(reader.IsCut(), isCut) << payload;
  }
}

TEST_F(FilesTest, ExistingFilesAgreesWithIsFileExistAPI) {
  fs::create_directories(folder_ / "a/inner");
  fs::create_directory_symlink("a", folder_ / "link");
  for (const char* name : {"x", "a/x", "a/\xC3\xA4", "a/\xFF", "a/inner/x"}) std::ofstream(folder_ / name) << "x";
  fs::create_symlink("nowhere", folder_ / "a/dangling");
  ExistingFiles existing;
  int count = 0;
  for (const char* name : {"/x", "/a/x", "/a/x", "/a/y", "/a/dangling", "/a/\xC3\xA4", "/a/\xFF", "/a", "/a/", "/a/x/",
                           "/a/.", "/a/inner/../x", "/link/x", "/link/inner/x", "/gone/x", "/gone/y", "/x/y", ""}) {
    const bool isThere = existing.Has((folder_.string() + name).c_str());
    EXPECT_EQ(isThere, IsFileExistAPI((folder_.string() + name).c_str()) == 1) << name;
    count += isThere;
  }
  EXPECT_EQ(count, 11);
  EXPECT_EQ(IsFileExistAPI(nullptr), 0);
  for (const char* path : {"/", "/tmp", "x", "", "relative/x"}) {
    EXPECT_EQ(existing.Has(path), IsFileExistAPI(path) == 1) << path;
  }
}

// A payload of almost 2 GB. Only its end is touched, so that it needs little memory.
class HugePayload : public CIDXBuffer {
 public:
  explicit HugePayload(std::int32_t size) {
    if (AllocBuffer(std::numeric_limits<std::int32_t>::max())) length = size;
  }
};

TEST_F(FilesTest, AppendBeyondTheLongestPayloadFails) {
  constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
  constexpr std::int32_t kRecord = sizeof("1/10,255,/a") - 1 + sizeof("\n") - 1;
  HugePayload fits(kMost - 1 - kRecord);
  ASSERT_GT(fits.Length(), 0) << "no address space for 2 GB";
  EXPECT_TRUE(AppendRecord(fits, "1/10", 255, "/a"));
  EXPECT_EQ(fits.Length(), kMost - 1);
  EXPECT_STREQ(fits.Text() + fits.Length() - kRecord, "1/10,255,/a\n");

  HugePayload full(kMost - kRecord);
  EXPECT_FALSE(AppendRecord(full, "1/10", 255, "/a"));
  EXPECT_EQ(full.Length(), kMost - kRecord);
}

std::string Repeated(std::size_t count, const std::string& part) {
  std::string text;
  while (count-- > 0) text += part;
  return text;
}

// The memory and time that a file costs are in proportion to its size.
TEST_F(FilesTest, HostileFileCostsNoMoreThanItsSizeAllows) {
  constexpr std::size_t kSize = std::size_t{1} << 19;
  const auto filled = [](auto part) {
    std::string text;
    for (int i = 0; text.size() < kSize; ++i) text += part(i);
    return text;
  };
  const auto bits = [](int i, int count, const char* zero, const char* one) {
    std::string text;
    for (int bit = 0; bit < count; ++bit) text += i >> bit & 1 ? one : zero;
    return text;
  };
  std::vector<std::string> files = {
      "<plist>" + Repeated(kSize / 7, "<array>"),
      "<plist><dict><key>k</key>" + Repeated(510, "<array>") + Repeated(kSize / 7, "<dict/>") +
          Repeated(510, "</array>") + "</dict></plist>",
      "<plist><dict><key>IDXIndex</key><data>" + std::string(kSize, ' ') + "</data></dict></plist>",
      "<plist><dict>" + filled([](int i) { return "<key>" + std::to_string(i) + "</key><data/>"; }) + "</dict></plist>",
      "<!DOCTYPE plist [<!ENTITY e0 'x'>" + filled([](int i) {
        return "<!ENTITY e" + std::to_string(i + 1) + " '" + Repeated(10, "&e" + std::to_string(i) + ";") + "'>";
      }) + "]><plist><string>&e1000;</string></plist>"};
  const std::string levels = Repeated(63, "/a");
  for (const std::string& payload :
       {filled([](int i) { return std::to_string(i) + Repeated(1000, "/a") + ",0,x\n"; }),
        filled([&](int i) { return std::to_string(i) + levels + ",0,x\n"; }),
        "1" + levels + ",0," + std::string(kSize, 'x'), filled([&](int i) { return bits(i, 20, "a", "A") + ",0,x\n"; }),
        filled([&](int i) { return "1,0," + bits(i, 16, "/.", "/..") + Repeated(490, "/.") + "/dev/null\n"; })}) {
    fs::remove(folder_ / "file");
    SetPayloads("CatalogCoreVer1.0\n" + payload);
    files.push_back(Content());
  }
  for (const std::string& content : files) {
    SetContent(content);
    EXPECT_FALSE(IsKilled(fork(), [&] {
      const rlimit seconds = {5, 5};
      setrlimit(RLIMIT_CPU, &seconds);
      rusage before{}, after{};
      getrusage(RUSAGE_SELF, &before);
      for (const Load call : kFileCalls) Call(call);
      getrusage(RUSAGE_SELF, &after);
      const long most = 512 * static_cast<long>(content.size() >> 10);
      if (!IS_SANITIZED && after.ru_maxrss - before.ru_maxrss > most) abort();
    })) << content.substr(0, 100);
  }
}

TEST_F(FilesTest, WriteKeepsLinksAndPermissionsAndRemovesLeftovers) {
  const fs::path real = folder_ / "real";
  fs::create_directories(real);
  std::ofstream(real / "file") << "<plist><dict/></plist>";
  fs::create_symlink("real/file", folder_ / "file");
  chmod((real / "file").c_str(), 0640);
  const std::string prefix = ".catalogcore-" + std::to_string(std::hash<std::string>()("file")) + "-";
  const std::pair<std::string, bool> others[] = {
      {prefix + "1-1", false}, {prefix + "notes", true}, {prefix + "2-1", true}};  // whether each stays
  for (const auto& [name, stays] : others) std::ofstream(real / name) << "left behind, or another writer's";
  const int held = open((real / others[2].first).c_str(), O_RDONLY);
  ASSERT_EQ(flock(held, LOCK_EX), 0);
  EXPECT_EQ(Call(IDXWriteIndexFile), IDX_OK);
  close(held);
  EXPECT_TRUE(fs::is_symlink(folder_ / "file"));
  EXPECT_EQ(fs::status(real / "file").permissions(), fs::perms{0640});
  for (const auto& [name, stays] : others) EXPECT_EQ(fs::exists(real / name), stays) << name;
  // A link to a missing file, and a name of the greatest length.
  fs::create_symlink("real/later", folder_ / "link");
  EXPECT_EQ(Call(IDXWriteIndexFile, "link"), IDX_OK);
  EXPECT_TRUE(fs::is_symlink(folder_ / "link") && fs::is_regular_file(real / "later"));
  EXPECT_EQ(Call(IDXWriteIndexFile, std::string(255, 'n')), IDX_OK);

  // A folder without write permission, and a user without privileges.
  const auto asNobody = [](auto check) {
    const bool isRoot = geteuid() == 0;
    ASSERT_TRUE(!isRoot || seteuid(65534) == 0);
    check();
    ASSERT_TRUE(!isRoot || seteuid(0) == 0);
  };
  chmod(real.c_str(), 0555);
  chmod((real / "file").c_str(), 0666);
  asNobody([] {
    EXPECT_EQ(Call(IDXWriteImageFile), IDX_OK);
    EXPECT_EQ(Call(IDXWriteImageFile, "real/new"), IDXERR_FAILED);
  });
  chmod(real.c_str(), 0777);
  chmod((real / "file").c_str(), 0444);
  const std::string before = Content();
  asNobody([] { EXPECT_EQ(Call(IDXWriteIndexFile), IDXERR_FAILED); });
  EXPECT_EQ(Content(), before);
}

TEST_F(FilesTest, FileIsTheOldOrTheNewOneWhateverFails) {
  IDXAddIndex(&Item().Index(1000000).Name("new"));
  IDXAddImage(&Item().Name(folder_ / "file").Index(1100000));
  ASSERT_EQ(Call(IDXWriteImageFile), IDX_OK);
  const std::string before = Content();
  EXPECT_EQ(FlushesBeforeRename([] { Call(IDXWriteIndexFile); }), 1);
  const std::string after = Content();
  const auto beginBefore = [&] { SetContent(before); };
  const auto beginAfter = [&] {
    SetContent(after);
    Begin();
  };
  const auto isWritten = [&](bool isDone) { EXPECT_EQ(Content(), isDone ? after : before); };
  const auto isLoaded = [&](bool isDone) { EXPECT_EQ(AddedIndexes().size(), isDone ? 1u : 0u); };
  for (const int error : {ENOSPC, EIO, EACCES, EINTR}) {
    FailEachCall(IDXWriteIndexFile, error, beginBefore, isWritten);
    // A file that cannot be read must not count as missing: an empty catalogue would replace it.
    FailEachCall(IDXLoadIndexFile, error, beginAfter, isLoaded);
  }
  ArmCalls(OnCall::kShorten, 0);
  beginBefore();
  EXPECT_EQ(Call(IDXWriteIndexFile), IDX_OK);
  isWritten(true);
  beginAfter();
  EXPECT_EQ(Call(IDXLoadIndexFile), IDX_OK);
  EXPECT_EQ(Call(IDXLoadImageFile), IDX_OK);
  EXPECT_TRUE(CallsWereReached());
  ArmCalls(OnCall::kNothing, 0);
  EXPECT_EQ(AddedIndexes()[0].images.size(), 1u);

  for (int at = 0, wasKilled = 1; wasKilled; ++at) {
    SCOPED_TRACE(at);
    beginBefore();
    wasKilled = IsKilled(fork(), [at] {
      ArmCalls(OnCall::kKill, at);
      Call(IDXWriteIndexFile);
    });
    EXPECT_TRUE(Content() == before || Content() == after);
    EXPECT_LE(FileCount(), 2u);
    EXPECT_EQ(Call(IDXWriteIndexFile), IDX_OK);
    EXPECT_EQ(FileCount(), 1u);
  }
}

TEST_F(FilesTest, OtherWritersCostALimitedNumberOfAttempts) {
  ASSERT_EQ(Call(IDXWriteIndexFile), IDX_OK);
  const std::string before = Content();
  IDXAddIndex(&Item().Index(1000000).Name("new"));
  for (const auto& [stolen, status] :
       {std::pair(std::numeric_limits<int>::max(), IDXSTATUS{IDXERR_FAILED}), std::pair(3, IDXSTATUS{IDX_OK})}) {
    ArmCalls(OnCall::kSteal, stolen);
    EXPECT_EQ(Call(IDXWriteIndexFile), status);
    EXPECT_TRUE(CallsWereReached());
    ArmCalls(OnCall::kNothing, 0);
    EXPECT_EQ(Content() == before, status != IDX_OK);
    EXPECT_EQ(FileCount(), 1u);
  }
}

TEST_F(FilesTest, WriteBeyondTheSizeLimitFailsWithoutASignal) {
  ASSERT_EQ(Call(IDXWriteIndexFile), IDX_OK);
  const std::string before = Content();
  IDXAddIndex(&Item().Index(1000000).Name(std::string(1000, 'n')));
  const auto writeBeyondLimit = [](bool isBlocked, bool isPending) {
    sigset_t mask, pending;
    sigemptyset(&mask);
    sigaddset(&mask, SIGXFSZ);
    if (isBlocked) pthread_sigmask(SIG_BLOCK, &mask, nullptr);
    if (isPending) raise(SIGXFSZ);
    const rlimit limit = {1000, 1000};
    setrlimit(RLIMIT_FSIZE, &limit);
    if (Call(IDXWriteIndexFile) != IDXERR_FAILED) abort();
    pthread_sigmask(SIG_BLOCK, nullptr, &mask);
    sigpending(&pending);
    if (sigismember(&mask, SIGXFSZ) != int{isBlocked} || sigismember(&pending, SIGXFSZ) != int{isPending}) abort();
  };
  for (const int signals : {0, 1, 2}) {  // unblocked, blocked by the application, and pending
    EXPECT_FALSE(IsKilled(fork(), [=] { writeBeyondLimit(signals > 0, signals > 1); })) << signals;
    EXPECT_EQ(Content(), before);
    EXPECT_EQ(FileCount(), 1u);
  }
}

// A slow disk delays only the load.
TEST_F(FilesTest, CatalogueCallsDoNotWaitForALoadThatLooksForFiles) {
  ASSERT_EQ(IDXAddImage(&Item().Name(folder_ / "file").Index(IDXPRESET_PHOTO_OTHER)), IDX_OK);
  ASSERT_EQ(Call(IDXWriteImageFile), IDX_OK);
  Begin();
  static std::vector<std::future<IDXSTATUS>> calls;
  static bool gotThrough = true;
  OnExistence([] {
    calls.push_back(std::async(std::launch::async, [] { return IDXSearchImage(&Item().Name("/a/b").Index(0)); }));
    gotThrough = gotThrough && calls.back().wait_for(std::chrono::seconds(20)) == std::future_status::ready;
  });
  EXPECT_EQ(Call(IDXLoadImageFile), IDX_OK);
  OnExistence(nullptr);
  EXPECT_GE(calls.size(), 1u);
  EXPECT_TRUE(gotThrough);
  calls.clear();
  EXPECT_EQ(IDXSearchImage(&Item().Name(folder_ / "file").Index(0)), IDX_OK);
}

// A process writes version after version, each of some 200 kB, until it is killed. CATALOGCORE_KILLS sets the number of
// kills.
TEST_F(FilesTest, KilledWritersLeaveOneWholeVersion) {
  constexpr int kIndexes = 20;
  const char* const wanted = std::getenv("CATALOGCORE_KILLS");
  const int kills = wanted ? std::atoi(wanted) : 30;
  const auto setVersion = [](int version) {
    const std::string name = std::string(8000, 'n') + std::to_string(version);
    for (int i = 0; i < kIndexes; ++i) IDXChangeIndex(&Item().Index(1100000 + 10000 * i).Name(name));
  };
  for (int i = 0; i < kIndexes; ++i) IDXAddIndex(&Item().Index(1000000).Name(std::to_string(i)));
  setVersion(0);
  ASSERT_EQ(Call(IDXWriteIndexFile), IDX_OK);
  using Count = std::atomic<int>;
  void* const shared = mmap(nullptr, sizeof(Count), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  ASSERT_NE(shared, MAP_FAILED);
  std::mt19937 random(1);
  int version = 0, interrupted = 0;
  for (int kill = 0; kill < kills; ++kill) {
    SCOPED_TRACE(kill);
    Count& steps = *new (shared) Count(0);  // the beginnings and ends of writes
    const pid_t writer = fork();
    if (writer > 0) {
      while (steps == 0) std::this_thread::yield();
      usleep(static_cast<useconds_t>(random() % 8000));
      ::kill(writer, SIGKILL);
    }
    EXPECT_TRUE(IsKilled(writer, [&] {
      prctl(PR_SET_PDEATHSIG, SIGKILL);  // it must not outlive a test that is stopped
      for (int next = version + 1;; ++next) {
        setVersion(next);
        ++steps;
        if (Call(IDXWriteIndexFile) != IDX_OK) return;
        ++steps;
      }
    }));
    interrupted += steps % 2;
    EXPECT_LE(FileCount(), 2u);
    Begin();
    ASSERT_EQ(Call(IDXLoadIndexFile), IDX_OK);
    const std::vector<CellState> indexes = AddedIndexes();
    ASSERT_EQ(indexes.size(), static_cast<std::size_t>(kIndexes));
    for (const CellState& index : indexes) ASSERT_EQ(index.name, indexes[0].name);
    const int found = std::atoi(indexes[0].name.c_str() + 8000);
    EXPECT_TRUE(found == version + steps / 2 || found == version + (steps + 1) / 2) << found;
    version = found;
  }
  EXPECT_EQ(Call(IDXWriteIndexFile), IDX_OK);
  EXPECT_EQ(FileCount(), 1u);
  EXPECT_GT(interrupted, kills / 3);
  RecordProperty("interrupted", interrupted);
  RecordProperty("versions", version);
}

}  // namespace

}  // namespace catalogcore
