// Two ways to a driver's default device mode.
#include "substitute/spooler/DefaultMode.h"

#include <atomic>
#include <optional>
#include <string>

#include "substitute/base/Bytes.h"
#include "substitute/base/Failure.h"
#include "substitute/base/NumberText.h"
#include "substitute/base/Paths.h"
#include "substitute/spooler/DeviceMode.h"
#include "substitute/spooler/Printer.h"
#include "substitute/spooler/PrinterHandle.h"

namespace kemba::substitute {
namespace {

constexpr DWORD kHiddenPrinter = 0x20; // PRINTER_ATTRIBUTE_HIDDEN
constexpr int kNameTries = 100;        // left-overs of earlier processes may have names

/// ERROR_CALL_NOT_IMPLEMENTED: there is no library that may be asked.
DWORD AskDriver(const PrinterHandle& handle, Bytes& mode) {
    const std::wstring library = DescribeDriver(handle).configuration;
    std::wstring folder;
    const DWORD error = handle.GetSpooler().GetDriverFolder(folder);
    if (error != ERROR_SUCCESS) {
        return error;
    }
    return IsBelowFolder(library, folder)
               ? handle.GetSpooler().AskLibraryForMode(library, handle.Name(), mode)
               : ERROR_CALL_NOT_IMPLEMENTED;
}

/// A hidden printer of the same kind as another one.
class HiddenPrinter {
  public:
    HiddenPrinter(Spooler& spooler, const PRINTER_INFO_2W& model) : m_spooler(spooler) {
        static std::atomic<int> made{0};
        PRINTER_INFO_2W record = {};
        record.pPortName = model.pPortName;
        record.pDriverName = model.pDriverName;
        record.pPrintProcessor = model.pPrintProcessor;
        record.pDatatype = model.pDatatype;
        record.Attributes = kHiddenPrinter;
        DWORD error = ERROR_PRINTER_ALREADY_EXISTS;
        for (int left = kNameTries; left > 0 && error == ERROR_PRINTER_ALREADY_EXISTS; --left) {
            m_name = L"kemba defaults " + NumberText(GetCurrentProcessId()) + L"-" + NumberText(++made);
            record.pPrinterName = m_name.data();
            error = m_spooler.Add(record, m_handle);
        }
        ThrowIfError(error, L"making a printer to read the default device mode from");
    }
    HiddenPrinter(const HiddenPrinter&) = delete;
    HiddenPrinter& operator=(const HiddenPrinter&) = delete;
    ~HiddenPrinter() {
        Delete();
        m_spooler.Close(m_handle);
    }

    const std::wstring& Name() const { return m_name; }
    DWORD Delete() {
        const DWORD error = m_deleted ? ERROR_SUCCESS : m_spooler.Delete(m_handle);
        m_deleted = error == ERROR_SUCCESS;
        return error;
    }

  private:
    Spooler& m_spooler;
    std::wstring m_name;
    HANDLE m_handle = nullptr;
    bool m_deleted = false;
};

Bytes AskFreshPrinter(const PrinterHandle& handle) {
    const Bytes record = handle.Read(2);
    HiddenPrinter fresh(handle.GetSpooler(), *reinterpret_cast<const PRINTER_INFO_2W*>(record.data()));
    const std::optional<Bytes> mode =
        PrinterHandle(handle.GetSpooler(), fresh.Name(), PRINTER_ACCESS_USE).ReadMode(ModeLevel::Global);
    ThrowIfError(fresh.Delete(), L"deleting the hidden printer \"" + fresh.Name() + L"\"");
    return mode.value_or(Bytes());
}

} // namespace

Bytes ReadDefaultMode(const PrinterHandle& handle) {
    Bytes mode;
    const DWORD error = AskDriver(handle, mode);
    if (error == ERROR_CALL_NOT_IMPLEMENTED) {
        mode = AskFreshPrinter(handle);
    } else {
        ThrowIfError(error, L"asking for the driver's default device mode");
    }
    if (mode.empty() || ModeSize(mode) != mode.size()) {
        throw WindowsFailure(L"the driver's default device mode is none", ERROR_INVALID_DATA);
    }
    return mode;
}

} // namespace kemba::substitute
