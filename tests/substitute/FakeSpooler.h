// A spooler in memory: it does what a test tells it, behaves as Windows does where Wine's does not, and notes
// down what it is asked for. From any thread.
#pragma once

#include <windows.h>
#include <winspool.h>

#include <cstddef>
#include <functional>
#include <list>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "substitute/base/Bytes.h"
#include "substitute/base/Names.h"
#include "substitute/spooler/Spooler.h"

namespace kit {

/// A device mode with a private part, whose number of copies tells one from another.
kemba::substitute::Bytes MakeMode(short copies, WORD privateSize = 8);
/// The number of copies; -1 for no mode.
short CopiesOf(const std::optional<kemba::substitute::Bytes>& mode);

class FakeSpooler : public kemba::substitute::Spooler {
  public:
    using Bytes = kemba::substitute::Bytes;
    using PrinterValue = kemba::substitute::PrinterValue;
    using LessName = kemba::substitute::LessName;
    using Values = std::map<std::wstring, std::pair<DWORD, Bytes>, LessName>;

    /// All of a printer that settings hold.
    struct State {
        std::optional<Bytes> globalMode{}, userMode{};
        std::map<std::wstring, Values, LessName> keys{};
        bool operator==(const State&) const = default;
    };
    struct Record {
        std::wstring share{}, port{}, driver{}, comment{}, location{};
        DWORD status = 0, attributes = 0, jobs = 0;
        State settings{};
        bool operator==(const Record&) const = default;
    };
    struct Driver {
        DWORDLONG version = 0;
        FILETIME date = {};
        std::wstring provider, path, configuration = L"C:\\drivers\\zippy.dll";
        DWORD attributes = 0;
    };
    struct Job {
        std::wstring name;
        std::string bytes;
        bool operator==(const Job&) const = default;
    };
    enum class Call {
        None,
        Open,
        GetRecord,
        SetRecord,
        Add,
        Delete,
        GetDriver,
        GetDriverFolder,
        StartDocument,
        StartPage,
        Write,
        EndPage,
        EndDocument,
        AbortDocument,
        DeleteJob,
        MergeMode,
        AskLibraryForMode,
        GetKeys,
        GetValues,
        SetValue,
        DeleteValue,
        DeleteKey,
        ShowProperties,
        ShowQueue
    };

    // What there is.
    std::map<std::wstring, Record, LessName> printers;
    Driver driver;                   ///< everybody's
    Bytes defaultMode = MakeMode(1); ///< what the driver gives a new printer
    std::map<DWORD, Job> queue;      ///< jobs that have not been handed over to a printer
    std::string printed;             ///< bytes of the jobs that were
    kemba::substitute::Desktop desktop{true, 1, true};

    // How it behaves.
    DWORD rights = PRINTER_ACCESS_ADMINISTER | PRINTER_ACCESS_USE; ///< that the caller has
    DWORD driverLevel = 8;                                         ///< the highest level of driver records
    DWORD mostAtOnce = ~DWORD(0);  ///< how many bytes Write() takes in one call
    int growths = 0;               ///< how often a record turns out larger than it was said to be
    bool deletes = true;           ///< whether values and keys can be deleted
    bool lists = true;             ///< whether keys can be listed
    bool endLosesDocument = false; ///< a document whose end failed cannot be given up any more: its job stays
    std::map<std::wstring, std::wstring, LessName>
        opensAs; ///< further names, of printers; empty: of what has no record
    std::function<Bytes(const Record&, const Bytes&)> merge; ///< the driver's form of a mode; none: the same

    // What goes wrong.
    Call failing = Call::None;             ///< every such call fails, a write only after the first block
    DWORD failure = ERROR_PRINT_CANCELLED; ///< with that error
    /// The calls of these numbers, from 1, fail with ERROR_WRITE_FAULT; no end: only the first of them.
    int failAt = 0, failTo = 0;
    int slowAt = 0; ///< the call of this number is slow
    std::function<void(const std::wstring& printer)>
        opening;                      ///< called outside of any lock before a printer is opened
    std::function<void(Call)> before; ///< the same before each call is carried out

    // What was done.
    int calls = 0; ///< but those that only give back
    int open = 0;  ///< handles opened and not yet closed
    int opened = 0;
    int overlaps = 0;                  ///< calls for a handle that another one was still using
    int asked = 0;                     ///< questions for a printer's record
    std::vector<DWORD> accesses;       ///< with which the handles were opened
    std::vector<DWORD> commands;       ///< given at level 0
    std::vector<std::wstring> journal; ///< what was done about jobs and dialogs
    std::size_t largestWrite = 0;      ///< bytes offered in one call
    bool keptSecurityAndMode =
        true; ///< no change of the texts touched the security descriptor or the device mode
    std::vector<std::wstring> loaded; ///< libraries of drivers

    /// As somebody else might do at any time; handles stay with their printer.
    void Rename(const std::wstring& from, const std::wstring& to);
    void Lose(const std::wstring& name);
    std::string Unfinished() const;

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
    kemba::substitute::Desktop DescribeDesktop() override { return desktop; }
    DWORD ShowProperties(HANDLE handle) override;
    DWORD ShowQueue(const std::wstring& printer) override;

  private:
    struct Opened {
        Record* record; // null: what has none
        DWORD access;
        DWORD job = 0; // of the document that has been started
        int inUse = 0; // by how many calls
    };

    /// Waits, fails or does the work, as the test wants it; the work is done by one thread at a time. No
    /// handle: the call is about no printer.
    template<class Work>
    DWORD Answer(Call call, HANDLE handle, Work&& work);
    DWORD Note(Call call, HANDLE handle, const std::wstring& line);
    const std::wstring* NameOf(const Record* record) const;

    mutable std::recursive_mutex m_mutex;
    std::list<Opened> m_opened;
    std::map<std::wstring, Record, LessName> m_removed; // handles may still be open
    DWORD m_latestJob = 0;
};

} // namespace kit
