#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Message catalogues in gettext's PO format, read by gettext's own library.
namespace generalutilities::message_catalog {

struct Message {
    std::optional<std::u16string> context;
    std::u16string id;                         ///< the untranslated text
    std::optional<std::u16string> pluralId;    ///< for a message with plural forms
    std::vector<std::u16string> translations;  ///< one; with plural forms, as many as there are
    std::u16string comments;                   ///< the translator's, lines parted by LF
    std::u16string extractedComments;          ///< the programmer's, likewise
    std::u16string firstReference;             ///< the program file it comes from; may be empty
    bool fuzzy = false;
};

struct Catalog {
    std::u16string language;        ///< the header's "Language"; may be empty
    std::int32_t pluralForms = 1;   ///< the header's nplurals, or the most that a message has
    std::vector<Message> messages;  ///< without the header and obsolete messages
};

/// Reads a whole catalogue; its texts are converted from the character set that its header names
/// (UTF-8 where it names none). Throws `Error` with file, line and reason. Only one thread reads at
/// a time, since gettext's parser has one state for the process; others wait.
Catalog Read(std::u16string_view path);

}  // namespace generalutilities::message_catalog
