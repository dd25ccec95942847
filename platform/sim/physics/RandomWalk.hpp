// A Gaussian random walk with unit steps, W[n] = e[0] + ... + e[n-1], that is a pure function of
// its stream keys and n like the rest of the simulation's noise, yet costs no O(n) work to reach
// a far sample.
//
// The steps come in blocks of kBlock. Each block's sum S_j is drawn on its own (variance kBlock)
// and the block's steps are independent unit normals g_i bent to add up to it:
// e_i = g_i − mean of the block's g + S_j / kBlock. That keeps every step a unit normal,
// independent of the others, and makes W at a block boundary a sum of block sums only. Reaching
// sample n after a jump thus costs the block sums before it plus one block of steps; moving on
// by one sample costs one step.
#pragma once

#include <cstdint>

namespace bw::sim {

class RandomWalk {
public:
    static constexpr std::uint64_t kBlock = 4096;

    RandomWalk(std::uint64_t stepKey, std::uint64_t blockKey)
        : stepKey_(stepKey), blockKey_(blockKey) {}

    // W[n]: the sum of the first n steps.
    double at(std::uint64_t n);

private:
    void enterBlock(std::uint64_t block);
    double step(std::uint64_t i) const;

    std::uint64_t stepKey_, blockKey_;
    std::uint64_t block_ = 0;  // the block the cache stands in
    bool haveBlock_ = false;
    double blockStart_ = 0.0;     // W at the block's first sample
    double correction_ = 0.0;     // S_j / kBlock − mean of the block's g
    std::uint64_t position_ = 0;  // W[position_] == value_
    double value_ = 0.0;
};

}  // namespace bw::sim
