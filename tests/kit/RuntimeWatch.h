// The component runtime of the test's thread, and how a client initialises it.
#pragma once

#include <windows.h>

#include <memory>

#include "automation/Owners.h"
#include "tests/kit/Owners.h"
#include "tests/kit/ServerState.h"

namespace kit {

/// Initialises the runtime (single-threaded apartment) and journals what others do with it from then on:
/// `CoInitialize(2)` with the kind of apartment asked for, and `CoUninitialize()`.
class RuntimeWatch {
  public:
    /// Throws std::runtime_error when the runtime cannot be initialised or watched.
    explicit RuntimeWatch(std::shared_ptr<ServerState> state);
    RuntimeWatch(const RuntimeWatch&) = delete;
    RuntimeWatch& operator=(const RuntimeWatch&) = delete;
    ~RuntimeWatch();

    /// Initialisations by others that are not undone yet; negative when they undid more.
    int Balance() const;

  private:
    class Spy;

    const Apartment m_apartment;
    const kemba::ComPtr<Spy> m_spy;
    ULARGE_INTEGER m_cookie{};
};

} // namespace kit
