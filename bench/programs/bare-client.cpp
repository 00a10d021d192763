// The least that does the work of some of kemba's commands on all printers: the calls that kemba is bound to
// make to the spooler, to the component runtime, to the server and to standard output, each message and each
// line end written on its own. It has no options, no catalogue, and gives up at the first failure.
//
//     bare-client get | set TEXT | reset | driver | ask | send FILE
#include <windows.h>
#include <DriverAutomation.h>
#include <fcntl.h>
#include <io.h>
#include <objbase.h>
#include <oleauto.h>
#include <winspool.h>

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <initializer_list>
#include <iterator>
#include <memory>
#include <string_view>
#include <vector>

namespace {

void Need(bool success) {
    if (!success) {
        std::exit(3);
    }
}

void Need(HRESULT status) {
    Need(SUCCEEDED(status));
}

void Write(std::string_view bytes) {
    Need(std::fwrite(bytes.data(), 1, bytes.size(), stdout) == bytes.size() && std::fflush(stdout) == 0);
}

void PrintLine(std::string_view text) {
    Write(text);
    Write("\r\n");
}

/// The parts in the ANSI code page, as one line; null counts as empty.
void PrintLine(std::initializer_list<const wchar_t*> parts) {
    wchar_t text[1024];
    std::size_t length = 0;
    for (const wchar_t* const part : parts) {
        const std::wstring_view units = part ? part : L"";
        Need(units.size() <= std::size(text) - length);
        length += units.copy(text + length, units.size());
    }
    char bytes[2 * std::size(text)];
    const int made =
        WideCharToMultiByte(CP_ACP, 0, text, static_cast<int>(length), bytes, sizeof bytes, nullptr, nullptr);
    Need(made > 0);
    PrintLine(std::string_view(bytes, static_cast<std::size_t>(made)));
}

struct Printers {
    std::vector<std::byte> buffer;
    DWORD count = 0;

    const PRINTER_INFO_1W* begin() const { return reinterpret_cast<const PRINTER_INFO_1W*>(buffer.data()); }
    const PRINTER_INFO_1W* end() const { return begin() + count; }
};

Printers AllPrinters() {
    constexpr DWORD kFlags = PRINTER_ENUM_LOCAL | PRINTER_ENUM_CONNECTIONS;
    Printers printers;
    DWORD size = 0;
    EnumPrintersW(kFlags, nullptr, 1, nullptr, 0, &size, &printers.count);
    printers.buffer.resize(size);
    Need(EnumPrintersW(kFlags, nullptr, 1, reinterpret_cast<BYTE*>(printers.buffer.data()), size, &size,
                       &printers.count) != FALSE);
    return printers;
}

struct ReleaseInterface {
    void operator()(IUnknown* pointer) const { pointer->Release(); }
};

struct FreeText {
    void operator()(wchar_t* text) const { SysFreeString(text); }
};

template<class Interface>
using Owned = std::unique_ptr<Interface, ReleaseInterface>;
using Text = std::unique_ptr<wchar_t, FreeText>;

template<class Class, class Interface>
Owned<Interface> Create() {
    constexpr DWORD kAnyContext =
        CLSCTX_INPROC_SERVER | CLSCTX_INPROC_HANDLER | CLSCTX_LOCAL_SERVER | CLSCTX_REMOTE_SERVER;
    IUnknown* object = nullptr;
    Need(CoCreateInstance(__uuidof(Class), nullptr, kAnyContext, IID_IUnknown,
                          reinterpret_cast<void**>(&object)));
    const Owned<IUnknown> owner(object);
    Need(OleRun(object));
    Interface* made = nullptr;
    Need(object->QueryInterface(__uuidof(Interface), reinterpret_cast<void**>(&made)));
    return Owned<Interface>(made);
}

Text MakeText(const wchar_t* text) {
    return Text(SysAllocString(text));
}

Owned<IDriverAutomation> Bind(const wchar_t* printer) {
    auto automation = Create<DriverAutomation, IDriverAutomation>();
    Need(automation->PutPrinterName(MakeText(printer).get()));
    return automation;
}

Text Ask(const Owned<IDriverAutomation>& automation, HRESULT (IDriverAutomation::*question)(BSTR*)) {
    BSTR answer = nullptr;
    Need((automation.get()->*question)(&answer));
    return Text(answer);
}

void Get(const wchar_t* printer, const wchar_t*) {
    const auto automation = Bind(printer);
    PrintLine({printer, L": ", Ask(automation, &IDriverAutomation::GetComment).get()});
}

void Set(const wchar_t* printer, const wchar_t* text) {
    const auto automation = Bind(printer);
    Need(automation->PutLocation(MakeText(text).get()));
}

void Reset(const wchar_t* printer, const wchar_t*) {
    {
        const auto automation = Bind(printer);
        IDriverSettings* made = nullptr;
        Need(automation->GetSettings(&made));
        const Owned<IDriverSettings> settings(made);
        VARIANT omitted;
        VariantInit(&omitted);
        omitted.vt = VT_ERROR;
        omitted.scode = DISP_E_PARAMNOTFOUND;
        Need(settings->ResetSettings(omitted));
    }
    PrintLine({L"Settings reset for '", printer, L"'."});
}

void ShowDriver(const wchar_t* printer, const wchar_t*) {
    Text version;
    Text detail;
    {
        const auto automation = Bind(printer);
        version = Ask(automation, &IDriverAutomation::GetDriverVersion);
        detail = Ask(automation, &IDriverAutomation::GetDriverVersionDetail);
    }
    if (SysStringLen(version.get()) == 0) {
        PrintLine({printer, L": Unknown"});
    } else if (SysStringLen(detail.get()) == 0) {
        PrintLine({printer, L": ", version.get()});
    } else {
        PrintLine({printer, L": ", version.get(), L" (", detail.get(), L")"});
    }
}

void AskForFeed(const wchar_t* printer, const wchar_t*) {
    constexpr long kFeed = 4;
    PrintLine({printer, L":"});
    const auto automation = Bind(printer);
    const auto request = Create<DriverActions, IDriverActions>();
    Need(request->PutExecute(VARIANT_FALSE));
    VARIANT object;
    VariantInit(&object);
    object.vt = VT_DISPATCH;
    object.pdispVal = request.get();
    request->AddRef();
    Need(automation->PerformAction(kFeed, object));
    VariantClear(&object);
    VARIANT_BOOL supported = VARIANT_FALSE;
    VARIANT_BOOL displays = VARIANT_FALSE;
    Need(request->GetSupported(&supported));
    Need(request->GetDisplaysInterface(&displays));
    PrintLine(displays    ? "Action 'Feed' is supported and displays a user interface."
              : supported ? "Action 'Feed' is supported."
                          : "Action 'Feed' is not supported.");
}

void Send(const wchar_t* printer, const wchar_t* file) {
    const HANDLE handle =
        CreateFileW(file, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    Need(handle != INVALID_HANDLE_VALUE);
    CloseHandle(handle);
    const auto automation = Bind(printer);
    Need(automation->SendFile(MakeText(file).get(), MakeText(L"").get()));
    PrintLine({L"File sent to '", printer, L"'."});
}

struct Command {
    const wchar_t* word;
    const wchar_t* name; ///< in the lines around the work; null for a command without these
    bool selectsTwice;
    void (*work)(const wchar_t* printer, const wchar_t* argument);
};

constexpr Command kCommands[] = {
    {L"get", L"Get", false, Get},           {L"set", L"Set", false, Set},
    {L"reset", L"Settings", true, Reset},   {L"driver", nullptr, false, ShowDriver},
    {L"ask", L"Action", false, AskForFeed}, {L"send", L"Send", false, Send},
};

} // namespace

int wmain(int count, wchar_t* words[]) {
    _setmode(_fileno(stdout), _O_BINARY);
    for (const Command& command : kCommands) {
        if (count < 2 || std::wcscmp(words[1], command.word) != 0) {
            continue;
        }
        Need(CoInitialize(nullptr));
        if (command.selectsTwice) {
            Need(AllPrinters().count > 0);
        }
        const Printers printers = AllPrinters();
        if (command.name) {
            PrintLine({L"Executing '", command.name, L"' command."});
        }
        for (const PRINTER_INFO_1W& printer : printers) {
            command.work(printer.pName, count > 2 ? words[2] : L"");
        }
        if (command.name) {
            PrintLine("Finished processing command.");
        }
        CoUninitialize();
        return 0;
    }
    return 2;
}
