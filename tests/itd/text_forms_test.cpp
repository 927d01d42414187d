// Texts between the interfaces: escapes, and what the element reader makes of tags. The cases are
// in data/: an operation or a tree a line.

#include <generalutilities/itd/element_tree.h>
#include <generalutilities/itd/text_forms.h>

#include "case_table.h"
#include "text/decimal.h"

namespace generalutilities {
namespace {

TEST(TextForms, EscapeAndComeBack) {
    for (const auto& row : CaseTable("escapes.tsv")) {
        EXPECT_EQ(EscapeMarkup(row[0]), row[1]);
        EXPECT_EQ(UnescapeMarkup(row[1]), row[0]);
        EXPECT_EQ(UnescapeMarkup(row[0]), row[2]);
        EXPECT_EQ(EscapeBraces(row[0]), row[3]);
    }
    std::u16string text;
    AppendBlockTag(text, {1, ItdLastOfSection, 0, 4294967295});
    AppendCodeText(text, u"<b>");
    EXPECT_EQ(text,
              u"<itbh><pid>1</pid><f2>2147483650</f2><f3>0</f3><sid>4294967295</sid></itbh>"
              u"<ut>&lt;b&gt;</ut>");
    EXPECT_EQ(BinaryElement(u"b", "\x0A\xF0"), u"<b>0AF0</b>");
}

/// "root: name(attribute=value)#number[text] ...|rest"; of equal names the first has a number.
std::u16string Describe(ItdElementTree& tree, std::u16string_view text) {
    const std::size_t end = tree.Parse(text);
    EXPECT_EQ(tree.WholeText(), text.substr(0, end));
    std::u16string result(tree.RootName());
    result += u':';
    for (const ItdElement& element : tree.Elements()) {
        (result += u' ') += tree.Name(element);
        for (const ItdAttribute& attribute : tree.Attributes(element)) {
            ((result += u'(') += tree.Name(attribute)) += u'=';
            (result += tree.Value(attribute)) += u')';
        }
        if (tree.Find(tree.Name(element)) == &element && tree.Number(tree.Name(element)) != 0) {
            (result += u'#') += Decimal(tree.Number(tree.Name(element)));
        }
        ((result += u'[') += tree.Text(element)) += u']';
    }
    (result += u"|") += text.substr(end);
    return result;
}

TEST(ElementTree, ReadsOneRoot) {
    ItdElementTree tree;  // one for all: nothing of the text before may be left
    for (const auto& row : CaseTable("elements.tsv")) {
        EXPECT_EQ(Describe(tree, row[0]), row[1]) << testing::PrintToString(row[0]);
    }
}

TEST(ElementTree, TheFirstTagIsSkipped) {
    for (const auto& row : CaseTable("first_tags.tsv")) {
        EXPECT_EQ(row[0].substr(SkipFirstTag(row[0])), row[1]) << testing::PrintToString(row[0]);
    }
}

}  // namespace
}  // namespace generalutilities
