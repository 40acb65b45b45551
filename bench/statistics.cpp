#include "bench/statistics.h"

#include <algorithm>
#include <cmath>

namespace bench {

double percentile(std::vector<double> samples, double share)
{
    if (samples.empty())
        return 0;
    std::sort(samples.begin(), samples.end());
    const auto rank = std::ceil(share * static_cast<double>(samples.size()));
    const auto index = static_cast<std::size_t>(std::max(rank, 1.0)) - 1;
    return samples[std::min(index, samples.size() - 1)];
}

double slope(const std::vector<double> &values)
{
    const auto count = static_cast<double>(values.size());
    const double middle = (count - 1) / 2;
    double along = 0;
    double squares = 0;
    for (std::size_t i = 0; i < values.size(); ++i) {
        const double from = static_cast<double>(i) - middle;
        along += from * values[i];
        squares += from * from;
    }
    return squares > 0 ? along / squares : 0;
}

} // namespace bench
