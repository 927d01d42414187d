#pragma once

#include <generalutilities/automation/unknown.h>
#include <generalutilities/text/words.h>

namespace generalutilities {

/// Text services that need no locale of the machine: folding, tokens, keys, search, distance,
/// digits, code pages, languages. Created as `GeneralUtilities.StringUtils.1`.
///
/// S_FALSE means that no answer could be given, not that something went wrong; the result then
/// stays unwritten.
struct IStringUtils : IDispatch {
    /// Punctuation of all scripts made plain ASCII, one unit for one, up to the first U+0000.
    virtual HRESULT SimplifyString(BSTR bstrIn, std::int32_t LCID, BSTR* pbstrOut) noexcept = 0;
    /// Decodes a byte string in code page `lCodePage`. With `bTrueANSI` the memory of `bstrIn` is
    /// the byte string, else with `bNoConversion` the low half of each unit is a byte, else the
    /// bytes are what `bstrIn` gives in code page 1252; a flag counts only as VARIANT_TRUE. The
    /// code pages 0, 1200 and 50000 give a copy up to the first U+0000. S_FALSE for a page that is
    /// not served and where nothing comes of the input, an empty string for example.
    virtual HRESULT ConvertStringToUnicode(std::int32_t lCodePage, BSTR bstrIn,
                                           VARIANT_BOOL bTrueANSI, VARIANT_BOOL bNoConversion,
                                           BSTR* pbstrOut) noexcept = 0;
    /// The likeliest code page of the bytes that `bstrIn` gives in 1252; S_FALSE for no bytes.
    virtual HRESULT DetectCodePage(BSTR bstrIn, std::int32_t lDefLangCodePage,
                                   std::int32_t* plCodePage) noexcept = 0;
    /// Encodes `bstrIn` into a byte string in code page `lCodePage`, in one of the same three
    /// forms. What the page cannot hold becomes a question mark.
    virtual HRESULT ConvertStringFromUnicode(std::int32_t lCodePage, BSTR bstrIn,
                                             VARIANT_BOOL bTrueANSI, VARIANT_BOOL bNoConversion,
                                             BSTR* pbstrOut) noexcept = 0;
    /// The name of a language in that language, by its whole identifier. Null where none of the 16
    /// identifiers with the same upper bits has a name, and empty where only another one has.
    virtual HRESULT GetLangNativeName(std::int32_t LangID, BSTR* bstrOut) noexcept = 0;
    /// The LANGID of the language that those bytes are written in; S_FALSE where none is found.
    virtual HRESULT DetectLanguage(BSTR bstrIn, std::int32_t* plLangID) noexcept = 0;
    /// The code pages of one script or language that carry the whole string, as VT_UI4 from index
    /// 0; no elements, and S_OK, where there are none.
    virtual HRESULT GetStringCodePages(BSTR bstrAnalyze, SAFEARRAY** pCodePages) noexcept = 0;
    /// The text with number `lID` of a module's string table (automation/string_table.h), by the
    /// same rule. `hInstance` is HandleFromPointer of what dlopen gave; null for anything else.
    virtual HRESULT LoadUnicodeResString(std::int32_t hInstance, std::int32_t lID,
                                         BSTR* pbstrResult) noexcept = 0;
    /// The least cost that makes one string of the other: 1.0 for each insertion, deletion and
    /// replacement, `dCapitalizationPenalty` for a change of case alone. Null counts as empty.
    /// E_OUTOFMEMORY when there is no memory for a few rows of numbers.
    virtual HRESULT EditDistance(BSTR bstrS1, BSTR bstrS2, double dCapitalizationPenalty,
                                 double* pdDist) noexcept = 0;
    /// Each code unit without its accents and compatibility forms; case stays.
    virtual HRESULT DeAccentString(BSTR bstrIn, BSTR* pbstrOut) noexcept = 0;
    /// `lLength` random code units of a script key (docs/code-pages.md); S_FALSE for an unknown
    /// key, null for a negative length. The sequence starts anew, from the time in seconds, with
    /// each `StringUtils` object that the thread creates.
    virtual HRESULT GenerateString(std::int32_t lScript, std::int32_t lLength,
                                   BSTR* pbstrGen) noexcept = 0;
    /// The digits of all scripts as ASCII digits, up to the first U+0000; unless
    /// `fMapAllNumerals` is 0, every other numeral as "0". Null gives null.
    virtual HRESULT FoldDigits(BSTR bstrIn, VARIANT_BOOL fMapAllNumerals,
                               BSTR* pbstrRet) noexcept = 0;
    /// Does nothing: S_OK, and `pbstrRet` stays as it was.
    virtual HRESULT TranslateDigits(BSTR bstrIn, std::int32_t lLangID, BSTR* pbstrRet) noexcept = 0;
    /// Moves the inline tags of a segment out into numbered markers (docs/inline-codes.md).
    /// `dictTargets` answers `IDictionary` (automation/dictionary.h) and holds the target texts.
    /// Source and items come back with markers, `EmbeddedID` as the last number given out, the
    /// arrays with the numbers and their tags, from index 0. E_FAIL, with words in the error
    /// object, for no dictionary, for one that fails or holds other things than texts, and for a
    /// text that cannot be scanned; before the first text is written nothing has changed.
    virtual HRESULT SerializeCodes(BSTR* Source, IUnknown* dictTargets, std::int32_t* EmbeddedID,
                                   SAFEARRAY** CodeNumbers, SAFEARRAY** CodeContents) noexcept = 0;
    /// Upper case; U+00DF becomes "SS".
    virtual HRESULT ToUpper(BSTR s, BSTR* p) noexcept = 0;
    /// Lower case; the length stays.
    virtual HRESULT ToLower(BSTR s, BSTR* p) noexcept = 0;
    /// Whether the page carries every character up to the first U+0000, without approximation. True
    /// for a page that is not served.
    virtual HRESULT IsStringInCodePage(BSTR bstrIn, std::int32_t cp,
                                       VARIANT_BOOL* pRetVal) noexcept = 0;
    /// Whether `SerializeCodes` leaves font tags out of the texts. True only for VARIANT_TRUE
    /// itself.
    virtual HRESULT put_TTXIgnoreFonts(VARIANT_BOOL newVal) noexcept = 0;
    virtual HRESULT get_TTXIgnoreFonts(VARIANT_BOOL* pVal) noexcept = 0;
    /// The token at the 1-based position `CharPos` (0 counts as 1), its type, and the position of
    /// the next one. Past the end `pVal` is null, `CharPos` 0, and `wt` stays.
    virtual HRESULT ParseString(std::int32_t* CharPos, BSTR String, std::int32_t LangID,
                                WordTypeEnum* wt, BSTR* pVal) noexcept = 0;
    /// The 1-based position of the first match of `tofind` at or behind `start`, and how many units
    /// of `s` it covers; 0 for none, `MatchLength` then stays. A `start` below 1 counts as 1. Any
    /// value but 0 turns a flag on. Always S_OK, and 0 where an argument is null.
    virtual HRESULT Instr(std::int32_t start, BSTR s, BSTR tofind, std::int32_t* MatchLength,
                          VARIANT_BOOL bMatchCase, VARIANT_BOOL bWholeWord,
                          std::int32_t* retVal) noexcept = 0;
    /// The index key of `s`, at most `cIndexSize` units. E_INVALIDARG for a null `s` or `pVal` and
    /// for a size of 0.
    virtual HRESULT ToIndex(BSTR s, std::int32_t LangID, std::int32_t cIndexSize,
                            BSTR* pVal) noexcept = 0;
    /// Without accents and in upper case; `pbstrIn` points to the input.
    virtual HRESULT DeAccentUpperCaseString(BSTR* pbstrIn, BSTR* pbstrOut) noexcept = 0;
};
inline constexpr IID IID_IStringUtils = MakeGuid("{5DE6DC94-D54F-4602-A02B-88B048897573}");

}  // namespace generalutilities
