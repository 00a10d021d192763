// Opening a printer and asking for its records.
#include "substitute/spooler/PrinterHandle.h"

#include <optional>
#include <string>
#include <utility>

#include "substitute/base/Bytes.h"
#include "substitute/base/Failure.h"
#include "substitute/spooler/DeviceMode.h"
#include "substitute/spooler/FillBuffer.h"
#include "substitute/spooler/Spooler.h"

namespace kemba::substitute {
namespace {

/// The device mode inside a record, cut to its own size; nothing when there is none.
std::optional<Bytes> ModeInRecord(const Bytes& record, const DEVMODEW* mode) {
    const auto* const begin = reinterpret_cast<const BYTE*>(mode);
    if (begin < record.data() || begin >= record.data() + record.size()) {
        return std::nullopt;
    }
    Bytes bytes(begin, record.data() + record.size());
    bytes.resize(ModeSize(bytes));
    return bytes.empty() ? std::nullopt : std::optional<Bytes>(std::move(bytes));
}

} // namespace

PrinterHandle::PrinterHandle(Spooler& spooler, std::wstring name, DWORD access)
    : m_spooler(spooler), m_name(std::move(name)) {
    // The spooler takes an empty name for the print server itself.
    const DWORD error =
        m_name.empty() ? ERROR_INVALID_PRINTER_NAME : m_spooler.Open(m_name, access, m_handle);
    if (error != ERROR_SUCCESS) {
        throw WindowsFailure(L"opening printer \"" + m_name + L"\" failed", error);
    }
}

PrinterHandle::~PrinterHandle() {
    if (m_handle) {
        m_spooler.Close(m_handle);
    }
}

Bytes PrinterHandle::Read(DWORD level) const {
    Bytes record;
    const DWORD error = FillBuffer(record, [&](BYTE* buffer, DWORD size, DWORD& needed) {
        return m_spooler.GetRecord(m_handle, level, buffer, size, needed);
    });
    ThrowIfError(error, L"asking the spooler");
    return record;
}

std::wstring PrinterHandle::ReadName() const {
    const Bytes record = Read(2);
    const wchar_t* const name = reinterpret_cast<const PRINTER_INFO_2W*>(record.data())->pPrinterName;
    return name ? name : L"";
}

std::pair<DWORD, Bytes> PrinterHandle::ReadDriver(DWORD level, DWORD olderLevel) const {
    Bytes record;
    const auto ask = [&](DWORD asked) {
        return FillBuffer(record, [&](BYTE* buffer, DWORD size, DWORD& needed) {
            return m_spooler.GetDriver(m_handle, asked, buffer, size, needed);
        });
    };
    DWORD error = ask(level);
    if (error == ERROR_INVALID_LEVEL) {
        level = olderLevel;
        error = ask(level);
    }
    ThrowIfError(error, L"asking the spooler for the driver");
    return {level, std::move(record)};
}

std::optional<Bytes> PrinterHandle::ReadMode(ModeLevel level) const {
    const Bytes record = Read(static_cast<DWORD>(level));
    // The records of both levels are this one pointer.
    return ModeInRecord(record, reinterpret_cast<const PRINTER_INFO_8W*>(record.data())->pDevMode);
}

DWORD PrinterHandle::SetMode(ModeLevel level, const std::optional<Bytes>& mode) const {
    Bytes copy = mode.value_or(Bytes());
    PRINTER_INFO_8W information = {mode ? reinterpret_cast<DEVMODEW*>(copy.data()) : nullptr};
    return m_spooler.SetRecord(m_handle, static_cast<DWORD>(level), reinterpret_cast<BYTE*>(&information), 0);
}

} // namespace kemba::substitute
