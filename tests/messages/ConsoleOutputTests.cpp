// The console writer: exact bytes, substitution, quiet mode, whatever the mode of the runtime's stream.
#include <windows.h>
#include <fcntl.h>
#include <io.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <functional>
#include <string>
#include <utility>

#include "core/OStream.h"
#include "core/OString.h"
#include "messages/ConsoleOutput.h"
#include "tests/kit/ImportPatch.h"
#include "tests/kit/StdoutCapture.h"

using namespace kit;

namespace {

/// What reaches standard output while `print` works on a writer.
std::string Printed(const std::function<void(ConsoleOutput&)>& print, bool quiet = false) {
    ConsoleOutput console(quiet);
    StdoutCapture capture;
    print(console);
    return capture.Finish();
}

TEST(ConsoleOutput, AMessageIsItsTextAndOneLineEnd) {
    EXPECT_EQ(Printed([](ConsoleOutput& console) { console.PrintMessage("error:Unspecified"); }),
              "Unspecified error.\r\n");
}

TEST(ConsoleOutput, TheArgumentReplacesThePlaceholder) {
    EXPECT_EQ(Printed([](ConsoleOutput& console) { console.PrintMessage("error:CommandUnknown", L"abc"); }),
              "The command 'abc' is unknown.\r\n");
}

TEST(ConsoleOutput, TheArgumentIsInsertedAsItStands) {
    EXPECT_EQ(
        Printed([](ConsoleOutput& console) { console.PrintMessage("error:CommandUnknown", L"'%1' %2 %%"); }),
        "The command ''%1' %2 %%' is unknown.\r\n");
}

TEST(ConsoleOutput, ATextWithoutThePlaceholderIsPrintedUnchanged) {
    EXPECT_EQ(Printed([](ConsoleOutput& console) { console.PrintMessage("text:Unknown", L"abc"); }),
              "Unknown\r\n");
}

TEST(ConsoleOutput, AKeyWithoutASectionPrintsAnEmptyLine) {
    EXPECT_EQ(Printed([](ConsoleOutput& console) {
                  console.PrintMessage("error:None");
                  console.PrintMessage("error:None", L"abc");
              }),
              "\r\n\r\n");
}

TEST(ConsoleOutput, PlainTextIsOneLine) {
    EXPECT_EQ(Printed([](ConsoleOutput& console) { console.PrintText(L"Label A: 100 %1"); }),
              "Label A: 100 %1\r\n");
}

TEST(ConsoleOutput, ANarrowLiteralAndALineEndCanBeWritten) {
    EXPECT_EQ(Printed([](ConsoleOutput& console) { console << "Plain" << OCore::EndOfLine; }), "Plain\r\n");
}

TEST(ConsoleOutput, FetchingAMessagePrintsNothing) {
    EXPECT_EQ(Printed([](ConsoleOutput& console) {
                  EXPECT_STREQ(console.FetchMessage("text:Unknown").Wide(), L"Unknown");
                  EXPECT_TRUE(console.FetchMessage("text:None").IsEmpty());
              }),
              "");
}

TEST(ConsoleOutput, QuietModeDropsEverything) {
    EXPECT_EQ(Printed(
                  [](ConsoleOutput& console) {
                      console.PrintMessage("help:help");
                      console.PrintMessage("error:CommandUnknown", L"abc");
                      console.PrintText(L"text");
                      console << "literal" << OCore::EndOfLine;
                      EXPECT_EQ(console.WriteRaw("bytes", 5), 5U);
                  },
                  true),
              "");
}

TEST(ConsoleOutput, TheQuietFlagIsLookedAtOnEveryWrite) {
    bool quiet = false;
    ConsoleOutput console(quiet);
    StdoutCapture capture;
    console.PrintText(L"one");
    quiet = true;
    console.PrintText(L"two");
    quiet = false;
    console.PrintText(L"three");
    EXPECT_EQ(capture.Finish(), "one\r\nthree\r\n");
}

TEST(ConsoleOutput, RawBytesReportTheirCount) {
    EXPECT_EQ(Printed([](ConsoleOutput& console) { EXPECT_EQ(console.WriteRaw("a\0b", 3), 3U); }),
              std::string("a\0b", 3));
}

TEST(ConsoleOutput, LinesEndInOneCrLfWhateverTheStreamsMode) {
    for (const int mode : {_O_TEXT, _O_BINARY}) {
        SCOPED_TRACE(mode);
        EXPECT_EQ(Printed([mode](ConsoleOutput& console) {
                      _setmode(_fileno(stdout), mode);
                      console.PrintMessage("error:COM", L"x");
                      console.PrintText(L"y");
                  }),
                  "*** COM Exception ***\r\nError: x\r\ny\r\n");
    }
}

TEST(ConsoleOutput, MessagesComeInOrderWithOtherOutputOfTheProcess) {
    EXPECT_EQ(Printed([](ConsoleOutput& console) {
                  console.PrintText(L"one");
                  std::fputs("two", stdout);
                  console.PrintText(L"three");
              }),
              "one\r\ntwothree\r\n");
}

TEST(ConsoleOutput, NothingWaitsInABuffer) {
    const bool quiet = false;
    const ConsoleOutput console(quiet);
    EXPECT_EQ(console.GetBufferSize(), 0U);
    EXPECT_EQ(console.GetCodePage(), OCore::kCodePageAnsi);
}

TEST(ConsoleOutput, CharactersThatTheCodePageCannotHoldArePrintedAsTheSystemConvertsThem) {
    const wchar_t text[] = L"\x30C9\x30C3\x30AF 4";
    char expected[32] = {};
    WideCharToMultiByte(CP_ACP, 0, text, -1, expected, sizeof(expected), nullptr, nullptr);
    EXPECT_EQ(Printed([&](ConsoleOutput& console) { console.PrintText(text); }),
              std::string(expected) + "\r\n");
}

TEST(ConsoleOutput, LongTextsArriveWhole) {
    const std::wstring text(30'000, L'x');
    EXPECT_EQ(Printed([&](ConsoleOutput& console) { console.PrintText(text.c_str()); }),
              std::string(30'000, 'x') + "\r\n");
}

/// Counts the runtime library's writes; undone in the end.
class CountedWrites {
  public:
    CountedWrites() {
        s_write = reinterpret_cast<Call>(PatchImport(m_runtime, "WriteFile", Address(&Count)));
    }
    CountedWrites(const CountedWrites&) = delete;
    CountedWrites& operator=(const CountedWrites&) = delete;
    ~CountedWrites() { PatchImport(m_runtime, "WriteFile", Address(s_write)); }

    int Finish() { return std::exchange(s_writes, 0); }

  private:
    using Call = decltype(&::WriteFile);

    static void* Address(Call call) { return reinterpret_cast<void*>(call); }
    static BOOL WINAPI Count(HANDLE file, const void* bytes, DWORD size, DWORD* written,
                             OVERLAPPED* overlapped) {
        ++s_writes;
        return s_write(file, bytes, size, written, overlapped);
    }

    static inline Call s_write = nullptr;
    static inline int s_writes = 0;
    const HMODULE m_runtime = GetModuleHandleW(L"msvcrt.dll");
};

TEST(ConsoleOutput, ADeviceGetsEachTextInOneWriteToo) {
    ASSERT_EQ(std::setvbuf(stdout, nullptr, _IONBF, 0), 0);
    const bool quiet = false;
    ConsoleOutput console(quiet);
    EXPECT_EQ(stdout->_flag & _IONBF, 0) << "the runtime library would give a device no buffer by itself";
    const int former = _dup(_fileno(stdout));
    const int device = _open("NUL", _O_WRONLY);
    ASSERT_EQ(_dup2(device, _fileno(stdout)), 0);
    int writes = 0;
    {
        CountedWrites counted;
        console.PrintText(L"Dock 1: by the door");
        writes = counted.Finish();
    }
    _dup2(former, _fileno(stdout));
    _close(former);
    _close(device);
    EXPECT_EQ(writes, 2) << "the text, and its line end";
}

} // namespace
