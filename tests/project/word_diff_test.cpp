#include <generalutilities/project/word_diff.h>

#include <gtest/gtest.h>
#include <random>
#include <string>

namespace generalutilities {
namespace {

/// The comparison as one text: "[old|new]" where they differ.
std::string Marked(std::u16string_view oldText, std::u16string_view newText) {
    const auto narrow = [](std::u16string_view text) {
        return std::string(text.begin(), text.end());
    };
    std::string marked;
    for (const DiffStretch& stretch : CompareWords(oldText, newText, 1033)) {
        const std::string before = narrow(oldText.substr(stretch.oldFirst, stretch.oldLength));
        const std::string after = narrow(newText.substr(stretch.newFirst, stretch.newLength));
        marked += stretch.same ? after : "[" + before + "|" + after + "]";
    }
    return marked;
}

/// The promises of the interface; false ends the test.
void CheckPromises(std::u16string_view oldText, std::u16string_view newText) {
    const auto stretches = CompareWords(oldText, newText, 1033);
    std::size_t oldAt = 0;
    std::size_t newAt = 0;
    for (std::size_t i = 0; i < stretches.size(); ++i) {
        const DiffStretch& stretch = stretches[i];
        ASSERT_EQ(stretch.oldFirst, oldAt);
        ASSERT_EQ(stretch.newFirst, newAt);
        ASSERT_GT(stretch.oldLength + stretch.newLength, 0U);
        ASSERT_TRUE(i == 0 || stretch.same != stretches[i - 1].same);
        if (stretch.same) {
            ASSERT_EQ(oldText.substr(oldAt, stretch.oldLength),
                      newText.substr(newAt, stretch.newLength));
        }
        oldAt += stretch.oldLength;
        newAt += stretch.newLength;
    }
    ASSERT_EQ(oldAt, oldText.size());
    ASSERT_EQ(newAt, newText.size());
    ASSERT_EQ(oldText == newText,
              stretches.empty() || (stretches.size() == 1 && stretches[0].same));
}

TEST(WordDiff, MarksTheChangedWords) {
    EXPECT_EQ(Marked(u"the quick fox", u"the slow fox"), "the [quick|slow] fox");
    EXPECT_EQ(Marked(u"the quick fox", u"a slow fox"), "[the quick|a slow] fox");
    EXPECT_EQ(Marked(u"one two three", u"one three"), "one [two |]three");
    EXPECT_EQ(Marked(u"one three", u"one two three"), "one [|two ]three");
    EXPECT_EQ(Marked(u"Press {1}Enter{2}.", u"Press {1}Return{2}!"),
              "Press {1}[Enter|Return]{2}[.|!]");
    EXPECT_EQ(Marked(u"", u"new"), "[|new]");
    EXPECT_EQ(Marked(u"old", u""), "[old|]");
    EXPECT_EQ(Marked(u"same", u"same"), "same");
    EXPECT_EQ(Marked(u"a b c d e f", u"a x c d y f"), "a [b|x] c d [e|y] f");
}

TEST(WordDiff, KeepsItsPromisesOnRandomTexts) {
    std::mt19937 random(4711);
    constexpr std::u16string_view Pieces[] = {u"ab",           u" ",      u"  ",  u"{1}", u".",
                                              u"12",           u"x",      u"y",   u"'",   u"\x4E2D",
                                              u"\xD83D\xDE00", u"\xDC00", u"\r\n"};
    const auto text = [&] {
        std::u16string made;
        for (unsigned int i = random() % 14; i > 0; --i) {
            made += Pieces[random() % std::size(Pieces)];
        }
        return made;
    };
    for (int round = 0; round < 20000; ++round) {
        ASSERT_NO_FATAL_FAILURE(CheckPromises(text(), text())) << "round " << round;
    }
}

TEST(WordDiff, IsBoundedOnLongTextsThatShareLittle) {
    std::mt19937 random(1);
    std::u16string a;
    std::u16string b;
    for (int i = 0; i < 40000; ++i) {
        a.append({static_cast<char16_t>(u'a' + random() % 26), u' '});
        b.append({static_cast<char16_t>(u'a' + random() % 26), u' '});
    }
    ASSERT_NO_FATAL_FAILURE(CheckPromises(a, b));
    std::u16string c = a;
    c.insert(c.size() / 2, u"new ");
    EXPECT_EQ(CompareWords(a, c, 1033).size(), 3U) << "a small change in a long text is found";
}

}  // namespace
}  // namespace generalutilities
