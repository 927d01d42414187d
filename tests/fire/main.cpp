#include <generalutilities/automation/functions.h>

#include "rounds.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <string_view>

namespace {

bool longRounds = false;

/// What is open must be closed at the end: descriptors, handles, objects. (That strings and arrays
/// are freed is for the leak checker to say, and in balance already behind each single call.)
class Balance : public testing::Environment {
    static std::ptrdiff_t Descriptors() {
        return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
    }
    void SetUp() override { descriptors = Descriptors(); }
    void TearDown() override {
        EXPECT_EQ(Descriptors(), descriptors);
        for (std::int32_t handle = 1; handle < 1000; ++handle) {
            EXPECT_EQ(generalutilities::PointerFromHandle(handle), nullptr) << handle;
        }
        EXPECT_EQ(generalutilities::DllCanUnloadNow(), generalutilities::S_OK);
    }
    std::ptrdiff_t descriptors = 0;
};

}  // namespace

bool generalutilities::fire::LongRounds() {
    return longRounds;
}

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    testing::AddGlobalTestEnvironment(new Balance);
    for (int i = 1; i < argc; ++i) {
        longRounds = longRounds || std::string_view(argv[i]) == "--long";
    }
    return RUN_ALL_TESTS();
}
