#pragma once

#include <gtest/gtest.h>
#include <random>

namespace generalutilities {

/// Random numbers, other ones each time; a check that fails tells the seed.
class SeededRandom : public std::mt19937 {
  public:
    explicit SeededRandom(unsigned seed = std::random_device()())
        : std::mt19937(seed), trace(__FILE__, __LINE__, "seed " + std::to_string(seed)) {}

  private:
    testing::ScopedTrace trace;
};

}  // namespace generalutilities
