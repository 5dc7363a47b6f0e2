#include <emmintrin.h>

#include "engines/network/convolution.h"

namespace catalogcore::network {
namespace {

struct Sse2Vector {
  static constexpr std::size_t kLanes = 4;
  static constexpr std::size_t kPixels = 4;
  using Sums = __m128i;
  using Weights = __m128i;
  using Pair = __m128i;

  static __m128i LoadSums(const std::int32_t* from) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from)); }
  static __m128i LoadWeights(const std::int16_t* from) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
  }
  static __m128i LoadPair(const std::int16_t* from) { return _mm_shuffle_epi32(_mm_loadu_si32(from), 0); }
  static __m128i AddProducts(__m128i sums, __m128i weights, __m128i pair) {
    return _mm_add_epi32(sums, _mm_madd_epi16(weights, pair));
  }
  static __m128i Shifted(__m128i sums, int shift) { return _mm_sra_epi32(sums, _mm_cvtsi32_si128(shift)); }
  static void Store(__m128i sums, std::int32_t* to) { _mm_storeu_si128(reinterpret_cast<__m128i*>(to), sums); }
  static void StoreClamped(__m128i sums, std::int16_t maximum, std::int16_t* to) {
    const __m128i narrow = _mm_packs_epi32(sums, sums);
    const __m128i clamped = _mm_min_epi16(_mm_max_epi16(narrow, _mm_setzero_si128()), _mm_set1_epi16(maximum));
    _mm_storel_epi64(reinterpret_cast<__m128i*>(to), clamped);
  }
};

}  // namespace

void ConvolveRowSse2(const ConvolutionRow& row) { ConvolveRow<Sse2Vector>(row); }

}  // namespace catalogcore::network
