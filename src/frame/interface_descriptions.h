#pragma once

#include "frame/interface_description.h"

/// The descriptions of the library's eleven interfaces, each in the order of its table.
namespace generalutilities {

const InterfaceDescription& DescribeStringUtils();
const InterfaceDescription& DescribeITDReader();
const InterfaceDescription& DescribeITDWriter();
const InterfaceDescription& DescribeQLNSort();
const InterfaceDescription& DescribeExtViewHelper();
const InterfaceDescription& DescribeExtViewHelperEvents();
const InterfaceDescription& DescribeLongSet();
const InterfaceDescription& DescribeUDrawText();
const InterfaceDescription& DescribeLongStack();
const InterfaceDescription& DescribeQLNDictionary();
const InterfaceDescription& DescribeCodePageHelper();

}  // namespace generalutilities
