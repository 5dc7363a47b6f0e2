#include "engines/network/avx512_vector.h"

namespace catalogcore::network {

void ConvolveRowAvx512(const ConvolutionRow& row) { ConvolveRow<Avx512Vector>(row); }

}  // namespace catalogcore::network
