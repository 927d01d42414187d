// Catalogues of one template become rows: a message is known by its context and its text, and each
// language's catalogue is asked for it. A message with plural forms gives one row a form.

#include <generalutilities/error.h>
#include <generalutilities/extview/export_options.h>
#include <generalutilities/project/inputs.h>
#include <generalutilities/project/language_tags.h>

#include "platform/files/utf8.h"
#include "platform/message_catalog/message_catalog.h"
#include "project/project_access.h"

#include <algorithm>
#include <unordered_map>

namespace generalutilities {
namespace {

using message_catalog::Catalog;
using message_catalog::Message;

std::u16string KeyOf(const Message& message) {
    // U+0004 parts the two, as gettext does it; without a context the text stands alone.
    return message.context ? *message.context + u'\u0004' + message.id : message.id;
}

std::u16string_view FileNameOf(std::u16string_view path) {
    return path.substr(path.find_last_of(u"/\\") + 1);  // npos + 1 is the start
}

std::u16string_view WithoutEnding(std::u16string_view fileName) {
    return fileName.substr(0, fileName.rfind(u'.'));
}

/// A catalogue with its messages by key.
struct LanguageCatalog {
    std::u16string path;
    std::int32_t langId = 0;
    Catalog catalog;
    std::unordered_map<std::u16string, std::size_t> messages;
};

LanguageCatalog ReadCatalog(const CatalogFile& file) {
    LanguageCatalog read{file.path, 0, message_catalog::Read(file.path), {}};
    std::optional<std::int32_t> langId = file.language;
    if (!langId && !read.catalog.language.empty()) {
        langId = LangIdOfTag(read.catalog.language);
    }
    if (!langId) {
        langId = LangIdOfTag(WithoutEnding(FileNameOf(file.path)));
    }
    if (!langId) {
        throw Error(ErrorInvalidData,
                    files::ToUtf8Lossy(file.path) +
                        ": the language is not known: the header says \"" +
                        files::ToUtf8Lossy(read.catalog.language) +
                        "\"; give it with the file, like fr=" + files::ToUtf8Lossy(file.path));
    }
    read.langId = *langId;
    for (std::size_t i = 0; i < read.catalog.messages.size(); ++i) {
        read.messages.emplace(KeyOf(read.catalog.messages[i]), i);
    }
    return read;
}

class CatalogSource final : public RowSource {
  public:
    explicit CatalogSource(const CatalogInput& input)
        : filesByReference(input.filesByReference), form(input.textForm), maker(input.textForm) {
        if (!input.templatePath && input.catalogs.empty()) {
            throw Error(E_INVALIDARG, "no catalogue and no template was given");
        }
        for (const CatalogFile& file : input.catalogs) {
            AddCatalog(file);
        }
        for (const std::int32_t langId : input.emptyLanguages) {
            if (!HasLanguage(langId)) {
                languages.push_back(langId);
            }
        }
        if (input.templatePath) {
            fileSpec = *input.templatePath;
            AddMessages(message_catalog::Read(fileSpec).messages);
            NoteMessagesOutsideTemplate();
        } else {
            fileSpec = input.catalogs.front().path;
            for (const LanguageCatalog& catalog : catalogs) {
                AddMessages(catalog.catalog.messages);
            }
        }
        CountRows();
    }

    const std::vector<std::int32_t>& Languages() const override { return languages; }
    std::uint64_t RowsAtMost() const override { return rowCount; }
    std::vector<std::string> Notes() const override { return notes; }

    bool Next(NewProjectRow& row) override {
        if (position == messages.size()) {
            return false;
        }
        const Message& message = messages[position];
        Fill(row, message, pluralForm);
        if (++pluralForm >= FormsOf(message)) {
            pluralForm = 0;
            ++position;
        }
        return true;
    }

  private:
    bool HasLanguage(std::int32_t langId) const {
        return std::find(languages.begin(), languages.end(), langId) != languages.end();
    }

    void AddCatalog(const CatalogFile& file) {
        LanguageCatalog catalog = ReadCatalog(file);
        if (HasLanguage(catalog.langId)) {
            throw Error(E_INVALIDARG, files::ToUtf8Lossy(file.path) +
                                          ": there is another catalogue for " +
                                          LanguageForMessage(catalog.langId) +
                                          "; give each catalogue its own language, or make several "
                                          "inputs of them");
        }
        languages.push_back(catalog.langId);
        mostForms = std::max(mostForms, catalog.catalog.pluralForms);
        catalogs.push_back(std::move(catalog));
    }

    void AddMessages(const std::vector<Message>& more) {
        for (const Message& message : more) {
            if (known.emplace(KeyOf(message), messages.size()).second) {
                messages.push_back(message);
            }
        }
    }

    void NoteMessagesOutsideTemplate() {
        for (const LanguageCatalog& catalog : catalogs) {
            const auto outside =
                std::count_if(catalog.messages.begin(), catalog.messages.end(),
                              [this](const auto& entry) { return !known.contains(entry.first); });
            if (outside > 0) {
                notes.push_back(files::ToUtf8Lossy(catalog.path) + ": " + std::to_string(outside) +
                                " messages that the template does not have were left out");
            }
        }
    }

    void CountRows() {
        for (const Message& message : messages) {
            rowCount += static_cast<std::uint64_t>(FormsOf(message));
        }
    }

    /// How many rows a message gives: with plural forms, as many as the language with the most.
    std::int32_t FormsOf(const Message& message) const {
        return message.pluralId ? std::max(mostForms, 2) : 1;
    }

    void Fill(NewProjectRow& row, const Message& message, std::int32_t pluralIndex) {
        row.place =
            files::ToUtf8Lossy(fileSpec) + ", message \"" + files::ToUtf8Lossy(message.id) + "\"";
        row.fileSpec =
            filesByReference && !message.firstReference.empty() ? message.firstReference : fileSpec;
        const std::u16string& source = pluralIndex > 0 ? *message.pluralId : message.id;
        row.source = maker.Source(Checked(source, row.place));
        row.translations.assign(languages.size(), Translation());
        const std::u16string key = KeyOf(message);
        for (std::size_t i = 0; i < catalogs.size(); ++i) {
            const LanguageCatalog& catalog = catalogs[i];
            const auto found = catalog.messages.find(key);
            Fill(row.translations[i], message,
                 found == catalog.messages.end() ? nullptr
                                                 : &catalog.catalog.messages[found->second],
                 pluralIndex, catalog.catalog.pluralForms, row.place);
        }
    }

    void Fill(Translation& translation, const Message& message, const Message* translated,
              std::int32_t pluralIndex, std::int32_t forms, const std::string& place) const {
        AddLine(translation.comments, translated != nullptr ? translated->comments : u"");
        AddLine(translation.comments, message.extractedComments);
        if (message.context) {
            AddLine(translation.comments, u"Context: " + *message.context);
        }
        if (message.pluralId) {
            const std::string text = "Plural form " + std::to_string(pluralIndex + 1) + " of " +
                                     std::to_string(std::max(forms, pluralIndex + 1));
            if (pluralIndex < forms) {
                AddLine(translation.comments, std::u16string(text.begin(), text.end()));
            } else {
                AddLine(translation.comments, u"This language has no such plural form.");
                translation.status = StatusLocked;
            }
        }
        const auto index = static_cast<std::size_t>(pluralIndex);
        if (translated == nullptr || index >= translated->translations.size() ||
            translated->translations[index].empty()) {
            return;
        }
        translation.target = maker.Translation(Checked(translated->translations[index], place));
        translation.status |= translated->fuzzy ? StatusFuzzy : StatusExact;
        translation.percentage = translated->fuzzy ? 0 : 100;
    }

    static void AddLine(std::u16string& text, std::u16string_view line) {
        if (!line.empty()) {
            text.append(text.empty() ? u"" : u"\n").append(line);
        }
    }

    const std::u16string& Checked(const std::u16string& text, const std::string& place) const {
        if (form != TextForm::Segment && HasCodeMarkers(text)) {
            throw Error(ErrorInvalidData,
                        place +
                            ": U+0006, U+0007 and U+0008 mark codes and cannot stand in plain "
                            "text");
        }
        return text;
    }

    bool filesByReference;
    TextForm form;
    SegmentTextMaker maker;
    std::u16string fileSpec;
    std::vector<LanguageCatalog> catalogs;
    std::vector<std::int32_t> languages;  ///< those of `catalogs`, then those without one
    std::vector<Message> messages;        ///< in the order of the rows
    std::unordered_map<std::u16string, std::size_t> known;
    std::int32_t mostForms = 1;
    std::uint64_t rowCount = 0;
    std::vector<std::string> notes;
    std::size_t position = 0;
    std::int32_t pluralForm = 0;
};

}  // namespace

std::unique_ptr<RowSource> OpenCatalogInput(const CatalogInput& input) {
    return std::make_unique<CatalogSource>(input);
}

}  // namespace generalutilities
