#ifndef RANDOM_H
#define RANDOM_H

#include <random>

/// Random numbers, the same ones in each run and on each target.
class Random {
public:
    explicit Random(unsigned int seed) : engine(seed) {}

    /// Any number of 32 bits.
    unsigned int Number() { return static_cast<unsigned int>(engine()); }

    /// A number from 0 to `end` - 1.
    unsigned int Below(unsigned int end) { return Number() % end; }

private:
    std::mt19937 engine;
};

#endif
