#include "engines/network/forms.h"

#include <array>

namespace catalogcore::network {
namespace {

class AvailableForms {
 public:
  AvailableForms() {
    Add({"plain", ConvolveRowPlain});
#if defined(__x86_64__)
    __builtin_cpu_init();
    Add({"sse2", ConvolveRowSse2});
    if (__builtin_cpu_supports("avx2")) Add({"avx2", ConvolveRowAvx2});
    if (__builtin_cpu_supports("avx512bw")) Add({"avx512", ConvolveRowAvx512});
    if (__builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512vnni")) Add({"vnni", ConvolveRowVnni});
#elif defined(__aarch64__)
    Add({"neon", ConvolveRowNeon});
#endif
  }

  std::span<const Form> All() const { return {forms_.data(), count_}; }

 private:
  void Add(const Form& form) { forms_[count_++] = form; }

  std::array<Form, 5> forms_;
  std::size_t count_ = 0;
};

}  // namespace

std::span<const Form> Forms() {
  static const AvailableForms forms;
  return forms.All();
}

}  // namespace catalogcore::network
