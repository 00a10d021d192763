// Settings to bytes and back.
#include "substitute/settings/VqsFormat.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "core/Crc32.h"
#include "substitute/base/Bytes.h"
#include "substitute/base/Failure.h"
#include "substitute/base/Names.h"
#include "substitute/base/NumberText.h"
#include "substitute/settings/Settings.h"
#include "substitute/spooler/DeviceMode.h"
#include "substitute/spooler/Spooler.h"

namespace kemba::substitute {
namespace {

constexpr std::array<BYTE, 8> kMagic = {'K', 'V', 'Q', 'S', '\r', '\n', 0x1A, 0};
constexpr std::uint32_t kFormatVersion = 1;
constexpr std::size_t kSizeOffset = kMagic.size() + sizeof(std::uint32_t);
constexpr std::size_t kHeaderSize = kSizeOffset + sizeof(std::uint32_t);
constexpr std::size_t kChecksumSize = sizeof(std::uint32_t);
constexpr DWORD kLastType = REG_QWORD;

class Writer {
  public:
    template<class Number>
    void Put(Number number) {
        for (std::size_t index = 0; index < sizeof(Number); ++index) {
            m_bytes.push_back(static_cast<BYTE>(number >> (8 * index)));
        }
    }
    void PutRaw(std::span<const BYTE> bytes) { m_bytes.insert(m_bytes.end(), bytes.begin(), bytes.end()); }
    void PutText(const std::wstring& text) {
        Put(static_cast<std::uint32_t>(text.size()));
        for (const wchar_t unit : text) {
            Put(static_cast<std::uint16_t>(unit));
        }
    }
    void PutBlock(std::span<const BYTE> bytes) {
        Put(static_cast<std::uint32_t>(bytes.size()));
        PutRaw(bytes);
    }
    void PutSize() {
        for (std::size_t index = 0; index < sizeof(std::uint32_t); ++index) {
            m_bytes[kSizeOffset + index] = static_cast<BYTE>((m_bytes.size() + kChecksumSize) >> (8 * index));
        }
    }
    Bytes& GetBytes() { return m_bytes; }

  private:
    Bytes m_bytes;
};

/// Takes a file apart. Every operation tells whether it worked; the first that did not says why.
class Reader {
  public:
    explicit Reader(std::span<const BYTE> bytes) : m_left(bytes) {}

    bool Refuse(const wchar_t* reason) {
        m_refusal = reason;
        return false;
    }
    const wchar_t* GetRefusal() const { return m_refusal; }

    bool Take(std::size_t count, std::span<const BYTE>& taken) {
        if (count > m_left.size()) {
            return Refuse(L"it ends in the middle of a record");
        }
        taken = m_left.first(count);
        m_left = m_left.subspan(count);
        return true;
    }
    template<class Number>
    bool Get(Number& number) {
        std::span<const BYTE> bytes;
        if (!Take(sizeof(Number), bytes)) {
            return false;
        }
        number = 0;
        for (std::size_t index = sizeof(Number); index > 0; --index) {
            number = static_cast<Number>(number << 8 | bytes[index - 1]);
        }
        return true;
    }
    bool GetText(std::wstring& text) {
        std::uint32_t length = 0;
        std::span<const BYTE> units;
        if (!Get(length)) {
            return false;
        }
        if (length > kMaximumVqsText) {
            return Refuse(L"a text is too long");
        }
        if (!Take(length * sizeof(std::uint16_t), units)) {
            return false;
        }
        text.assign(length, L'\0');
        for (std::size_t index = 0; index < length; ++index) {
            text[index] = static_cast<wchar_t>(units[2 * index] | units[2 * index + 1] << 8);
        }
        return text.find(L'\0') == std::wstring::npos || Refuse(L"a text contains a zero");
    }
    bool GetBlock(Bytes& block) {
        std::uint32_t size = 0;
        std::span<const BYTE> bytes;
        if (!Get(size) || !Take(size, bytes)) {
            return false;
        }
        block.assign(bytes.begin(), bytes.end());
        return true;
    }
    bool IsAtEnd() const { return m_left.empty(); }

  private:
    std::span<const BYTE> m_left;
    const wchar_t* m_refusal = nullptr;
};

void PutMode(Writer& writer, const std::optional<Bytes>& mode) {
    writer.PutBlock(mode ? std::span<const BYTE>(*mode) : std::span<const BYTE>());
}

bool GetMode(Reader& reader, std::optional<Bytes>& mode) {
    Bytes bytes;
    if (!reader.GetBlock(bytes)) {
        return false;
    }
    if (bytes.empty()) {
        return true; // there is none
    }
    if (ModeSize(bytes) != bytes.size()) {
        return reader.Refuse(L"a device mode contradicts its own size");
    }
    mode = std::move(bytes);
    return true;
}

/// Whether the key is the driver's or one below it, without empty parts.
bool IsDriverKey(const std::wstring& key) {
    if (!IsSameName(key.substr(0, key.find(L'\\')), kDriverDataKey)) {
        return false;
    }
    return key.back() != L'\\' && key.find(L"\\\\") == std::wstring::npos;
}

bool GetValue(Reader& reader, PrinterValue& value) {
    std::uint32_t type = 0;
    if (!reader.GetText(value.key) || !reader.GetText(value.name) || !reader.Get(type) ||
        !reader.GetBlock(value.data)) {
        return false;
    }
    value.type = type;
    if (!IsDriverKey(value.key)) {
        return reader.Refuse(L"a value lies outside the driver's data");
    }
    return type <= kLastType || reader.Refuse(L"a value has an unknown type");
}

bool GetValues(Reader& reader, std::vector<PrinterValue>& values) {
    std::uint32_t count = 0;
    if (!reader.Get(count)) {
        return false;
    }
    if (count > kMaximumVqsValues) {
        return reader.Refuse(L"it has too many values");
    }
    for (std::uint32_t index = 0; index < count; ++index) {
        PrinterValue value;
        if (!GetValue(reader, value)) {
            return false;
        }
        if (index > 0 && ComparePlaces(values.back(), value) >= 0) {
            return reader.Refuse(L"its values are out of order or come twice");
        }
        values.push_back(std::move(value));
    }
    return true;
}

/// The part between header and checksum.
bool GetBody(Reader& reader, Settings& settings) {
    if (!reader.GetText(settings.driver.name)) {
        return false;
    }
    if (settings.driver.name.empty()) {
        return reader.Refuse(L"it names no driver");
    }
    if (!reader.Get(settings.driver.version) || !GetMode(reader, settings.globalMode) ||
        !GetMode(reader, settings.userMode) || !GetValues(reader, settings.values)) {
        return false;
    }
    return reader.IsAtEnd() || reader.Refuse(L"it has bytes that belong to nothing");
}

} // namespace

Bytes EncodeVqs(const Settings& settings) {
    Writer writer;
    writer.PutRaw(kMagic);
    writer.Put(kFormatVersion);
    writer.Put(std::uint32_t{0}); // the size, known in the end
    writer.PutText(settings.driver.name);
    writer.Put(settings.driver.version);
    PutMode(writer, settings.globalMode);
    PutMode(writer, settings.userMode);
    writer.Put(static_cast<std::uint32_t>(settings.values.size()));
    for (const PrinterValue& value : settings.values) {
        writer.PutText(value.key);
        writer.PutText(value.name);
        writer.Put(std::uint32_t{value.type});
        writer.PutBlock(value.data);
    }
    writer.PutSize();
    writer.Put(OCore::Crc32(writer.GetBytes()));
    DecodeVqs(writer.GetBytes()); // never make a file that could not be read again
    return std::move(writer.GetBytes());
}

std::optional<VqsRefusal> ParseVqs(std::span<const BYTE> bytes, Settings& settings) {
    const auto refusal = [](const std::wstring& reason, DWORD error = ERROR_INVALID_DATA) {
        return VqsRefusal{error, L"not a usable settings file: " + reason};
    };
    if (bytes.size() > kMaximumVqsSize) {
        return refusal(L"it is too large", ERROR_FILE_TOO_LARGE);
    }
    Reader header(bytes);
    std::span<const BYTE> magic;
    std::uint32_t version = 0;
    std::uint32_t size = 0;
    if (!header.Take(kMagic.size(), magic) || !std::equal(kMagic.begin(), kMagic.end(), magic.begin()) ||
        !header.Get(version)) {
        return refusal(L"it does not begin as one");
    }
    if (version != kFormatVersion) { // what follows is another format's business
        return refusal(L"its format version is " + NumberText(version), ERROR_REVISION_MISMATCH);
    }
    if (!header.Get(size) || size != bytes.size() || size < kHeaderSize + kChecksumSize) {
        return refusal(L"it is cut off or has grown");
    }
    const std::size_t checked = bytes.size() - kChecksumSize;
    std::uint32_t checksum = 0;
    if (!Reader(bytes.subspan(checked)).Get(checksum) || checksum != OCore::Crc32(bytes.first(checked))) {
        return refusal(L"its checksum is wrong");
    }
    Reader body(bytes.subspan(kHeaderSize, checked - kHeaderSize));
    if (!GetBody(body, settings)) {
        return refusal(body.GetRefusal());
    }
    return std::nullopt;
}

Settings DecodeVqs(std::span<const BYTE> bytes) {
    Settings settings;
    if (const auto refusal = ParseVqs(bytes, settings)) {
        throw Failure{HRESULT_FROM_WIN32(refusal->error), refusal->reason};
    }
    return settings;
}

} // namespace kemba::substitute
