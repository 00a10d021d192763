// The state of a program at one place, to which it can be put back.
#pragma once

#include <windows.h>

#include <vector>

namespace kit {

/// The program's variables, its heap (the arena) and the values of its thread-local slots. What the system
/// holds for it, handles for one, stays as it is.
class Snapshot {
  public:
    /// Watches the thread-local slots from now on; to be called before the program takes any.
    static void WatchSlots(HMODULE module);

    /// Takes the state of the module on the calling thread.
    explicit Snapshot(HMODULE module);
    /// Puts all of it back, on the same thread.
    void Restore() const;

  private:
    struct Part {
        char* start;
        std::vector<char> bytes;
    };

    std::vector<Part> m_parts;
    std::vector<void*> m_slots; // values of the slots taken so far, in their order
};

} // namespace kit
