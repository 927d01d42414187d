// libgettextpo parses; what it gives is in the catalogue's own character set and goes through the C
// library's converter. The parser reports errors to a handler and goes on, so the handler keeps the
// first one and the reading ends with it.

#include "platform/message_catalog/message_catalog.h"

#include <generalutilities/error.h>

#include "platform/files/files.h"
#include "platform/files/utf8.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <gettext-po.h>
#include <iconv.h>
#include <memory>
#include <mutex>
#include <new>

// libgettextpo never frees some small buffers of its lexer and the comments that it gives (its own
// sources say so); a leak checker is not to report them as ours.
#if defined(__SANITIZE_ADDRESS__)
#define GENERALUTILITIES_HAS_LEAK_CHECKER 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define GENERALUTILITIES_HAS_LEAK_CHECKER 1
#endif
#endif
#ifdef GENERALUTILITIES_HAS_LEAK_CHECKER
#include <sanitizer/lsan_interface.h>
#endif

namespace generalutilities::message_catalog {
namespace {

/// The problems of one reading; the handler has no argument of ours, hence a variable of the file,
/// guarded by `readMutex`.
struct Problems {
    std::string first;
    std::size_t count = 0;
    std::string fileName;
};
std::mutex readMutex;
Problems* current = nullptr;

void Keep(int severity, const char* file, std::size_t line, const char* text) noexcept {
    if (severity == PO_SEVERITY_WARNING || current == nullptr || ++current->count > 1) {
        return;
    }
    try {
        std::string& message = current->first;
        message = current->fileName;
        if (file != nullptr && line != static_cast<std::size_t>(-1)) {
            message += ", line " + std::to_string(line);
        }
        message += ": " + std::string(text);
        message.erase(message.find_last_not_of(" \n") + 1);
    } catch (...) {
        current->first.clear();  // the count alone tells that the file is not usable
    }
}

extern "C" void OnProblem(int severity, po_message_t, const char* file, size_t line, size_t, int,
                          const char* text) {
    Keep(severity, file, line, text);
}

extern "C" void OnProblemOfTwo(int severity, po_message_t, const char* file, size_t line, size_t,
                               int, const char* text, po_message_t, const char*, size_t, size_t,
                               int, const char*) {
    Keep(severity, file, line, text);
}

/// From the catalogue's character set to UTF-16.
class Converter {
  public:
    explicit Converter(const std::string& charset)
        : charsetName(charset), handle(iconv_open("UTF-16LE", charset.c_str())) {}
    ~Converter() {
        if (IsOpen()) {
            iconv_close(handle);
        }
    }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;

    bool IsOpen() const { return handle != reinterpret_cast<iconv_t>(-1); }
    const std::string& CharsetName() const { return charsetName; }

    /// False for bytes that the character set does not have.
    bool Convert(std::string_view bytes, std::u16string& text) {
        iconv(handle, nullptr, nullptr, nullptr, nullptr);
        // No character set has more code units than bytes, but for a few whose characters need a
        // surrogate pair or a combining sequence.
        text.resize(bytes.size() * 2 + 4);
        char* input = const_cast<char*>(bytes.data());  // iconv does not write there
        std::size_t inputLeft = bytes.size();
        char* output = reinterpret_cast<char*>(text.data());
        std::size_t outputLeft = text.size() * sizeof(char16_t);
        if (iconv(handle, &input, &inputLeft, &output, &outputLeft) ==
                static_cast<std::size_t>(-1) ||
            iconv(handle, nullptr, nullptr, &output, &outputLeft) == static_cast<std::size_t>(-1)) {
            return false;
        }
        text.resize(text.size() - outputLeft / sizeof(char16_t));
        return true;
    }

  private:
    std::string charsetName;
    iconv_t handle;
};

struct FileDeleter {
    void operator()(po_file* file) const { po_file_free(file); }
};
struct IteratorDeleter {
    // The bare name is a function's, too.
    void operator()(struct po_message_iterator* iterator) const {
        po_message_iterator_free(iterator);
    }
};

/// A field of the header, without the blanks around it; empty when it is not there.
std::string HeaderField(const char* header, const char* field) {
    if (header == nullptr) {
        return {};
    }
    const std::unique_ptr<char, decltype(&std::free)> value(po_header_field(header, field),
                                                            &std::free);
    std::string text = value ? value.get() : "";
    text.erase(0, std::min(text.find_first_not_of(" \t"), text.size()));
    text.erase(text.find_last_not_of(" \t\r\n") + 1);
    return text;
}

std::string CharsetOf(const char* header) {
    constexpr std::string_view Key = "charset=";
    const std::string type = HeaderField(header, "Content-Type");
    const std::size_t key = type.find(Key);
    if (key == std::string::npos) {
        return "UTF-8";
    }
    const std::string name = type.substr(key + Key.size());
    const std::string charset = name.substr(0, name.find_first_of(" \t;"));
    // A template that nobody has filled in yet holds the word "CHARSET".
    return charset.empty() || charset == "CHARSET" ? "UTF-8" : charset;
}

std::int32_t PluralFormsOf(const char* header) {
    constexpr std::string_view Key = "nplurals=";
    const std::string forms = HeaderField(header, "Plural-Forms");
    const std::size_t key = forms.find(Key);
    const int count = key == std::string::npos ? 1 : std::atoi(forms.c_str() + key + Key.size());
    return count >= 1 && count <= 100 ? count : 1;
}

class CatalogBuilder {
  public:
    CatalogBuilder(const std::string& fileName, const char* header)
        : name(fileName), converter(CharsetOf(header)) {
        if (!converter.IsOpen()) {
            throw Error(ErrorInvalidData,
                        name + ": the header names the character set \"" + converter.CharsetName() +
                            "\", which is unknown; convert the catalogue to UTF-8");
        }
    }

    std::u16string Text(po_message_t message, const char* bytes) {
        std::u16string text;
        if (bytes != nullptr && !converter.Convert(bytes, text)) {
            throw Error(ErrorInvalidData,
                        name + ": the message \"" + std::string(po_message_msgid(message)) +
                            "\" holds bytes that are not " + converter.CharsetName() +
                            "; correct the character set in the header, or the bytes");
        }
        return text;
    }

    Message Build(po_message_t source) {
        Message message;
        message.id = Text(source, po_message_msgid(source));
        if (const char* context = po_message_msgctxt(source)) {
            message.context = Text(source, context);
        }
        if (const char* plural = po_message_msgid_plural(source)) {
            message.pluralId = Text(source, plural);
            for (int i = 0; const char* form = po_message_msgstr_plural(source, i); ++i) {
                message.translations.push_back(Text(source, form));
            }
        } else {
            message.translations.push_back(Text(source, po_message_msgstr(source)));
        }
        message.comments = Comment(source, po_message_comments(source));
        message.extractedComments = Comment(source, po_message_extracted_comments(source));
        if (po_filepos_t reference = po_message_filepos(source, 0)) {
            message.firstReference = Text(source, po_filepos_file(reference));
        }
        message.fuzzy = po_message_is_fuzzy(source) != 0;
        return message;
    }

  private:
    /// Lines without the blank that follows the comment sign and without the last line end.
    std::u16string Comment(po_message_t message, const char* bytes) {
        std::u16string text = Text(message, bytes);
        std::u16string lines;
        for (std::size_t first = 0; first < text.size();) {
            const std::size_t end = std::min(text.find(u'\n', first), text.size());
            const std::size_t skip = text[first] == u' ' ? 1 : 0;
            lines.append(text, first + skip, end - first - skip);
            lines += u'\n';
            first = end + 1;
        }
        lines.erase(lines.find_last_not_of(u"\n ") + 1);
        return lines;
    }

    std::string name;
    Converter converter;
};

std::unique_ptr<po_file, FileDeleter> Parse(const std::string& nativePath, Problems& problems) {
    // libgettextpo takes "-" and "/dev/stdin" for standard input.
    const std::string path = nativePath == "-" ? "./-" : nativePath;
    const po_xerror_handler handler = {&OnProblem, &OnProblemOfTwo};
    current = &problems;
    std::unique_ptr<po_file, FileDeleter> file(po_file_read(path.c_str(), &handler));
    current = nullptr;
    return file;
}

}  // namespace

Catalog Read(std::u16string_view path) {
#ifdef GENERALUTILITIES_HAS_LEAK_CHECKER
    const __lsan::ScopedDisabler expectedLeaks;
#endif
    const std::lock_guard lock(readMutex);
    Problems problems;
    problems.fileName = files::ToUtf8Lossy(path);
    if (!files::OpenForReading(path)) {
        throw Error(ErrorFileNotFound,
                    problems.fileName + ": cannot be opened: " + std::strerror(errno));
    }
    const auto file = Parse(files::ToNativePath(path), problems);
    if (!file || problems.count > 0) {
        std::string message = problems.first.empty()
                                  ? problems.fileName + ": is no message catalogue"
                                  : problems.first;
        if (problems.count > 1) {
            message +=
                " (and " + std::to_string(problems.count - 1) + " more; msgfmt -c lists all)";
        }
        throw Error(ErrorInvalidData, message);
    }
    const char* header = po_file_domain_header(file.get(), nullptr);
    CatalogBuilder builder(problems.fileName, header);
    Catalog catalog;
    catalog.language = files::FromUtf8(HeaderField(header, "Language"));
    catalog.pluralForms = PluralFormsOf(header);
    for (const char* const* domain = po_file_domains(file.get()); *domain != nullptr; ++domain) {
        const std::unique_ptr<struct po_message_iterator, IteratorDeleter> iterator(
            po_message_iterator(file.get(), *domain));
        while (po_message_t message = po_next_message(iterator.get())) {
            const bool isHeader =
                *po_message_msgid(message) == '\0' && po_message_msgctxt(message) == nullptr;
            if (!isHeader && po_message_is_obsolete(message) == 0) {
                catalog.messages.push_back(builder.Build(message));
                const std::size_t forms = catalog.messages.back().translations.size();
                catalog.pluralForms =
                    std::max(catalog.pluralForms, static_cast<std::int32_t>(forms));
            }
        }
    }
    return catalog;
}

}  // namespace generalutilities::message_catalog
