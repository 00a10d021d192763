// The one seam to the print spooler and to printers' drivers: every call that the server makes of them.
#pragma once

#include <windows.h>
#include <winspool.h>

#include <string>
#include <vector>

#include "substitute/base/Bytes.h"

namespace kemba::substitute {

/// One value of the printer data.
struct PrinterValue {
    std::wstring key;  ///< path from the printer's key, parts separated by backslashes
    std::wstring name; ///< may be empty
    DWORD type = 0;    ///< registry type
    Bytes data;

    bool operator==(const PrinterValue&) const = default;
};

/// Where a dialog of this process would appear.
struct Desktop {
    bool visible = false;      ///< the window station is one that is shown
    DWORD session = 0;         ///< 0 is the services' own
    bool sessionActive = true; ///< somebody is connected to the session, as far as the system tells
};

/// Calls by their plain meaning; each answers a Win32 error code, ERROR_SUCCESS when it worked, and
/// ERROR_CALL_NOT_IMPLEMENTED when the system does not offer it. A handle belongs to the caller and is used
/// by one thread at a time.
class Spooler {
  public:
    Spooler() = default;
    Spooler(const Spooler&) = delete;
    Spooler& operator=(const Spooler&) = delete;
    virtual ~Spooler() = default;

    /// Opens a printer with the rights named by PRINTER_ACCESS bits.
    virtual DWORD Open(const std::wstring& name, DWORD access, HANDLE& handle) = 0;
    virtual void Close(HANDLE handle) = 0;

    /// Fills `buffer` with the PRINTER_INFO record of a level. ERROR_INSUFFICIENT_BUFFER: `needed` bytes are
    /// wanted.
    virtual DWORD GetRecord(HANDLE handle, DWORD level, BYTE* buffer, DWORD size, DWORD& needed) = 0;
    /// Writes a PRINTER_INFO record, or at level 0 (no record) carries out a PRINTER_CONTROL command.
    virtual DWORD SetRecord(HANDLE handle, DWORD level, BYTE* record, DWORD command) = 0;
    /// Makes a printer from a record and opens it for administration.
    virtual DWORD Add(PRINTER_INFO_2W& record, HANDLE& handle) = 0;
    virtual DWORD Delete(HANDLE handle) = 0;

    /// Fills `buffer` with the DRIVER_INFO record of the printer's driver, as GetRecord does.
    virtual DWORD GetDriver(HANDLE handle, DWORD level, BYTE* buffer, DWORD size, DWORD& needed) = 0;
    /// The folder of the drivers' files.
    virtual DWORD GetDriverFolder(std::wstring& folder) = 0;

    /// A job of the given data type; its one page takes all bytes.
    virtual DWORD StartDocument(HANDLE handle, const std::wstring& name, const wchar_t* dataType,
                                DWORD& job) = 0;
    virtual DWORD StartPage(HANDLE handle) = 0;
    /// May take fewer bytes than it was given; `written` tells.
    virtual DWORD Write(HANDLE handle, const void* bytes, DWORD size, DWORD& written) = 0;
    virtual DWORD EndPage(HANDLE handle) = 0;
    virtual DWORD EndDocument(HANDLE handle) = 0;
    /// Gives up the document that has been started.
    virtual DWORD AbortDocument(HANDLE handle) = 0;
    /// Takes a job out of the queue.
    virtual DWORD DeleteJob(HANDLE handle, DWORD job) = 0;

    /// Lets the driver make a device mode of its own from one that it need not know.
    virtual DWORD MergeMode(HANDLE handle, const std::wstring& name, const Bytes& mode, Bytes& merged) = 0;
    /// Loads a driver's configuration library and asks its DrvConvertDevMode for the default device mode, as
    /// the system does for a new printer. ERROR_CALL_NOT_IMPLEMENTED: the library has no such function.
    virtual DWORD AskLibraryForMode(const std::wstring& library, const std::wstring& printer,
                                    Bytes& mode) = 0;

    /// Names of the keys right below a key.
    virtual DWORD GetKeys(HANDLE handle, const std::wstring& key, std::vector<std::wstring>& names) = 0;
    /// Appends the values of one key.
    virtual DWORD GetValues(HANDLE handle, const std::wstring& key, std::vector<PrinterValue>& values) = 0;
    /// Makes the key if need be.
    virtual DWORD SetValue(HANDLE handle, const PrinterValue& value) = 0;
    virtual DWORD DeleteValue(HANDLE handle, const std::wstring& key, const std::wstring& name) = 0;
    /// With everything in it.
    virtual DWORD DeleteKey(HANDLE handle, const std::wstring& key) = 0;

    virtual Desktop DescribeDesktop() = 0;
    /// Shows the properties of an opened printer until the user closes them.
    virtual DWORD ShowProperties(HANDLE handle) = 0;
    /// Opens the window of the printer's queue.
    virtual DWORD ShowQueue(const std::wstring& printer) = 0;
};

} // namespace kemba::substitute
