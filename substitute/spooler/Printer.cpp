// A printer's records: reading and changing them.
#include "substitute/spooler/Printer.h"

#include <winspool.h>

#include <vector>

#include "substitute/base/Failure.h"

namespace kemba::substitute {
namespace {

constexpr DWORD kDriverLevel = 8;
constexpr DWORD kOlderDriverLevel = 6; // the same fields; systems before Windows Vista know no other

std::wstring TextOrEmpty(const wchar_t* text) {
    return text ? text : L"";
}

/// The fields that both levels have under the same names.
template<class Record>
DriverDescription DescriptionFrom(const std::vector<BYTE>& bytes) {
    const auto& record = *reinterpret_cast<const Record*>(bytes.data());
    return {record.dwlDriverVersion, record.ftDriverDate, TextOrEmpty(record.pszProvider),
            TextOrEmpty(record.pDriverPath)};
}

} // namespace

Printer::Printer(PrinterApi& api, const std::wstring& name)
    : m_name(name), m_handle(api, name, PRINTER_ACCESS_USE) {}

PrinterDescription Printer::Describe() const {
    const OScopedLock hold(m_lock);
    const std::vector<BYTE> record = m_handle.Read(2);
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

DriverDescription Printer::DescribeDriver() const {
    const OScopedLock hold(m_lock);
    const auto [level, record] = m_handle.ReadDriver(kDriverLevel, kOlderDriverLevel);
    return level == kDriverLevel ? DescriptionFrom<DRIVER_INFO_8W>(record)
                                 : DescriptionFrom<DRIVER_INFO_6W>(record);
}

void Printer::ChangeComment(const std::wstring& comment) const {
    ChangeRecord(L"changing the comment",
                 [&](PRINTER_INFO_2W& record) { record.pComment = const_cast<wchar_t*>(comment.c_str()); });
}

void Printer::ChangeLocation(const std::wstring& location) const {
    ChangeRecord(L"changing the location",
                 [&](PRINTER_INFO_2W& record) { record.pLocation = const_cast<wchar_t*>(location.c_str()); });
}

void Printer::ChangeShareName(const std::wstring& name) const {
    if (name.empty()) {
        ChangeRecord(L"ending the sharing", [](PRINTER_INFO_2W& record) {
            record.Attributes &= ~static_cast<DWORD>(PRINTER_ATTRIBUTE_SHARED);
        });
        return;
    }
    ChangeRecord(L"sharing as \"" + name + L"\"", [&](PRINTER_INFO_2W& record) {
        record.pShareName = const_cast<wchar_t*>(name.c_str());
        record.Attributes |= PRINTER_ATTRIBUTE_SHARED;
    });
}

void Printer::Control(DWORD command, const wchar_t* what) const {
    const PrinterHandle handle(Api(), m_name, PRINTER_ACCESS_ADMINISTER);
    const DWORD error = Api().Set(handle.Get(), 0, nullptr, command);
    if (error != ERROR_SUCCESS) {
        throw WindowsFailure(std::wstring(what) + L" failed", error);
    }
}

template<class Change>
void Printer::ChangeRecord(const std::wstring& what, Change&& change) const {
    const PrinterHandle handle(Api(), m_name, PRINTER_ACCESS_ADMINISTER | PRINTER_ACCESS_USE);
    std::vector<BYTE> record = handle.Read(2);
    auto& information = *reinterpret_cast<PRINTER_INFO_2W*>(record.data());
    change(information);
    // Without them the spooler keeps what the printer has; with them it would ask for further rights, and
    // rewrite the defaults.
    information.pSecurityDescriptor = nullptr;
    information.pDevMode = nullptr;
    const DWORD error = Api().Set(handle.Get(), 2, record.data(), 0);
    if (error != ERROR_SUCCESS) {
        throw WindowsFailure(what + L" failed", error);
    }
}

} // namespace kemba::substitute
