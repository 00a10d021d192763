// Calls by name with what scripts pass: untyped variables by reference, or no place for the result at all.
#include <gtest/gtest.h>

#include <vector>

#include "substitute/objects/DriverActionsObject.h"
#include "tests/substitute/ObjectFixture.h"

namespace {

using kemba::ComPtr;
using kemba::MakeObject;
using namespace kemba::substitute;

/// A VARIANT that is cleared in the end.
struct Value : VARIANT {
    Value() : VARIANT{} {}
    Value(const Value&) = delete;
    Value& operator=(const Value&) = delete;
    ~Value() { VariantClear(this); }
};

class LateBindingTest : public ObjectFixture {
  protected:
    LateBindingTest() {
        spooler.printers[L"Label A"].comment = L"by the door";
        EXPECT_EQ(automation->PutPrinterName(InText(L"Label A")), S_OK);
    }

    static HRESULT Call(IDispatch& object, std::wstring name, std::vector<VARIANT> arguments,
                        VARIANT* result = nullptr, EXCEPINFO* exception = nullptr) {
        LPOLESTR names = name.data();
        DISPID member = 0;
        EXPECT_EQ(object.GetIDsOfNames(IID_NULL, &names, 1, LOCALE_NEUTRAL, &member), S_OK);
        DISPPARAMS given = {arguments.data(), nullptr, static_cast<UINT>(arguments.size()), 0};
        return object.Invoke(member, IID_NULL, LOCALE_NEUTRAL, DISPATCH_METHOD | DISPATCH_PROPERTYGET, &given,
                             result, exception, nullptr);
    }
    static VARIANT Reference(VARIANT& variable) {
        VARIANT reference = {};
        reference.vt = VT_VARIANT | VT_BYREF;
        reference.pvarVal = &variable;
        return reference;
    }

    ComPtr<DriverAutomationObject> automation = MakeAutomation();
};

TEST_F(LateBindingTest, AnUntypedVariableGetsTheText) {
    Value comment;
    comment.vt = VT_BSTR; // what it held is freed
    comment.bstrVal = SysAllocString(L"old");
    EXPECT_EQ(Call(*automation, L"GetComment", {Reference(comment)}), S_OK);
    ASSERT_EQ(comment.vt, VT_BSTR);
    EXPECT_STREQ(comment.bstrVal, L"by the door");
}

TEST_F(LateBindingTest, AnArgumentLeftOutIsTheResult) {
    Value comment;
    EXPECT_EQ(Call(*automation, L"GetComment", {}, &comment), S_OK);
    ASSERT_EQ(comment.vt, VT_BSTR);
    EXPECT_STREQ(comment.bstrVal, L"by the door");
    EXPECT_EQ(Call(*automation, L"GetComment", {}), DISP_E_BADPARAMCOUNT); // nobody wants it
}

TEST_F(LateBindingTest, ObjectsAndFlagsAreHandedOutLikewise) {
    Value information;
    EXPECT_EQ(Call(*automation, L"GetPrinterInformation", {Reference(information)}), S_OK);
    ASSERT_EQ(information.vt, VT_DISPATCH);
    Value status;
    EXPECT_EQ(Call(*information.pdispVal, L"GetStatus", {}, &status), S_OK);
    ASSERT_EQ(status.vt, VT_BSTR);
    EXPECT_STREQ(status.bstrVal, L"Ready");
    const auto request = MakeObject<DriverActionsObject>(context);
    Value supported;
    EXPECT_EQ(Call(*request, L"GetSupported", {Reference(supported)}), S_OK);
    ASSERT_EQ(supported.vt, VT_BOOL);
    EXPECT_EQ(supported.boolVal, VARIANT_FALSE);
}

TEST_F(LateBindingTest, AFailureLeavesTheVariableAloneAndTellsWhy) {
    const auto unbound = MakeAutomation();
    Value comment;
    comment.vt = VT_I4;
    comment.lVal = 7;
    EXCEPINFO exception = {};
    EXPECT_EQ(Call(*unbound, L"GetComment", {Reference(comment)}, nullptr, &exception), DISP_E_EXCEPTION);
    EXPECT_EQ(comment.vt, VT_I4);
    EXPECT_EQ(comment.lVal, 7);
    EXPECT_EQ(exception.scode, E_UNEXPECTED);
    ASSERT_NE(exception.bstrDescription, nullptr);
    EXPECT_STREQ(exception.bstrDescription, L"GetComment: no printer has been named yet");
    EXPECT_STREQ(exception.bstrSource, L"kemba-dal");
    SysFreeString(exception.bstrSource);
    SysFreeString(exception.bstrDescription);
    SysFreeString(exception.bstrHelpFile);
    TakeErrorTexts();
}

TEST_F(LateBindingTest, AWrongNumberOfArgumentsIsRefused) {
    Value first;
    Value second;
    EXPECT_TRUE(FAILED(Call(*automation, L"GetComment", {Reference(first), Reference(second)})));
    EXPECT_EQ(first.vt, VT_EMPTY);
    EXPECT_EQ(second.vt, VT_EMPTY);
    EXPECT_EQ(Call(*automation, L"PutComment", {}), DISP_E_BADPARAMCOUNT);
}

} // namespace
