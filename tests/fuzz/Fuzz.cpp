// Drawing, running, telling.
#include "tests/fuzz/Fuzz.h"

#include <windows.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>
#include <string_view>
#include <thread>

#include "tests/fuzz/Crash.h"
#include "tests/fuzz/GuardedHeap.h"
#include "tests/kit/Owners.h"

namespace kit {
namespace {

/// What the crash report needs to know of the case that is running.
struct Running {
    const char* target = nullptr;
    std::uint64_t seed = 0;
    std::uint64_t number = 0;
    bool says = false;
};
Running g_running;

std::uint64_t NumberFromEnvironment(const char* name, std::uint64_t otherwise) {
    const char* const text = std::getenv(name);
    return text && *text ? std::strtoull(text, nullptr, 10) : otherwise;
}

void Tell(const Running& running) {
    std::fprintf(
        stderr, "fuzz: target %s, seed %llu, case %llu (KEMBA_FUZZ_SEED=%llu KEMBA_FUZZ_ONLY=%llu)\n",
        running.target, static_cast<unsigned long long>(running.seed),
        static_cast<unsigned long long>(running.number), static_cast<unsigned long long>(running.seed),
        static_cast<unsigned long long>(running.number));
    std::fflush(stderr);
}

/// Tells the case, and lets another process run it again, which says its input until it fails or crashes too.
void Report() {
    const OrdinaryHeap ordinary;
    Tell(g_running);
    if (g_running.says) {
        return;
    }
    constexpr DWORD kPatience = 150'000; // milliseconds; a case that does not end, ends that process in time
    wchar_t program[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, program, MAX_PATH);
    const std::string target = g_running.target;
    std::wstring line = L"\"" + std::wstring(program) + L"\" --gtest_filter=Fuzz." +
                        std::wstring(target.begin(), target.end());
    // For that process alone: in this one the runtime library has its own copy of the environment.
    SetEnvironmentVariableW(L"KEMBA_FUZZ_SEED", std::to_wstring(g_running.seed).c_str());
    SetEnvironmentVariableW(L"KEMBA_FUZZ_ONLY", std::to_wstring(g_running.number).c_str());
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process{};
    if (CreateProcessW(program, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup,
                       &process)) {
        const UniqueHandle thread(process.hThread);
        const UniqueHandle other(process.hProcess);
        WaitForSingleObject(other.get(), kPatience);
    }
}

/// Ends the program when a case does not end by itself.
class Watch {
  public:
    Watch() : m_thread([this] { Look(); }) {
        // What the thread library makes for a thread is made before blocks are counted.
        WaitForSingleObject(m_begun.get(), INFINITE);
    }
    Watch(const Watch&) = delete;
    Watch& operator=(const Watch&) = delete;
    ~Watch() {
        SetEvent(m_ended.get());
        m_thread.join();
    }

    void BeginCase() { ++m_cases; }

  private:
    using Event = UniqueHandle;

    void Look() {
        const auto patience =
            static_cast<DWORD>(1000 * NumberFromEnvironment("KEMBA_FUZZ_PATIENCE", 60)); // milliseconds
        SetEvent(m_begun.get());
        while (WaitForSingleObject(m_ended.get(), patience) == WAIT_TIMEOUT) {
            if (m_cases.exchange(0) == 0) {
                Crash("the case does not end");
            }
        }
    }

    std::atomic<std::uint64_t> m_cases{0}; // begun since the last look
    const Event m_begun{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
    const Event m_ended{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
    std::thread m_thread; // the last member: it uses the others
};

/// What this process has computed so far.
double ProcessorSeconds() {
    FILETIME made;
    FILETIME ended;
    FILETIME kernel;
    FILETIME user;
    GetProcessTimes(GetCurrentProcess(), &made, &ended, &kernel, &user);
    const auto seconds = [](const FILETIME& time) {
        return 1e-7 * static_cast<double>(std::uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime);
    };
    return seconds(kernel) + seconds(user);
}

std::uint64_t Mixed(std::uint64_t value) {
    value += 0x9E3779B97F4A7C15U;
    value = (value ^ value >> 30) * 0xBF58476D1CE4E5B9U;
    value = (value ^ value >> 27) * 0x94D049BB133111EBU;
    return value ^ value >> 31;
}

/// Runs one case on the guarded heap; returns how many blocks it left.
std::int64_t RunCase(void (*body)(Case&), const Running& running) {
    Case input(running.seed, running.number, running.says);
    const std::int64_t before = GuardedHeap::LiveBlocks();
    {
        const GuardedHeap guarded(running.number % 2 == 0);
        try {
            body(input);
        } catch (const std::exception& exception) {
            ADD_FAILURE() << "exception: " << exception.what();
        } catch (...) {
            ADD_FAILURE() << "exception of no standard kind";
        }
    }
    return GuardedHeap::LiveBlocks() - before;
}

void RunChecked(void (*body)(Case&), const Running& running, Leftovers leftovers) {
    g_running = running;
    // What the program keeps for its whole life is made once, and not by the second run of the same case.
    if (RunCase(body, running) != 0 && leftovers == Leftovers::None && !testing::Test::HasFailure()) {
        const std::uint64_t taken = GuardedHeap::Taken();
        const std::int64_t left = RunCase(body, running);
        EXPECT_EQ(left, 0) << "the case leaves blocks of memory behind:" << GuardedHeap::ListSince(taken);
    }
}

} // namespace

Case::Case(std::uint64_t seed, std::uint64_t number, bool says)
    : m_state(Mixed(Mixed(seed) ^ number)), m_number(number), m_says(says) {}

std::uint64_t Case::Bits() {
    return Mixed(m_state++);
}

std::size_t Case::Below(std::size_t limit) {
    return limit == 0 ? 0 : Bits() % limit;
}

std::size_t Case::Length(std::size_t most) {
    switch (Below(8)) {
    case 0: return Below(most + 1);
    case 1:
    case 2: return std::min(most, 32 * (1 + Below(3)) + Below(5) - 3);
    default: return std::min(most, Below(12));
    }
}

std::string Case::Text(std::size_t most) {
    std::string text(Length(most), 'a');
    const std::size_t ascii = Below(3);
    for (char& byte : text) {
        byte = static_cast<char>(ascii == 0 || OnceIn(4) ? 1 + Below(255) : ' ' + Below(95));
    }
    return text;
}

std::wstring Case::WideText(std::size_t most) {
    std::wstring text(Length(most), L'a');
    const std::size_t ascii = Below(3);
    for (wchar_t& unit : text) {
        constexpr wchar_t kBegins[] = {0x20, 0x80, 0x100, 0x3040, 0x4E00, 0xD800, 0xDB80, 0xDC00, 0xFF00};
        if (ascii == 0 || OnceIn(4)) {
            unit = OnceIn(4) ? static_cast<wchar_t>(1 + Below(0xFFFF))
                             : static_cast<wchar_t>(OneOf(kBegins) + Below(0x80) * Below(2));
        } else {
            unit = static_cast<wchar_t>(L' ' + Below(95));
        }
    }
    return text;
}

std::wstring Case::Name(std::size_t most) {
    constexpr std::wstring_view kCharacters =
        L"abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789 ";
    std::wstring name(Length(most), L'a');
    for (wchar_t& unit : name) {
        unit = OneOf(kCharacters);
    }
    return name;
}

std::string Case::Bytes(std::size_t most) {
    std::string bytes(Length(most), '\0');
    for (char& byte : bytes) {
        byte = static_cast<char>(Bits());
    }
    return bytes;
}

void Case::Say(std::string_view statement) {
    const OrdinaryHeap ordinary;
    std::fprintf(stderr, "    %.*s\n", static_cast<int>(statement.size()), statement.data());
    std::fflush(stderr);
}

std::string Literal(std::string_view bytes) {
    std::string literal = "\"";
    for (const char byte : bytes) {
        char text[8];
        const bool plain = byte >= ' ' && byte <= '~' && byte != '"' && byte != '\\' && byte != '?';
        std::snprintf(text, sizeof(text), plain ? "%c" : "\\%03o", static_cast<unsigned char>(byte));
        literal += text;
    }
    return literal + "\"";
}

std::string Literal(std::wstring_view units) {
    std::string literal = "L\"";
    bool escaped = false; // an escape goes on as long as digits follow
    for (const wchar_t unit : units) {
        char text[12];
        if (unit >= L' ' && unit <= L'~' && unit != L'"' && unit != L'\\' && unit != L'?') {
            const bool isDigit = std::string_view("0123456789ABCDEFabcdef").find(static_cast<char>(unit)) !=
                                 std::string_view::npos;
            std::snprintf(text, sizeof(text), escaped && isDigit ? "\" L\"%c" : "%c",
                          static_cast<char>(unit));
            escaped = false;
        } else {
            std::snprintf(text, sizeof(text), "\\x%04X", static_cast<unsigned>(unit));
            escaped = true;
        }
        literal += text;
    }
    return literal + "\"";
}

void RunCases(const char* target, void (*body)(Case&), std::uint64_t shortRun, Leftovers leftovers) {
    ReportCrashes(Report);
    Running running;
    running.target = target;
    running.seed = NumberFromEnvironment("KEMBA_FUZZ_SEED", 1);
    Watch watch;
    watch.BeginCase();
    if (const std::uint64_t only = NumberFromEnvironment("KEMBA_FUZZ_ONLY", UINT64_MAX); only != UINT64_MAX) {
        running.number = only;
        running.says = true;
        RunChecked(body, running, leftovers);
        return;
    }
    const std::uint64_t cases = NumberFromEnvironment("KEMBA_FUZZ_CASES", shortRun);
    const auto begin = std::chrono::steady_clock::now();
    const double computed = ProcessorSeconds();
    for (; running.number < cases; ++running.number) {
        watch.BeginCase();
        RunChecked(body, running, leftovers);
        if (testing::Test::HasFailure()) {
            Report();
            return;
        }
    }
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - begin;
    std::printf("fuzz: %s, seed %llu: %llu cases in %.1f s, %.1f s of them computing\n", target,
                static_cast<unsigned long long>(running.seed), static_cast<unsigned long long>(cases),
                seconds.count(), ProcessorSeconds() - computed);
    EXPECT_EQ(GuardedHeap::Unguarded(), 0U) << "blocks for which the guarded heap had no place";
}

} // namespace kit
