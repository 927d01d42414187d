#include "commands/export_options.h"

#include "color.h"
#include "failure.h"

#include <algorithm>
#include <filesystem>

namespace generalutilities::cli {
namespace {

struct OptionFlag {
    std::int32_t bit;
    const char* name;
    const char* help;
    const char* group;
    const char* needs = nullptr;
};

constexpr const char* Selection = "Which rows";
constexpr const char* Content = "What the rows show";
constexpr const char* Appearance = "How the table looks";

const OptionFlag Flags[] = {
    {OnlyUntranslated, "--only-untranslated", "Rows without a translation", Selection},
    {OnlyTranslated, "--only-translated", "Rows with a translation", Selection},
    {OnlyWithComments, "--only-with-comments", "Rows with a comment", Selection},
    {OnlyPending, "--only-pending", "Rows with the status pending", Selection},
    {UniquePairsOnly, "--unique-pairs",
     "One row of each equal pair; pairs that differ only in numbers and codes are equal",
     Selection},
    {SkipLocked, "--skip-locked", "Leave out locked rows", Selection},
    {SkipExact, "--skip-exact", "Leave out exact matches", Selection},
    {SkipGuaranteed, "--skip-guaranteed", "Leave out guaranteed matches", Selection},
    {SortBySource, "--sort-by-source", "Order by source text instead of by identifier", Selection},
    {RemoveCodes, "--remove-codes",
     "Drop the codes in braces; such rows come back as changed, without their codes", Content},
    {CopySourceToEmptyTarget, "--copy-source", "Show the source where there is no translation",
     Content},
    {LockedIsPerfect, "--locked-is-perfect", "TWB: locked rows get the match value 101", Content},
    {GuaranteedIsPerfect, "--guaranteed-is-perfect", "TWB: guaranteed rows get the match value 101",
     Content},
    {ShowStatusColumn, "--status-column", "A column for the status", Appearance},
    {ShowStatusValue, "--status-value", "The status as a number in its column", Appearance,
     "--status-column"},
    {ColorStatusCell, "--color-status-cell", "Colour the status cell of every row", Appearance,
     "--status-column"},
    {ShowFileColumn, "--file-column", "A column for the file name", Appearance},
    {UseFileSpec, "--file-paths", "The whole path in the file column", Appearance, "--file-column"},
    {ColorAllRows, "--color-all-rows", "Colour every row by its status, not only the locked ones",
     Appearance},
    {HideReadOnlyColumns, "--hide-read-only",
     "RTF: hidden text for all that the reviewer does not edit", Appearance},
};

struct ColorOption {
    const char* name;
    const char* standard;
};

/// In the order of the arguments of `ExportExternalView`.
constexpr ColorOption Colors[] = {
    {"--color-guaranteed", "#C6E0B4"},
    {"--color-exact", "#E2EFDA"},
    {"--color-fuzzy", "#FFF2CC"},
    {"--color-assembled", "#DDEBF7"},
    {"--color-propagated", "#D9D2E9"},
    {"--color-auto-propagated", "#EADCF4"},
    {"--color-locked", "#D9D9D9"},
    {"--color-pending", "#F8CBAD"},
    {"--color-machine-translated", "#CFE2F3"},
};

/// A font's name goes into the file as it is, so it must not hold what has a meaning there.
std::string CheckFont(const std::string& name) {
    for (const char c : name) {
        if (c < ' ' || c > '~' || std::string_view(";{}\\\"<").find(c) != std::string_view::npos) {
            return "\"" + name +
                   "\" cannot stand in the file; use plain ASCII without ; { } \\ \" <";
        }
    }
    return name.empty() ? "a font needs a name" : "";
}

struct Format {
    const char* name;
    const char* description;
    std::vector<std::string_view> endings;  ///< the usual one first
};
const Format Formats[] = {
    {"rtf", "an RTF table", {".rtf"}},
    {"html", "an HTML page", {".html", ".htm"}},
    {"twb", "a bilingual document, which is RTF", {".rtf", ".twb"}},
};

/// Endings that programs open a file by, and that none of the formats has.
constexpr std::string_view OtherEndings[] = {".doc", ".docx", ".dot", ".odt", ".pdf",
                                             ".txt", ".csv",  ".tsv", ".xls", ".xlsx",
                                             ".ods", ".xml",  ".tmx", ".xlf", ".xliff"};

bool Has(const Format& format, std::string_view ending) {
    return std::find(format.endings.begin(), format.endings.end(), ending) != format.endings.end();
}

}  // namespace

void SettleFormat(ExportLook& look, const std::string& fileName) {
    std::string ending = std::filesystem::path(fileName).extension().string();
    std::transform(ending.begin(), ending.end(), ending.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    bool isKnown = std::find(std::begin(OtherEndings), std::end(OtherEndings), ending) !=
                   std::end(OtherEndings);
    for (const Format& format : Formats) {
        isKnown = isKnown || Has(format, ending);
        if (look.format.empty() && Has(format, ending)) {
            look.format = format.name;
        }
    }
    if (look.format.empty()) {
        look.format = Formats[0].name;
    }
    const Format& chosen =
        *std::find_if(std::begin(Formats), std::end(Formats),
                      [&](const Format& one) { return one.name == look.format; });
    if (isKnown && !Has(chosen, ending)) {
        throw UsageError("--output: " + fileName + " ends in " + ending + ", but --format " +
                         look.format + " writes " + chosen.description + "; name it with " +
                         std::string(chosen.endings[0]));
    }
}

std::int32_t ExportLook::OptionBits() const {
    return options | (omitIdColumn ? 0 : ShowIdColumn) |
           (format == "html"  ? FormatHtml
            : format == "twb" ? FormatTwb
                              : 0);
}

std::int32_t ExportLook::ColorValue(std::size_t index) const {
    return ParseColor(colors[index]);
}

void AddLookOptions(CLI::App* command, ExportLook& look) {
    for (const OptionFlag& flag : Flags) {
        CLI::Option* option =
            command
                ->add_flag_callback(
                    flag.name, [&look, &flag] { look.options |= flag.bit; }, flag.help)
                ->group(flag.group);
        if (flag.needs != nullptr) {
            option->needs(command->get_option(flag.needs));
        }
    }
    // Of these only one would act.
    const char* const exclusive[] = {"--only-untranslated", "--only-translated",
                                     "--only-with-comments", "--only-pending"};
    for (const char* one : exclusive) {
        for (const char* other : exclusive) {
            if (one != other) {
                command->get_option(one)->excludes(command->get_option(other));
            }
        }
    }
    command
        ->add_flag("--no-id-column", look.omitIdColumn,
                   "Leave out the identifiers; such a file cannot be imported again")
        ->group(Appearance);
    command
        ->add_option("--format", look.format,
                     "rtf: a table; html: a page for reading; twb: a bilingual document in the "
                     "tw4win layout. Without it the ending of the file's name decides")
        ->check(CLI::IsMember({"rtf", "html", "twb"}))
        ->group(Appearance);
    command->add_option("--source-font", look.sourceFont, "The font of the source column")
        ->check(CheckFont)
        ->capture_default_str()
        ->type_name("NAME")
        ->group(Appearance);
    command->add_option("--target-font", look.targetFont, "The font of target and comments")
        ->check(CheckFont)
        ->capture_default_str()
        ->type_name("NAME")
        ->group(Appearance);
    for (std::size_t i = 0; i < look.colors.size(); ++i) {
        look.colors[i] = Colors[i].standard;
        command->add_option(Colors[i].name, look.colors[i])
            ->check(CheckColor)
            ->capture_default_str()
            ->type_name("#RRGGBB")
            ->group("Colours by status");
    }
}

}  // namespace generalutilities::cli
