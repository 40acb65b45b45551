#pragma once

#include "platform/base/access_unit.h"

namespace media {

/// G.726 codes from the packing of RTP (RFC 3551 4.5.4: the first code in the lowest bits) into
/// that of AAL2 (ITU-T I.366.2 annex E: in the highest), which the framework's decoder reads. bits:
/// of a code, 2 to 5; other values give nothing. A piece that ends within a code loses that code.
[[nodiscard]] base::Bytes g726WithFirstCodeHigh(const base::Bytes &packed, int bits);

/// The way back, for what the framework's encoder makes.
[[nodiscard]] base::Bytes g726WithFirstCodeLow(const base::Bytes &packed, int bits);

} // namespace media
