// What all objects share: identity, late binding, error information; and the two small classes.
#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>
#include <utility>

#include "substitute/objects/AutomationObject.h"
#include "substitute/objects/DriverActionsObject.h"
#include "substitute/objects/VersionInformationObject.h"
#include "substitute/server/ServerClasses.h"
#include "tests/substitute/ObjectFixture.h"

namespace {

using kemba::ComPtr;
using kemba::MakeObject;
using kemba::OwnedBstr;
using namespace kemba::substitute;
using namespace kit;

class AutomationObject : public ObjectFixture {
  protected:
    AutomationObject() { spooler.printers[L"Label A"].comment = L"by the door"; }

    /// Calls by name with one argument, as a script does.
    static HRESULT CallByName(IDispatch& object, std::wstring name, VARIANT argument,
                              EXCEPINFO* exception = nullptr) {
        LPOLESTR names = name.data();
        DISPID member = 0;
        const HRESULT found = object.GetIDsOfNames(IID_NULL, &names, 1, LOCALE_NEUTRAL, &member);
        if (FAILED(found)) {
            return found;
        }
        DISPPARAMS arguments = {&argument, nullptr, 1, 0};
        return object.Invoke(member, IID_NULL, LOCALE_NEUTRAL, DISPATCH_METHOD, &arguments, nullptr,
                             exception, nullptr);
    }
    static VARIANT TextArgument(BSTR text) {
        VARIANT argument = {};
        argument.vt = VT_BSTR;
        argument.bstrVal = text;
        return argument;
    }
    static VARIANT TextResult(BSTR* text) {
        VARIANT argument = {};
        argument.vt = VT_BSTR | VT_BYREF;
        argument.pbstrVal = text;
        return argument;
    }
};

TEST_F(AutomationObject, LateBoundCallsReachTheOperations) {
    const auto automation = MakeAutomation();
    const InText name(L"Label A");
    EXPECT_EQ(CallByName(*automation, L"putprintername", TextArgument(name)), S_OK);
    OwnedBstr comment;
    EXPECT_EQ(CallByName(*automation, L"GetComment", TextResult(comment.Put())), S_OK);
    EXPECT_STREQ(comment.Text(), L"by the door");
}

TEST_F(AutomationObject, ALateBoundFailureCarriesItsStatus) {
    const auto automation = MakeAutomation();
    const InText name(L"Other");
    EXCEPINFO exception = {};
    EXPECT_EQ(CallByName(*automation, L"PutPrinterName", TextArgument(name), &exception), DISP_E_EXCEPTION);
    EXPECT_EQ(exception.scode, HRESULT_FROM_WIN32(ERROR_INVALID_PRINTER_NAME));
    SysFreeString(exception.bstrSource);
    SysFreeString(exception.bstrDescription);
    SysFreeString(exception.bstrHelpFile);
    TakeErrorTexts();
}

TEST_F(AutomationObject, NamesAndInterfacesThatAreNotThereAreRefused) {
    const auto automation = MakeAutomation();
    EXPECT_EQ(CallByName(*automation, L"GetColour", VARIANT{}), DISP_E_UNKNOWNNAME);
    DISPPARAMS none = {};
    EXPECT_EQ(automation->Invoke(1, __uuidof(IUnknown), 0, DISPATCH_METHOD, &none, nullptr, nullptr, nullptr),
              DISP_E_UNKNOWNINTERFACE);
    ITypeInfo* information = nullptr;
    EXPECT_EQ(automation->GetTypeInfo(1, 0, &information), DISP_E_BADINDEX);
    auto* missing = reinterpret_cast<void*>(1);
    EXPECT_EQ(automation->QueryInterface(__uuidof(IDriverActions), &missing), E_NOINTERFACE);
    EXPECT_EQ(missing, nullptr);
}

TEST_F(AutomationObject, TheTypeInformationIsThatOfTheInterface) {
    const auto automation = MakeAutomation();
    UINT count = 0;
    EXPECT_EQ(automation->GetTypeInfoCount(&count), S_OK);
    EXPECT_EQ(count, 1u);
    ComPtr<ITypeInfo> information;
    ASSERT_EQ(automation->GetTypeInfo(0, 0, information.Put()), S_OK);
    TYPEATTR* attributes = nullptr;
    ASSERT_EQ(information->GetTypeAttr(&attributes), S_OK);
    EXPECT_EQ(attributes->guid, __uuidof(IDriverAutomation));
    information->ReleaseTypeAttr(attributes);
}

TEST_F(AutomationObject, EveryClassIsMadeAndSupportsErrorInformationForItsInterface) {
    const std::pair<CLSID, IID> rows[] = {
        {__uuidof(DriverAutomation), __uuidof(IDriverAutomation)},
        {__uuidof(DriverActions), __uuidof(IDriverActions)},
        {__uuidof(VersionInformation), __uuidof(IVersionInformation)},
    };
    ASSERT_EQ(ServerClasses().size(), std::size(rows));
    for (std::size_t index = 0; index < std::size(rows); ++index) {
        const ServerClass& served = ServerClasses()[index];
        SCOPED_TRACE(served.name);
        EXPECT_EQ(served.id, rows[index].first);
        void* made = nullptr;
        ASSERT_EQ(served.create(context, rows[index].second, &made), S_OK);
        const ComPtr<IUnknown> object(static_cast<IUnknown*>(made));
        void* asked = nullptr;
        ASSERT_EQ(object->QueryInterface(__uuidof(ISupportErrorInfo), &asked), S_OK);
        const ComPtr<ISupportErrorInfo> support(static_cast<ISupportErrorInfo*>(asked));
        EXPECT_EQ(support->InterfaceSupportsErrorInfo(rows[index].second), S_OK);
        EXPECT_EQ(support->InterfaceSupportsErrorInfo(__uuidof(IPrinterQueue)), S_FALSE);
        void* identity = nullptr;
        void* other = nullptr;
        EXPECT_EQ(object->QueryInterface(__uuidof(IUnknown), &identity), S_OK);
        EXPECT_EQ(support->QueryInterface(__uuidof(IUnknown), &other), S_OK);
        EXPECT_EQ(identity, other);
        static_cast<IUnknown*>(identity)->Release();
        static_cast<IUnknown*>(other)->Release();
        EXPECT_EQ(served.create(context, __uuidof(IPrinterQueue), &made), E_NOINTERFACE);
    }
}

TEST_F(AutomationObject, UnusedPlacesOfAnActionRequestSaySo) {
    const auto actions = MakeObject<DriverActionsObject>(context);
    const std::pair<const wchar_t*, std::function<HRESULT()>> rows[] = {
        {L"Reserved1", [&] { return actions->Reserved1(); }},
        {L"Reserved2", [&] { return actions->Reserved2(); }},
        {L"Reserved3", [&] { return actions->Reserved3(); }},
        {L"Reserved6", [&] { return actions->Reserved6(); }},
        {L"Reserved7", [&] { return actions->Reserved7(); }},
        {L"Reserved8", [&] { return actions->Reserved8(); }},
    };
    for (const auto& [name, call] : rows) {
        SCOPED_TRACE(name);
        EXPECT_EQ(call(), E_NOTIMPL);
        EXPECT_EQ(TakeErrorTexts().description,
                  name + std::wstring(L": this server does not offer the operation"));
    }
}

TEST_F(AutomationObject, TheServerTellsItsVersion) {
    const auto version = MakeObject<VersionInformationObject>(context);
    std::wstring text;
    EXPECT_EQ(ReadText(*version, &IVersionInformation::GetVersion, text), S_OK);
    EXPECT_EQ(text, L"1.0.0");
    EXPECT_EQ(ReadText(*version, &IVersionInformation::GetVersionDetail, text), S_OK);
#ifdef NDEBUG
    EXPECT_EQ(text, L"kemba-dal, release build, on the Windows print spooler");
#else
    EXPECT_EQ(text, L"kemba-dal, debug build, on the Windows print spooler");
#endif
    EXPECT_EQ(version->GetVersion(nullptr), E_POINTER);
    EXPECT_EQ(version->GetVersionDetail(nullptr), E_POINTER);
}

TEST_F(AutomationObject, ForeignExceptionsBecomeStatuses) {
    const auto report = [](auto thrown) {
        try {
            throw thrown;
        } catch (...) {
            return ReportCurrentException(__uuidof(IDriverAutomation), L"SendFile", L"Label A");
        }
    };
    EXPECT_EQ(report(std::bad_alloc()), E_OUTOFMEMORY);
    EXPECT_EQ(TakeErrorTexts().description, L"SendFile on printer \"Label A\": out of memory");
    EXPECT_EQ(report(std::length_error("basic_string::_M_replace_aux")), E_OUTOFMEMORY);
    EXPECT_EQ(TakeErrorTexts().description, L"SendFile on printer \"Label A\": out of memory");
    EXPECT_EQ(report(std::runtime_error("broken")), E_FAIL); // the runtime's words are for nobody outside
    EXPECT_EQ(TakeErrorTexts().description, L"SendFile on printer \"Label A\": unexpected failure");
    EXPECT_EQ(report(std::out_of_range("vector::_M_range_check")), E_FAIL);
    EXPECT_EQ(TakeErrorTexts().description, L"SendFile on printer \"Label A\": unexpected failure");
    EXPECT_EQ(report(42), E_FAIL);
    EXPECT_EQ(TakeErrorTexts().description, L"SendFile on printer \"Label A\": unexpected failure");
}

} // namespace
