// The system's own spooler behind the seam.
#pragma once

#include <string>
#include <vector>

#include "substitute/base/Bytes.h"
#include "substitute/spooler/Spooler.h"

namespace kemba::substitute {

class WindowsSpooler : public Spooler {
  public:
    DWORD Open(const std::wstring& name, DWORD access, HANDLE& handle) override;
    void Close(HANDLE handle) override;
    DWORD GetRecord(HANDLE handle, DWORD level, BYTE* buffer, DWORD size, DWORD& needed) override;
    DWORD SetRecord(HANDLE handle, DWORD level, BYTE* record, DWORD command) override;
    DWORD Add(PRINTER_INFO_2W& record, HANDLE& handle) override;
    DWORD Delete(HANDLE handle) override;
    DWORD GetDriver(HANDLE handle, DWORD level, BYTE* buffer, DWORD size, DWORD& needed) override;
    DWORD GetDriverFolder(std::wstring& folder) override;
    DWORD StartDocument(HANDLE handle, const std::wstring& name, const wchar_t* dataType,
                        DWORD& job) override;
    DWORD StartPage(HANDLE handle) override;
    DWORD Write(HANDLE handle, const void* bytes, DWORD size, DWORD& written) override;
    DWORD EndPage(HANDLE handle) override;
    DWORD EndDocument(HANDLE handle) override;
    DWORD AbortDocument(HANDLE handle) override;
    DWORD DeleteJob(HANDLE handle, DWORD job) override;
    DWORD MergeMode(HANDLE handle, const std::wstring& name, const Bytes& mode, Bytes& merged) override;
    DWORD AskLibraryForMode(const std::wstring& library, const std::wstring& printer, Bytes& mode) override;
    DWORD GetKeys(HANDLE handle, const std::wstring& key, std::vector<std::wstring>& names) override;
    DWORD GetValues(HANDLE handle, const std::wstring& key, std::vector<PrinterValue>& values) override;
    DWORD SetValue(HANDLE handle, const PrinterValue& value) override;
    DWORD DeleteValue(HANDLE handle, const std::wstring& key, const std::wstring& name) override;
    DWORD DeleteKey(HANDLE handle, const std::wstring& key) override;
    Desktop DescribeDesktop() override;
    DWORD ShowProperties(HANDLE handle) override;
    DWORD ShowQueue(const std::wstring& printer) override;
};

/// What the removal of a value answers, given the spooler's error and whether the system can remove keys: one
/// that cannot (Wine 8) has the call for values, but refuses whatever it is given as an invalid parameter.
DWORD RemovalError(DWORD error, bool removesKeys);

} // namespace kemba::substitute
