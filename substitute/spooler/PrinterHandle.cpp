// Opening a printer and asking for its records.
#include "substitute/spooler/PrinterHandle.h"

#include "substitute/base/Failure.h"

namespace kemba::substitute {

PrinterHandle::PrinterHandle(PrinterApi& api, const std::wstring& name, DWORD access) : m_api(api) {
    // The spooler takes an empty name for the print server itself.
    const DWORD error = name.empty() ? ERROR_INVALID_PRINTER_NAME : m_api.Open(name, access, m_handle);
    if (error != ERROR_SUCCESS) {
        throw WindowsFailure(L"opening printer \"" + name + L"\" failed", error);
    }
}

PrinterHandle::~PrinterHandle() {
    m_api.Close(m_handle);
}

std::vector<BYTE> PrinterHandle::Read(DWORD level) const {
    std::vector<BYTE> record;
    const DWORD error = Ask(&PrinterApi::Get, level, record);
    if (error != ERROR_SUCCESS) {
        throw WindowsFailure(L"asking the spooler failed", error);
    }
    return record;
}

std::pair<DWORD, std::vector<BYTE>> PrinterHandle::ReadDriver(DWORD level, DWORD olderLevel) const {
    std::vector<BYTE> record;
    DWORD error = Ask(&PrinterApi::GetDriver, level, record);
    if (error == ERROR_INVALID_LEVEL) {
        level = olderLevel;
        error = Ask(&PrinterApi::GetDriver, level, record);
    }
    if (error != ERROR_SUCCESS) {
        throw WindowsFailure(L"asking the spooler for the driver failed", error);
    }
    return {level, std::move(record)};
}

DWORD PrinterHandle::Ask(Question question, DWORD level, std::vector<BYTE>& record) const {
    record.clear();
    for (;;) {
        const auto size = static_cast<DWORD>(record.size());
        DWORD needed = 0;
        const DWORD error = (m_api.*question)(m_handle, level, record.data(), size, needed);
        // The record may have grown since its size was asked for.
        if (error != ERROR_INSUFFICIENT_BUFFER || needed <= size) {
            return error;
        }
        record.resize(needed);
    }
}

} // namespace kemba::substitute
