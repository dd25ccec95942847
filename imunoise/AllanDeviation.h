// The overlapping Allan deviation (IEEE Std 952) of an evenly sampled series.
//
// With θ the running sum of the samples and m samples per cluster, the overlapping Allan variance
// is the mean of (θ[k+2m] − 2θ[k+m] + θ[k])² / (2m²) over every k: one pass over the series per
// cluster time, whatever m is.
#pragma once

#include <cstddef>
#include <functional>
#include <vector>

namespace imunoise {

struct AdevPoint {
    double tau = 0.0;        // cluster time, s
    double deviation = 0.0;  // in the series' unit
    double lower = 0.0;      // confidence interval of about one standard error
    double upper = 0.0;
    std::size_t clusters = 0;  // independent (non-overlapping) clusters in the series
};

// Samples per cluster for a series of n samples: every size from one sample up to a tenth of
// the series, at least 10 per decade (all of 1..10, then a logarithmic grid).
std::vector<std::size_t> clusterSizes(std::size_t samples);

// Relative standard error of an Allan deviation estimated from that many independent clusters.
double relativeError(std::size_t clusters);

// Fills `sums` with the running sum of the series y[i] = values[i] × scale: sums[0] = 0,
// sums[i+1] = sums[i] + y[i]. The mean is taken off first, which keeps the sums small; a constant
// does not change the Allan deviation.
void runningSums(const std::vector<float>& values, double scale, std::vector<double>& sums);

// The deviation at each cluster size from the running sums of a series sampled every `period`
// seconds. `threads` workers share the cluster sizes; `keepGoing` is asked between sizes and
// ends the work early (the result is then incomplete) when it answers false.
std::vector<AdevPoint> allanDeviation(const std::vector<double>& sums, double period,
                                      const std::vector<std::size_t>& sizes, int threads = 1,
                                      const std::function<bool()>& keepGoing = {});

}  // namespace imunoise
