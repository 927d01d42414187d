#pragma once

#include <generalutilities/interfaces/string_utils.h>
#include <generalutilities/text/byte_strings.h>
#include <generalutilities/text/char_sets.h>

#include "frame/dispatch.h"
#include "frame/interface_descriptions.h"

#include <string>

namespace generalutilities {

/// The class behind `StringUtils`: arguments in, the functions of the text room, a status out.
class CStringUtils : public Dual<IStringUtils, DescribeStringUtils>,
                     public RichErrors<IID_IStringUtils> {
  public:
    void* FindInterface(REFIID iid) noexcept;
    /// Seeds the thread's random numbers with the time.
    HRESULT Start() noexcept;

    HRESULT SimplifyString(BSTR bstrIn, std::int32_t LCID, BSTR* pbstrOut) noexcept override;
    HRESULT ConvertStringToUnicode(std::int32_t lCodePage, BSTR bstrIn, VARIANT_BOOL bTrueANSI,
                                   VARIANT_BOOL bNoConversion, BSTR* pbstrOut) noexcept override;
    HRESULT DetectCodePage(BSTR bstrIn, std::int32_t lDefLangCodePage,
                           std::int32_t* plCodePage) noexcept override;
    HRESULT ConvertStringFromUnicode(std::int32_t lCodePage, BSTR bstrIn, VARIANT_BOOL bTrueANSI,
                                     VARIANT_BOOL bNoConversion, BSTR* pbstrOut) noexcept override;
    HRESULT GetLangNativeName(std::int32_t LangID, BSTR* bstrOut) noexcept override;
    HRESULT DetectLanguage(BSTR bstrIn, std::int32_t* plLangID) noexcept override;
    HRESULT GetStringCodePages(BSTR bstrAnalyze, SAFEARRAY** pCodePages) noexcept override;
    HRESULT LoadUnicodeResString(std::int32_t hInstance, std::int32_t lID,
                                 BSTR* pbstrResult) noexcept override;
    HRESULT EditDistance(BSTR bstrS1, BSTR bstrS2, double dCapitalizationPenalty,
                         double* pdDist) noexcept override;
    HRESULT DeAccentString(BSTR bstrIn, BSTR* pbstrOut) noexcept override;
    HRESULT GenerateString(std::int32_t lScript, std::int32_t lLength,
                           BSTR* pbstrGen) noexcept override;
    HRESULT FoldDigits(BSTR bstrIn, VARIANT_BOOL fMapAllNumerals, BSTR* pbstrRet) noexcept override;
    HRESULT TranslateDigits(BSTR bstrIn, std::int32_t lLangID, BSTR* pbstrRet) noexcept override;
    HRESULT SerializeCodes(BSTR* Source, IUnknown* dictTargets, std::int32_t* EmbeddedID,
                           SAFEARRAY** CodeNumbers, SAFEARRAY** CodeContents) noexcept override;
    HRESULT ToUpper(BSTR s, BSTR* p) noexcept override;
    HRESULT ToLower(BSTR s, BSTR* p) noexcept override;
    HRESULT IsStringInCodePage(BSTR bstrIn, std::int32_t cp,
                               VARIANT_BOOL* pRetVal) noexcept override;
    HRESULT put_TTXIgnoreFonts(VARIANT_BOOL newVal) noexcept override;
    HRESULT get_TTXIgnoreFonts(VARIANT_BOOL* pVal) noexcept override;
    HRESULT ParseString(std::int32_t* CharPos, BSTR String, std::int32_t LangID, WordTypeEnum* wt,
                        BSTR* pVal) noexcept override;
    HRESULT Instr(std::int32_t start, BSTR s, BSTR tofind, std::int32_t* MatchLength,
                  VARIANT_BOOL bMatchCase, VARIANT_BOOL bWholeWord,
                  std::int32_t* retVal) noexcept override;
    HRESULT ToIndex(BSTR s, std::int32_t LangID, std::int32_t cIndexSize,
                    BSTR* pVal) noexcept override;
    HRESULT DeAccentUpperCaseString(BSTR* pbstrIn, BSTR* pbstrOut) noexcept override;

  private:
    /// The bytes that a text gives in the system's ANSI code page.
    std::string AnsiBytes(BSTR text);

    CharSets charSets;
    ByteStringConversion byteStrings;
    WordParser wordParser{0};  ///< of the language that was last asked for
    bool ttxIgnoreFonts = false;
};

}  // namespace generalutilities
