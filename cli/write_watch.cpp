#include "write_watch.h"

#include <generalutilities/automation/pointers.h>

#include "component_client.h"
#include "failure.h"

#include <atomic>
#include <cerrno>
#include <cstring>
#include <new>
#include <utility>

namespace generalutilities::cli {

struct WriteWatch::Record {
    bool failed = false;
    int error = 0;  ///< the system's number for the first failure; 0 when it did not say
    std::uint64_t charactersBefore = 0;  ///< written before the first failure
    int openStreams = 0;                 ///< opened, and not closed yet
};

namespace {

using Record = WriteWatch::Record;

/// What the objects of this file share: counted references, and late binding that refuses. The
/// library calls them through their tables alone.
template <class Interface>
class Counted : public Interface {
  public:
    std::uint32_t AddRef() noexcept override { return ++references; }
    std::uint32_t Release() noexcept override {
        const std::uint32_t left = --references;
        if (left == 0) {
            delete this;
        }
        return left;
    }

  protected:
    virtual ~Counted() = default;

    HRESULT Answer(REFIID iid, REFIID own, void** object) noexcept {
        if (object == nullptr) {
            return E_POINTER;
        }
        *object = nullptr;
        if (iid != own && iid != IID_IUnknown) {
            return E_NOINTERFACE;
        }
        AddRef();
        *object = static_cast<Interface*>(this);
        return S_OK;
    }

  private:
    std::atomic<std::uint32_t> references{1};
};

template <class Interface>
class EarlyBound : public Counted<Interface> {
  public:
    HRESULT GetTypeInfoCount(std::uint32_t* count) noexcept override {
        *count = 0;
        return S_OK;
    }
    HRESULT GetTypeInfo(std::uint32_t, LCID, ITypeInfo**) noexcept override { return E_NOTIMPL; }
    HRESULT GetIDsOfNames(REFIID, char16_t**, std::uint32_t, LCID, DISPID*) noexcept override {
        return E_NOTIMPL;
    }
    HRESULT Invoke(DISPID, REFIID, LCID, std::uint16_t, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                   std::uint32_t*) noexcept override {
        return E_NOTIMPL;
    }
};

class WatchedStream final : public EarlyBound<ITextFileStream> {
  public:
    WatchedStream(ComPtr<ITextFileStream> stream, std::shared_ptr<Record> sharedRecord)
        : inner(std::move(stream)), record(std::move(sharedRecord)) {
        ++record->openStreams;
    }

    HRESULT QueryInterface(REFIID iid, void** object) noexcept override {
        return Answer(iid, IID_IDispatch, object);
    }

    HRESULT get_Line(std::int32_t* line) noexcept override { return inner->get_Line(line); }
    HRESULT get_Column(std::int32_t* column) noexcept override { return inner->get_Column(column); }
    HRESULT get_AtEndOfStream(VARIANT_BOOL* end) noexcept override {
        return inner->get_AtEndOfStream(end);
    }
    HRESULT get_AtEndOfLine(VARIANT_BOOL* end) noexcept override {
        return inner->get_AtEndOfLine(end);
    }
    HRESULT Read(std::int32_t characters, BSTR* text) noexcept override {
        return inner->Read(characters, text);
    }
    HRESULT ReadLine(BSTR* text) noexcept override { return inner->ReadLine(text); }
    HRESULT ReadAll(BSTR* text) noexcept override { return inner->ReadAll(text); }
    HRESULT Write(BSTR text, std::int32_t* written) noexcept override {
        errno = 0;
        std::int32_t count = 0;
        const HRESULT status = inner->Write(text, &count);
        const std::uint32_t length = SysStringLen(text);
        Note(Succeeded(status) && static_cast<std::uint32_t>(count) == length, length);
        if (written != nullptr) {
            *written = count;
        }
        return status;
    }
    HRESULT WriteLine(BSTR text) noexcept override {
        errno = 0;
        return Note(inner->WriteLine(text), SysStringLen(text) + 1);
    }
    HRESULT WriteBlankLines(std::int32_t lines) noexcept override {
        errno = 0;
        return Note(inner->WriteBlankLines(lines), static_cast<std::uint32_t>(lines));
    }
    HRESULT Skip(std::int32_t characters) noexcept override { return inner->Skip(characters); }
    HRESULT SkipLine() noexcept override { return inner->SkipLine(); }
    HRESULT Close() noexcept override {
        errno = 0;
        const HRESULT status = Note(inner->Close(), 0);
        if (!closed) {
            closed = true;
            --record->openStreams;
        }
        return status;
    }

  private:
    HRESULT Note(HRESULT status, std::uint32_t characters) noexcept {
        Note(Succeeded(status), characters);
        return status;
    }
    void Note(bool worked, std::uint32_t characters) noexcept {
        if (!worked && !record->failed) {
            record->failed = true;
            record->error = errno;
        }
        if (!record->failed) {
            record->charactersBefore += characters;
        }
    }

    ComPtr<ITextFileStream> inner;
    std::shared_ptr<Record> record;
    bool closed = false;
};

class WatchedFactory final : public EarlyBound<ITextFileFactory> {
  public:
    WatchedFactory(ComPtr<ITextFileFactory> factory, std::shared_ptr<Record> sharedRecord)
        : inner(std::move(factory)), record(std::move(sharedRecord)) {}

    HRESULT QueryInterface(REFIID iid, void** object) noexcept override {
        return Answer(iid, IID_ITextFileFactory, object);
    }
    HRESULT OpenTextFile(BSTR path, std::int32_t mode, std::int32_t create, std::int32_t format,
                         ITextFileStream** stream) noexcept override {
        if (stream == nullptr) {
            return E_POINTER;
        }
        *stream = nullptr;
        ComPtr<ITextFileStream> opened;
        const HRESULT status = inner->OpenTextFile(path, mode, create, format, opened.Out());
        if (Failed(status) || !opened) {
            return Failed(status) ? status : E_FAIL;
        }
        *stream = new (std::nothrow) WatchedStream(std::move(opened), record);
        return *stream == nullptr ? E_OUTOFMEMORY : S_OK;
    }

  private:
    ComPtr<ITextFileFactory> inner;
    std::shared_ptr<Record> record;
};

/// The class object that stands in the place of the built-in one and creates through it.
class WatchedClass final : public Counted<IClassFactory> {
  public:
    WatchedClass(ComPtr<IClassFactory> factory, std::shared_ptr<Record> sharedRecord)
        : inner(std::move(factory)), record(std::move(sharedRecord)) {}

    HRESULT QueryInterface(REFIID iid, void** object) noexcept override {
        return Answer(iid, IID_IClassFactory, object);
    }
    HRESULT CreateInstance(IUnknown* outer, REFIID iid, void** object) noexcept override {
        if (object == nullptr) {
            return E_POINTER;
        }
        *object = nullptr;
        ComPtr<ITextFileFactory> factory;
        const HRESULT status =
            inner->CreateInstance(outer, IID_ITextFileFactory, factory.OutVoid());
        if (Failed(status)) {
            return status;
        }
        const auto watched = ComPtr<ITextFileFactory>::Take(
            new (std::nothrow) WatchedFactory(std::move(factory), record));
        return watched ? watched->QueryInterface(iid, object) : E_OUTOFMEMORY;
    }
    HRESULT LockServer(std::int32_t lock) noexcept override { return inner->LockServer(lock); }

  private:
    ComPtr<IClassFactory> inner;
    std::shared_ptr<Record> record;
};

}  // namespace

WriteWatch::WriteWatch() : record(std::make_shared<Record>()) {
    ComPtr<IClassFactory> builtIn;
    SetErrorInfo(0, nullptr);
    Check(CoGetClassObject(CLSID_TextFileFactory, CLSCTX_INPROC_SERVER, nullptr, IID_IClassFactory,
                           builtIn.OutVoid()),
          "preparing to write");
    const auto watched = ComPtr<IClassFactory>::Take(new WatchedClass(std::move(builtIn), record));
    Check(CoRegisterClassObject(CLSID_TextFileFactory, watched.Get(), CLSCTX_INPROC_SERVER, 0,
                                &cookie),
          "preparing to write");
}

WriteWatch::~WriteWatch() {
    CoRevokeClassObject(cookie);
}

void WriteWatch::ThrowIfFailed(const std::string& path) const {
    if (!record->failed && record->openStreams == 0) {
        return;
    }
    std::string description =
        path + ": writing failed behind character " + std::to_string(record->charactersBefore);
    if (record->error != 0) {
        description += std::string(": ") + std::strerror(record->error);
    }
    if (!record->failed) {
        description = path + ": the file was left open";
    }
    throw Failure(
        description + "; nothing was left under this name", "genutil",
        record->error == ENOSPC || record->error == EDQUOT ? ErrorDiskFull : ErrorWriteFault);
}

}  // namespace generalutilities::cli
