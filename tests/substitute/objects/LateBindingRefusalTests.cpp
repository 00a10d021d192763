// Calls by name that fit no operation: refused, and nothing is done.
#include <gtest/gtest.h>

#include <cstring>
#include <iterator>
#include <utility>

#include "automation/Owners.h"
#include "substitute/objects/DriverActionsObject.h"
#include "substitute/objects/LateBinding.h"
#include "substitute/objects/VersionInformationObject.h"
#include "tests/kit/CallTexts.h"
#include "tests/kit/Owners.h"
#include "tests/substitute/LateCalls.h"
#include "tests/substitute/ObjectFixture.h"
#include "tests/substitute/Texts.h"

using namespace kemba;
using namespace kemba::substitute;
using namespace kit;

namespace {

class LateBindingRefusal : public ObjectFixture {
  protected:
    LateBindingRefusal() {
        spooler.printers[L"Label A"].comment = L"by the door";
        EXPECT_EQ(automation->PutPrinterName(InText(L"Label A")), S_OK);
    }
    ~LateBindingRefusal() override {
        EXPECT_EQ(spooler.printers[L"Label A"].comment, L"by the door");
        TakeErrorTexts();
    }

    ComPtr<DriverAutomationObject> automation = MakeAutomation();
};

TEST_F(LateBindingRefusal, TooManyArguments) {
    const Value text(L"x");
    EXPECT_EQ(Call(*automation, L"PutComment", {text, text}), DISP_E_BADPARAMCOUNT);
    EXPECT_EQ(CallNamed(*automation, L"PutComment", {0}, {text, text}), DISP_E_BADPARAMCOUNT);
    EXPECT_EQ(Call(*automation, L"Reserved4", {text}), DISP_E_BADPARAMCOUNT);
    Value queue;
    ASSERT_EQ(Call(*automation, L"GetPrinterQueue", {}, &queue), S_OK);
    EXPECT_EQ(Call(*queue.pdispVal, L"Purge", {text}), DISP_E_BADPARAMCOUNT);
    EXPECT_TRUE(spooler.commands.empty());
    Value first(1);
    Value second(2);
    EXPECT_EQ(Call(*automation, L"GetComment", {Reference(first), Reference(second)}), DISP_E_BADPARAMCOUNT);
    EXPECT_EQ(first.lVal, 1);
    EXPECT_EQ(second.lVal, 2);
}

TEST_F(LateBindingRefusal, TooFewArguments) {
    EXPECT_EQ(Call(*automation, L"PutComment", {}), DISP_E_BADPARAMCOUNT);
    const Value text(L"C:\\x");
    EXPECT_EQ(Call(*automation, L"SendFile", {text}), DISP_E_BADPARAMCOUNT);
    EXPECT_EQ(CallNamed(*automation, L"SendFile", {1}, {text}), DISP_E_BADPARAMCOUNT);
    Told told;
    EXPECT_EQ(Call(*automation, L"SendFile", {LeftOut(), text}, nullptr, &told), DISP_E_PARAMNOTOPTIONAL);
    EXPECT_EQ(told.wrongArgument, 1u); // the last one has the index 0
    EXPECT_EQ(Call(*automation, L"PutComment", {LeftOut()}), DISP_E_PARAMNOTOPTIONAL);
}

TEST_F(LateBindingRefusal, AValueWhereAResultIsHandedOut) {
    Value text(L"mine");
    Value none;
    Value number(7);
    VARIANT rows[] = {text, none, number};
    for (VARIANT& row : rows) {
        SCOPED_TRACE(row.vt);
        const VARIANT before = row;
        for (const wchar_t* const operation : {L"GetComment", L"GetSettings"}) {
            Value result;
            Told told;
            EXPECT_EQ(Call(*automation, operation, {row}, &result, &told), DISP_E_TYPEMISMATCH);
            EXPECT_EQ(told.wrongArgument, 0u);
            EXPECT_EQ(result.vt, VT_EMPTY);
        }
        EXPECT_EQ(std::memcmp(&row, &before, sizeof(row)), 0);
    }
    EXPECT_EQ(text.Text(), L"mine");
}

TEST_F(LateBindingRefusal, AnObjectWhereAnObjectIsHandedOut) {
    const auto request = MakeObject<DriverActionsObject>(context);
    const Value value(request.Get());
    EXPECT_EQ(Call(*automation, L"GetSettings", {value}), DISP_E_TYPEMISMATCH);
    EXPECT_EQ(ReferencesTo(*request), 2u); // ours and the value's
}

TEST_F(LateBindingRefusal, AVariableOfAnotherTypeAndNoVariable) {
    LONG number = 7;
    IDispatch* object = nullptr;
    const VARIANT rows[] = {Reference(VT_I4, &number), Reference(VT_DISPATCH, &object),
                            Reference(VT_BSTR, nullptr), Reference(VT_VARIANT, nullptr)};
    for (const VARIANT& row : rows) {
        SCOPED_TRACE(row.vt);
        Told told;
        EXPECT_EQ(Call(*automation, L"GetComment", {row}, nullptr, &told), DISP_E_TYPEMISMATCH);
        EXPECT_EQ(told.wrongArgument, 0u);
    }
    EXPECT_EQ(number, 7);
    EXPECT_EQ(object, nullptr);
}

/// The contract has none; the system's own library does, as the last argument of IEnumVARIANT::Next.
TEST_F(LateBindingRefusal, AVariableOfATypeThatTheContractDoesNotHandOut) {
    ComPtr<ITypeLib> library;
    ComPtr<ITypeInfo> enumerator;
    ASSERT_EQ(LoadTypeLib(L"stdole2.tlb", library.Put()), S_OK);
    ASSERT_EQ(library->GetTypeInfoOfGuid(IID_IEnumVARIANT, enumerator.Put()), S_OK);
    wchar_t next[] = L"Next";
    LPOLESTR names = next;
    DISPID member = DISPID_UNKNOWN;
    ASSERT_EQ(enumerator->GetIDsOfNames(&names, 1, &member), S_OK);
    ULONG fetched = 7;
    Value element;
    VARIANT given[] = {Reference(VT_UI4, &fetched), Reference(element), Value(1)};
    DISPPARAMS arguments = {given, nullptr, 3, 0};
    UINT wrongArgument = 77;
    EXPECT_EQ(InvokeByName(*automation, *enumerator, member, DISPATCH_METHOD, &arguments, nullptr, nullptr,
                           &wrongArgument),
              DISP_E_TYPEMISMATCH);
    EXPECT_EQ(wrongArgument, 0u);
    EXPECT_EQ(fetched, 7u);
}

TEST_F(LateBindingRefusal, AValueThatCannotBeConverted) {
    const Value word(L"four");
    Value request(MakeObject<DriverActionsObject>(context).Get());
    Told told;
    EXPECT_EQ(Call(*automation, L"PerformAction", {word, request}, nullptr, &told), DISP_E_TYPEMISMATCH);
    Value null;
    null.vt = VT_NULL;
    EXPECT_EQ(Call(*automation, L"PutComment", {null}), DISP_E_TYPEMISMATCH);
}

TEST_F(LateBindingRefusal, ANameThatNoArgumentHas) {
    const Value text(L"x");
    for (const DISPID id : {DISPID(1), DISPID(-1), DISPID(DISPID_PROPERTYPUT), DISPID(0x7FFFFFFF)}) {
        SCOPED_TRACE(id);
        Told told;
        EXPECT_EQ(CallNamed(*automation, L"PutComment", {id}, {text}, nullptr, &told), DISP_E_PARAMNOTFOUND);
        EXPECT_EQ(told.wrongArgument, 0u);
    }
    EXPECT_EQ(CallNamed(*automation, L"SendFile", {0}, {text, text}),
              DISP_E_BADPARAMCOUNT); // the first twice
}

TEST_F(LateBindingRefusal, OperationsAreNoProperties) {
    const Value text(L"x");
    Value result;
    EXPECT_EQ(CallNamed(*automation, L"PutComment", {DISPID_PROPERTYPUT}, {text}, nullptr, nullptr,
                        DISPATCH_PROPERTYPUT),
              DISP_E_MEMBERNOTFOUND);
    for (const int flags : {DISPATCH_PROPERTYGET, DISPATCH_PROPERTYPUT, DISPATCH_PROPERTYPUTREF, 0,
                            DISPATCH_METHOD | DISPATCH_PROPERTYPUT}) {
        SCOPED_TRACE(flags);
        EXPECT_EQ(Call(*automation, L"PutComment", {text}, nullptr, nullptr, static_cast<WORD>(flags)),
                  DISP_E_MEMBERNOTFOUND);
        EXPECT_EQ(Call(*automation, L"GetComment", {}, &result, nullptr, static_cast<WORD>(flags)),
                  DISP_E_MEMBERNOTFOUND);
    }
}

TEST_F(LateBindingRefusal, MembersThatAreNoOperations) {
    DISPPARAMS none = {};
    const ULONG references = ReferencesTo(*automation);
    // Among them the places of IUnknown and IDispatch, which type libraries number so.
    for (const DISPID member : {0, -1, 24, 0x60000000, 0x60000001, 0x60000002, 0x60010000, 0x60010003}) {
        SCOPED_TRACE(member);
        EXPECT_EQ(automation->Invoke(member, IID_NULL, 0, DISPATCH_METHOD, &none, nullptr, nullptr, nullptr),
                  DISP_E_MEMBERNOTFOUND);
    }
    EXPECT_EQ(ReferencesTo(*automation), references);
}

TEST_F(LateBindingRefusal, ArgumentsThatAreNotThere) {
    const DISPID id = IdOf(*automation, L"PutComment");
    DISPID first = 0;
    Value text(L"x");
    DISPPARAMS rows[] = {{nullptr, nullptr, 1, 0}, {&text, nullptr, 1, 1}, {&text, &first, 0, 1}};
    const auto invoke = [&](DISPPARAMS* arguments) {
        VARIANT result = {};
        result.vt = VT_I4;
        const HRESULT status =
            automation->Invoke(id, IID_NULL, 0, DISPATCH_METHOD, arguments, &result, nullptr, nullptr);
        EXPECT_EQ(result.vt, VT_EMPTY);
        return status;
    };
    EXPECT_EQ(invoke(nullptr), E_INVALIDARG);
    for (DISPPARAMS& row : rows) {
        EXPECT_EQ(invoke(&row), E_INVALIDARG);
    }
}

/// Every operation of every object, with all kinds of arguments.
TEST_F(LateBindingRefusal, NoArgumentsEverBringOutWordsOfTheRuntime) {
    Value settings;
    Value queue;
    Value information;
    ASSERT_EQ(Call(*automation, L"GetSettings", {}, &settings), S_OK);
    ASSERT_EQ(Call(*automation, L"GetPrinterQueue", {}, &queue), S_OK);
    ASSERT_EQ(Call(*automation, L"GetPrinterInformation", {}, &information), S_OK);
    const auto request = MakeObject<DriverActionsObject>(context);
    const auto version = MakeObject<VersionInformationObject>(context);
    const std::pair<IDispatch*, LONG> objects[] = {{automation.Get(), 23}, {settings.pdispVal, 3},
                                                   {queue.pdispVal, 4},    {information.pdispVal, 1},
                                                   {request.Get(), 9},     {version.Get(), 2}};
    const Value text(std::wstring(L"C:\\a\0b", 6));
    const Value number(4);
    Value variable;
    Value null;
    null.vt = VT_NULL;
    const VARIANT kinds[] = {
        text, number, null, VARIANT{}, LeftOut(), Reference(variable), Reference(VT_VARIANT, nullptr)};
    constexpr int kKinds = std::size(kinds);
    int explained = 0;
    for (const auto& [object, count] : objects) {
        for (DISPID member = 1; member <= count; ++member) {
            for (int chosen = 0; chosen < kKinds * kKinds * 3; ++chosen) {
                VARIANT given[] = {kinds[chosen % kKinds], kinds[chosen / kKinds % kKinds]};
                DISPPARAMS arguments = {given, nullptr, static_cast<UINT>(chosen / (kKinds * kKinds)), 0};
                Value result;
                Told told;
                SCOPED_TRACE(testing::Message() << "member " << member << ", arguments " << chosen);
                const HRESULT status = object->Invoke(member, IID_NULL, 0, DISPATCH_METHOD, &arguments,
                                                      &result, &told.exception, &told.wrongArgument);
                EXPECT_TRUE(told.exception.scode != E_FAIL && status != E_FAIL);
                EXPECT_TRUE(SpeaksForItself(told.Description()));
                if (status == DISP_E_EXCEPTION) {
                    ++explained;
                    EXPECT_FALSE(told.Description().empty());
                }
            }
        }
    }
    EXPECT_GT(explained, 500);
    spooler.printers[L"Label A"].comment = L"by the door"; // numbers make comments
}

} // namespace
