#include "module/class_table.h"

#include <generalutilities/automation/dictionary.h>
#include <generalutilities/automation/text_file.h>
#include <generalutilities/automation/zip_manager.h>
#include <generalutilities/interfaces/class_ids.h>

#include "collections/dictionary_component.h"
#include "collections/long_set_component.h"
#include "collections/long_stack_component.h"
#include "collections/scripting_dictionary_component.h"
#include "collections/sort_component.h"
#include "drawing/draw_text_component.h"
#include "extview/ext_view_helper_component.h"
#include "extview/text_file_component.h"
#include "itd/itd_reader_component.h"
#include "itd/itd_writer_component.h"
#include "itd/zip_manager_component.h"
#include "tagged/code_page_helper_component.h"
#include "text/string_utils_component.h"

#include <algorithm>
#include <mutex>

namespace generalutilities {

namespace {

constexpr ClassRow Rows[] = {
    {u"UDrawText", CLSID_UDrawText, u"IUDrawText", nullptr, u"UDrawText Class", TYPEFLAG_FCANCREATE,
     CreateStandalone<CUDrawText>},
    {u"LongSet", CLSID_LongSet, u"ILongSet", nullptr, u"LongSet Class", TYPEFLAG_FCANCREATE,
     CreateAggregable<CLongSet>},
    {u"StringUtils", CLSID_StringUtils, u"IStringUtils", nullptr, u"StringUtils Class",
     TYPEFLAG_FCANCREATE | TYPEFLAG_FAPPOBJECT, CreateStandalone<CStringUtils>},
    {u"LongStack", CLSID_LongStack, u"ILongStack", nullptr, u"LongStack Class", TYPEFLAG_FCANCREATE,
     CreateStandalone<CLongStack>},
    {u"qlnDictionary", CLSID_qlnDictionary, u"IQLNDictionary", nullptr, u"qlnDictionary Class",
     TYPEFLAG_FCANCREATE, CreateStandalone<CQLNDictionary>},
    // The type library has always spelled this one's help string with an extra letter.
    {u"CodePageHelper", CLSID_CodePageHelper, u"ICodePageHelper", nullptr, u"CodePagerHelper Class",
     TYPEFLAG_FCANCREATE, CreateStandalone<CCodePageHelper>},
    {u"QLNSort", CLSID_QLNSort, u"IQLNSort", nullptr, u"QLNSort Class", TYPEFLAG_FCANCREATE,
     CreateStandalone<CQLNSort>},
    {u"ExtViewHelper", CLSID_ExtViewHelper, u"IExtViewHelper", u"_IExtViewHelperEvents",
     u"ExtViewHelper Class", TYPEFLAG_FCANCREATE, CreateStandalone<CExtViewHelper>},
    {u"ITDReader", CLSID_ITDReader, u"IITDReader", nullptr, u"ITDReader Class", TYPEFLAG_FCANCREATE,
     CreateStandalone<CITDReader>},
    {u"ITDWriter", CLSID_ITDWriter, u"IITDWriter", nullptr, u"ITDWriter Class", TYPEFLAG_FCANCREATE,
     CreateAggregable<CITDWriter>},
};

/// Services that the library creates like a class but does not offer to callers; a host may put its
/// own in their place.
struct ServiceRow {
    const CLSID& clsid;
    const char16_t* progId;  ///< known without any registration; null for none
    Creator create;
};

constexpr ServiceRow Services[] = {
    {CLSID_TextFileFactory, nullptr, CreateStandalone<CTextFileFactory>},
    {CLSID_ZipManager, nullptr, CreateStandalone<CZipManager>},
    {CLSID_Dictionary, u"Scripting.Dictionary", CreateStandalone<CDictionary>},
};

constexpr std::size_t SlotCount = std::size(Rows) + std::size(Services);

std::mutex factoryMutex;
std::atomic<ClassFactory*> factorySlots[SlotCount];

HRESULT FactoryInSlot(std::size_t slot, Creator create, REFIID iid, void** object) {
    ClassFactory* factory = factorySlots[slot].load(std::memory_order_acquire);
    if (factory == nullptr) {
        const std::lock_guard lock(factoryMutex);
        factory = factorySlots[slot].load(std::memory_order_relaxed);
        if (factory == nullptr) {
            factory = new (std::nothrow) ClassFactory(create);
            if (factory == nullptr) {
                return E_OUTOFMEMORY;
            }
            factorySlots[slot].store(factory, std::memory_order_release);
        }
    }
    return factory->QueryInterface(iid, object);
}

TypeLibraryDescription DescribeLibrary() {
    TypeLibraryDescription library{u"GeneralUtilities",
                                   u"Quillon General Utilities Library",
                                   LIBID_GeneralUtilities,
                                   1,
                                   0,
                                   {}};
    for (const ClassRow& row : Rows) {
        library.types.emplace_back(ClassDescription{row.name, row.help, row.clsid, row.typeFlags,
                                                    row.defaultInterface, row.sourceInterface});
    }
    for (const auto describe :
         {DescribeStringUtils, DescribeITDReader, DescribeITDWriter, DescribeQLNSort,
          DescribeExtViewHelper, DescribeExtViewHelperEvents, DescribeLongSet, DescribeUDrawText,
          DescribeLongStack, DescribeQLNDictionary, DescribeCodePageHelper}) {
        library.types.emplace_back(&describe());
    }
    library.types.emplace_back(
        RecordDescription{u"tagRECT", {u"left", u"top", u"right", u"bottom"}});
    library.types.emplace_back(
        EnumerationDescription{u"qlnCompareMethod",
                               {{u"dctmBinaryCompare", dctmBinaryCompare},
                                {u"dctmTextCompare", dctmTextCompare},
                                {u"dctmDatabaseCompare", dctmDatabaseCompare}}});
    library.types.emplace_back(EnumerationDescription{u"WordTypeEnum",
                                                      {{u"qlnwtWord", qlnwtWord},
                                                       {u"qlnwtDigit", qlnwtDigit},
                                                       {u"qlnwtSeparator", qlnwtSeparator},
                                                       {u"qlnwtDBCS", qlnwtDBCS},
                                                       {u"qlnwtCode", qlnwtCode}}});
    library.types.emplace_back(
        EnumerationDescription{u"ITDErrorCode",
                               {{u"itderrUnableToOpenFile", itderrUnableToOpenFile},
                                {u"itderrBadMagic", itderrBadMagic},
                                {u"itderrBadVersion", itderrBadVersion},
                                {u"itderrUnableToReadFile", itderrUnableToReadFile},
                                {u"itderrUnableToAllocMem", itderrUnableToAllocMem},
                                {u"itderrUnableToAccessZip", itderrUnableToAccessZip},
                                {u"itderrWrongTextHeader", itderrWrongTextHeader},
                                {u"itderrTextParsing", itderrTextParsing}}});
    library.types.emplace_back(
        EnumerationDescription{u"EVErrorCode",
                               {{u"everrInvalidQuery", everrInvalidQuery},
                                {u"everrUnableToOpenFile", everrUnableToOpenFile},
                                {u"everrNotEnoughFieldsPresent", everrNotEnoughFieldsPresent}}});
    library.types.emplace_back(AliasDescription{u"CompareMethod", u"qlnCompareMethod"});
    library.types.emplace_back(AliasDescription{u"WordType", u"WordTypeEnum"});
    return library;
}

}  // namespace

std::span<const ClassRow> ClassTable() {
    return Rows;
}

std::u16string VersionedProgId(const ClassRow& row) {
    return std::u16string(u"GeneralUtilities.") + row.name + u".1";
}

HRESULT GetPublicClassFactory(REFCLSID clsid, REFIID iid, void** object) {
    *object = nullptr;
    for (std::size_t i = 0; i < std::size(Rows); ++i) {
        if (Rows[i].clsid == clsid) {
            return FactoryInSlot(i, Rows[i].create, iid, object);
        }
    }
    return CLASS_E_CLASSNOTAVAILABLE;
}

HRESULT GetClassFactory(REFCLSID clsid, REFIID iid, void** object) {
    for (std::size_t i = 0; i < std::size(Services); ++i) {
        if (Services[i].clsid == clsid) {
            return FactoryInSlot(std::size(Rows) + i, Services[i].create, iid, object);
        }
    }
    return GetPublicClassFactory(clsid, iid, object);
}

const char16_t* ServiceProgId(REFCLSID clsid) {
    const auto* const row =
        std::ranges::find_if(Services, [&](const ServiceRow& s) { return s.clsid == clsid; });
    return row == std::end(Services) ? nullptr : row->progId;
}

const CLSID* FindService(std::u16string_view progId) {
    for (const ServiceRow& row : Services) {
        if (row.progId != nullptr && SameName(row.progId, progId)) {
            return &row.clsid;
        }
    }
    return nullptr;
}

void ReleaseClassFactories() {
    for (std::atomic<ClassFactory*>& slot : factorySlots) {
        if (ClassFactory* const factory = slot.exchange(nullptr)) {
            factory->Release();
        }
    }
}

const TypeLibraryDescription& OwnTypeLibrary() {
    static const TypeLibraryDescription library = DescribeLibrary();
    return library;
}

}  // namespace generalutilities
