// Settings files: there and back, damaged ones, and any bytes, read once more by the table that describes
// them.
#include <windows.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <optional>
#include <string>
#include <vector>

#include "substitute/base/Bytes.h"
#include "substitute/settings/Settings.h"
#include "substitute/settings/VqsFormat.h"
#include "substitute/spooler/Spooler.h"
#include "tests/fuzz/Fuzz.h"
#include "tests/fuzz/GuardedHeap.h"
#include "tests/substitute/FakeSpooler.h"
#include "tests/substitute/SettingsSamples.h"

using namespace kemba::substitute;
using namespace kit;

namespace {

std::uint32_t Checksum(const Bytes& bytes, std::size_t count) {
    std::uint32_t value = 0xFFFFFFFF;
    for (std::size_t at = 0; at < count; ++at) {
        value ^= bytes[at];
        for (int bit = 0; bit < 8; ++bit) {
            value = value / 2 ^ (value % 2 != 0 ? 0xEDB88320U : 0U);
        }
    }
    return ~value;
}

std::uint64_t NumberAt(const Bytes& bytes, std::size_t at, std::size_t size) {
    std::uint64_t number = 0;
    for (std::size_t index = 0; index < size; ++index) {
        number += std::uint64_t{bytes.at(at + index)} << 8 * index;
    }
    return number;
}

/// Reads a file by the table, from the first byte to the last; an exception where it ends too early.
class Table {
  public:
    explicit Table(const Bytes& bytes) : m_bytes(bytes.begin(), bytes.end() - 4) {}

    std::optional<Settings> Read() {
        Settings settings;
        m_at = 16;
        settings.driver.name = Text();
        settings.driver.version = Number(8);
        settings.globalMode = Mode();
        settings.userMode = Mode();
        const std::uint64_t count = Number(4);
        m_good = m_good && !settings.driver.name.empty() && count <= 4096;
        for (std::uint64_t index = 0; m_good && index < count; ++index) {
            PrinterValue value;
            value.key = Text();
            value.name = Text();
            value.type = static_cast<DWORD>(Number(4));
            value.data = Block();
            m_good = m_good && IsKey(value.key) && value.type <= 11 &&
                     (settings.values.empty() || ComesBefore(settings.values.back(), value));
            settings.values.push_back(value);
        }
        return m_good && m_at == m_bytes.size() ? std::optional(settings) : std::nullopt;
    }

  private:
    std::uint64_t Number(std::size_t size) {
        m_at += size;
        return NumberAt(m_bytes, m_at - size, size);
    }
    std::wstring Text() {
        const std::uint64_t length = Number(4);
        std::wstring text;
        m_good = m_good && length <= 1024;
        for (std::uint64_t index = 0; m_good && index < length; ++index) {
            text += static_cast<wchar_t>(Number(2));
            m_good = text.back() != 0;
        }
        return text;
    }
    Bytes Block() {
        const std::uint64_t size = Number(4);
        Bytes block;
        for (std::uint64_t index = 0; index < size; ++index) {
            block.push_back(static_cast<BYTE>(Number(1)));
        }
        return block;
    }
    /// A device mode's own two sizes have to be those of its block.
    std::optional<Bytes> Mode() {
        const Bytes mode = Block();
        if (mode.empty()) {
            return std::nullopt;
        }
        constexpr std::size_t kSize = offsetof(DEVMODEW, dmSize);
        constexpr std::size_t kExtra = offsetof(DEVMODEW, dmDriverExtra);
        const bool hasSizes = mode.size() >= offsetof(DEVMODEW, dmICMMethod);
        const std::uint64_t open = hasSizes ? NumberAt(mode, kSize, 2) : 0;
        m_good = m_good && open >= offsetof(DEVMODEW, dmICMMethod) &&
                 open + NumberAt(mode, kExtra, 2) == mode.size();
        return mode;
    }

    static int Compare(const std::wstring& left, const std::wstring& right) {
        return CompareStringOrdinal(left.c_str(), static_cast<int>(left.size()), right.c_str(),
                                    static_cast<int>(right.size()), TRUE);
    }
    static bool IsKey(const std::wstring& key) {
        const std::wstring whole = key + L"\\";
        return Compare(whole.substr(0, whole.find(L'\\')), L"PrinterDriverData") == CSTR_EQUAL &&
               whole.find(L"\\\\") == whole.npos;
    }
    static bool ComesBefore(const PrinterValue& left, const PrinterValue& right) {
        const int keys = Compare(left.key, right.key);
        return keys == CSTR_LESS_THAN ||
               (keys == CSTR_EQUAL && Compare(left.name, right.name) == CSTR_LESS_THAN);
    }

    Bytes m_bytes; // without the checksum
    std::size_t m_at = 0;
    bool m_good = true;
};

std::optional<Settings> Expected(const Bytes& bytes) {
    const OrdinaryHeap ordinary;
    constexpr BYTE kBegin[] = {'K', 'V', 'Q', 'S', 13, 10, 26, 0, 1, 0, 0, 0};
    try {
        if (bytes.size() < 20 || !std::equal(std::begin(kBegin), std::end(kBegin), bytes.begin()) ||
            NumberAt(bytes, 12, 4) != bytes.size() ||
            NumberAt(bytes, bytes.size() - 4, 4) != Checksum(bytes, bytes.size() - 4)) {
            return std::nullopt;
        }
        return Table(bytes).Read();
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

Settings DrawSettings(Case& input) {
    const OrdinaryHeap ordinary;
    Settings settings;
    settings.driver.name = L"D" + input.WideText(20);
    settings.driver.version = input.Bits();
    for (std::optional<Bytes>* const mode : {&settings.globalMode, &settings.userMode}) {
        if (input.OnceIn(2)) {
            *mode = MakeMode(static_cast<short>(input.Below(100)), static_cast<WORD>(input.Below(20)));
        }
    }
    for (std::size_t left = input.Length(12); left > 0; --left) {
        PrinterValue value;
        value.key = L"PrinterDriverData" + std::wstring(input.OnceIn(2)   ? L""
                                                        : input.OnceIn(2) ? L"\\Tray"
                                                                          : L"\\A\\b");
        value.name = input.OnceIn(4) ? input.WideText(30) : input.Name(6);
        if (input.OnceIn(60)) {
            value.name.assign(1023 + input.Below(2), L'x'); // as long as a text may be
        }
        value.type = static_cast<DWORD>(input.Below(12));
        const std::string data = input.Bytes(60);
        value.data.assign(data.begin(), data.end());
        settings.values.push_back(value);
    }
    const auto before = [](const PrinterValue& left, const PrinterValue& right) {
        return kemba::substitute::ComparePlaces(left, right) < 0;
    };
    std::sort(settings.values.begin(), settings.values.end(), before);
    const auto same = [&](const PrinterValue& left, const PrinterValue& right) {
        return !before(left, right);
    };
    settings.values.erase(std::unique(settings.values.begin(), settings.values.end(), same),
                          settings.values.end());
    return settings;
}

void Damage(Case& input, Bytes& bytes) {
    const std::size_t at = input.Below(bytes.size());
    switch (bytes.empty() ? 9 : input.Below(6)) {
    case 0: bytes[at] = static_cast<BYTE>(bytes[at] ^ 1U << input.Below(8)); break;
    case 1: bytes.resize(at); break;
    case 2:
        bytes.insert(bytes.begin() + static_cast<std::ptrdiff_t>(at), 1 + input.Below(9),
                     static_cast<BYTE>(input.Bits()));
        break;
    case 3: bytes.erase(bytes.begin() + static_cast<std::ptrdiff_t>(at)); break;
    case 4: {
        constexpr std::uint32_t kNumbers[] = {0,  1,  4096,       4097,       1024,      1025,
                                              11, 12, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF};
        PutNumber(bytes, at, input.OneOf(kNumbers));
        break;
    }
    default: break;
    }
}

FUZZ_TARGET(SettingsFiles, 1500) {
    const Settings settings = DrawSettings(input);
    Bytes bytes = kemba::substitute::EncodeVqs(settings);
    EXPECT_EQ(kemba::substitute::DecodeVqs(bytes), settings);
    EXPECT_EQ(Expected(bytes), settings);

    if (input.OnceIn(20)) {
        const std::string any = input.Bytes(300);
        bytes.assign(any.begin(), any.end());
    }
    for (std::size_t left = input.Below(3); left > 0; --left) {
        Damage(input, bytes);
    }
    if (!input.OnceIn(4)) {
        bytes = Sealed(bytes);
    }
    input.Say(
        [&] { return "ParseVqs(" + Literal(std::string(bytes.begin(), bytes.end())) + "s, settings);"; });
    const Bytes exact(bytes); // a block of just as many bytes
    Settings read;
    const bool accepted = !kemba::substitute::ParseVqs(exact, read);
    const std::optional<Settings> expected = Expected(bytes);
    EXPECT_EQ(accepted, expected.has_value());
    if (accepted && expected) {
        EXPECT_EQ(read, *expected);
    }
}

} // namespace
