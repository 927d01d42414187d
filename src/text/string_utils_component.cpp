#include "text/string_utils_component.h"

#include <generalutilities/automation/functions.h>
#include <generalutilities/automation/pointers.h>
#include <generalutilities/error.h>
#include <generalutilities/interfaces/class_ids.h>
#include <generalutilities/tagged/font_tags.h>
#include <generalutilities/tagged/serialize_codes.h>
#include <generalutilities/text/code_page_fit.h>
#include <generalutilities/text/detection.h>
#include <generalutilities/text/digits.h>
#include <generalutilities/text/distance.h>
#include <generalutilities/text/languages.h>
#include <generalutilities/text/random_text.h>
#include <generalutilities/text/search.h>
#include <generalutilities/text/words.h>

#include "frame/bstr_text.h"
#include "frame/error_reporting.h"
#include "platform/string_tables/string_tables.h"
#include "tagged/target_dictionary.h"
#include "text/fold_into.h"

#include <algorithm>
#include <ctime>
#include <deque>
#include <limits>
#include <utility>

namespace generalutilities {

namespace {

/// A text that may be missing, which is a null string and no failure.
HRESULT GiveFound(std::optional<std::u16string_view> text, BSTR* out) {
    *out = nullptr;
    return text ? Give(*text, out) : S_OK;
}

/// A copy up to the first U+0000, which is null where the text is.
HRESULT GiveTerminated(BSTR text, BSTR* out) noexcept {
    *out = SysAllocString(text);
    return *out == nullptr && text != nullptr ? E_OUTOFMEMORY : S_OK;
}

/// A new string of this many units or bytes, to be filled; null when it is too long.
char16_t* NewUnits(Bstr& string, std::size_t units) {
    if (units <= 0xFFFFFFFF) {
        *string.Out() = SysAllocStringLen(nullptr, static_cast<std::uint32_t>(units));
    }
    return string.Get();
}

char* NewBytes(Bstr& string, std::size_t bytes) {
    if (bytes <= 0xFFFFFFFF) {
        *string.Out() = SysAllocStringByteLen(nullptr, static_cast<std::uint32_t>(bytes));
    }
    return reinterpret_cast<char*>(string.Get());
}

/// What both conversions have in common: pages that are copied, and S_FALSE with `out` as it was
/// where `convert` has no result.
template <class Convert>
HRESULT GiveConverted(std::int32_t codePage, BSTR in, BSTR* out, Convert convert) noexcept {
    if (out == nullptr) {
        return E_POINTER;
    }
    if (IsPassThrough(codePage)) {
        return GiveTerminated(in, out);
    }
    return Guarded([&] {
        Bstr result;
        if (!convert(result)) {
            return S_FALSE;
        }
        *out = result.Release();
        return S_OK;
    });
}

ByteTextForm TextForm(VARIANT_BOOL noConversion) {
    return noConversion == VARIANT_TRUE ? ByteTextForm::Widened : ByteTextForm::AnsiText;
}

/// The fold is written straight into the new string, which is enlarged only for a text that grows.
/// Removing accents promises what there is when that fails; a change of case promises nothing.
HRESULT GiveFolded(Fold fold, BSTR in, BSTR* out) noexcept {
    if (out == nullptr) {
        return E_POINTER;
    }
    const std::u16string_view text = View(in);
    *out = SysAllocStringLen(nullptr, static_cast<std::uint32_t>(text.size()));
    if (*out == nullptr) {
        return E_OUTOFMEMORY;
    }
    const std::size_t done = FoldPrefix(fold, text, *out);
    if (done == text.size()) {
        return S_OK;
    }
    const std::u16string_view rest = text.substr(done);
    const std::size_t length = done + FoldedLength(fold, rest);
    const auto resize = [out](std::size_t units) {
        return units <= std::numeric_limits<std::uint32_t>::max() &&
               SysReAllocStringLen(out, nullptr, static_cast<std::uint32_t>(units)) != 0;
    };
    if (!resize(length)) {
        if (fold != Fold::Upper && resize(done)) {
            return S_FALSE;
        }
        SysFreeString(std::exchange(*out, nullptr));
        return E_OUTOFMEMORY;
    }
    FoldTo(fold, rest, *out + done);
    return S_OK;
}

/// The texts of a segment as they come, each with its scan.
class SegmentScans {
  public:
    explicit SegmentScans(bool ignoreFontTags) : ignoreFonts(ignoreFontTags) {}

    void Add(std::u16string_view text) {
        const std::u16string& kept =
            texts.emplace_back(ignoreFonts ? StripFontAttributes(text) : std::u16string(text));
        if (const auto fault = ScanTags(kept, scans.emplace_back())) {
            throw Error(E_FAIL, fault->Words());
        }
    }
    const std::vector<TagScan>& Scans() const { return scans; }

  private:
    bool ignoreFonts;
    std::deque<std::u16string> texts;  ///< which stay in their places
    std::vector<TagScan> scans;
};

Bstr NewString(std::u16string_view text) {
    Bstr string(text);
    if (string.Get() == nullptr) {
        throw std::bad_alloc();
    }
    return string;
}

/// An array of so many elements from index 0.
ArrayPtr NewArray(VARTYPE type, std::size_t count) {
    ArrayPtr array(count > std::numeric_limits<std::int32_t>::max()
                       ? nullptr
                       : SafeArrayCreateVector(type, 0, static_cast<std::uint32_t>(count)));
    if (array == nullptr) {
        throw std::bad_alloc();
    }
    return array;
}

/// What `GenerateString` of all objects on the thread draws from.
thread_local RandomSource ThreadRandom;

}  // namespace

void* CStringUtils::FindInterface(REFIID iid) noexcept {
    IStringUtils* const standard = this;
    ISupportErrorInfo* const errors = this;
    return FindInTable(iid, {{IID_IUnknown, standard},
                             {IID_IStringUtils, standard},
                             {IID_IDispatch, standard},
                             {IID_ISupportErrorInfo, errors}});
}

HRESULT CStringUtils::Start() noexcept {
    ThreadRandom = RandomSource(static_cast<std::uint32_t>(std::time(nullptr)));
    return S_OK;
}

std::string CStringUtils::AnsiBytes(BSTR text) {
    std::string bytes;
    byteStrings.FromUnicode(SystemAnsiCodePage, View(text), [&bytes](std::size_t size) {
        bytes.resize(size);
        return bytes.data();
    });
    return bytes;
}

HRESULT CStringUtils::SimplifyString(BSTR bstrIn, std::int32_t lcid, BSTR* pbstrOut) noexcept {
    if (pbstrOut == nullptr) {
        return E_POINTER;
    }
    const HRESULT status = GiveTerminated(bstrIn, pbstrOut);
    SimplifyTo(View(*pbstrOut), lcid, *pbstrOut);
    return status;
}

HRESULT CStringUtils::ConvertStringToUnicode(std::int32_t lCodePage, BSTR bstrIn,
                                             VARIANT_BOOL bTrueANSI, VARIANT_BOOL bNoConversion,
                                             BSTR* pbstrOut) noexcept {
    return GiveConverted(lCodePage, bstrIn, pbstrOut, [&](Bstr& result) {
        const auto room = [&](std::size_t units) { return NewUnits(result, units); };
        return bTrueANSI == VARIANT_TRUE
                   ? byteStrings.ToUnicode(lCodePage, Memory(bstrIn), room)
                   : byteStrings.ToUnicode(lCodePage, View(bstrIn), TextForm(bNoConversion), room);
    });
}

HRESULT CStringUtils::DetectCodePage(BSTR bstrIn, std::int32_t lDefLangCodePage,
                                     std::int32_t* plCodePage) noexcept {
    if (plCodePage == nullptr) {
        return E_POINTER;
    }
    return Guarded([&] {
        const std::string bytes = AnsiBytes(bstrIn);
        if (bytes.empty()) {
            return S_FALSE;
        }
        *plCodePage = generalutilities::DetectCodePage(bytes, lDefLangCodePage);
        return S_OK;
    });
}

HRESULT CStringUtils::ConvertStringFromUnicode(std::int32_t lCodePage, BSTR bstrIn,
                                               VARIANT_BOOL bTrueANSI, VARIANT_BOOL bNoConversion,
                                               BSTR* pbstrOut) noexcept {
    return GiveConverted(lCodePage, bstrIn, pbstrOut, [&](Bstr& result) {
        return bTrueANSI == VARIANT_TRUE
                   ? byteStrings.FromUnicode(
                         lCodePage, View(bstrIn),
                         [&](std::size_t bytes) { return NewBytes(result, bytes); })
                   : byteStrings.FromUnicode(
                         lCodePage, View(bstrIn), TextForm(bNoConversion),
                         [&](std::size_t units) { return NewUnits(result, units); });
    });
}

HRESULT CStringUtils::GetLangNativeName(std::int32_t LangID, BSTR* bstrOut) noexcept {
    return bstrOut == nullptr ? E_POINTER : GiveFound(LanguageNativeName(LangID), bstrOut);
}

HRESULT CStringUtils::DetectLanguage(BSTR bstrIn, std::int32_t* plLangID) noexcept {
    if (plLangID == nullptr) {
        return E_POINTER;
    }
    return Guarded([&] {
        const std::optional<std::int32_t> langId =
            generalutilities::DetectLanguage(AnsiBytes(bstrIn));
        if (!langId) {
            return S_FALSE;
        }
        *plLangID = *langId;
        return S_OK;
    });
}

HRESULT CStringUtils::GetStringCodePages(BSTR bstrAnalyze, SAFEARRAY** pCodePages) noexcept {
    if (pCodePages == nullptr) {
        return E_POINTER;
    }
    return Guarded([&] {
        const std::vector<std::uint32_t> codePages = CodePagesOfText(View(bstrAnalyze));
        *pCodePages =
            SafeArrayCreateVector(VT_UI4, 0, static_cast<std::uint32_t>(codePages.size()));
        if (*pCodePages == nullptr) {
            return E_OUTOFMEMORY;
        }
        std::ranges::copy(codePages, static_cast<std::uint32_t*>((*pCodePages)->pvData));
        return S_OK;
    });
}

HRESULT CStringUtils::LoadUnicodeResString(std::int32_t hInstance, std::int32_t lID,
                                           BSTR* pbstrResult) noexcept {
    return pbstrResult == nullptr
               ? E_POINTER
               : GiveFound(FindModuleString(PointerFromHandle(hInstance), lID), pbstrResult);
}

HRESULT CStringUtils::SerializeCodes(BSTR* Source, IUnknown* dictTargets, std::int32_t* EmbeddedID,
                                     SAFEARRAY** CodeNumbers, SAFEARRAY** CodeContents) noexcept {
    if (Source == nullptr || EmbeddedID == nullptr || CodeNumbers == nullptr ||
        CodeContents == nullptr) {
        return E_POINTER;
    }
    const auto serialize = [&] {
        TargetDictionary targets(dictTargets);
        SegmentScans segment(ttxIgnoreFonts);
        segment.Add(TerminatedView(*Source));
        for (std::size_t i = 0; i < targets.Count(); ++i) {
            segment.Add(TerminatedView(targets.Read(i).Get()));
        }
        const SerializedCodes codes =
            generalutilities::SerializeCodes(segment.Scans(), *EmbeddedID);

        // All memory is taken before the caller can see any change.
        std::vector<Bstr> texts;
        texts.reserve(codes.texts.size());
        for (const std::u16string& text : codes.texts) {
            texts.push_back(NewString(text));
        }
        ArrayPtr numbers = NewArray(VT_I4, codes.codes.size());
        ArrayPtr contents = NewArray(VT_BSTR, codes.codes.size());
        for (std::size_t i = 0; i < codes.codes.size(); ++i) {
            static_cast<std::int32_t*>(numbers->pvData)[i] =
                *EmbeddedID + static_cast<std::int32_t>(i) + 1;
            static_cast<BSTR*>(contents->pvData)[i] = NewString(codes.codes[i]).Release();
        }

        *CodeNumbers = numbers.release();
        *CodeContents = contents.release();
        SysFreeString(std::exchange(*Source, texts[0].Release()));
        for (std::size_t i = 0; i < targets.Count(); ++i) {
            targets.Write(i, texts[i + 1]);
        }
        *EmbeddedID = codes.lastNumber;
        return S_OK;
    };
    return Guarded([&] {
        try {
            return serialize();
        } catch (const Error& failure) {
            return ReportError(CLSID_StringUtils, failure.what(), IID_IStringUtils,
                               failure.Status());
        }
    });
}

HRESULT CStringUtils::IsStringInCodePage(BSTR bstrIn, std::int32_t cp,
                                         VARIANT_BOOL* pRetVal) noexcept {
    if (pRetVal == nullptr) {
        return E_POINTER;
    }
    return Guarded([&] {
        const bool fits = FitsCodePage(TerminatedView(bstrIn), static_cast<std::uint32_t>(cp));
        *pRetVal = fits ? VARIANT_TRUE : VARIANT_FALSE;
        return S_OK;
    });
}

HRESULT CStringUtils::DeAccentString(BSTR bstrIn, BSTR* pbstrOut) noexcept {
    return GiveFolded(Fold::DeAccent, bstrIn, pbstrOut);
}

HRESULT CStringUtils::ToUpper(BSTR s, BSTR* p) noexcept {
    return GiveFolded(Fold::Upper, s, p);
}

HRESULT CStringUtils::ToLower(BSTR s, BSTR* p) noexcept {
    return GiveFolded(Fold::Lower, s, p);
}

HRESULT CStringUtils::DeAccentUpperCaseString(BSTR* pbstrIn, BSTR* pbstrOut) noexcept {
    if (pbstrIn == nullptr) {
        return E_POINTER;
    }
    return GiveFolded(Fold::DeAccentUpper, *pbstrIn, pbstrOut);
}

HRESULT CStringUtils::put_TTXIgnoreFonts(VARIANT_BOOL newVal) noexcept {
    ttxIgnoreFonts = newVal == VARIANT_TRUE;
    return S_OK;
}

HRESULT CStringUtils::get_TTXIgnoreFonts(VARIANT_BOOL* pVal) noexcept {
    if (pVal == nullptr) {
        return E_POINTER;
    }
    *pVal = ttxIgnoreFonts ? VARIANT_TRUE : VARIANT_FALSE;
    return S_OK;
}

HRESULT CStringUtils::ParseString(std::int32_t* CharPos, BSTR String, std::int32_t LangID,
                                  WordTypeEnum* wt, BSTR* pVal) noexcept {
    if (CharPos == nullptr || wt == nullptr || pVal == nullptr) {
        return E_POINTER;
    }
    *pVal = nullptr;
    if (*CharPos < 0) {
        return E_INVALIDARG;
    }
    const auto position = static_cast<std::size_t>(*CharPos == 0 ? 0 : *CharPos - 1);
    return Guarded([&] {
        if (LangID != wordParser.Language()) {
            wordParser = WordParser(LangID);
        }
        const std::u16string_view text = View(String);
        const auto token = wordParser.ParseStep(text, position);
        if (!token) {
            *CharPos = 0;
            return S_OK;
        }
        const HRESULT status =
            Give(text.substr(position, static_cast<std::size_t>(token->end) - position), pVal);
        if (Succeeded(status)) {
            *wt = token->type;
            *CharPos = token->end + 1;
        }
        return status;
    });
}

HRESULT CStringUtils::Instr(std::int32_t start, BSTR s, BSTR tofind, std::int32_t* MatchLength,
                            VARIANT_BOOL bMatchCase, VARIANT_BOOL bWholeWord,
                            std::int32_t* retVal) noexcept {
    if (retVal == nullptr) {
        return E_POINTER;
    }
    *retVal = 0;
    if (s == nullptr || tofind == nullptr || MatchLength == nullptr) {
        return S_OK;
    }
    return Guarded([&] {
        const auto first = static_cast<std::size_t>(start < 1 ? 0 : start - 1);
        if (const auto match = FindText(View(s), View(tofind), first,
                                        {.matchCase = bMatchCase != VARIANT_FALSE,
                                         .wholeWord = bWholeWord != VARIANT_FALSE})) {
            *MatchLength = static_cast<std::int32_t>(match->length);
            *retVal = static_cast<std::int32_t>(match->position + 1);
        }
        return S_OK;
    });
}

HRESULT CStringUtils::EditDistance(BSTR bstrS1, BSTR bstrS2, double dCapitalizationPenalty,
                                   double* pdDist) noexcept {
    if (pdDist == nullptr) {
        return E_POINTER;
    }
    return Guarded([&] {
        *pdDist =
            generalutilities::EditDistance(View(bstrS1), View(bstrS2), dCapitalizationPenalty);
        return S_OK;
    });
}

HRESULT CStringUtils::GenerateString(std::int32_t lScript, std::int32_t lLength,
                                     BSTR* pbstrGen) noexcept {
    if (pbstrGen == nullptr) {
        return E_POINTER;
    }
    return Guarded([&] {
        CharSet* const set = charSets.Get(lScript);
        if (set == nullptr) {
            return S_FALSE;
        }
        *pbstrGen = nullptr;
        if (lLength < 0) {
            return S_OK;
        }
        const auto length = static_cast<std::uint32_t>(lLength);
        *pbstrGen = SysAllocStringLen(nullptr, length);
        if (*pbstrGen == nullptr) {
            return E_OUTOFMEMORY;
        }
        GenerateText(*set, ThreadRandom, *pbstrGen, length);
        return S_OK;
    });
}

HRESULT CStringUtils::FoldDigits(BSTR bstrIn, VARIANT_BOOL fMapAllNumerals,
                                 BSTR* pbstrRet) noexcept {
    if (pbstrRet == nullptr) {
        return E_POINTER;
    }
    const HRESULT status = GiveTerminated(bstrIn, pbstrRet);
    FoldDigitsTo(View(*pbstrRet), fMapAllNumerals != VARIANT_FALSE, *pbstrRet);
    return status;
}

HRESULT CStringUtils::TranslateDigits(BSTR, std::int32_t, BSTR*) noexcept {
    return S_OK;
}

HRESULT CStringUtils::ToIndex(BSTR s, std::int32_t LangID, std::int32_t cIndexSize,
                              BSTR* pVal) noexcept {
    if (s == nullptr || pVal == nullptr || cIndexSize == 0) {
        return E_INVALIDARG;
    }
    *pVal = nullptr;
    return Guarded(
        [&] { return Give(generalutilities::ToIndex(View(s), LangID, cIndexSize), pVal); });
}

}  // namespace generalutilities
