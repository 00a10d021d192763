// The fixture of whole runs: a run that leaves something behind fails its test.
#include "tests/kit/ServedRun.h"
#include "tests/kit/TestClient.h"

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <string_view>

namespace {

/// A program that shows the comment of the printer that its first word names; its second word chooses what it
/// leaks.
int ShowComment(int, wchar_t* words[]) {
    const std::wstring_view leak = words[2] ? words[2] : L"";
    CoInitialize(nullptr);
    IDriverAutomation* const automation = Bound(words[1]);
    BSTR comment = nullptr;
    const HRESULT status = automation->GetComment(&comment);
    std::printf("%ls", comment ? comment : L"");
    if (leak != L"text")
        SysFreeString(comment);
    if (leak != L"object")
        automation->Release();
    if (leak != L"runtime")
        CoUninitialize();
    return FAILED(status) ? 2 : 0;
}

class ServedRun : public kit::ServedRun {
  protected:
    ServedRun() : kit::ServedRun(ShowComment) {}
};

TEST_F(ServedRun, GivesTheOutputAndTheStatusOfTheRun) {
    m_server.GiveText("IDriverAutomation.GetComment", L"by the door").ForPrinter(L"Label A");
    m_server.Fail("IDriverAutomation.GetComment", E_FAIL).ForPrinter(L"Label B");
    const kit::RunResult good = Run({L"Label A"});
    EXPECT_EQ(good.status, 0);
    EXPECT_EQ(good.output, "by the door");
    const kit::RunResult bad = Run({L"Label B"});
    EXPECT_EQ(bad.status, 2);
    EXPECT_EQ(bad.output, "");
    EXPECT_EQ(
        m_server.Calls(),
        (kit::Lines{"DriverAutomation#1.PutPrinterName(\"Label A\")", "DriverAutomation#1.GetComment()",
                    "DriverAutomation#2.PutPrinterName(\"Label B\")", "DriverAutomation#2.GetComment()"}));
}

TEST_F(ServedRun, ALeakedObjectFailsTheTest) {
    EXPECT_NONFATAL_FAILURE(Run({L"A", L"object"}), "not released: DriverAutomation#1");
}

TEST_F(ServedRun, ALeakedTextFailsTheTest) {
    EXPECT_NONFATAL_FAILURE(Run({L"A", L"text"}), "not freed: text of DriverAutomation#1.GetComment");
}

TEST_F(ServedRun, ARuntimeThatStaysInitialisedFailsTheTest) {
    EXPECT_NONFATAL_FAILURE(Run({L"A", L"runtime"}), "initialisations of the runtime not undone: 1");
}

} // namespace
