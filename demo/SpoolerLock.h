// Mutual exclusion between processes over what all printers share.
#pragma once

#include <windows.h>

namespace demo {

/// Holds a named lock of the session from construction to the end of its scope.
///
/// Tests take it when they depend on the default printer or on the whole list of printers, and so do those
/// that change the default printer. Making and removing a printer of one's own needs no lock.
class SpoolerLock {
  public:
    /// Waits for the lock of that name; throws std::runtime_error when it cannot be had.
    explicit SpoolerLock(const wchar_t* name = L"kemba spooler");
    SpoolerLock(const SpoolerLock&) = delete;
    SpoolerLock& operator=(const SpoolerLock&) = delete;
    ~SpoolerLock();

  private:
    HANDLE m_mutex;
};

} // namespace demo
