// Calls by name with what scripts pass: untyped variables by reference, or no place for the result at all.
#include <windows.h>
#include <psapi.h>

#include <gtest/gtest.h>

#include <cstddef>

#include "automation/Owners.h"
#include "substitute/objects/DriverActionsObject.h"
#include "tests/kit/CallTexts.h"
#include "tests/kit/Owners.h"
#include "tests/substitute/LateCalls.h"
#include "tests/substitute/ObjectFixture.h"

using namespace kemba;
using namespace kemba::substitute;
using namespace kit;

namespace {

class LateBinding : public ObjectFixture {
  protected:
    LateBinding() {
        spooler.printers[L"Label A"].comment = L"by the door";
        EXPECT_EQ(automation->PutPrinterName(InText(L"Label A")), S_OK);
    }

    ComPtr<DriverAutomationObject> automation = MakeAutomation();
};

TEST_F(LateBinding, AnUntypedVariableGetsTheText) {
    Value comment(L"old"); // what it held is freed
    EXPECT_EQ(Call(*automation, L"GetComment", {Reference(comment)}), S_OK);
    EXPECT_EQ(comment.Text(), L"by the door");
}

TEST_F(LateBinding, AnArgumentLeftOutIsTheResult) {
    Value comment;
    EXPECT_EQ(Call(*automation, L"GetComment", {}, &comment), S_OK);
    EXPECT_EQ(comment.Text(), L"by the door");
    Value other;
    EXPECT_EQ(Call(*automation, L"GetComment", {LeftOut()}, &other), S_OK); // as languages say it that count
    EXPECT_EQ(other.Text(), L"by the door");
    EXPECT_EQ(Call(*automation, L"GetComment", {}), DISP_E_BADPARAMCOUNT); // nobody wants it
}

TEST_F(LateBinding, ObjectsAndFlagsAreHandedOutLikewise) {
    Value information;
    EXPECT_EQ(Call(*automation, L"GetPrinterInformation", {Reference(information)}), S_OK);
    ASSERT_EQ(information.vt, VT_DISPATCH);
    EXPECT_EQ(ReferencesTo(*information.pdispVal), 1u);
    Value status;
    EXPECT_EQ(Call(*information.pdispVal, L"GetStatus", {}, &status), S_OK);
    EXPECT_EQ(status.Text(), L"Ready");
    const auto request = MakeObject<DriverActionsObject>(context);
    Value supported;
    EXPECT_EQ(Call(*request, L"GetSupported", {Reference(supported)}), S_OK);
    ASSERT_EQ(supported.vt, VT_BOOL);
    EXPECT_EQ(supported.boolVal, VARIANT_FALSE);
}

TEST_F(LateBinding, AFailureLeavesTheVariableAloneAndTellsWhy) {
    const auto unbound = MakeAutomation();
    Value comment(7);
    Told told;
    EXPECT_EQ(Call(*unbound, L"GetComment", {Reference(comment)}, nullptr, &told), DISP_E_EXCEPTION);
    EXPECT_EQ(comment.vt, VT_I4);
    EXPECT_EQ(comment.lVal, 7);
    EXPECT_EQ(told.exception.scode, E_UNEXPECTED);
    EXPECT_EQ(told.Description(), L"GetComment: no printer has been named yet");
    EXPECT_STREQ(told.exception.bstrSource, L"kemba-dal");
    TakeErrorTexts();
}

TEST_F(LateBinding, TheResultsPlaceIsNeverTakenForAValue) {
    // A caller need not have prepared it: what lies there is neither read nor released.
    const auto request = MakeObject<DriverActionsObject>(context);
    const auto unprepared = [&] {
        VARIANT result = {};
        result.vt = VT_DISPATCH;
        result.pdispVal = request.Get();
        return result;
    };
    VARIANT result = unprepared();
    EXPECT_EQ(Call(*automation, L"GetComment", {}, &result), S_OK);
    kemba::OwnedVariant taker;
    *taker.Put() = result;
    ASSERT_EQ(result.vt, VT_BSTR);
    EXPECT_EQ(ReferencesTo(*request), 1u);
    result = unprepared();
    EXPECT_EQ(Call(*MakeAutomation(), L"GetComment", {}, &result), DISP_E_EXCEPTION);
    EXPECT_EQ(result.vt, VT_EMPTY);
    result = unprepared();
    EXPECT_EQ(Call(*automation, L"PutComment", {}, &result), DISP_E_BADPARAMCOUNT);
    EXPECT_EQ(result.vt, VT_EMPTY);
    result = unprepared();
    const Value comment(L"x");
    EXPECT_EQ(Call(*automation, L"PutComment", {comment}, &result), S_OK);
    EXPECT_EQ(result.vt, VT_EMPTY);
    EXPECT_EQ(ReferencesTo(*request), 1u);
    TakeErrorTexts();
}

TEST_F(LateBinding, AnObjectInTheVariableIsReleased) {
    const auto request = MakeObject<DriverActionsObject>(context);
    Value untyped(request.Get());
    EXPECT_EQ(Call(*automation, L"GetComment", {Reference(untyped)}), S_OK);
    EXPECT_EQ(untyped.Text(), L"by the door");
    EXPECT_EQ(ReferencesTo(*request), 1u);
    IDispatch* typed = request.Get();
    typed->AddRef();
    EXPECT_EQ(Call(*automation, L"GetPrinterQueue", {Reference(VT_DISPATCH, &typed)}), S_OK);
    const ComPtr<IDispatch> queue(typed);
    EXPECT_NE(queue.Get(), static_cast<IDispatch*>(request.Get()));
    EXPECT_EQ(ReferencesTo(*request), 1u);
    EXPECT_EQ(Call(*automation, L"GetPrinterQueue", {Reference(VT_DISPATCH, nullptr)}), DISP_E_TYPEMISMATCH);
}

TEST_F(LateBinding, ATextInAVariableOfTextsIsFreed) {
    BSTR text = nullptr;
    const auto privateBytes = [] {
        PROCESS_MEMORY_COUNTERS counters{};
        EXPECT_TRUE(GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof(counters)));
        return counters.PagefileUsage;
    };
    const std::size_t before = privateBytes();
    for (int round = 0; round < 100; ++round) {
        ASSERT_TRUE(SysReAllocStringLen(&text, nullptr, 1024 * 1024));
        ASSERT_EQ(Call(*automation, L"GetComment", {Reference(VT_BSTR, &text)}), S_OK);
        ASSERT_STREQ(text, L"by the door");
        text = nullptr; // the next text is a fresh one
    }
    EXPECT_LT(privateBytes(), before + std::size_t{50} * 1024 * 1024); // of 200
}

TEST_F(LateBinding, AnArrayInTheVariableIsFreedUnlessItIsInUse) {
    Value variable;
    variable.vt = VT_ARRAY | VT_I4;
    variable.parray = SafeArrayCreateVector(VT_I4, 0, 3);
    ASSERT_TRUE(variable.parray);
    ASSERT_EQ(SafeArrayLock(variable.parray), S_OK);
    EXPECT_EQ(Call(*automation, L"GetComment", {Reference(variable)}), DISP_E_ARRAYISLOCKED);
    EXPECT_EQ(variable.vt, VT_ARRAY | VT_I4);
    ASSERT_EQ(SafeArrayUnlock(variable.parray), S_OK);
    EXPECT_EQ(Call(*automation, L"GetComment", {Reference(variable)}), S_OK);
    EXPECT_EQ(variable.Text(), L"by the door");
}

TEST_F(LateBinding, TheVariableThatHoldsTheCalledObjectMayBeReplaced) {
    Value variable(automation.Get());
    IDispatch& object = *variable.pdispVal;
    automation.Reset();
    EXPECT_EQ(Call(object, L"GetPrinterInformation", {Reference(variable)}), S_OK); // its last reference
    Value status;
    EXPECT_EQ(Call(*variable.pdispVal, L"GetStatus", {}, &status), S_OK);
    EXPECT_EQ(status.Text(), L"Ready");
}

TEST_F(LateBinding, ArgumentsMayBeNamed) {
    std::wstring names[] = {L"PutComment", L"comment"};
    LPOLESTR pointers[] = {names[0].data(), names[1].data()};
    DISPID ids[2] = {};
    ASSERT_EQ(automation->GetIDsOfNames(IID_NULL, pointers, 2, LOCALE_NEUTRAL, ids), S_OK);
    const Value text(L"named");
    EXPECT_EQ(CallNamed(*automation, L"PutComment", {ids[1]}, {text}), S_OK);
    EXPECT_EQ(spooler.printers[L"Label A"].comment, L"named");
    Value comment;
    EXPECT_EQ(CallNamed(*automation, L"GetComment", {0}, {Reference(comment)}), S_OK);
    EXPECT_EQ(comment.Text(), L"named");
    Told told;
    const Value path(L"C:\\no such file");
    // The second one by its name, the first one by its place.
    EXPECT_EQ(CallNamed(*automation, L"SendFile", {1}, {text, path}, nullptr, &told), DISP_E_EXCEPTION);
    EXPECT_EQ(told.exception.scode, HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND));
    TakeErrorTexts();
}

} // namespace
