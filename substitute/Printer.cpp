// Reading a printer's record.
#include "substitute/Printer.h"

#include <winspool.h>

#include "substitute/Failure.h"

namespace kemba::substitute {
namespace {

std::wstring TextOrEmpty(const wchar_t* text) {
    return text ? text : L"";
}

} // namespace

Printer::Printer(PrinterApi& api, const std::wstring& name) : m_api(api), m_name(name) {
    // The spooler takes an empty name for the print server itself.
    const DWORD error = name.empty() ? ERROR_INVALID_PRINTER_NAME : m_api.Open(name, m_handle);
    if (error != ERROR_SUCCESS) {
        throw WindowsFailure(L"opening printer \"" + name + L"\" failed", error);
    }
}

Printer::~Printer() {
    m_api.Close(m_handle);
}

PrinterDescription Printer::Describe() const {
    const std::vector<BYTE> record = Read(2);
    const auto& information = *reinterpret_cast<const PRINTER_INFO_2W*>(record.data());
    PrinterDescription description;
    if (information.Attributes & PRINTER_ATTRIBUTE_SHARED) {
        description.shareName = TextOrEmpty(information.pShareName);
    }
    description.portName = TextOrEmpty(information.pPortName);
    description.modelName = TextOrEmpty(information.pDriverName);
    description.comment = TextOrEmpty(information.pComment);
    description.location = TextOrEmpty(information.pLocation);
    description.status = information.Status;
    description.attributes = information.Attributes;
    description.jobs = information.cJobs;
    return description;
}

std::vector<BYTE> Printer::Read(DWORD level) const {
    const OScopedLock hold(m_lock);
    std::vector<BYTE> buffer;
    for (;;) {
        const auto size = static_cast<DWORD>(buffer.size());
        DWORD needed = 0;
        const DWORD error = m_api.Get(m_handle, level, buffer.data(), size, needed);
        if (error == ERROR_SUCCESS) {
            return buffer;
        }
        // The record may have grown since its size was asked for.
        if (error != ERROR_INSUFFICIENT_BUFFER || needed <= size) {
            throw WindowsFailure(L"asking the spooler failed", error);
        }
        buffer.resize(needed);
    }
}

} // namespace kemba::substitute
