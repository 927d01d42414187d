#pragma once

#include <generalutilities/automation/values.h>

/// The type library and the ten creatable classes. A class X has the ProgIDs `GeneralUtilities.X.1`
/// and `GeneralUtilities.X`.
namespace generalutilities {

inline constexpr GUID LIBID_GeneralUtilities = MakeGuid("{E394A5B6-1C33-45E9-B842-CE7289EFD9D5}");

inline constexpr CLSID CLSID_UDrawText = MakeGuid("{C53CF962-B65A-4511-862C-19ED5EF1804F}");
inline constexpr CLSID CLSID_LongSet = MakeGuid("{10966412-312A-46C2-862B-EB45AB782E9B}");
inline constexpr CLSID CLSID_StringUtils = MakeGuid("{C2D850B2-FFBA-4709-B3BA-87C388AF02AE}");
inline constexpr CLSID CLSID_LongStack = MakeGuid("{5F63D040-DE0E-4C4E-B49A-B384E08FC5AB}");
inline constexpr CLSID CLSID_qlnDictionary = MakeGuid("{63DEFC5D-37A1-4E2C-B6F6-A36170FB0096}");
inline constexpr CLSID CLSID_CodePageHelper = MakeGuid("{37A4E828-B2E4-439C-A847-C4596892B3E0}");
inline constexpr CLSID CLSID_QLNSort = MakeGuid("{C274A679-81D9-4FAE-92C5-BBBFCCA5EFAD}");
inline constexpr CLSID CLSID_ExtViewHelper = MakeGuid("{26DCACED-F74D-445A-AD15-6A9F7F026496}");
inline constexpr CLSID CLSID_ITDReader = MakeGuid("{951E240C-B79C-474D-B844-049D0F42B933}");
inline constexpr CLSID CLSID_ITDWriter = MakeGuid("{659847F7-2B3E-40CB-8AFE-2ED580D7C16B}");

}  // namespace generalutilities
