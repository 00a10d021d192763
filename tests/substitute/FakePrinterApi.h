// A spooler in memory that does what a test tells it and notes down what it is asked for.
#pragma once

#include <windows.h>

#include <winspool.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "substitute/spooler/PrinterApi.h"
#include "tests/substitute/FakeSettingsApi.h"

class FakePrinterApi : public kemba::substitute::PrinterApi {
  public:
    struct Record {
        std::wstring share, port, driver, comment, location;
        DWORD status = 0, attributes = 0, jobs = 0;
    };
    struct Driver {
        DWORDLONG version = 0;
        FILETIME date = {};
        std::wstring provider, path;
        DWORD attributes = 0;
    };
    /// One of the calls that make up a job or change a printer.
    enum class Step { None, Set, GetDriver, StartDocument, StartPage, Write, EndPage, EndDocument };

    std::map<std::wstring, Record> printers;
    Driver driver;                    ///< everybody's
    DWORD driverLevel = 8;            ///< the highest level of driver records
    DWORD getError = ERROR_SUCCESS;   ///< what Get() fails with, if anything
    DWORD adminError = ERROR_SUCCESS; ///< what opening for administration fails with, if anything
    Step failing = Step::None;        ///< the step that fails, with ERROR_PRINT_CANCELLED
    DWORD mostAtOnce = ~DWORD(0);     ///< how many bytes Write() takes in one call
    int growths = 0;                  ///< how often the record turns out larger than it was said to be

    int open = 0; ///< handles opened and not yet closed
    int opened = 0;
    int asked = 0;
    std::vector<DWORD> accesses;       ///< with which the handles were opened
    std::vector<DWORD> commands;       ///< given at level 0
    std::vector<std::wstring> journal; ///< what was done about jobs
    std::string printed;               ///< bytes of the jobs that were ended
    std::string unfinished;            ///< bytes of the job that has not been ended
    std::size_t largestWrite = 0;      ///< bytes offered in one call
    bool keptSecurityAndMode = true;   ///< no change touched the security descriptor or the device mode

    DWORD Open(const std::wstring& name, DWORD access, HANDLE& handle) override {
        const auto found = printers.find(name);
        if (found == printers.end()) {
            return ERROR_INVALID_PRINTER_NAME;
        }
        if ((access & PRINTER_ACCESS_ADMINISTER) && adminError != ERROR_SUCCESS) {
            return adminError;
        }
        handle = &found->second;
        accesses.push_back(access);
        ++open;
        ++opened;
        return ERROR_SUCCESS;
    }

    void Close(HANDLE) override { --open; }

    DWORD Get(HANDLE handle, DWORD level, BYTE* buffer, DWORD size, DWORD& needed) override {
        ++asked;
        if (getError != ERROR_SUCCESS) {
            return getError;
        }
        if (level != 2) {
            return ERROR_INVALID_LEVEL;
        }
        needed = sizeof(PRINTER_INFO_2W);
        if (growths > 0 && size >= needed) {
            --growths;
            needed = size + 16;
        }
        if (size < needed) {
            return ERROR_INSUFFICIENT_BUFFER;
        }
        Record& record = *static_cast<Record*>(handle);
        PRINTER_INFO_2W information = {};
        information.pShareName = Text(record.share);
        information.pPortName = Text(record.port);
        information.pDriverName = Text(record.driver);
        information.pComment = Text(record.comment);
        information.pLocation = Text(record.location);
        information.Status = record.status;
        information.Attributes = record.attributes;
        information.cJobs = record.jobs;
        information.pDevMode = &m_mode;
        information.pSecurityDescriptor = &m_security;
        std::memcpy(buffer, &information, sizeof(information));
        return ERROR_SUCCESS;
    }

    DWORD GetDriver(HANDLE, DWORD level, BYTE* buffer, DWORD size, DWORD& needed) override {
        if (failing == Step::GetDriver) {
            return ERROR_PRINT_CANCELLED;
        }
        if (level > driverLevel) {
            return ERROR_INVALID_LEVEL;
        }
        needed = level == 8 ? sizeof(DRIVER_INFO_8W) : sizeof(DRIVER_INFO_6W);
        if (size < needed) {
            return ERROR_INSUFFICIENT_BUFFER;
        }
        DRIVER_INFO_8W information = {}; // level 6 is its beginning, level 2 that one's
        information.pDriverPath = Text(driver.path);
        information.ftDriverDate = driver.date;
        information.dwlDriverVersion = driver.version;
        information.pszProvider = Text(driver.provider);
        information.dwPrinterDriverAttributes = driver.attributes;
        std::memcpy(buffer, &information, needed);
        return ERROR_SUCCESS;
    }

    DWORD Set(HANDLE handle, DWORD level, BYTE* record, DWORD command) override {
        if (failing == Step::Set) {
            return ERROR_PRINT_CANCELLED;
        }
        if (level == 0) {
            commands.push_back(command);
            return record ? ERROR_INVALID_PARAMETER : ERROR_SUCCESS;
        }
        const auto& information = *reinterpret_cast<const PRINTER_INFO_2W*>(record);
        keptSecurityAndMode =
            keptSecurityAndMode && !information.pDevMode && !information.pSecurityDescriptor;
        const auto text = [](const wchar_t* given) { return std::wstring(given ? given : L""); };
        const Record& old = *static_cast<Record*>(handle);
        Record changed = {text(information.pShareName),  text(information.pPortName),
                          text(information.pDriverName), text(information.pComment),
                          text(information.pLocation),   old.status,
                          information.Attributes,        old.jobs};
        *static_cast<Record*>(handle) = std::move(changed);
        return ERROR_SUCCESS;
    }

    DWORD StartDocument(HANDLE, const std::wstring& name, const wchar_t* dataType) override {
        return Note(Step::StartDocument, dataType + (L" job " + name));
    }
    DWORD StartPage(HANDLE) override { return Note(Step::StartPage, L"page"); }
    DWORD Write(HANDLE, const void* bytes, DWORD size, DWORD& written) override {
        largestWrite = std::max<std::size_t>(largestWrite, size);
        // The last write of a job is the one that fails, so that something has been written before.
        if (failing == Step::Write && !unfinished.empty()) {
            return ERROR_PRINT_CANCELLED;
        }
        written = std::min(size, mostAtOnce);
        unfinished.append(static_cast<const char*>(bytes), written);
        return ERROR_SUCCESS;
    }
    DWORD EndPage(HANDLE) override { return Note(Step::EndPage, L"page's end"); }
    DWORD EndDocument(HANDLE) override {
        const DWORD error = Note(Step::EndDocument, L"job's end");
        if (error == ERROR_SUCCESS) {
            printed += unfinished;
            unfinished.clear();
        }
        return error;
    }
    void AbortDocument(HANDLE) override {
        journal.push_back(L"deleted");
        unfinished.clear();
    }

    FakeSettingsApi settings;
    kemba::substitute::SettingsApi& GetSettingsApi() override { return settings; }

  private:
    /// The spooler gives null for a text that is not there.
    static wchar_t* Text(std::wstring& text) { return text.empty() ? nullptr : text.data(); }

    DWORD Note(Step step, const std::wstring& line) {
        if (step == failing) {
            return ERROR_PRINT_CANCELLED;
        }
        journal.push_back(line);
        return ERROR_SUCCESS;
    }

    DEVMODEW m_mode = {};
    int m_security = 0;
};
