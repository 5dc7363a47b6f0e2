// What the two forms with vectors of 512 bits share. Only these two forms include it.
#ifndef CATALOGCORE_ENGINES_NETWORK_AVX512_VECTOR_H_
#define CATALOGCORE_ENGINES_NETWORK_AVX512_VECTOR_H_

#include <immintrin.h>

#include "engines/network/convolution.h"

namespace catalogcore::network {
namespace {

struct Avx512Vector {
  static constexpr std::size_t kLanes = 16;
  static constexpr std::size_t kPixels = 8;
  using Sums = __m512i;
  using Weights = __m512i;
  using Pair = __m512i;

  static __m512i LoadSums(const std::int32_t* from) { return _mm512_loadu_si512(from); }
  static __m512i LoadWeights(const std::int16_t* from) { return _mm512_loadu_si512(from); }
  static __m512i LoadPair(const std::int16_t* from) { return _mm512_broadcastd_epi32(_mm_loadu_si32(from)); }
  static __m512i AddProducts(__m512i sums, __m512i weights, __m512i pair) {
    return _mm512_add_epi32(sums, _mm512_madd_epi16(weights, pair));
  }
  static __m512i Shifted(__m512i sums, int shift) { return _mm512_sra_epi32(sums, _mm_cvtsi32_si128(shift)); }
  static void Store(__m512i sums, std::int32_t* to) { _mm512_storeu_si512(to, sums); }
  static void StoreClamped(__m512i sums, std::int16_t maximum, std::int16_t* to) {
    const __m256i narrow = _mm512_cvtsepi32_epi16(sums);
    const __m256i clamped =
        _mm256_min_epi16(_mm256_max_epi16(narrow, _mm256_setzero_si256()), _mm256_set1_epi16(maximum));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(to), clamped);
  }
};

}  // namespace
}  // namespace catalogcore::network

#endif  // CATALOGCORE_ENGINES_NETWORK_AVX512_VECTOR_H_
