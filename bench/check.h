#pragma once

#include <cstdio>
#include <cstdlib>

namespace generalutilities::bench {

/// Ends the program where what it measures does not work.
inline void Check(bool holds, const char* what) {
    if (!holds) {
        std::fprintf(stderr, "%s\n", what);
        std::exit(1);
    }
}

}  // namespace generalutilities::bench
