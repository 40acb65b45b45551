#pragma once

#include <vector>

namespace bench {

/// The value that a share of the samples (0 to 1) do not exceed; 0 without samples.
double percentile(std::vector<double> samples, double share);

} // namespace bench
