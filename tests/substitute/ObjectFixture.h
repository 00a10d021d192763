// The server's objects in the test's own process, on a spooler of the test's choice.
#pragma once

#include <windows.h>
#include <DriverAutomation.h>

#include <gtest/gtest.h>

#include <string>

#include "substitute/objects/DriverAutomationObject.h"
#include "tests/substitute/FakeSpooler.h"

namespace kit {

/// A BSTR argument for one call.
class InText {
  public:
    explicit InText(const std::wstring& text) : m_text(kemba::OwnedBstr::Copy(text)) {}
    operator BSTR() const { return m_text.Get(); }

  private:
    kemba::OwnedBstr m_text;
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
    kemba::ComPtr<IErrorInfo> information;
    if (GetErrorInfo(0, information.Put()) == S_OK) {
        kemba::OwnedBstr source;
        kemba::OwnedBstr description;
        information->GetSource(source.Put());
        information->GetDescription(description.Put());
        information->GetGUID(&texts.iid);
        texts = {true, source.Text(), description.Text(), texts.iid};
    }
    return texts;
}

/// Calls one operation with an out text; `text` gets it, or "(null)".
template<class Object, class Operation>
HRESULT ReadText(Object& object, Operation operation, std::wstring& text) {
    kemba::OwnedBstr out;
    const HRESULT status = (object.*operation)(out.Put());
    text = out.Get() ? std::wstring(out.Get(), SysStringLen(out.Get())) : L"(null)";
    return status;
}

class ObjectFixture : public testing::Test {
  protected:
    ObjectFixture() { CoInitializeEx(nullptr, COINIT_MULTITHREADED); }
    ~ObjectFixture() override { CoUninitialize(); }

    kemba::ComPtr<kemba::substitute::DriverAutomationObject> MakeAutomation() {
        return kemba::MakeObject<kemba::substitute::DriverAutomationObject>(context);
    }

    FakeSpooler spooler;
    kemba::substitute::PrinterLocks locks;
    std::wstring profileFolder = L"C:\\no such folder";
    kemba::substitute::ActionProfiles profiles{[this] { return profileFolder; }};
    kemba::substitute::UseCount uses;
    kemba::substitute::ContractTypes types;
    kemba::substitute::ServerContext context{spooler, locks, profiles, uses, types};
};

} // namespace kit
