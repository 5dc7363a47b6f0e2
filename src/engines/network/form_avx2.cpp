#include <immintrin.h>

#include "engines/network/convolution.h"

namespace catalogcore::network {
namespace {

struct Avx2Vector {
  static constexpr std::size_t kLanes = 8;
  static constexpr std::size_t kPixels = 4;
  using Sums = __m256i;
  using Weights = __m256i;
  using Pair = __m256i;

  static __m256i LoadSums(const std::int32_t* from) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from));
  }
  static __m256i LoadWeights(const std::int16_t* from) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from));
  }
  static __m256i LoadPair(const std::int16_t* from) { return _mm256_broadcastd_epi32(_mm_loadu_si32(from)); }
  static __m256i AddProducts(__m256i sums, __m256i weights, __m256i pair) {
    return _mm256_add_epi32(sums, _mm256_madd_epi16(weights, pair));
  }
  static __m256i Shifted(__m256i sums, int shift) { return _mm256_sra_epi32(sums, _mm_cvtsi32_si128(shift)); }
  static void Store(__m256i sums, std::int32_t* to) { _mm256_storeu_si256(reinterpret_cast<__m256i*>(to), sums); }
  static void StoreClamped(__m256i sums, std::int16_t maximum, std::int16_t* to) {
    const __m128i narrow = _mm_packs_epi32(_mm256_castsi256_si128(sums), _mm256_extracti128_si256(sums, 1));
    const __m128i clamped = _mm_min_epi16(_mm_max_epi16(narrow, _mm_setzero_si128()), _mm_set1_epi16(maximum));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to), clamped);
  }
};

}  // namespace

void ConvolveRowAvx2(const ConvolutionRow& row) { ConvolveRow<Avx2Vector>(row); }

}  // namespace catalogcore::network
