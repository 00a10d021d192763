// The component runtime of one thread.
#pragma once

#include <windows.h>
#include <objbase.h>

namespace kemba::substitute {

/// The thread is in an apartment of the kind as long as this lives, unless the status is a failure.
class Apartment {
  public:
    explicit Apartment(DWORD kind) : m_status(CoInitializeEx(nullptr, kind)) {}
    Apartment(const Apartment&) = delete;
    Apartment& operator=(const Apartment&) = delete;
    ~Apartment() {
        if (SUCCEEDED(m_status)) {
            CoUninitialize();
        }
    }

    HRESULT Status() const { return m_status; }

  private:
    const HRESULT m_status;
};

} // namespace kemba::substitute
