// The registry's notation: whatever parses is written in a form that parses to the same tree.

#include "platform/registry/registry.h"

#include <cstdint>
#include <cstdlib>

using generalutilities::registry::Tree;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Tree tree;
    if (tree.Parse({reinterpret_cast<const char*>(data), size}) != 0) {
        return 0;
    }
    Tree again;
    if (again.Parse(tree.Serialize()) != 0 || again != tree) {
        std::abort();
    }
    return 0;
}
