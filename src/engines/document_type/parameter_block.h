// The parameter block: the model as bytes. All numbers are stored least significant byte first, floating-point ones as
// IEEE 754 single precision.
//
// bytes    content
// 0..7     "SGIPPDEF"
// 8..11    version of this layout, kBlockVersion
// 12..15   size of the whole block in bytes
// 16..19   check sum of bytes 20 to the end: CRC-32 as of IEEE 802.3
// 20..21   number of features F, which is kFeatureCount
// 22..23   number of terms T
// 24..25   number of limits L
// 26..27   0
// 28..31   bias
// then     F x (mean, scale)
// then     T x (first feature, second feature or 0xFFFF, weight): 2 + 2 + 4 bytes
// then     L x (feature, 0, limit): 2 + 2 + 4 bytes
#ifndef CATALOGCORE_ENGINES_DOCUMENT_TYPE_PARAMETER_BLOCK_H_
#define CATALOGCORE_ENGINES_DOCUMENT_TYPE_PARAMETER_BLOCK_H_

#include <cstdint>
#include <span>
#include <vector>

#include "engines/document_type/fault.h"
#include "engines/document_type/model.h"

namespace catalogcore::document_type {

inline constexpr std::uint32_t kBlockVersion = 1;

// `model` holds the block's model when the answer is kNone. Throws std::bad_alloc.
Fault ReadParameterBlock(std::span<const std::uint8_t> block, Model& model);

// The block that reads back as `model`. Throws std::bad_alloc.
std::vector<std::uint8_t> MakeParameterBlock(const Model& model);

// CRC-32 of IEEE 802.3: polynomial 0x04C11DB7 bit-reversed, start and end complemented.
std::uint32_t CheckSum(std::span<const std::uint8_t> bytes);

}  // namespace catalogcore::document_type

#endif  // CATALOGCORE_ENGINES_DOCUMENT_TYPE_PARAMETER_BLOCK_H_
