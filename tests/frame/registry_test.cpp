// The registry's tree and its notation.

#include "platform/registry/registry.h"

#include <gtest/gtest.h>

namespace generalutilities::registry {
namespace {

TEST(RegistryTreeTest, FindsKeysAndValuesWithoutRegardToCase) {
    Tree tree;
    tree.Set(R"(HKEY_CLASSES_ROOT\CLSID\{A})", "", R"(C:\a "b")");
    EXPECT_TRUE(tree.HasKey(R"(hkey_classes_root\clsid)"));
    ASSERT_NE(tree.Find(R"(hkey_classes_root\CLSID\{a})", ""), nullptr);
    EXPECT_EQ(*tree.Find(R"(HKEY_CLASSES_ROOT\CLSID\{A})", ""), R"(C:\a "b")");
    EXPECT_EQ(tree.Find(R"(HKEY_CLASSES_ROOT\CLSID)", ""), nullptr);
}

TEST(RegistryTreeTest, RemovesAKeyWithAllBelowItAndNothingBeside) {
    Tree tree;
    for (const char* key : {"R\\A", "R\\A\\B\\C", "R\\A.1", "R\\AB", "R\\A!"}) {
        tree.AddKey(key);
    }
    tree.RemoveKey("r\\a");
    tree.RemoveKey("R\\missing");
    EXPECT_FALSE(tree.HasKey("R\\A"));
    EXPECT_FALSE(tree.HasKey("R\\A\\B"));
    EXPECT_FALSE(tree.HasKey("R\\A\\B\\C"));
    for (const char* key : {"R", "R\\A.1", "R\\AB", "R\\A!"}) {
        EXPECT_TRUE(tree.HasKey(key)) << key;
    }
}

TEST(RegistryTreeTest, ReadsItsOwnNotationAndTheCommonVariants) {
    Tree tree;
    tree.Set("R\\A", "", "default");
    tree.Set("R\\A", "quoted \"name\"", "back\\slash");
    tree.AddKey("R\\Empty");
    Tree again;
    EXPECT_EQ(again.Parse(tree.Serialize()), 0u);
    EXPECT_EQ(again, tree);

    Tree variant;
    EXPECT_EQ(
        variant.Parse("\xEF\xBB\xBFWindows Registry Editor Version 5.00\r\n\r\n; a comment\r\n"
                      "[R\\A]\r\n@=\"x\"\r\n\"n\"=dword:00000001\r\n\"h\"=hex:00,\\\r\n  01\r\n"),
        0u);
    EXPECT_EQ(*variant.Find("R\\A", ""), "x");
    EXPECT_EQ(variant.Find("R\\A", "n"), nullptr) << "no text";
    Tree kept;
    EXPECT_EQ(kept.Parse(variant.Serialize()), 0u);
    EXPECT_EQ(kept, variant) << "values of other types survive";
}

TEST(RegistryTreeTest, NamesTheLineThatIsWrong) {
    const std::string head = "Windows Registry Editor Version 5.00\n";
    const std::pair<std::string, std::size_t> table[] = {
        {"", 1},
        {"REGEDIT4\n", 1},
        {head + "@=\"before any key\"\n", 2},
        {head + "[R\n", 2},
        {head + "[]\n", 2},
        {head + "[R]\n@=\"open\n", 3},
        {head + "[R]\n@=\"ends in a backslash\\\n", 3},
        {head + "[R]\n@=\"x\"y\n", 3},
        {head + "[R]\nname=\"x\"\n", 3},
        {head + "[R]\n\"n\"=hex:00,\\\n", 3},
    };
    for (const auto& [text, line] : table) {
        Tree tree;
        EXPECT_EQ(tree.Parse(text), line) << text;
        EXPECT_EQ(tree, Tree()) << text;
    }
}

}  // namespace
}  // namespace generalutilities::registry
