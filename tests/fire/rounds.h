#pragma once

/// Two sizes of the same loops: short ones for every run of the tests, and the long rounds that
/// `fire-tests --long` and `fire-allocation-tests --long` run by hand.
namespace generalutilities::fire {

bool LongRounds();

}  // namespace generalutilities::fire
