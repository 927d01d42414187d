#include "extview/text_file_component.h"

#include <generalutilities/automation/pointers.h>

#include <new>

namespace generalutilities {

namespace {

constexpr std::int32_t ForWriting = 2;
constexpr std::int32_t CreateFile = 1;

/// The stream of the built-in class. It writes; the operations for reading are not there.
class CTextFileStream : public WithoutLateBinding<ITextFileStream> {
  public:
    explicit CTextFileStream(std::unique_ptr<TextFileStream> opened) : stream(std::move(opened)) {}

    void* FindInterface(REFIID iid) noexcept {
        ITextFileStream* const self = this;
        return FindInTable(iid, {{IID_IUnknown, self}, {IID_IDispatch, self}});
    }
    HRESULT Start() noexcept { return S_OK; }

    HRESULT get_Line(std::int32_t*) noexcept override { return E_NOTIMPL; }
    HRESULT get_Column(std::int32_t*) noexcept override { return E_NOTIMPL; }
    HRESULT get_AtEndOfStream(VARIANT_BOOL*) noexcept override { return E_NOTIMPL; }
    HRESULT get_AtEndOfLine(VARIANT_BOOL*) noexcept override { return E_NOTIMPL; }
    HRESULT Read(std::int32_t, BSTR*) noexcept override { return E_NOTIMPL; }
    HRESULT ReadLine(BSTR*) noexcept override { return E_NOTIMPL; }
    HRESULT ReadAll(BSTR*) noexcept override { return E_NOTIMPL; }
    HRESULT Write(BSTR text, std::int32_t* written) noexcept override {
        const std::uint32_t length = SysStringLen(text);
        const HRESULT status = WriteText(std::u16string_view(text, length));
        if (written != nullptr) {
            *written = Succeeded(status) ? static_cast<std::int32_t>(length) : 0;
        }
        return status;
    }
    HRESULT WriteLine(BSTR text) noexcept override {
        const HRESULT status = Write(text, nullptr);
        return Failed(status) ? status : WriteText(u"\r\n");
    }
    HRESULT WriteBlankLines(std::int32_t lines) noexcept override {
        HRESULT status = S_OK;
        for (std::int32_t i = 0; i < lines && Succeeded(status); ++i) {
            status = WriteText(u"\r\n");
        }
        return status;
    }
    HRESULT Skip(std::int32_t) noexcept override { return E_NOTIMPL; }
    HRESULT SkipLine() noexcept override { return E_NOTIMPL; }
    HRESULT Close() noexcept override {
        return Guarded([&] { return stream->Close() ? S_OK : E_FAIL; });
    }

  private:
    HRESULT WriteText(std::u16string_view text) noexcept {
        return Guarded([&] { return stream->Write(text) ? S_OK : E_FAIL; });
    }

    std::unique_ptr<TextFileStream> stream;
};

/// A stream's answer. That memory ran out must not pass for a stream that takes no more.
bool Done(HRESULT status) {
    return status != E_OUTOFMEMORY ? Succeeded(status) : throw std::bad_alloc();
}

class ComponentStream final : public TextFileStream {
  public:
    explicit ComponentStream(ComPtr<ITextFileStream> opened) : stream(std::move(opened)) {}

    bool Write(std::u16string_view text) override {
        const Bstr string(text);
        std::int32_t written = 0;
        if (string.Get() == nullptr) {
            throw std::bad_alloc();
        }
        return Done(stream->Write(string.Get(), &written));
    }
    bool Close() override { return Done(stream->Close()); }

  private:
    ComPtr<ITextFileStream> stream;
};

class ComponentFactory final : public TextFileFactory {
  public:
    explicit ComponentFactory(ComPtr<ITextFileFactory> created) : factory(std::move(created)) {}

    std::unique_ptr<TextFileStream> OpenTextFile(std::u16string_view path,
                                                 TextFileFormat format) override {
        ComPtr<ITextFileStream> stream;
        const Bstr name(path);
        const HRESULT status = factory->OpenTextFile(
            name.Get(), ForWriting, CreateFile, static_cast<std::int32_t>(format), stream.Out());
        return Failed(status) || !stream ? nullptr
                                         : std::make_unique<ComponentStream>(std::move(stream));
    }

  private:
    ComPtr<ITextFileFactory> factory;
};

}  // namespace

void* CTextFileFactory::FindInterface(REFIID iid) noexcept {
    ITextFileFactory* const self = this;
    return FindInTable(iid,
                       {{IID_IUnknown, self}, {IID_IDispatch, self}, {IID_ITextFileFactory, self}});
}

HRESULT CTextFileFactory::OpenTextFile(BSTR path, std::int32_t mode, std::int32_t create,
                                       std::int32_t format, ITextFileStream** stream) noexcept {
    if (stream == nullptr) {
        return E_POINTER;
    }
    *stream = nullptr;
    const auto known = static_cast<TextFileFormat>(format);
    if (path == nullptr || mode != ForWriting || create != CreateFile ||
        (known != TextFileFormat::OneByte && known != TextFileFormat::Utf8)) {
        return E_INVALIDARG;
    }
    return Guarded([&]() -> HRESULT {
        auto opened = CreateTextFileFactory()->OpenTextFile({path, SysStringLen(path)}, known);
        if (opened == nullptr) {
            return E_FAIL;
        }
        *stream = new StandaloneObject<CTextFileStream>(std::move(opened));
        (*stream)->AddRef();
        return S_OK;
    });
}

std::unique_ptr<TextFileFactory> CreateComponentTextFileFactory() {
    ComPtr<ITextFileFactory> factory;
    const HRESULT status = CoCreateInstance(CLSID_TextFileFactory, nullptr, CLSCTX_INPROC_SERVER,
                                            IID_ITextFileFactory, factory.OutVoid());
    return Failed(status) ? nullptr : std::make_unique<ComponentFactory>(std::move(factory));
}

}  // namespace generalutilities
