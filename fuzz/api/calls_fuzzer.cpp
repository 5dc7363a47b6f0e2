// Compares sequences of exported calls with the model. The input begins with names, one a line, up to an empty line.
// Each byte after that makes one choice.
#include "fuzz/support/fuzzer.h"
#include "tests/support/compared_calls.h"

namespace catalogcore {

namespace {

bool IsName(const std::string& line) {
  constexpr std::size_t kLongest = 255;
  const bool fits = !line.empty() && line.size() <= kLongest && line.find('\0') == line.npos;
  return fits && CFReference<CFStringRef>(Item::Make(line));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  constexpr std::size_t kMostNames = 16;
  constexpr int kMostCalls = 100;
  std::string_view rest = AsText(data, size);
  Keys names = {"/dev/null", "/dev/./zero", "/gone/x"};
  for (std::string line = "/"; !line.empty() && names.size() < kMostNames;) {
    line = rest.substr(0, rest.find('\n'));
    rest.remove_prefix(std::min(line.size() + 1, rest.size()));
    if (IsName(line)) names.push_back(line);
  }
  const auto choose = [&rest](int limit) {
    if (rest.empty()) return 0;
    const int number = static_cast<unsigned char>(rest.front()) % limit;
    rest.remove_prefix(1);
    return number;
  };
  ComparedCalls calls(choose, names);
  for (int call = 0; call < kMostCalls && !rest.empty(); ++call) calls.Step();
  calls.WriteAndLoad(ScratchFolder());
  return 0;
}

}  // namespace catalogcore
