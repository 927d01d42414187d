// Any text as tagged text: elements lie within it and within each other, and the same tree reads
// the same again.

#include <generalutilities/itd/element_tree.h>
#include <generalutilities/itd/text_forms.h>

#include "text_input.h"

using namespace generalutilities;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::u16string text = TextFrom(data, size);
    Require(UnescapeMarkup(EscapeMarkup(text)) == text);
    Require(SkipFirstTag(text) <= text.size());
    ItdElementTree tree;
    const std::size_t end = tree.Parse(text);
    const std::size_t count = tree.Elements().size();
    Require(end <= text.size() && tree.WholeText() == text.substr(0, end));
    for (const ItdElement& element : tree.Elements()) {
        Require(text[element.openStart] == u'<' && text[element.openEnd - 1] == u'>');
        Require(element.selfClosed ||
                (element.openEnd <= element.closeStart && element.closeEnd <= end));
        Require(tree.Find(tree.Name(element)) <= &element);
        for (const ItdAttribute& attribute : tree.Attributes(element)) {
            Require(attribute.nameEnd <= attribute.valueStart &&
                    attribute.valueEnd <= element.openEnd);
            Require(tree.Value(attribute).find(u'"') == text.npos);
        }
    }
    Require(tree.Parse(text) == end && tree.Elements().size() == count);
    return 0;
}
