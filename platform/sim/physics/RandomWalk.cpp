#include "RandomWalk.hpp"

#include <cmath>

#include "Noise.hpp"

namespace bw::sim {

double RandomWalk::step(std::uint64_t i) const {
    return noise::gaussian(stepKey_, i) + correction_;
}

void RandomWalk::enterBlock(std::uint64_t block) {
    const double blockSigma = std::sqrt(static_cast<double>(kBlock));
    // W at the block's start: the sums of the blocks before it, counted on from the cached
    // block where that lies before.
    std::uint64_t from = 0;
    double start = 0.0;
    if (haveBlock_ && block_ <= block) {
        from = block_;
        start = blockStart_;
    }
    for (std::uint64_t j = from; j < block; ++j)
        start += blockSigma * noise::gaussian(blockKey_, j);
    double mean = 0.0;
    for (std::uint64_t i = block * kBlock; i < (block + 1) * kBlock; ++i)
        mean += noise::gaussian(stepKey_, i);
    mean /= static_cast<double>(kBlock);
    correction_ =
        blockSigma * noise::gaussian(blockKey_, block) / static_cast<double>(kBlock) - mean;
    block_ = block;
    haveBlock_ = true;
    blockStart_ = start;
    position_ = block * kBlock;
    value_ = start;
}

double RandomWalk::at(std::uint64_t n) {
    const std::uint64_t block = n / kBlock;
    if (!haveBlock_ || block != block_ || n < position_) enterBlock(block);
    for (; position_ < n; ++position_) value_ += step(position_);
    return value_;
}

}  // namespace bw::sim
