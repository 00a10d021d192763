// What a registration changed in the registry, kept there so that it can be taken back.
#pragma once

#include <string>

#include "substitute/registration/RegistryKeys.h"

namespace kemba::substitute {

/// Makes changes below a root (the machine's or the user's hive) and writes down each of them first, with
/// what was there before, as a list of steps in the root's key "Software\Brandle\kemba-dal\Registration".
/// Taking steps back, the last one first, restores every key and value, but for what somebody else has
/// changed since. One process at a time. All operations throw Failure.
class RegistrationRecord {
  public:
    explicit RegistrationRecord(HKEY root) : m_root(root) {}

    bool Exists() const;
    /// Path of the registered program; empty without a record.
    std::wstring Program() const;
    /// Makes the record if there is none.
    void SetProgram(const std::wstring& program);
    /// Number of steps.
    DWORD Size() const;

    struct Text {
        KeyPlace place;
        std::wstring name; ///< empty for the key's own value
        std::wstring text;
        bool shared; ///< any other server of the same classes would write the same
    };
    /// Writes a text, making its key; nothing is done about what is as wanted already. To adopt is to write
    /// down even that as made by this step, with nothing there before.
    void Write(const Text& entry, bool adopt);
    /// Takes a whole key away, to be put back.
    void SetAside(const KeyPlace& place);

    /// Takes back all steps but the first `size`, and with the first one the record itself. If other programs
    /// hold classes by now, values called shared stay, and so does what they have put where something was set
    /// aside.
    void TakeBack(DWORD size, bool othersHold);

  private:
    KeyPlace RecordPlace() const;
    KeyPlace StepPlace(DWORD index) const;
    RegistryKey AddStep(DWORD kind, const KeyPlace& place);
    void MakeKeys(const KeyPlace& place, bool adopt);
    void TakeBackStep(const KeyPlace& stepPlace, bool othersHold);
    static void TakeBackValue(const RegistryKey& step, const KeyPlace& place);
    void Remove();

    HKEY m_root;
};

} // namespace kemba::substitute
