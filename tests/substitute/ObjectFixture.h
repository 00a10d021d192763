// The server's objects in the test's own process, on a spooler of the test's choice.
#pragma once

#include <windows.h>

#include <DriverAutomation.h>
#include <gtest/gtest.h>

#include <string>

#include "FakeDialogs.h"
#include "FakePrinterApi.h"
#include "substitute/DriverAutomationObject.h"

/// A BSTR argument for one call.
class InText {
  public:
    explicit InText(const std::wstring& text) : m_text(SysAllocString(text.c_str())) {}
    operator BSTR() const { return m_text.get(); }

  private:
    kemba::substitute::HeldBstr m_text;
};

struct ErrorTexts {
    bool present = false;
    std::wstring source;
    std::wstring description;
    GUID iid = {};
};

/// Takes the thread's error information.
inline ErrorTexts TakeErrorTexts() {
    ErrorTexts texts;
    IErrorInfo* taken = nullptr;
    if (GetErrorInfo(0, &taken) == S_OK) {
        const kemba::substitute::Held<IErrorInfo> information(taken);
        BSTR source = nullptr;
        BSTR description = nullptr;
        information->GetSource(&source);
        information->GetDescription(&description);
        information->GetGUID(&texts.iid);
        texts = {true, source ? source : L"", description ? description : L"", texts.iid};
        SysFreeString(source);
        SysFreeString(description);
    }
    return texts;
}

/// Calls one operation with an out text; `text` gets it, or "(null)".
template<class Object, class Operation>
HRESULT ReadText(Object& object, Operation operation, std::wstring& text) {
    BSTR out = nullptr;
    const HRESULT status = (object.*operation)(&out);
    const kemba::substitute::HeldBstr held(out);
    text = out ? std::wstring(out, SysStringLen(out)) : L"(null)";
    return status;
}

class ObjectFixture : public testing::Test {
  protected:
    ObjectFixture() { CoInitializeEx(nullptr, COINIT_MULTITHREADED); }
    ~ObjectFixture() override { CoUninitialize(); }

    kemba::substitute::Held<kemba::substitute::DriverAutomationObject> MakeAutomation() {
        return kemba::substitute::Make<kemba::substitute::DriverAutomationObject>(context);
    }

    FakePrinterApi spooler;
    FakeDialogs dialogs;
    std::wstring profileFolder = L"C:\\no such folder";
    kemba::substitute::ActionProfiles profiles{[this] { return profileFolder; }};
    kemba::substitute::ServerProcess process;
    kemba::substitute::ContractTypes types;
    kemba::substitute::ServerContext context{spooler, dialogs, profiles, process, types};
};
