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

} // namespace bench
