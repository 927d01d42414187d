#pragma once

#include <generalutilities/automation/text_file.h>
#include <generalutilities/text_file.h>

#include "frame/object.h"
#include "frame/without_late_binding.h"

#include <memory>

/// Both sides of the component through which export files are written: the built-in class, and the
/// view of whatever class stands in its place as the plain factory that the exporters take.
namespace generalutilities {

/// The built-in text file writer as a component.
class CTextFileFactory : public WithoutLateBinding<ITextFileFactory> {
  public:
    void* FindInterface(REFIID iid) noexcept;
    HRESULT Start() noexcept { return S_OK; }
    HRESULT OpenTextFile(BSTR path, std::int32_t mode, std::int32_t create, std::int32_t format,
                         ITextFileStream** stream) noexcept override;
};

/// Creates the component `CLSID_TextFileFactory`, a host's own where one is registered, and gives
/// it as a plain factory; null when it cannot be created.
std::unique_ptr<TextFileFactory> CreateComponentTextFileFactory();

}  // namespace generalutilities
