#pragma once

/// What the processor at hand offers. Code for more than the least x86-64 processor stands in
/// functions marked with GENERALUTILITIES_AVX2 and is called only where HasAvx2() holds.
#if defined(__x86_64__) && defined(__GNUC__)
#define GENERALUTILITIES_AVX2 __attribute__((target("avx2,bmi,popcnt")))
#endif

namespace generalutilities {

/// Whether functions marked with GENERALUTILITIES_AVX2 exist and run here. A load and a test.
inline bool HasAvx2() {
#ifdef GENERALUTILITIES_AVX2
    return __builtin_cpu_supports("avx2") != 0 && __builtin_cpu_supports("bmi") != 0;
#else
    return false;
#endif
}

}  // namespace generalutilities
