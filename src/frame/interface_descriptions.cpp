#include "frame/interface_descriptions.h"

#include <generalutilities/interfaces/code_page_helper.h>
#include <generalutilities/interfaces/draw_text.h>
#include <generalutilities/interfaces/ext_view_helper.h>
#include <generalutilities/interfaces/itd.h>

namespace generalutilities {

namespace {

constexpr std::uint16_t DualFlags =
    TYPEFLAG_FDUAL | TYPEFLAG_FOLEAUTOMATION | TYPEFLAG_FDISPATCHABLE;

}  // namespace

const InterfaceDescription& DescribeStringUtils() {
    using I = IStringUtils;
    static const InterfaceDescription description{
        u"IStringUtils",
        IID_IStringUtils,
        DualFlags,
        {
            MakeMethod<&I::SimplifyString>(1, u"SimplifyString", In(u"bstrIn"), In(u"LCID"),
                                           Result(u"pbstrOut")),
            MakeMethod<&I::ConvertStringToUnicode>(
                2, u"ConvertStringToUnicode", In(u"lCodePage"), In(u"bstrIn"),
                In(u"bTrueANSI", false), In(u"bNoConversion", false), Result(u"pbstrOut")),
            MakeMethod<&I::DetectCodePage>(3, u"DetectCodePage", In(u"bstrIn"),
                                           In(u"lDefLangCodePage", 0), Result(u"plCodePage")),
            MakeMethod<&I::ConvertStringFromUnicode>(
                4, u"ConvertStringFromUnicode", In(u"lCodePage"), In(u"bstrIn"),
                In(u"bTrueANSI", false), In(u"bNoConversion", false), Result(u"pbstrOut")),
            MakeMethod<&I::GetLangNativeName>(5, u"GetLangNativeName", In(u"LangID"),
                                              Result(u"bstrOut")),
            MakeMethod<&I::DetectLanguage>(6, u"DetectLanguage", In(u"bstrIn"),
                                           Result(u"plLangID")),
            MakeMethod<&I::GetStringCodePages>(7, u"GetStringCodePages", In(u"bstrAnalyze"),
                                               Result(u"pCodePages").Of(VT_I4)),
            MakeMethod<&I::LoadUnicodeResString>(8, u"LoadUnicodeResString", In(u"hInstance"),
                                                 In(u"lID"), Result(u"pbstrResult")),
            MakeMethod<&I::EditDistance>(9, u"EditDistance", In(u"bstrS1"), In(u"bstrS2"),
                                         In(u"dCapitalizationPenalty", 1.0), Result(u"pdDist")),
            MakeMethod<&I::DeAccentString>(10, u"DeAccentString", In(u"bstrIn"),
                                           Result(u"pbstrOut")),
            MakeMethod<&I::GenerateString>(11, u"GenerateString", In(u"lScript"), In(u"lLength"),
                                           Result(u"pbstrGen")),
            MakeMethod<&I::FoldDigits>(12, u"FoldDigits", In(u"bstrIn"),
                                       In(u"fMapAllNumerals", true), Result(u"pbstrRet")),
            MakeMethod<&I::TranslateDigits>(13, u"TranslateDigits", In(u"bstrIn"), In(u"lLangID"),
                                            Result(u"pbstrRet")),
            MakeMethod<&I::SerializeCodes>(
                14, u"SerializeCodes", InOut(u"Source"), In(u"dictTargets"), InOut(u"EmbeddedID"),
                Out(u"CodeNumbers").Of(VT_I4), Out(u"CodeContents").Of(VT_BSTR)),
            MakeMethod<&I::ToUpper>(15, u"ToUpper", In(u"s"), Result(u"p")),
            MakeMethod<&I::ToLower>(16, u"ToLower", In(u"s"), Result(u"p")),
            MakeMethod<&I::IsStringInCodePage>(17, u"IsStringInCodePage", In(u"bstrIn"), In(u"cp"),
                                               Result(u"pRetVal")),
            MakeSetter<&I::put_TTXIgnoreFonts>(18, u"TTXIgnoreFonts", In(u"newVal")),
            MakeGetter<&I::get_TTXIgnoreFonts>(18, u"TTXIgnoreFonts", Result(u"pVal")),
            MakeMethod<&I::ParseString>(19, u"ParseString", InOut(u"CharPos"), In(u"String"),
                                        In(u"LangID"), InOut(u"wt"), Result(u"pVal")),
            MakeMethod<&I::Instr>(20, u"Instr", In(u"start"), In(u"s"), In(u"tofind"),
                                  InOut(u"MatchLength"), In(u"bMatchCase", false),
                                  In(u"bWholeWord", false), Result(u"retVal")),
            MakeMethod<&I::ToIndex>(21, u"ToIndex", In(u"s"), In(u"LangID"), In(u"cIndexSize", 50),
                                    Result(u"pVal")),
            MakeMethod<&I::DeAccentUpperCaseString>(22, u"DeAccentUpperCaseString", In(u"pbstrIn"),
                                                    Result(u"pbstrOut")),
        }};
    return description;
}

const InterfaceDescription& DescribeITDReader() {
    using I = IITDReader;
    static const InterfaceDescription description{
        u"IITDReader",
        IID_IITDReader,
        DualFlags | TYPEFLAG_FNONEXTENSIBLE,
        {
            MakeMethod<&I::OpenITDFile>(1, u"OpenITDFile", In(u"fileName")),
            MakeMethod<&I::CloseFile>(2, u"CloseFile"),
            MakeGetter<&I::get_SourceLanguage>(3, u"SourceLanguage", Result(u"pVal")),
            MakeGetter<&I::get_TargetLanguage>(4, u"TargetLanguage", Result(u"pVal")),
            MakeGetter<&I::get_SourceText>(5, u"SourceText", Result(u"pVal")),
            MakeGetter<&I::get_TargetText>(6, u"TargetText", Result(u"pVal")),
            MakeGetter<&I::get_SourceCode>(7, u"SourceCode", In(u"index"), Result(u"pVal")),
            MakeGetter<&I::get_SourceCodeCount>(8, u"SourceCodeCount", Result(u"pVal")),
            MakeGetter<&I::get_TargetCode>(9, u"TargetCode", In(u"index"), Result(u"pVal")),
            MakeGetter<&I::get_TargetCodeCount>(10, u"TargetCodeCount", Result(u"pVal")),
            MakeGetter<&I::get_Untranslatable>(11, u"Untranslatable", Result(u"pVal")),
            MakeGetter<&I::get_More>(12, u"More", Result(u"pVal")),
            MakeMethod<&I::Next>(13, u"Next", Result(u"pMore")),
            MakeMethod<&I::Restart>(14, u"Restart"),
            MakeGetter<&I::get_EmbeddedCodeID>(15, u"EmbeddedCodeID", Result(u"pVal")),
            MakeSetter<&I::put_EmbeddedCodeID>(15, u"EmbeddedCodeID", In(u"newVal")),
            MakeGetter<&I::get_SegmentCount>(16, u"SegmentCount", Result(u"pVal")),
            MakeMethod<&I::GetLangsOnly>(17, u"GetLangsOnly", In(u"fileName"), Out(u"pSource"),
                                         Out(u"pTarget")),
            MakeGetter<&I::get_BinaryHeader>(18, u"BinaryHeader", Result(u"pVal")),
            MakeGetter<&I::get_BinaryFooter>(19, u"BinaryFooter", Result(u"pVal")),
            MakeGetter<&I::get_ExtraInfo>(20, u"ExtraInfo", In(u"index"), Result(u"pVal")),
            MakeGetter<&I::get_ExtraInfoCount>(21, u"ExtraInfoCount", Result(u"pVal")),
            MakeMethod<&I::ReverseLanguages>(22, u"ReverseLanguages"),
            MakeGetter<&I::get_Comment>(23, u"Comment", Result(u"pVal")),
            MakeGetter<&I::get_Status>(24, u"Status", Result(u"pVal")),
            MakeGetter<&I::get_Score>(25, u"Score", Result(u"pVal")),
        }};
    return description;
}

const InterfaceDescription& DescribeITDWriter() {
    using I = IITDWriter;
    static const InterfaceDescription description{
        u"IITDWriter",
        IID_IITDWriter,
        DualFlags | TYPEFLAG_FNONEXTENSIBLE,
        {
            MakeMethod<&I::OpenReferenceITD>(1, u"OpenReferenceITD", In(u"fileName")),
            MakeMethod<&I::CloseFile>(2, u"CloseFile"),
            MakeMethod<&I::WriteToFile>(3, u"WriteToFile", In(u"fileName")),
            MakeGetter<&I::get_SourceLanguage>(4, u"SourceLanguage", Result(u"pVal")),
            MakeGetter<&I::get_TargetLanguage>(5, u"TargetLanguage", Result(u"pVal")),
            MakeSetter<&I::put_TargetLanguage>(5, u"TargetLanguage", In(u"newVal")),
            MakeSetter<&I::put_SourceText>(6, u"SourceText", In(u"newVal")),
            MakeSetter<&I::put_TargetText>(7, u"TargetText", In(u"newVal")),
            MakeMethod<&I::AddSourceCode>(8, u"AddSourceCode", In(u"ID"), In(u"newVal")),
            MakeMethod<&I::AddTargetCode>(9, u"AddTargetCode", In(u"ID"), In(u"newVal")),
            MakeSetter<&I::put_CodeBeforeSegment>(10, u"CodeBeforeSegment", In(u"newVal")),
            MakeSetter<&I::put_CodeAfterSegment>(11, u"CodeAfterSegment", In(u"newVal")),
            MakeMethod<&I::Next>(12, u"Next"),
            MakeGetter<&I::get_SegmentCount>(13, u"SegmentCount", Result(u"pVal")),
            MakeMethod<&I::ReverseLanguages>(14, u"ReverseLanguages"),
        }};
    return description;
}

const InterfaceDescription& DescribeQLNSort() {
    using I = IQLNSort;
    static const InterfaceDescription description{
        u"IQLNSort",
        IID_IQLNSort,
        DualFlags,
        {
            MakeMethod<&I::Sort>(1, u"Sort", InOut(u"pArray"), In(u"lEleSize"), In(u"lEleCount"),
                                 In(u"pCompFunc")),
            MakeMethod<&I::StringSort>(2, u"StringSort", InOut(u"pArray").Of(VT_BSTR),
                                       In(u"pCompFunc")),
        }};
    return description;
}

const InterfaceDescription& DescribeExtViewHelper() {
    using I = IExtViewHelper;
    static const InterfaceDescription description{
        u"IExtViewHelper",
        IID_IExtViewHelper,
        DualFlags,
        {
            MakeMethod<&I::ExportExternalView>(
                1, u"ExportExternalView", In(u"Project"), In(u"Destination"), In(u"FileID"),
                In(u"TargetLangID"), In(u"ExportOptions"), In(u"LexiconOrderByClause"),
                In(u"ColorForGuaranteed"), In(u"ColorForExact"), In(u"ColorForFuzzy"),
                In(u"ColorForAssembled"), In(u"ColorForPropagated"), In(u"ColorForAutoPropagated"),
                In(u"ColorForLocked"), In(u"ColorForPending"), In(u"ColorForMachineTranslated")),
            MakeSetter<&I::put_SourceFont>(2, u"SourceFont", In(u"newVal")),
            MakeGetter<&I::get_SourceFont>(2, u"SourceFont", Result(u"pVal")),
            MakeSetter<&I::put_TargetFont>(3, u"TargetFont", In(u"newVal")),
            MakeGetter<&I::get_TargetFont>(3, u"TargetFont", Result(u"pVal")),
            MakeMethod<&I::ImportExternalView>(4, u"ImportExternalView", In(u"Project"),
                                               In(u"SourceFile"), In(u"TargetLangID"),
                                               In(u"ExportOptions"), In(u"ForceReimport")),
            MakeMethod<&I::IsFileRTF>(5, u"IsFileRTF", In(u"SourceFile"), Result(u"pVal")),
            MakeMethod<&I::IsFileTWB>(6, u"IsFileTWB", In(u"SourceFile"), Result(u"pVal")),
        }};
    return description;
}

const InterfaceDescription& DescribeExtViewHelperEvents() {
    static const InterfaceDescription description{
        u"_IExtViewHelperEvents",
        DIID__IExtViewHelperEvents,
        TYPEFLAG_FDISPATCHABLE,
        {
            MakeEvent(DISPID_ExportProgress, u"ExportProgress", {u"Percent", u"TargetLangID"}),
            MakeEvent(DISPID_ImportProgress, u"ImportProgress", {u"Percent", u"TargetLangID"}),
        }};
    return description;
}

const InterfaceDescription& DescribeLongSet() {
    using I = ILongSet;
    static const InterfaceDescription description{
        u"ILongSet",
        IID_ILongSet,
        DualFlags,
        {
            MakeMethod<&I::Add>(1, u"Add", In(u"Val")),
            MakeMethod<&I::Remove>(2, u"Remove", In(u"Val")),
            MakeGetter<&I::get_Count>(3, u"Count", Result(u"pVal")),
            MakeGetter<&I::get_Item>(DISPID_VALUE, u"Item", In(u"n"), Result(u"pVal")),
            MakeGetter<&I::get__NewEnum>(DISPID_NEWENUM, u"_NewEnum", Result(u"pVal")),
            MakeMethod<&I::IntersectWith>(4, u"IntersectWith", In(u"OtherSet"), Result(u"ppVal")),
            MakeMethod<&I::_GetSet>(5, u"_GetSet", Result(u"pVal")),
        }};
    return description;
}

const InterfaceDescription& DescribeUDrawText() {
    using I = IUDrawText;
    static const InterfaceDescription description{
        u"IUDrawText",
        IID_IUDrawText,
        DualFlags,
        {
            MakeMethod<&I::DrawText>(1, u"DrawText", In(u"hHDC"), In(u"bstrText"), In(u"lpRect")),
            MakeMethod<&I::GetTextHeight>(2, u"GetTextHeight", In(u"hDC"), In(u"bstrText"),
                                          In(u"lWidth"), Result(u"lHeight")),
            MakeMethod<&I::GetTextWidth>(3, u"GetTextWidth", In(u"hDC"), In(u"bstrText"),
                                         Result(u"lWidth")),
        }};
    return description;
}

const InterfaceDescription& DescribeLongStack() {
    using I = ILongStack;
    static const InterfaceDescription description{
        u"ILongStack",
        IID_ILongStack,
        DualFlags,
        {
            MakeMethod<&I::Push>(1, u"Push", In(u"lValue")),
            MakeMethod<&I::Pop>(2, u"Pop", Result(u"plValue")),
            MakeMethod<&I::Peek>(3, u"Peek", Result(u"plValue")),
            MakeMethod<&I::Contains>(4, u"Contains", In(u"lValue"), Result(u"pbExists")),
        }};
    return description;
}

const InterfaceDescription& DescribeQLNDictionary() {
    using I = IQLNDictionary;
    static const InterfaceDescription description{
        u"IQLNDictionary",
        IID_IQLNDictionary,
        DualFlags,
        {
            MakeMethod<&I::Add>(1, u"Add", In(u"Key"), In(u"Item")),
            MakeGetter<&I::get_CompareMode>(2, u"CompareMode", Result(u"pVal")),
            MakeSetter<&I::put_CompareMode>(2, u"CompareMode", In(u"newVal")),
            MakeGetter<&I::get_Count>(3, u"Count", Result(u"pVal")),
            MakeMethod<&I::Exists>(4, u"Exists", In(u"Key"), Result(u"pVal")),
            MakeGetter<&I::get_Item>(5, u"Item", In(u"Key"), Result(u"pVal")),
            MakeSetter<&I::put_Item>(5, u"Item", In(u"Key"), In(u"newVal")),
            MakeMethod<&I::Items>(6, u"Items", Result(u"pVal")),
            MakeGetter<&I::get_Key>(7, u"Key", In(u"Key"), Result(u"pVal")),
            MakeSetter<&I::put_Key>(7, u"Key", In(u"Key"), In(u"newVal")),
            MakeMethod<&I::Keys>(8, u"Keys", Result(u"pVal")),
            MakeMethod<&I::Remove>(9, u"Remove", In(u"Key")),
            MakeMethod<&I::RemoveAll>(10, u"RemoveAll"),
        }};
    return description;
}

const InterfaceDescription& DescribeCodePageHelper() {
    using I = ICodePageHelper;
    static const InterfaceDescription description{
        u"ICodePageHelper",
        IID_ICodePageHelper,
        DualFlags,
        {
            MakeMethod<&I::AddCodePage>(1, u"AddCodePage", In(u"CodePage"), In(u"FontDef")),
            MakeMethod<&I::ResetCodePages>(2, u"ResetCodePages"),
            MakeMethod<&I::AddFonts>(3, u"AddFonts", In(u"s"), Result(u"p")),
        }};
    return description;
}

}  // namespace generalutilities
