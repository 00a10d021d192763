// Steps of a registration, forwards and back.
#include "substitute/registration/RegistrationRecord.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "substitute/base/NumberText.h"
#include "substitute/registration/RegistryKeys.h"

namespace kemba::substitute {
namespace {

constexpr wchar_t kRecord[] = L"Software\\Brandle\\kemba-dal\\Registration";

// Values of the record itself.
constexpr wchar_t kProgram[] = L"Program"; // path of the registered program
constexpr wchar_t kMade[] = L"Made";       // REG_DWORD: so many of the record's own keys were missing

// Values of a step.
constexpr wchar_t kKind[] = L"Kind";       // REG_DWORD, see below
constexpr wchar_t kView[] = L"View";       // REG_DWORD
constexpr wchar_t kKey[] = L"Key";         // path below the root
constexpr wchar_t kName[] = L"Name";       // of the value that was written
constexpr wchar_t kWritten[] = L"Written"; // what was written, in its own type
constexpr wchar_t kBefore[] = L"Before";   // what was there, in its own type; absent if nothing was
constexpr wchar_t kShared[] = L"Shared";   // REG_DWORD
constexpr wchar_t kTree[] = L"\\Tree";     // key: copy of what was set aside

constexpr DWORD kKeyMade = 1;
constexpr DWORD kValueWritten = 2;
constexpr DWORD kTreeSetAside = 3;

/// The path's own keys from the top down: "a", "a\b", "a\b\c".
std::vector<std::wstring> PathsTo(const std::wstring& path) {
    std::vector<std::wstring> paths;
    for (auto end = path.find(L'\\'); end != path.npos; end = path.find(L'\\', end + 1)) {
        paths.push_back(path.substr(0, end));
    }
    paths.push_back(path);
    return paths;
}

/// How deep "Software\Classes\CLSID" and the like lie: the folders of classes are nobody's own.
constexpr std::ptrdiff_t kFolderDepth = 2;

/// Whether somebody else's key could hardly lie there.
bool IsOwnKey(const std::wstring& path, const KeyPlace& entry) {
    return path == entry.path || std::count(path.begin(), path.end(), L'\\') > kFolderDepth;
}

} // namespace

KeyPlace RegistrationRecord::RecordPlace() const {
    return {m_root, View::Bits64, kRecord};
}

KeyPlace RegistrationRecord::StepPlace(DWORD index) const {
    return {m_root, View::Bits64, std::wstring(kRecord) + L"\\" + NumberText(index, 6)};
}

bool RegistrationRecord::Exists() const {
    return static_cast<bool>(RegistryKey::Open(RecordPlace()));
}

std::wstring RegistrationRecord::Program() const {
    return RegistryKey::Open(RecordPlace()).ReadText(kProgram);
}

DWORD RegistrationRecord::Size() const {
    return RegistryKey::Open(RecordPlace()).CountSubkeys();
}

void RegistrationRecord::SetProgram(const std::wstring& program) {
    DWORD missing = 0;
    for (const std::wstring& path : PathsTo(kRecord)) {
        missing += RegistryKey::Open({m_root, View::Bits64, path}) ? 0 : 1;
    }
    const RegistryKey record = RegistryKey::Make(RecordPlace());
    if (missing > 0) {
        record.Write(kMade, NumberValue(missing));
    }
    record.Write(kProgram, TextValue(program));
}

RegistryKey RegistrationRecord::AddStep(DWORD kind, const KeyPlace& place) {
    RegistryKey step = RegistryKey::Make(StepPlace(Size()));
    step.Write(kKind, NumberValue(kind));
    step.Write(kView, NumberValue(static_cast<DWORD>(place.view)));
    step.Write(kKey, TextValue(place.path));
    return step;
}

void RegistrationRecord::MakeKeys(const KeyPlace& place, bool adopt) {
    for (const std::wstring& path : PathsTo(place.path)) {
        const KeyPlace key{place.root, place.view, path};
        if ((adopt && IsOwnKey(path, place)) || !RegistryKey::Open(key)) {
            AddStep(kKeyMade, key);
            RegistryKey::Make(key);
        }
    }
}

void RegistrationRecord::Write(const Text& entry, bool adopt) {
    const RegistryValue wanted = TextValue(entry.text);
    const RegistryKey found = RegistryKey::Open(entry.place);
    const std::optional<RegistryValue> before = found.Read(entry.name);
    if (before == wanted && !adopt) {
        return;
    }
    if (!found || adopt) {
        MakeKeys(entry.place, adopt);
    }
    const RegistryKey step = AddStep(kValueWritten, entry.place);
    step.Write(kName, TextValue(entry.name));
    step.Write(kShared, NumberValue(entry.shared ? 1 : 0));
    if (before && !adopt) {
        step.Write(kBefore, *before);
    }
    step.Write(kWritten, wanted);
    RegistryKey::Make(entry.place).Write(entry.name, wanted);
}

void RegistrationRecord::SetAside(const KeyPlace& place) {
    const DWORD index = Size();
    AddStep(kTreeSetAside, place);
    const KeyPlace step = StepPlace(index);
    RegistryKey::Open(place).CopyTo(RegistryKey::Make({step.root, step.view, step.path + kTree}));
    RemoveTree(place);
}

void RegistrationRecord::TakeBackValue(const RegistryKey& step, const KeyPlace& place) {
    const std::wstring name = step.ReadText(kName);
    const RegistryKey key = RegistryKey::Open(place, KEY_READ | KEY_WRITE);
    const std::optional<RegistryValue> present = key.Read(name);
    if (!present || present != step.Read(kWritten)) {
        return; // somebody else's by now
    }
    if (const std::optional<RegistryValue> before = step.Read(kBefore)) {
        key.Write(name, *before);
    } else {
        key.Remove(name);
    }
}

void RegistrationRecord::TakeBackStep(const KeyPlace& stepPlace, bool othersHold) {
    const RegistryKey step = RegistryKey::Open(stepPlace);
    const KeyPlace place{m_root, static_cast<View>(step.ReadNumber(kView)), step.ReadText(kKey)};
    switch (step.ReadNumber(kKind)) {
    case kKeyMade: RemoveKeyIfEmpty(place); break;
    case kValueWritten:
        if (!othersHold || step.ReadNumber(kShared) == 0) {
            TakeBackValue(step, place);
        }
        break;
    case kTreeSetAside: {
        const RegistryKey tree = RegistryKey::Open({m_root, View::Bits64, stepPlace.path + kTree});
        const bool filled = othersHold && RegistryKey::Open(place).CountSubkeys() > 0;
        if (tree && !filled) {
            tree.CopyTo(RegistryKey::Make(place));
        }
        break;
    }
    default: break;
    }
}

void RegistrationRecord::TakeBack(DWORD size, bool othersHold) {
    const DWORD all = Size();
    // The steps stay until the last one is done; to take one back twice does no harm.
    for (DWORD count = all; count > size; --count) {
        TakeBackStep(StepPlace(count - 1), othersHold);
    }
    if (size == 0) {
        Remove();
        return;
    }
    for (DWORD count = all; count > size; --count) {
        RemoveTree(StepPlace(count - 1));
    }
}

void RegistrationRecord::Remove() {
    DWORD made = RegistryKey::Open(RecordPlace()).ReadNumber(kMade);
    RemoveTree(RecordPlace());
    const std::vector<std::wstring> paths = PathsTo(kRecord);
    for (auto path = paths.rbegin(); path != paths.rend() && made > 0; ++path, --made) {
        RemoveKeyIfEmpty({m_root, View::Bits64, *path});
    }
}

} // namespace kemba::substitute
