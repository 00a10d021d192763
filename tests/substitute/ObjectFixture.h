// The server's objects in the test's own process, on a spooler of the test's choice.
#pragma once

#include <windows.h>
#include <DriverAutomation.h>

#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "automation/Owners.h"
#include "substitute/actions/ActionProfile.h"
#include "substitute/objects/ContractTypes.h"
#include "substitute/objects/DriverAutomationObject.h"
#include "substitute/objects/ServerContext.h"
#include "substitute/objects/UseCount.h"
#include "substitute/spooler/PrinterLocks.h"
#include "tests/kit/Owners.h"
#include "tests/substitute/FakeSpooler.h"

namespace kit {

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

class ObjectFixture : public testing::Test {
  protected:
    kemba::ComPtr<kemba::substitute::DriverAutomationObject> MakeAutomation() {
        return kemba::MakeObject<kemba::substitute::DriverAutomationObject>(context);
    }

    std::optional<Apartment> apartment{COINIT_MULTITHREADED};
    FakeSpooler spooler;
    kemba::substitute::PrinterLocks locks;
    std::wstring profileFolder = L"C:\\no such folder";
    kemba::substitute::ActionProfiles profiles{[this] { return profileFolder; }};
    kemba::substitute::UseCount uses;
    kemba::substitute::ContractTypes types;
    kemba::substitute::ServerContext context{spooler, locks, profiles, uses, types};
};

} // namespace kit
