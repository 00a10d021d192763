// A spooler in memory that does what a test tells it and counts what it is asked for.
#pragma once

#include <windows.h>

#include <winspool.h>

#include <cstring>
#include <map>
#include <string>

#include "FakeSettingsApi.h"
#include "substitute/PrinterApi.h"

class FakePrinterApi : public kemba::substitute::PrinterApi {
  public:
    struct Record {
        std::wstring share, port, driver, comment, location;
        DWORD status = 0, attributes = 0, jobs = 0;
    };

    std::map<std::wstring, Record> printers;
    DWORD getError = ERROR_SUCCESS; ///< what Get() fails with, if anything
    int growths = 0;                ///< how often the record turns out larger than it was said to be
    int open = 0;                   ///< handles opened and not yet closed
    int opened = 0;
    int asked = 0;

    DWORD Open(const std::wstring& name, HANDLE& handle) override {
        const auto found = printers.find(name);
        if (found == printers.end()) {
            return ERROR_INVALID_PRINTER_NAME;
        }
        handle = &found->second;
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
        std::memcpy(buffer, &information, sizeof(information));
        return ERROR_SUCCESS;
    }

    FakeSettingsApi settings;
    kemba::substitute::SettingsApi& GetSettingsApi() override { return settings; }

  private:
    /// The spooler gives null for a text that is not there.
    static wchar_t* Text(std::wstring& text) { return text.empty() ? nullptr : text.data(); }
};
