// A record with the strings that it points to.
#ifndef CATALOGCORE_TESTS_API_ITEM_H_
#define CATALOGCORE_TESTS_API_ITEM_H_

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "base/owners.h"
#include "catalogcore.h"

namespace catalogcore {

class Item : public IDXITEM {
 public:
  Item() : IDXITEM{} {
    name = &nameVariable_;
    path = &pathVariable_;
  }
  ~Item() {
    Clear();
    for (const CFStringRef input : inputs_) CFRelease(input);
  }
  // Releases the strings that the library returned.
  Item& Clear() {
    for (CFStringRef* const variable : {&nameVariable_, &pathVariable_}) {
      if (std::find(inputs_.begin(), inputs_.end(), *variable) == inputs_.end()) CFRelease(*variable);
      *variable = nullptr;
    }
    return *this;
  }
  Item(const Item&) = delete;
  Item& operator=(const Item&) = delete;

  Item& Name(const std::string& text) { return Mark(IDXMASK_NAME), Set(nameVariable_, text), *this; }
  Item& Path(const std::string& text) { return Mark(IDXMASK_PATH), Set(pathVariable_, text), *this; }
  Item& Index(std::int32_t number) { return Mark(IDXMASK_INDEX), index = number, *this; }
  Item& Attribute(int value) { return Mark(IDXMASK_ATTRIBUTE), attribute = static_cast<std::uint8_t>(value), *this; }
  Item& Operation(int bits) { return operation = static_cast<std::uint8_t>(bits), *this; }
  Item& Force(bool forces) { return state = forces ? IDXSTATE_FORCE : 0, *this; }
  // Marks every field, and asks for all to be filled.
  Item& Wanted() { return mask = 15, operation |= IDXOP_GETINFO, *this; }

  std::string NameText() const { return Text(nameVariable_); }
  std::string PathText() const { return Text(pathVariable_); }

  static CFStringRef Make(const std::string& text) {
    return CFStringCreateWithCString(nullptr, text.c_str(), kCFStringEncodingUTF8);
  }
  static std::string Text(CFStringRef string) {
    if (!string) return "(none)";
    std::string text(static_cast<std::size_t>(CFStringGetLength(string)) * 3 + 1, 0);
    CFStringGetCString(string, text.data(), static_cast<CFIndex>(text.size()), kCFStringEncodingUTF8);
    return text.c_str();
  }

 private:
  void Mark(std::uint32_t field) { mask |= field; }
  void Set(CFStringRef& variable, const std::string& text) { inputs_.push_back(variable = Make(text)); }

  std::vector<CFStringRef> inputs_;
  CFStringRef nameVariable_ = nullptr;
  CFStringRef pathVariable_ = nullptr;
};

// Calls with this string.
inline IDXSTATUS OnName(IDXSTATUS (*call)(IDXSTR), const std::string& name) {
  const CFReference<CFStringRef> text(Item::Make(name));
  CFStringRef variable = text.get();
  return call(&variable);
}

}  // namespace catalogcore

#endif  // CATALOGCORE_TESTS_API_ITEM_H_
