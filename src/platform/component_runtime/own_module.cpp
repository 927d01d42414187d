#include "platform/component_runtime/own_module.h"

#include <dlfcn.h>
#include <memory>
#include <stdlib.h>

namespace generalutilities {

namespace {

OwnModule ownModule;

}  // namespace

void SetOwnModule(const OwnModule& functions) {
    ownModule = functions;
}

const OwnModule& GetOwnModule() {
    return ownModule;
}

std::string OwnModulePath() {
    Dl_info info{};
    if (dladdr(reinterpret_cast<const void*>(&OwnModulePath), &info) == 0 ||
        info.dli_fname == nullptr) {
        return {};
    }
    const std::unique_ptr<char, decltype(&free)> resolved(realpath(info.dli_fname, nullptr), &free);
    return resolved == nullptr ? info.dli_fname : resolved.get();
}

}  // namespace generalutilities
