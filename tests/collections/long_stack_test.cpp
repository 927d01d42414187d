#include <generalutilities/interfaces/class_ids.h>
#include <generalutilities/interfaces/collections.h>

#include "frame/values.h"

namespace generalutilities {
namespace {

TEST(LongStack, GivesBackInReverseAndKeepsStillWhenEmpty) {
    const auto stack = Create<ILongStack>(CLSID_LongStack, IID_ILongStack);
    std::int32_t value = 42;
    VARIANT_BOOL found = VARIANT_TRUE;
    EXPECT_EQ(stack->Pop(&value), E_FAIL);
    EXPECT_EQ(stack->Peek(&value), E_FAIL);
    EXPECT_EQ(value, 42);
    EXPECT_EQ(stack->Contains(1, &found), S_OK);
    EXPECT_EQ(found, VARIANT_FALSE);
    for (const std::int32_t pushed : {1, -2, 1}) {
        EXPECT_EQ(stack->Push(pushed), S_OK);
    }
    EXPECT_EQ(stack->Peek(&value), S_OK);
    EXPECT_EQ(value, 1);
    for (const std::int32_t expected : {1, -2}) {
        EXPECT_EQ(stack->Pop(&value), S_OK);
        EXPECT_EQ(value, expected);
    }
    EXPECT_EQ(stack->Contains(1, &found), S_OK);
    EXPECT_EQ(found, VARIANT_TRUE);
    EXPECT_EQ(stack->Contains(-2, &found), S_OK);
    EXPECT_EQ(found, VARIANT_FALSE);
    EXPECT_EQ(stack->Pop(nullptr), E_POINTER);
    EXPECT_EQ(stack->Contains(1, nullptr), E_POINTER);
}

}  // namespace
}  // namespace generalutilities
