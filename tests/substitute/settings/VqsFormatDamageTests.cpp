// Damaged settings files, many of them; a program of its own because it counts what is allocated.
#include <malloc.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <new>
#include <random>
#include <string>
#include <utility>

#include "substitute/base/Bytes.h"
#include "substitute/base/Failure.h"
#include "substitute/settings/Settings.h"
#include "substitute/settings/SettingsStore.h"
#include "substitute/settings/VqsFormat.h"
#include "substitute/spooler/Printer.h"
#include "substitute/spooler/PrinterLocks.h"
#include "substitute/spooler/Spooler.h"
#include "tests/substitute/FakeSpooler.h"
#include "tests/substitute/SettingsSamples.h"

using namespace kemba::substitute;
using namespace kit;

namespace {

std::size_t g_live = 0;
std::size_t g_peak = 0;

} // namespace

void* operator new(std::size_t size) {
    void* const block = std::malloc(size == 0 ? 1 : size);
    if (!block) {
        throw std::bad_alloc();
    }
    g_live += _msize(block);
    g_peak = std::max(g_peak, g_live);
    return block;
}
void operator delete(void* block) noexcept {
    if (block) {
        g_live -= _msize(block);
        std::free(block);
    }
}
void operator delete(void* block, std::size_t) noexcept {
    operator delete(block);
}

namespace {

constexpr int kVariants = 100000;
constexpr std::size_t kSmallBound = 16384;    // for a handful of values and the words of a refusal
constexpr std::size_t kLargeBound = 4u << 20; // for as many values as a file may hold

struct Outcome {
    bool accepted = false;
    Settings settings;
    std::size_t allocated = 0; // at most at one time
};

Outcome Decode(const Bytes& bytes) {
    Outcome outcome;
    const std::size_t before = g_live;
    g_peak = g_live;
    outcome.accepted = !ParseVqs(bytes, outcome.settings);
    outcome.allocated = g_peak - before;
    return outcome;
}

class Damager {
  public:
    Bytes Damage(Bytes bytes) {
        for (std::size_t left = 1 + Below(3); left > 0; --left) {
            DamageOnce(bytes);
        }
        return Below(4) != 0 ? Sealed(std::move(bytes)) : bytes;
    }

  private:
    std::size_t Below(std::size_t limit) { return m_random() % std::max<std::size_t>(limit, 1); }

    void DamageOnce(Bytes& bytes) {
        if (bytes.empty()) {
            return;
        }
        const std::size_t where = Below(bytes.size());
        const auto at = bytes.begin() + static_cast<std::ptrdiff_t>(where);
        const auto size = static_cast<std::uint32_t>(bytes.size());
        switch (Below(6)) {
        case 0: bytes[where] = static_cast<BYTE>(bytes[where] ^ 1 << Below(8)); break;
        case 1: bytes.resize(where); break;
        case 2: bytes.insert(at, 1 + Below(40), static_cast<BYTE>(m_random())); break;
        case 3: bytes.erase(at, bytes.end() - static_cast<std::ptrdiff_t>(Below(size - where))); break;
        case 4: {
            const std::uint32_t lengths[] = {0,        1,        0xFFFFFFFF, 0x7FFFFFFF, 0x80000000, size,
                                             size - 1, size + 1, 0x80000001, 0xFFFF,     4096,       4097};
            PutNumber(bytes, where, lengths[Below(std::size(lengths))]);
            break;
        }
        default: std::reverse(at, at + static_cast<std::ptrdiff_t>(Below(size - where))); break;
        }
    }

    std::mt19937 m_random{20260101};
};

/// How often the printer took a damaged file, or kept it out.
struct Count {
    int refused = 0;
    int foreign = 0; // whole, but another driver's
    int accepted = 0;
};

/// Imports a variant into a printer; whatever happens has to be one of the three.
void Import(const Bytes& variant, Count& count) {
    const Outcome outcome = Decode(variant);
    ASSERT_LE(outcome.allocated, variant.size() + kSmallBound);
    if (!outcome.accepted) {
        ++count.refused;
        return;
    }
    ASSERT_EQ(EncodeVqs(outcome.settings), variant); // nothing of it was passed over
    FakeSpooler spooler;
    PrinterLocks locks;
    FakeSpooler::Record& record = spooler.printers[L"Label"];
    record.driver = L"Zippy 300";
    record.settings = MakeOtherState();
    const Printer printer(spooler, locks, L"Label");
    try {
        ApplySettings(printer, outcome.settings);
        ++count.accepted;
        ASSERT_EQ(ReadSettings(printer).values.size(), outcome.settings.values.size());
        for (const PrinterValue& value : outcome.settings.values) {
            ASSERT_EQ(record.settings.keys.at(value.key).at(value.name), std::pair(value.type, value.data));
        }
    } catch (const Failure& failure) {
        ++count.foreign;
        ASSERT_EQ(failure.status, HRESULT_FROM_WIN32(ERROR_UNKNOWN_PRINTER_DRIVER));
        ASSERT_EQ(record.settings, MakeOtherState());
    }
}

TEST(VqsDamage, EveryDamagedFileIsRefusedOrDoesWhatItSays) {
    const Bytes files[] = {EncodeVqs(SettingsOf(MakeRichState())), EncodeVqs(SettingsOf(MakeOtherState())),
                           EncodeVqs(SettingsOf({}))};
    Damager damager;
    Count count;
    for (int index = 0; index < kVariants; ++index) {
        Import(damager.Damage(files[static_cast<std::size_t>(index) % std::size(files)]), count);
        ASSERT_FALSE(HasFatalFailure()) << "variant " << index;
    }
    std::printf("%d variants: %d refused, %d of another driver, %d accepted\n", kVariants, count.refused,
                count.foreign, count.accepted);
    EXPECT_GT(count.refused, kVariants / 2);
    EXPECT_GT(count.foreign, 100);
    EXPECT_GT(count.accepted, 100); // a changed number of copies is no damage that anybody could see
}

TEST(VqsDamage, AFileOfAsManyValuesAsThereMayBeStaysWithinTheBound) {
    Settings settings = SettingsOf({});
    for (std::uint32_t index = 0; index < kMaximumVqsValues; ++index) {
        settings.values.push_back({kDriverDataKey, std::to_wstring(100000 + index), REG_NONE, {}});
    }
    const Bytes bytes = EncodeVqs(settings);
    const Outcome outcome = Decode(bytes);
    EXPECT_TRUE(outcome.accepted);
    EXPECT_LE(outcome.allocated, bytes.size() + kLargeBound);
}

TEST(VqsDamage, AForgedLengthAllocatesNothing) {
    const Bytes good = EncodeVqs(SettingsOf(MakeRichState()));
    ASSERT_GT(good.size(), 100U);
    for (std::size_t where = 16; where + 8 <= good.size(); ++where) {
        Bytes forged = good;
        PutNumber(forged, where, 0x7FFFFFF0);
        ASSERT_LE(Decode(Sealed(forged)).allocated, good.size() + kSmallBound) << where;
    }
}

} // namespace
