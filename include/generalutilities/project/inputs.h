#pragma once

#include <generalutilities/project/create.h>
#include <generalutilities/project/segment_codes.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

/// The files that a project is made from: tables of delimited text, and gettext catalogues.
namespace generalutilities {

/// A table in UTF-8 with a heading row; docs/projects.md lists the columns.
struct DelimitedInput {
    std::u16string path;
    char delimiter = ',';
    bool quoted = true;  ///< whether a cell may stand in double quotes
    TextForm textForm = TextForm::Segment;
    /// The language of the columns "target", "status", "comment" and "percentage" without a tag.
    std::optional<std::int32_t> language;
};

/// Opens the table and reads its heading. Throws `Error`.
std::unique_ptr<RowSource> OpenDelimitedInput(const DelimitedInput& input);

/// One catalogue of a set.
struct CatalogFile {
    std::u16string path;
    /// The language; without one, the header's "Language", then the file's name ("fr.po").
    std::optional<std::int32_t> language;
};

/// Catalogues with the same messages: a template, and one catalogue a language.
struct CatalogInput {
    /// The template, which decides the messages and their order. Without one, the first catalogue
    /// decides, and messages that only later ones have follow.
    std::optional<std::u16string> templatePath;
    std::vector<CatalogFile> catalogs;
    /// Languages without a catalogue: their columns are made, empty.
    std::vector<std::int32_t> emptyLanguages;
    TextForm textForm = TextForm::Plain;
    /// Whether a row belongs to the program file of its first reference instead of the catalogue.
    bool filesByReference = false;
};

/// Reads the catalogues and matches their messages by context and text. Throws `Error`.
std::unique_ptr<RowSource> OpenCatalogInput(const CatalogInput& input);

}  // namespace generalutilities
