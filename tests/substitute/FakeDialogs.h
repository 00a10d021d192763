// Dialogs that nobody sees, noted down.
#pragma once

#include <string>
#include <vector>

#include "substitute/spooler/PrinterDialogs.h"

class FakeDialogs : public kemba::substitute::PrinterDialogs {
  public:
    bool visible = true;
    DWORD error = ERROR_SUCCESS;
    std::vector<std::wstring> shown; ///< kind and printer, in the order of the calls

    bool CanBeSeen() override { return visible; }
    DWORD ShowProperties(const std::wstring& printer) override { return Show(L"properties of " + printer); }
    DWORD ShowQueue(const std::wstring& printer) override { return Show(L"queue of " + printer); }

  private:
    DWORD Show(const std::wstring& dialog) {
        shown.push_back(dialog);
        return error;
    }
};
