// The record of the running system, first asked for and then read by several threads. The first test needs a
// process of its own, as ctest gives it.
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cstring>
#include <cwchar>

#include "core/OString.h"
#include "platform/OperatingSystem.h"
#include "tests/kit/AtOnce.h"

using namespace kemba;
using namespace kit;

namespace {

constexpr int kThreads = 8;

TEST(OperatingSystemThreads, ReadBothFormsOfEveryTextOfTheFirstAnswer) {
    std::array<const OperatingSystem*, kThreads> records{};
    std::atomic<int> wrong{0};
    AtOnce(kThreads, [&](int thread) {
        const OperatingSystem& record = TheOperatingSystem();
        records[static_cast<std::size_t>(thread)] = &record;
        wrong += record.filled ? 0 : 1;
        const OString* const texts[] = {&record.name, &record.edition, &record.buildText,
                                        &record.servicePackText};
        for (const OString* const text : texts) {
            const bool hasForms = text->IsEmpty() || (text->GetBody()->narrow && text->GetBody()->wide);
            wrong += hasForms ? 0 : 1; // otherwise the next lines would write into what others read
            const char* const narrow = text->Narrow();
            const wchar_t* const wide = text->Wide();
            wrong += std::strlen(narrow) == std::wcslen(wide) ? 0 : 1; // the system's words are plain
            wrong += narrow == text->Narrow() && wide == text->Wide() ? 0 : 1;
        }
        wrong += std::strncmp(record.name.Narrow(), "Windows", 7) == 0 ? 0 : 1;
    });
    EXPECT_EQ(wrong, 0);
    for (const OperatingSystem* const each : records) {
        EXPECT_EQ(each, records[0]);
    }
}

} // namespace
