// Starting programs with a list of what they inherit, and waiting for them.
#include "tests/programs/Clients.h"

#include <windows.h>

#include <chrono>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "tests/kit/CommandLine.h"
#include "tests/kit/OutputChannel.h"
#include "tests/kit/Owners.h"
#include "tests/kit/ProcessRun.h"

namespace kit {
namespace {

[[noreturn]] void Fail(const char* what) {
    throw std::runtime_error(std::string(what) + ", error " + std::to_string(GetLastError()));
}

/// Names the handles that a new process inherits; they have to stay until it is started.
class Inheritance {
  public:
    explicit Inheritance(std::vector<HANDLE>& handles) {
        SIZE_T size = 0;
        InitializeProcThreadAttributeList(nullptr, 1, 0, &size);
        m_bytes.resize(size);
        if (!InitializeProcThreadAttributeList(Get(), 1, 0, &size)) {
            Fail("a list of attributes cannot be made");
        }
        m_made.reset(Get());
        if (!UpdateProcThreadAttribute(Get(), 0, PROC_THREAD_ATTRIBUTE_HANDLE_LIST, handles.data(),
                                       handles.size() * sizeof(HANDLE), nullptr, nullptr)) {
            Fail("a list of handles cannot be made");
        }
    }

    LPPROC_THREAD_ATTRIBUTE_LIST Get() {
        return reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(m_bytes.data());
    }

  private:
    struct Deleter {
        void operator()(LPPROC_THREAD_ATTRIBUTE_LIST list) const { DeleteProcThreadAttributeList(list); }
    };
    std::vector<BYTE> m_bytes;
    std::unique_ptr<std::remove_pointer_t<LPPROC_THREAD_ATTRIBUTE_LIST>, Deleter> m_made;
};

} // namespace

void Clients::Start(std::wstring_view name, const std::vector<std::wstring>& words) {
    const std::wstring path = ProgramPath(name);
    std::wstring line = L"\"" + path + L"\" " + MakeCommandLine(words);
    const UniqueHandle input = OpenEmptyInput();
    Client& client = m_clients.emplace_back();
    std::vector<HANDLE> handles{input.get(), client.output.WriteEnd()};
    Inheritance inheritance(handles);
    STARTUPINFOEXW startup{};
    startup.StartupInfo.cb = sizeof startup;
    startup.StartupInfo.dwFlags = STARTF_USESTDHANDLES;
    startup.StartupInfo.hStdInput = input.get();
    startup.StartupInfo.hStdOutput = client.output.WriteEnd();
    startup.StartupInfo.hStdError = client.output.WriteEnd();
    startup.lpAttributeList = inheritance.Get();
    PROCESS_INFORMATION started{};
    if (!CreateProcessW(path.c_str(), line.data(), nullptr, nullptr, TRUE, EXTENDED_STARTUPINFO_PRESENT,
                        nullptr, nullptr, &startup.StartupInfo, &started)) {
        const DWORD error = GetLastError();
        m_clients.pop_back();
        SetLastError(error);
        Fail("the program cannot be started");
    }
    client.process = UniqueHandle(started.hProcess);
    const UniqueHandle thread(started.hThread);
}

std::vector<ProcessResult> Clients::Finish(std::chrono::milliseconds timeout) {
    constexpr DWORD kLastWait = 10'000; // milliseconds for a process that has been ended
    const ULONGLONG end = GetTickCount64() + static_cast<ULONGLONG>(timeout.count());
    std::vector<ProcessResult> results;
    for (Client& client : m_clients) {
        ProcessResult& result = results.emplace_back();
        const ULONGLONG now = GetTickCount64();
        if (WaitForSingleObject(client.process.get(), now < end ? static_cast<DWORD>(end - now) : 0) !=
            WAIT_OBJECT_0) {
            result.timedOut = true;
            TerminateProcess(client.process.get(), 1);
            WaitForSingleObject(client.process.get(), kLastWait);
        }
        GetExitCodeProcess(client.process.get(), &result.status);
        result.output = client.output.Finish();
    }
    m_clients.clear();
    return results;
}

} // namespace kit
