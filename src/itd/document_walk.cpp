#include <generalutilities/itd/document_walk.h>
#include <generalutilities/itd/element_tree.h>
#include <generalutilities/itd/text_forms.h>

#include "text/decimal.h"

#include <algorithm>
#include <utility>

namespace generalutilities {

std::uint32_t LoadColumn(const ItdSegment& segment, std::uint32_t codeNumber, ItdColumn& column) {
    column.text.clear();
    column.codes.clear();
    std::u16string pending;
    bool endsInText = false;
    for (const ItdRecord& record : segment) {
        AppendBlockTag(pending, record.block);
        endsInText = record.block.IsTranslatable();
        if (!endsInText) {
            AppendCodeText(pending, record.text);
            continue;
        }
        column.codes.push_back(std::exchange(pending, {}));
        if (!column.text.empty()) {
            column.text += u'{';
            AppendDecimal(column.text, codeNumber++);
            column.text += u'}';
        }
        column.text += EscapeBraces(record.text);
    }
    if (!pending.empty() || endsInText) {
        column.codes.push_back(std::move(pending));
    }
    return codeNumber;
}

std::u16string CommentOf(std::u16string_view commentString) {
    std::u16string lines;
    ItdElementTree tree;
    tree.Parse(commentString.substr(SkipFirstTag(commentString)));
    for (const ItdElement& element : tree.Elements()) {
        const std::u16string_view text = tree.Text(element);
        if (tree.Name(element) != u"Comment" || text.empty()) {
            continue;
        }
        for (const ItdAttribute& attribute : tree.Attributes(element)) {
            if (tree.Name(attribute) == u"user") {
                lines.append(tree.Value(attribute)).append(u": ");
            }
        }
        lines.append(text).append(u"\r\n");
    }
    return lines;
}

std::u16string BinaryHeaderOf(const ItdDocument& document) {
    return BinaryElement(u"binheader", document.headerBytes);
}

std::u16string BinaryFooterOf(const ItdDocument& document) {
    return BinaryElement(u"binfooter", document.footerBytes);
}

bool PutSourceFirst(ItdDocument& document, std::u16string_view targetLanguage) {
    const bool isReversed = LanguageCodeOfFileLine(document.sourceSegments) == targetLanguage;
    if (isReversed) {
        document.sourceSegments.swap(document.targetSegments);
    }
    return isReversed;
}

void ItdWalk::Open(ItdDocument opened) {
    document = std::move(opened);
    index = 0;
    sourceCount = targetCount = {};
}

ItdDocument ItdWalk::Take() {
    ItdDocument taken = std::move(document);
    Close();
    return taken;
}

bool ItdWalk::Next() {
    if (!HasMore()) {
        return false;
    }
    Load(index + 1);
    return true;
}

void ItdWalk::Restart() {
    if (SegmentCount() > 0) {
        Load(0);
    }
    index = 0;
}

void ItdWalk::ReverseLanguages() {
    document.sourceSegments.swap(document.targetSegments);
    std::swap(sourceCount, targetCount);
}

void ItdWalk::Load(std::size_t i) {
    const std::vector<ItdSegment>& targets = document.targetSegments;
    const std::uint32_t sourceNext =
        LoadColumn(document.sourceSegments[i], codeNumber, loading.source);
    const std::uint32_t targetNext =
        LoadColumn(i < targets.size() ? targets[i] : ItdSegment(), codeNumber, loading.target);
    loading.comment = i < document.commentStrings.size() ? CommentOf(document.commentStrings[i])
                                                         : std::u16string();
    FindStatus(i);
    std::swap(current, loading);
    index = i;
    codeNumber = std::max(sourceNext, targetNext);
}

/// Only segments with translatable text have an entry. One without shows the entry of the nearest
/// one before it, and where the file holds too few entries there is none to show.
void ItdWalk::FindStatus(std::size_t i) {
    if (sourceCount.segments > i + 1) {
        sourceCount = {};
    }
    for (; sourceCount.segments <= i; ++sourceCount.segments) {
        const ItdSegment& segment = document.sourceSegments[sourceCount.segments];
        const bool hasText = std::ranges::any_of(
            segment, [](const ItdRecord& record) { return record.block.IsTranslatable(); });
        sourceCount.withText += hasText ? 1 : 0;
    }
    const bool hasEntry =
        sourceCount.withText > 0 && sourceCount.withText <= document.statusEntries.size();
    const ItdStatusEntry entry =
        hasEntry ? document.statusEntries[sourceCount.withText - 1] : ItdStatusEntry();
    loading.status = entry.status;
    loading.score = entry.score;
}

}  // namespace generalutilities
