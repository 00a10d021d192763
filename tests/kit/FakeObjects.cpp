// The objects that clients activate.
#include "tests/kit/FakeObjects.h"

#include <DriverAutomation.h>

#include <memory>
#include <string>

#include "automation/Owners.h"
#include "tests/kit/FakeIdentity.h"
#include "tests/kit/FakeObject.h"
#include "tests/kit/FakeParts.h"
#include "tests/kit/Operations.h"
#include "tests/kit/Script.h"
#include "tests/kit/ServerState.h"

namespace kit {
namespace {

class FakeDriverActions final : public FakeObject<IDriverActions> {
  public:
    using FakeObject::FakeObject;

    HRESULT STDMETHODCALLTYPE Reserved1() override { return CallReserved("Reserved1"); }
    HRESULT STDMETHODCALLTYPE Reserved2() override { return CallReserved("Reserved2"); }
    HRESULT STDMETHODCALLTYPE Reserved3() override { return CallReserved("Reserved3"); }
    HRESULT STDMETHODCALLTYPE PutExecute(VARIANT_BOOL execute) override {
        return CallPlain("PutExecute", std::to_string(execute));
    }
    HRESULT STDMETHODCALLTYPE GetSupported(VARIANT_BOOL* supported) override {
        return CallForFlag("GetSupported", VARIANT_TRUE, supported);
    }
    HRESULT STDMETHODCALLTYPE Reserved6() override { return CallReserved("Reserved6"); }
    HRESULT STDMETHODCALLTYPE Reserved7() override { return CallReserved("Reserved7"); }
    HRESULT STDMETHODCALLTYPE Reserved8() override { return CallReserved("Reserved8"); }
    HRESULT STDMETHODCALLTYPE GetDisplaysInterface(VARIANT_BOOL* displays) override {
        return CallForFlag("GetDisplaysInterface", VARIANT_FALSE, displays);
    }
};

class FakeVersionInformation final : public FakeObject<IVersionInformation> {
  public:
    using FakeObject::FakeObject;

    HRESULT STDMETHODCALLTYPE GetVersion(BSTR* version) override {
        return CallForText("GetVersion", version);
    }
    HRESULT STDMETHODCALLTYPE GetVersionDetail(BSTR* detail) override {
        return CallForText("GetVersionDetail", detail);
    }
};

class FakeDriverAutomation final : public FakeObject<IDriverAutomation> {
  public:
    using FakeObject::FakeObject;

    HRESULT STDMETHODCALLTYPE PutPrinterName(BSTR name) override {
        const std::string shown = Show(name, "PutPrinterName");
        Bind(name && shown.front() == '"' ? std::wstring(name, SysStringLen(name)) : std::wstring());
        return CallPlain("PutPrinterName", shown);
    }
    HRESULT STDMETHODCALLTYPE SendFile(BSTR path, BSTR documentName) override {
        return CallPlain("SendFile", Show(path, "SendFile") + ", " + Show(documentName, "SendFile"));
    }
    HRESULT STDMETHODCALLTYPE PerformAction(long action, VARIANT request) override {
        if (FakeIdentity* const actions = FindObject(request)) {
            actions->Bind(Printer());
        }
        return CallPlain("PerformAction", std::to_string(action) + ", " + Show(request));
    }
    HRESULT STDMETHODCALLTYPE Reserved4() override { return CallReserved("Reserved4"); }
    HRESULT STDMETHODCALLTYPE Reserved5() override { return CallReserved("Reserved5"); }
    HRESULT STDMETHODCALLTYPE GetShareName(BSTR* name) override { return CallForText("GetShareName", name); }
    HRESULT STDMETHODCALLTYPE PutShareName(BSTR name) override { return Put("PutShareName", name); }
    HRESULT STDMETHODCALLTYPE GetPortName(BSTR* name) override { return CallForText("GetPortName", name); }
    HRESULT STDMETHODCALLTYPE Reserved9() override { return CallReserved("Reserved9"); }
    HRESULT STDMETHODCALLTYPE GetModelName(BSTR* name) override { return CallForText("GetModelName", name); }
    HRESULT STDMETHODCALLTYPE GetComment(BSTR* comment) override {
        return CallForText("GetComment", comment);
    }
    HRESULT STDMETHODCALLTYPE PutComment(BSTR comment) override { return Put("PutComment", comment); }
    HRESULT STDMETHODCALLTYPE GetLocation(BSTR* location) override {
        return CallForText("GetLocation", location);
    }
    HRESULT STDMETHODCALLTYPE PutLocation(BSTR location) override { return Put("PutLocation", location); }
    HRESULT STDMETHODCALLTYPE Reserved15() override { return CallReserved("Reserved15"); }
    HRESULT STDMETHODCALLTYPE Reserved16() override { return CallReserved("Reserved16"); }
    HRESULT STDMETHODCALLTYPE Reserved17() override { return CallReserved("Reserved17"); }
    HRESULT STDMETHODCALLTYPE Reserved18() override { return CallReserved("Reserved18"); }
    HRESULT STDMETHODCALLTYPE GetDriverVersion(BSTR* version) override {
        return CallForText("GetDriverVersion", version);
    }
    HRESULT STDMETHODCALLTYPE GetDriverVersionDetail(BSTR* detail) override {
        return CallForText("GetDriverVersionDetail", detail);
    }
    HRESULT STDMETHODCALLTYPE GetPrinterQueue(IPrinterQueue** queue) override {
        return CallForPart("GetPrinterQueue", MakePrinterQueue, queue);
    }
    HRESULT STDMETHODCALLTYPE GetPrinterInformation(IPrinterInformation** information) override {
        return CallForPart("GetPrinterInformation", MakePrinterInformation, information);
    }
    HRESULT STDMETHODCALLTYPE GetSettings(IDriverSettings** settings) override {
        return CallForPart("GetSettings", MakeDriverSettings, settings);
    }

  private:
    HRESULT Put(std::string_view operation, BSTR value) {
        return CallPlain(operation, Show(value, operation));
    }

    template<class Make, class Part>
    HRESULT CallForPart(std::string_view operation, Make make, Part** part) {
        *part = nullptr;
        const Answer answer = Call(operation);
        if (SUCCEEDED(answer.status) && !answer.givesNull) {
            *part = make(SharedState(), Printer());
        }
        return answer.status;
    }
};

template<class Object>
HRESULT MakeAs(const std::shared_ptr<ServerState>& state, FakeClass which, int number, REFIID id,
               void** object) {
    return kemba::ComPtr<Object>::Share(new Object(state, NameOf(which), number))->QueryInterface(id, object);
}

} // namespace

HRESULT MakeFakeObject(const std::shared_ptr<ServerState>& state, FakeClass which, REFIID id, void** object) {
    *object = nullptr;
    const std::string name(NameOf(which));
    const int number = state->NextNumber(name);
    state->journal.AddEvent("new " + name + "#" + std::to_string(number));
    const Answer* const answer = state->script.Find(name + ".CreateInstance", {{}, number, 1});
    if (answer) {
        return answer->status; // a success too: without an object
    }
    switch (which) {
    case FakeClass::DriverAutomation: return MakeAs<FakeDriverAutomation>(state, which, number, id, object);
    case FakeClass::DriverActions: return MakeAs<FakeDriverActions>(state, which, number, id, object);
    case FakeClass::VersionInformation:
        return MakeAs<FakeVersionInformation>(state, which, number, id, object);
    }
    return CLASS_E_CLASSNOTAVAILABLE;
}

} // namespace kit
