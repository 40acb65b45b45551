#pragma once

#include <vector>

namespace bench {

/// The value that a share of the samples (0 to 1) do not exceed; 0 without samples.
double percentile(std::vector<double> samples, double share);

/// By how much the values grow from one to the next: the slope of the straight line that lies
/// closest to them; 0 for fewer than two.
double slope(const std::vector<double> &values);

} // namespace bench
