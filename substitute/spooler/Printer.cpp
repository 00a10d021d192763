// A printer's records: reading and changing them.
#include "substitute/spooler/Printer.h"

#include <string>

#include "core/OSynchronizer.h"
#include "substitute/base/Bytes.h"
#include "substitute/base/Failure.h"
#include "substitute/base/Names.h"
#include "substitute/spooler/PrinterHandle.h"
#include "substitute/spooler/PrinterLocks.h"
#include "substitute/spooler/Spooler.h"

namespace kemba::substitute {
namespace {

constexpr DWORD kDriverLevel = 8;
constexpr DWORD kOlderDriverLevel = 6; // the same fields but one; older systems know no other

std::wstring TextOrEmpty(const wchar_t* text) {
    return text ? text : L"";
}

/// The fields that both levels have under the same names.
template<class Record>
DriverDescription DescriptionFrom(const Bytes& bytes) {
    const auto& record = *reinterpret_cast<const Record*>(bytes.data());
    return {TextOrEmpty(record.pName),
            record.dwlDriverVersion,
            record.ftDriverDate,
            TextOrEmpty(record.pszProvider),
            TextOrEmpty(record.pDriverPath),
            TextOrEmpty(record.pConfigFile),
            0};
}

/// "\\server" without a printer: the spooler would open the print server.
bool IsServerName(const std::wstring& name) {
    return name.substr(0, 2) == L"\\\\" && name.find(L'\\', 2) == std::wstring::npos;
}

/// The name if it may be a printer's; else an empty one, which none has.
std::wstring PrinterNameFrom(const std::wstring& name) {
    return IsServerName(name) ? std::wstring() : name;
}

[[noreturn]] void RefuseName(const std::wstring& name) {
    throw WindowsFailure(L"\"" + name + L"\" is no printer", ERROR_INVALID_PRINTER_NAME);
}

} // namespace

DriverDescription DescribeDriver(const PrinterHandle& handle) {
    const auto [level, record] = handle.ReadDriver(kDriverLevel, kOlderDriverLevel);
    if (level != kDriverLevel) {
        return DescriptionFrom<DRIVER_INFO_6W>(record);
    }
    DriverDescription description = DescriptionFrom<DRIVER_INFO_8W>(record);
    description.attributes =
        reinterpret_cast<const DRIVER_INFO_8W*>(record.data())->dwPrinterDriverAttributes;
    return description;
}

Printer::Printer(Spooler& spooler, PrinterLocks& locks, const std::wstring& name)
    : m_name(name), m_locks(locks), m_handle(spooler, PrinterNameFrom(name), PRINTER_ACCESS_USE) {
    // "printer,Job 5", ",XcvMonitor Local Port" and the like open what is no printer, or not the printer
    // alone. Their record, if there is one, has another name, for which a comma is a letter like any other.
    if (name.find(L',') == std::wstring::npos) {
        PresentName();
        return;
    }
    std::wstring present;
    try {
        present = PresentName();
    } catch (const Failure&) {
        RefuseName(name);
    }
    if (!IsSameName(name, present)) {
        RefuseName(name);
    }
}

PrinterDescription Printer::Describe() const {
    const OScopedLock hold(m_lock);
    const Bytes record = m_handle.Read(2);
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
    return substitute::DescribeDriver(m_handle);
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
    const PrinterHandle handle = Open(PRINTER_ACCESS_ADMINISTER);
    ThrowIfError(handle.GetSpooler().SetRecord(handle.Get(), 0, nullptr, command), what);
}

bool Printer::CanShowDialogs() const {
    return substitute::CanShowDialogs(m_handle.GetSpooler().DescribeDesktop());
}

void Printer::ShowProperties(const std::wstring& what) const {
    const PrinterHandle handle = OpenAsFarAsAllowed();
    ThrowIfError(handle.GetSpooler().ShowProperties(handle.Get()), what);
}

void Printer::ShowQueue(const std::wstring& what) const {
    ThrowIfError(m_handle.GetSpooler().ShowQueue(PresentName()), what);
}

PrinterHandle Printer::Open(DWORD access) const {
    // The spooler opens by name alone. While the printer that was bound has the name both before and after,
    // no other one has it.
    const std::wstring name = PresentName();
    PrinterHandle handle(m_handle.GetSpooler(), name, access);
    if (!IsSameName(name, PresentName())) {
        throw WindowsFailure(L"the printer is being renamed", ERROR_INVALID_PRINTER_NAME);
    }
    return handle;
}

/// With the right to administer the printer, or else with the one to use it.
PrinterHandle Printer::OpenAsFarAsAllowed() const {
    try {
        return Open(PRINTER_ACCESS_ADMINISTER | PRINTER_ACCESS_USE);
    } catch (const Failure& failure) {
        if (failure.status != E_ACCESSDENIED) {
            throw;
        }
        return Open(PRINTER_ACCESS_USE);
    }
}

PrinterHold Printer::Hold() const {
    return PrinterHold(m_locks, PresentName());
}

template<class Change>
void Printer::ChangeRecord(const std::wstring& what, Change&& change) const {
    const PrinterHold hold = Hold();
    const PrinterHandle handle = Open(PRINTER_ACCESS_ADMINISTER | PRINTER_ACCESS_USE);
    Bytes record = handle.Read(2);
    auto& information = *reinterpret_cast<PRINTER_INFO_2W*>(record.data());
    change(information);
    // Without them the spooler keeps what the printer has; with them it would ask for further rights, and
    // rewrite the defaults.
    information.pSecurityDescriptor = nullptr;
    information.pDevMode = nullptr;
    ThrowIfError(handle.GetSpooler().SetRecord(handle.Get(), 2, record.data(), 0), what);
}

std::wstring Printer::PresentName() const {
    const OScopedLock hold(m_lock);
    return m_handle.ReadName();
}

bool CanShowDialogs(const Desktop& desktop) {
    return desktop.visible && desktop.session != 0 && desktop.sessionActive;
}

} // namespace kemba::substitute
