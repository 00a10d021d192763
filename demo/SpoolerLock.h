// Mutual exclusion between processes over what all printers share.
#pragma once

#include "core/Handles.h"

namespace demo {

/// Holds a named lock of the session from construction to the end of its scope; a thread may hold it several
/// times.
///
/// Tests take it when they depend on the list of printers, the default printer or a queue without having made
/// a printer of their own.
class SpoolerLock {
  public:
    /// Waits for the lock of that name; throws std::runtime_error when it cannot be had.
    explicit SpoolerLock(const wchar_t* name = L"kemba spooler");
    SpoolerLock(const SpoolerLock&) = delete;
    SpoolerLock& operator=(const SpoolerLock&) = delete;
    ~SpoolerLock();

  private:
    OCore::UniqueHandle m_mutex;
};

} // namespace demo
