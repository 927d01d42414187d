#pragma once

#include <generalutilities/automation/unknown.h>

namespace generalutilities {

/// Puts an error object with source, text and interface into the slot of the calling thread, and
/// gives `status` back. When none can be made the description is lost, not the status.
HRESULT ReportFailure(const char16_t* source, const char16_t* text, REFIID iid, HRESULT status);

/// The one way in which a class hands a description to its caller: puts an error object with the
/// text, the class's ProgID as source, and the interface into the slot of the calling thread.
///
/// Gives `status` back for the method to return; a zero status becomes DISP_E_EXCEPTION, so that a
/// report never turns a failure into success. When no error object can be made the description is
/// lost, not the status.
HRESULT ReportError(REFCLSID clsid, const char16_t* text, REFIID iid, HRESULT status);

/// The same for a text in the system's ANSI code page. A null text gives E_POINTER without a
/// report.
HRESULT ReportError(REFCLSID clsid, const char* text, REFIID iid, HRESULT status);

}  // namespace generalutilities
