#pragma once

#include <cstdint>

/// The two bit sets of the external view: the status word of a translation, and the options of an
/// export.
namespace generalutilities {

/// Bits of the status word in the column `Status_<L>`. Other bits are carried along.
enum StatusBit : std::int32_t {
    StatusExact = 0x1,
    StatusFuzzy = 0x2,
    StatusAssembled = 0x4,
    StatusPropagated = 0x8,
    StatusAutoPropagated = 0x10,
    StatusMachineTranslated = 0x20,
    StatusLocked = 0x200,
    StatusPending = 0x400,
    StatusGuaranteed = 0x1000,
    StatusExactExtra = 0x10000,  ///< an exact match of another kind; it has no colour of its own
};

/// Bits of `ExportOptions`. Bits that are not listed are ignored.
///
/// Of the first four selections (`OnlyUntranslated`, `OnlyTranslated`, `OnlyWithComments`,
/// `OnlyPending`) only one acts: the first of them, in this order, that is set. The `Skip` options
/// add up.
enum ExportOption : std::int32_t {
    OnlyUntranslated = 0x1,   ///< rows with an empty target
    OnlyTranslated = 0x2,     ///< rows with a target
    UniquePairsOnly = 0x4,    ///< one row of each equal pair; equal but for numbers and codes
    SkipLocked = 0x8,         ///< leave out rows with `StatusLocked`
    SkipExact = 0x10,         ///< leave out rows with `StatusExact` or `StatusExactExtra`
    SkipGuaranteed = 0x20,    ///< leave out rows with `StatusGuaranteed`
    OnlyWithComments = 0x40,  ///< rows with a comment
    OnlyPending = 0x80,       ///< rows with `StatusPending`

    RemoveCodes = 0x100,              ///< drop the codes in braces from source and target
    CopySourceToEmptyTarget = 0x200,  ///< an empty target goes out as a copy of the source
    SortBySource = 0x1000,            ///< order by the source's index key instead of the identifier
    LockedIsPerfect = 0x2000,         ///< TWB: locked rows get 101 as match value
    GuaranteedIsPerfect = 0x4000,     ///< TWB: guaranteed rows get 101 as match value

    ShowIdColumn = 0x10000,  ///< the table has an ID column; without it no file can come back
    ColorAllRows = 0x20000,  ///< colour every row by its status, not only the locked ones

    FormatTwb = 0x100000,   ///< the TWB format, unless `FormatHtml` is set
    FormatHtml = 0x200000,  ///< the HTML format; without either bit, the RTF table

    ShowFileColumn = 0x1000000,       ///< the table has a file name column
    UseFileSpec = 0x2000000,          ///< that column holds the whole path of the file
    HideReadOnlyColumns = 0x4000000,  ///< RTF: all but target and comments become hidden text
    ShowStatusColumn = 0x10000000,    ///< the table has a status column
    ShowStatusValue = 0x20000000,     ///< the status column holds the number; else it stays blank
    ColorStatusCell = 0x40000000,     ///< colour the status cell also where the row has no colour
};

/// What the argument `FileID` of an export selects when it is no identifier of a row in `Files`.
enum FileSelection : std::int32_t {
    AllFiles = 0,          ///< every segment of every file
    Lexicon = -1,          ///< the entries of the project's lexicon
    EveryFile = -2,        ///< another value for `AllFiles`
    FilesAndLexicon = -3,  ///< segments and lexicon, without what belongs to file 0
};

}  // namespace generalutilities
