// What all objects share: identity, late binding, error information; and the two small classes.
#include <gtest/gtest.h>

#include <cstddef>
#include <functional>
#include <iterator>
#include <new>
#include <stdexcept>
#include <utility>

#include "Version.h"
#include "automation/Owners.h"
#include "core/LibraryErrors.h"
#include "substitute/base/Failure.h"
#include "substitute/objects/DriverActionsObject.h"
#include "substitute/objects/ServerClasses.h"
#include "substitute/objects/VersionInformationObject.h"
#include "tests/kit/CallTexts.h"
#include "tests/kit/Owners.h"
#include "tests/substitute/LateCalls.h"
#include "tests/substitute/ObjectFixture.h"

using namespace kemba;
using namespace kemba::substitute;
using namespace kit;

namespace {

class AutomationObject : public ObjectFixture {
  protected:
    AutomationObject() { spooler.printers[L"Label A"].comment = L"by the door"; }
};

TEST_F(AutomationObject, LateBoundCallsReachTheOperations) {
    const auto automation = MakeAutomation();
    EXPECT_EQ(Call(*automation, L"putprintername", {Value(L"Label A")}), S_OK);
    OwnedBstr comment;
    EXPECT_EQ(Call(*automation, L"GetComment", {Reference(VT_BSTR, comment.Put())}), S_OK);
    EXPECT_STREQ(comment.Text(), L"by the door");
}

TEST_F(AutomationObject, ALateBoundFailureCarriesItsStatus) {
    const auto automation = MakeAutomation();
    Told told;
    EXPECT_EQ(Call(*automation, L"PutPrinterName", {Value(L"Other")}, nullptr, &told), DISP_E_EXCEPTION);
    EXPECT_EQ(told.exception.scode, HRESULT_FROM_WIN32(ERROR_INVALID_PRINTER_NAME));
    TakeErrorTexts();
}

TEST_F(AutomationObject, NamesAndInterfacesThatAreNotThereAreRefused) {
    const auto automation = MakeAutomation();
    wchar_t colour[] = L"GetColour";
    LPOLESTR name = colour;
    DISPID member = 0;
    EXPECT_EQ(automation->GetIDsOfNames(IID_NULL, &name, 1, LOCALE_NEUTRAL, &member), DISP_E_UNKNOWNNAME);
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
        const auto support = Query<ISupportErrorInfo>(*object);
        ASSERT_TRUE(support);
        EXPECT_EQ(support->InterfaceSupportsErrorInfo(rows[index].second), S_OK);
        EXPECT_EQ(support->InterfaceSupportsErrorInfo(__uuidof(IPrinterQueue)), S_FALSE);
        const auto identity = Query<IUnknown>(*object);
        EXPECT_TRUE(identity);
        EXPECT_EQ(Query<IUnknown>(*support).Get(), identity.Get());
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
    EXPECT_EQ(text, L"" KEMBA_VERSION_TEXT);
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
    EXPECT_EQ(report(OCore::LengthError("basic_string::_M_replace_aux")), E_OUTOFMEMORY);
    EXPECT_EQ(TakeErrorTexts().description, L"SendFile on printer \"Label A\": out of memory");
    EXPECT_EQ(report(std::runtime_error("broken")), E_FAIL); // the runtime's words are for nobody outside
    EXPECT_EQ(TakeErrorTexts().description, L"SendFile on printer \"Label A\": unexpected failure");
    EXPECT_EQ(report(std::out_of_range("vector::_M_range_check")), E_FAIL);
    EXPECT_EQ(TakeErrorTexts().description, L"SendFile on printer \"Label A\": unexpected failure");
    EXPECT_EQ(report(42), E_FAIL);
    EXPECT_EQ(TakeErrorTexts().description, L"SendFile on printer \"Label A\": unexpected failure");
}

} // namespace
