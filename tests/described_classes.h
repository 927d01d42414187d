#pragma once

#include <generalutilities/interfaces/class_ids.h>

#include "frame/interface_descriptions.h"

#include <map>
#include <string>
#include <utility>

namespace generalutilities {

/// The library's classes by their names, as tables of calls have them: what makes an object, and
/// the description of its interface.
inline const std::map<std::u16string, std::pair<CLSID, const InterfaceDescription& (*)()>>
    DescribedClasses = {{u"StringUtils", {CLSID_StringUtils, DescribeStringUtils}},
                        {u"LongSet", {CLSID_LongSet, DescribeLongSet}},
                        {u"LongStack", {CLSID_LongStack, DescribeLongStack}},
                        {u"qlnDictionary", {CLSID_qlnDictionary, DescribeQLNDictionary}},
                        {u"CodePageHelper", {CLSID_CodePageHelper, DescribeCodePageHelper}},
                        {u"ExtViewHelper", {CLSID_ExtViewHelper, DescribeExtViewHelper}},
                        {u"ITDReader", {CLSID_ITDReader, DescribeITDReader}},
                        {u"ITDWriter", {CLSID_ITDWriter, DescribeITDWriter}},
                        {u"QLNSort", {CLSID_QLNSort, DescribeQLNSort}},
                        {u"UDrawText", {CLSID_UDrawText, DescribeUDrawText}}};

}  // namespace generalutilities
