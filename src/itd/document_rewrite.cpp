#include <generalutilities/itd/document_rewrite.h>
#include <generalutilities/itd/document_walk.h>
#include <generalutilities/itd/element_tree.h>
#include <generalutilities/itd/text_forms.h>

#include <algorithm>
#include <deque>
#include <utility>
#include <vector>

namespace generalutilities {
namespace {

constexpr std::size_t LongestLanguage = 255;

/// Records as they come out of the code strings, mended where heads and texts do not alternate.
class RecordBuilder {
  public:
    explicit RecordBuilder(const ItdSegment& formerSegment) : former(formerSegment) {}

    void AddHead(const ItdBlock& block) {
        texts.emplace_back();
        records.push_back({block, {}});
        waitsForText = true;
    }

    void AddText(std::u16string_view text) {
        if (!waitsForText) {
            if (text.empty()) {
                return;
            }
            if (records.empty()) {
                AddHead(FirstHead());
            } else if (const auto head = TextHead();
                       head && !records.back().block.IsTranslatable()) {
                AddHead(*head);
            }
        }
        texts.back() += text;
        waitsForText = false;
    }

    ItdSegment Finish(ItdDocument& document) {
        if (records.empty()) {
            AddHead(FirstHead());
        }
        for (std::size_t i = 0; i < records.size(); ++i) {
            records[i].text = texts[i];
        }
        return document.Store(records);
    }

  private:
    ItdBlock FirstHead() const {
        const auto first = former.begin();
        return first == former.end() ? ItdBlock() : first->block;
    }

    std::optional<ItdBlock> TextHead() const {
        const auto found = std::ranges::find_if(
            former, [](const ItdRecord& record) { return record.block.IsTranslatable(); });
        return found == former.end() ? std::nullopt : std::optional(found->block);
    }

    const ItdSegment& former;
    std::vector<ItdRecord> records;
    std::deque<std::u16string> texts;  ///< parallel to `records`
    bool waitsForText = false;
};

void AppendColumnText(std::u16string& built, std::u16string_view text, const CodeMap& codes) {
    for (std::size_t position = 0; position < text.size();) {
        const auto placeholder = FindPlaceholder(text, position);
        const std::size_t end = placeholder ? placeholder->start : text.size();
        AppendCodeText(built, text.substr(position, end - position));
        if (!placeholder) {
            return;
        }
        const auto code = codes.find(placeholder->number);
        if (code != codes.end()) {
            built += code->second;
        }
        position = placeholder->end;
    }
}

}  // namespace

std::optional<Placeholder> FindPlaceholder(std::u16string_view text, std::size_t position) {
    while (position < text.size()) {
        const std::size_t start = position++;
        if (text[start] == u'\\') {
            ++position;
        } else if (text[start] == u'{') {
            std::uint32_t number = 0;
            for (; position < text.size() && text[position] >= u'0' && text[position] <= u'9';
                 ++position) {
                number = number * 10 + (text[position] - u'0');
            }
            const bool isClosed = position < text.size() && text[position] == u'}';
            ++position;
            if (isClosed) {
                return Placeholder{static_cast<std::int32_t>(number), start, position};
            }
        }
    }
    return std::nullopt;
}

ItdSegment RebuildSegment(ItdDocument& document, const ItdSegment& former, std::u16string_view text,
                          const CodeMap& codes, std::u16string_view codeBefore,
                          std::u16string_view codeAfter) {
    std::u16string built(codeBefore);
    AppendColumnText(built, text, codes);
    // A head that the text or its last code leaves open is not to take the text of `codeAfter`.
    if (text.empty() || (built.size() >= 8 && built.ends_with(u"</itbh>"))) {
        AppendCodeText(built, {});
    }
    built += codeAfter;

    RecordBuilder builder(former);
    ItdElementTree tree;
    for (std::u16string_view rest = built; !rest.empty();) {
        rest.remove_prefix(tree.Parse(rest));
        if (tree.RootName() == u"ut") {
            const ItdElement* const element = tree.Find(u"ut");
            builder.AddText(element == nullptr ? std::u16string()
                                               : UnescapeMarkup(tree.Text(*element)));
        } else if (tree.RootName() == u"itbh") {
            builder.AddHead(
                {tree.Number(u"pid"), tree.Number(u"f2"), tree.Number(u"f3"), tree.Number(u"sid")});
        }
    }
    return builder.Finish(document);
}

LanguageChange ReplaceTargetLanguage(ItdDocument& document, std::u16string_view language) {
    if (language.size() > LongestLanguage) {
        return LanguageChange::TooLong;
    }
    ItdTextHeader header;
    if (ParseTextHeader(document.headerBytes, header) != ItdParse::Complete) {
        return LanguageChange::UnknownHeader;
    }
    const bool sourceFirst =
        LanguageCodeOfFileLine(document.sourceSegments) == header.sourceLanguage;
    std::vector<ItdSegment>& column =
        sourceFirst ? document.targetSegments : document.sourceSegments;
    std::vector<ItdRecord> records;
    if (!column.empty()) {
        std::ranges::copy(column.front(), std::back_inserter(records));
    }
    const auto fileLine = std::ranges::find_if(
        records, [](const ItdRecord& record) { return record.block.f2 == ItdFileLine; });
    if (fileLine == records.end()) {
        return LanguageChange::NoFileLine;
    }
    const auto code = FindLanguageCode(fileLine->text);
    if (!code) {
        return LanguageChange::NoLanguageCode;
    }
    std::u16string line(fileLine->text);
    line.replace(code->start, code->length, language);
    fileLine->text = line;

    std::string headerBytes = document.headerBytes;
    std::string field(1, static_cast<char>(language.size()));
    for (const char16_t unit : language) {
        field += static_cast<char>(unit);
    }
    headerBytes.replace(header.targetLanguageOffset, 1 + header.targetLanguage.size(), field);
    column.front() = document.Store(records);
    document.headerBytes.swap(headerBytes);
    return LanguageChange::Done;
}

const char16_t* LanguageChangeText(LanguageChange change) {
    switch (change) {
        case LanguageChange::UnknownHeader:
            return u"Unknown header format in text part";
        case LanguageChange::NoFileLine:
            return u"Error: File line not found!";
        case LanguageChange::NoLanguageCode:
            return u"Error: Language code not found!";
        case LanguageChange::TooLong:
            return u"Error: Language code too long!";
        case LanguageChange::Done:
            break;
    }
    return u"";
}

void ItdRewrite::Open(ItdDocument opened, const ItdTextHeader& header) {
    std::u16string source = header.sourceLanguage;
    std::u16string target = header.targetLanguage;
    const bool reversed = PutSourceFirst(opened, header.targetLanguage);
    document = std::move(opened);
    sourceLanguage.swap(source);
    targetLanguage.swap(target);
    index = 0;
    isReversed = reversed;
    isDirty = languageChanged = false;
}

void ItdRewrite::SetTargetLanguage(std::u16string_view language) {
    if (language != targetLanguage) {
        targetLanguage = language;
        languageChanged = true;
    }
}

void ItdRewrite::Next() {
    if (isDirty) {
        Commit();
    }
    isDirty = false;
    sourceCodes.clear();
    targetCodes.clear();
    ++index;
}

void ItdRewrite::Commit() {
    struct Column {
        std::vector<ItdSegment>& segments;
        const std::u16string& text;
        const CodeMap& codes;
        ItdSegment rebuilt = {};
    };
    Column columns[] = {{document.sourceSegments, sourceText, sourceCodes},
                        {document.targetSegments, targetText, targetCodes}};
    for (Column& column : columns) {
        if (index < column.segments.size()) {
            column.rebuilt = RebuildSegment(document, column.segments[index], column.text,
                                            column.codes, codeBefore, codeAfter);
        }
    }
    for (const Column& column : columns) {
        if (index < column.segments.size()) {
            column.segments[index] = column.rebuilt;
        }
    }
}

void ItdRewrite::ReverseLanguages() {
    document.sourceSegments.swap(document.targetSegments);
    isReversed = !isReversed;
}

LanguageChange ItdRewrite::Serialize(std::string& bytes) {
    struct FileOrder {
        explicit FileOrder(ItdRewrite& target) : rewrite(target), wasReversed(target.isReversed) {
            Restore();
        }
        ~FileOrder() { Restore(); }
        FileOrder(const FileOrder&) = delete;
        FileOrder& operator=(const FileOrder&) = delete;
        void Restore() {
            if (wasReversed) {
                rewrite.ReverseLanguages();
            }
        }
        ItdRewrite& rewrite;
        bool wasReversed;
    };
    const FileOrder order(*this);
    const LanguageChange change =
        languageChanged ? ReplaceTargetLanguage(document, targetLanguage) : LanguageChange::Done;
    if (change == LanguageChange::Done) {
        bytes = SerializeTextPart(document);
    }
    return change;
}

}  // namespace generalutilities
