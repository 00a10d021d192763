// Settings to bytes and back.
#include "substitute/VqsFormat.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>

#include "substitute/Failure.h"

namespace kemba::substitute {
namespace {

constexpr std::array<BYTE, 8> kMagic = {'K', 'V', 'Q', 'S', '\r', '\n', 0x1A, 0};
constexpr std::uint32_t kFormatVersion = 1;
constexpr std::size_t kSizeOffset = kMagic.size() + sizeof(std::uint32_t);
constexpr std::size_t kChecksumSize = sizeof(std::uint32_t);
constexpr DWORD kLastType = REG_QWORD;

[[noreturn]] void Refuse(DWORD error, const std::wstring& reason) {
    throw Failure{HRESULT_FROM_WIN32(error), L"not a usable settings file: " + reason};
}

[[noreturn]] void RefuseData(const std::wstring& reason) {
    Refuse(ERROR_INVALID_DATA, reason);
}

constexpr std::array<std::uint32_t, 256> MakeCrcTable() {
    std::array<std::uint32_t, 256> table = {};
    for (std::uint32_t index = 0; index < table.size(); ++index) {
        std::uint32_t value = index;
        for (int bit = 0; bit < 8; ++bit) {
            value = (value >> 1) ^ ((value & 1) != 0 ? 0xEDB88320u : 0u);
        }
        table[index] = value;
    }
    return table;
}

constexpr std::array<std::uint32_t, 256> kCrcTable = MakeCrcTable();

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

class Reader {
  public:
    explicit Reader(std::span<const BYTE> bytes) : m_left(bytes) {}

    std::span<const BYTE> Take(std::size_t count) {
        if (count > m_left.size()) {
            RefuseData(L"it ends in the middle of a record");
        }
        const std::span<const BYTE> taken = m_left.first(count);
        m_left = m_left.subspan(count);
        return taken;
    }
    template<class Number>
    Number Get() {
        Number number = 0;
        std::size_t shift = 0;
        for (const BYTE byte : Take(sizeof(Number))) {
            number = static_cast<Number>(number | static_cast<Number>(static_cast<Number>(byte) << shift));
            shift += 8;
        }
        return number;
    }
    std::wstring GetText() {
        const auto length = Get<std::uint32_t>();
        if (length > kMaximumVqsText) {
            RefuseData(L"a text is too long");
        }
        const std::span<const BYTE> units = Take(length * sizeof(std::uint16_t));
        std::wstring text(length, L'\0');
        for (std::size_t index = 0; index < length; ++index) {
            text[index] = static_cast<wchar_t>(units[2 * index] | units[2 * index + 1] << 8);
        }
        if (text.find(L'\0') != std::wstring::npos) {
            RefuseData(L"a text contains a zero");
        }
        return text;
    }
    Bytes GetBlock() {
        const std::span<const BYTE> block = Take(Get<std::uint32_t>());
        return Bytes(block.begin(), block.end());
    }
    bool IsAtEnd() const { return m_left.empty(); }

  private:
    std::span<const BYTE> m_left;
};

void PutMode(Writer& writer, const std::optional<Bytes>& mode) {
    writer.PutBlock(mode ? std::span<const BYTE>(*mode) : std::span<const BYTE>());
}

std::optional<Bytes> GetMode(Reader& reader) {
    Bytes mode = reader.GetBlock();
    if (mode.empty()) {
        return std::nullopt;
    }
    if (ModeSize(mode) != mode.size()) {
        RefuseData(L"a device mode contradicts its own size");
    }
    return mode;
}

/// Whether the key is the driver's or one below it, without empty parts.
bool IsDriverKey(const std::wstring& key) {
    if (CompareNames(key.substr(0, key.find(L'\\')), kDriverDataKey) != 0) {
        return false;
    }
    return key.back() != L'\\' && key.find(L"\\\\") == std::wstring::npos;
}

PrinterValue GetValue(Reader& reader) {
    PrinterValue value;
    value.key = reader.GetText();
    value.name = reader.GetText();
    value.type = reader.Get<std::uint32_t>();
    value.data = reader.GetBlock();
    if (!IsDriverKey(value.key)) {
        RefuseData(L"a value lies outside the driver's data");
    }
    if (value.type > kLastType) {
        RefuseData(L"a value has an unknown type");
    }
    return value;
}

/// The part between header and checksum.
Settings GetBody(Reader& reader) {
    Settings settings;
    settings.driver.name = reader.GetText();
    if (settings.driver.name.empty()) {
        RefuseData(L"it names no driver");
    }
    settings.driver.version = reader.Get<std::uint64_t>();
    settings.globalMode = GetMode(reader);
    settings.userMode = GetMode(reader);
    const auto count = reader.Get<std::uint32_t>();
    if (count > kMaximumVqsValues) {
        RefuseData(L"it has too many values");
    }
    for (std::uint32_t index = 0; index < count; ++index) {
        PrinterValue value = GetValue(reader);
        if (index > 0 && ComparePlaces(settings.values.back(), value) >= 0) {
            RefuseData(L"its values are out of order or come twice");
        }
        settings.values.push_back(std::move(value));
    }
    return settings;
}

} // namespace

std::uint32_t Crc32(std::span<const BYTE> bytes) {
    std::uint32_t value = 0xFFFFFFFFu;
    for (const BYTE byte : bytes) {
        value = (value >> 8) ^ kCrcTable[(value ^ byte) & 0xFF];
    }
    return ~value;
}

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
    writer.Put(Crc32(writer.GetBytes()));
    DecodeVqs(writer.GetBytes()); // never make a file that could not be read again
    return std::move(writer.GetBytes());
}

Settings DecodeVqs(std::span<const BYTE> bytes) {
    if (bytes.size() > kMaximumVqsSize) {
        Refuse(ERROR_FILE_TOO_LARGE, L"it is too large");
    }
    Reader header(bytes);
    const std::span<const BYTE> magic = header.Take(kMagic.size());
    if (!std::equal(kMagic.begin(), kMagic.end(), magic.begin())) {
        RefuseData(L"it does not begin as one");
    }
    // Everything after the version is another format's business.
    if (const auto version = header.Get<std::uint32_t>(); version != kFormatVersion) {
        Refuse(ERROR_REVISION_MISMATCH, L"its format version is " + std::to_wstring(version));
    }
    if (header.Get<std::uint32_t>() != bytes.size()) {
        RefuseData(L"it is cut off or has grown");
    }
    const std::size_t headerSize = kSizeOffset + sizeof(std::uint32_t);
    if (bytes.size() < headerSize + kChecksumSize) {
        RefuseData(L"it ends in the middle of a record");
    }
    const std::size_t checked = bytes.size() - kChecksumSize;
    if (Reader(bytes.subspan(checked)).Get<std::uint32_t>() != Crc32(bytes.first(checked))) {
        RefuseData(L"its checksum is wrong");
    }
    Reader body(bytes.subspan(headerSize, checked - headerSize));
    Settings settings = GetBody(body);
    if (!body.IsAtEnd()) {
        RefuseData(L"it has bytes that belong to nothing");
    }
    return settings;
}

} // namespace kemba::substitute
