#include "engines/network/avx512_vector.h"

namespace catalogcore::network {
namespace {

struct VnniVector : Avx512Vector {
  static __m512i AddProducts(__m512i sums, __m512i weights, __m512i pair) {
    return _mm512_dpwssd_epi32(sums, weights, pair);
  }
};

}  // namespace

void ConvolveRowVnni(const ConvolutionRow& row) { ConvolveRow<VnniVector>(row); }

}  // namespace catalogcore::network
