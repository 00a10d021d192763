// The objects that a client gets from a DriverAutomation object.
#include "tests/kit/FakeParts.h"

#include <memory>
#include <string>

#include "tests/kit/FakeObject.h"
#include "tests/kit/ServerState.h"

namespace kit {
namespace {

class FakePrinterQueue final : public FakeObject<IPrinterQueue> {
  public:
    using FakeObject::FakeObject;

    HRESULT STDMETHODCALLTYPE Reserved1() override { return CallReserved("Reserved1"); }
    HRESULT STDMETHODCALLTYPE Pause() override { return CallPlain("Pause"); }
    HRESULT STDMETHODCALLTYPE Resume() override { return CallPlain("Resume"); }
    HRESULT STDMETHODCALLTYPE Purge() override { return CallPlain("Purge"); }
};

class FakePrinterInformation final : public FakeObject<IPrinterInformation> {
  public:
    using FakeObject::FakeObject;

    HRESULT STDMETHODCALLTYPE GetStatus(BSTR* status) override { return CallForText("GetStatus", status); }
};

class FakeDriverSettings final : public FakeObject<IDriverSettings> {
  public:
    using FakeObject::FakeObject;

    HRESULT STDMETHODCALLTYPE ImportSettings(BSTR path, VARIANT option) override {
        return CallPlain("ImportSettings", Show(path, "ImportSettings") + ", " + Show(option));
    }
    HRESULT STDMETHODCALLTYPE ExportSettings(BSTR path, VARIANT option) override {
        return CallPlain("ExportSettings", Show(path, "ExportSettings") + ", " + Show(option));
    }
    HRESULT STDMETHODCALLTYPE ResetSettings(VARIANT option) override {
        return CallPlain("ResetSettings", Show(option));
    }
};

template<class Part>
Part* MakePart(const std::shared_ptr<ServerState>& state, std::string_view className,
               const std::wstring& printer) {
    auto* const made = new Part(state, className, state->NextNumber(className));
    made->Bind(printer);
    made->AddRef();
    return made;
}

} // namespace

IPrinterQueue* MakePrinterQueue(const std::shared_ptr<ServerState>& state, const std::wstring& printer) {
    return MakePart<FakePrinterQueue>(state, "PrinterQueue", printer);
}

IPrinterInformation* MakePrinterInformation(const std::shared_ptr<ServerState>& state,
                                            const std::wstring& printer) {
    return MakePart<FakePrinterInformation>(state, "PrinterInformation", printer);
}

IDriverSettings* MakeDriverSettings(const std::shared_ptr<ServerState>& state, const std::wstring& printer) {
    return MakePart<FakeDriverSettings>(state, "DriverSettings", printer);
}

} // namespace kit
