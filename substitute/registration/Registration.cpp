// Writing and removing the registry entries.
#include "substitute/registration/Registration.h"

#include <string>
#include <vector>

#include "substitute/base/Failure.h"
#include "substitute/objects/ContractTypes.h"
#include "substitute/objects/ServerClasses.h"
#include "substitute/registration/ClassHolders.h"
#include "substitute/registration/RegistrationEntries.h"
#include "substitute/registration/RegistrationRecord.h"
#include "substitute/registration/RegistryKeys.h"
#include "substitute/registration/WriteAccess.h"

namespace kemba::substitute {
namespace {

HKEY RootOf(Scope scope) {
    return scope == Scope::Machine ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER;
}

Scope OtherThan(Scope scope) {
    return scope == Scope::Machine ? Scope::CurrentUser : Scope::Machine;
}

const wchar_t* Audience(Scope scope) {
    return scope == Scope::Machine ? L"for all users" : L"for this user";
}

std::wstring Quoted(const std::wstring& text) {
    return L"\"" + text + L"\"";
}

/// Removes from both views of the hive what other programs say of our classes; the record keeps it.
void SetOthersAside(HKEY root, RegistrationRecord& record) {
    for (const View view : kViews) {
        for (const ServerClass& served : ServerClasses()) {
            if (!OtherPrograms(HoldersOfClass(root, view, served)).empty()) {
                record.SetAside({root, view, kClassesKey + ClassKey(served)});
            }
        }
    }
}

/// Writes all entries, or nothing. To adopt is to count entries that are there already as ours.
void WriteEntries(HKEY root, const LibraryDescription& library, const std::wstring& path, bool adopt) {
    RegistrationRecord record(root);
    const std::wstring formerProgram = record.Program();
    const DWORD formerSize = record.Size();
    try {
        record.SetProgram(path);
        SetOthersAside(root, record);
        for (const View view : kViews) {
            for (const RegistrationEntry& entry : RegistrationEntries(library, path)) {
                record.Write({{root, view, kClassesKey + entry.key}, entry.name, entry.text, entry.shared},
                             adopt);
            }
        }
    } catch (...) {
        const Failure failure = CurrentFailure();
        try {
            record.TakeBack(formerSize, false);
            if (formerSize > 0) {
                record.SetProgram(formerProgram);
            }
        } catch (const Failure& second) {
            throw Failure{failure.status, failure.reason +
                                              L"; taking the registration back failed as well: " +
                                              second.reason + L"; /unregserver tries again"};
        }
        throw failure;
    }
}

/// Whether entries of a copy of this server are there that no record tells of.
bool IsUnrecorded(HKEY root, const std::vector<Holder>& holders) {
    return !RegistrationRecord(root).Exists() && !holders.empty() && OtherPrograms(holders).empty();
}

/// The holders whose place is taken: all but the program itself.
std::vector<Holder> Displaced(const std::vector<Holder>& holders, const std::wstring& path) {
    std::vector<Holder> displaced = holders;
    std::erase_if(displaced, [&](const Holder& holder) { return IsSameFile(holder.program, path); });
    return displaced;
}

std::wstring DescribeRegistration(Scope scope, const std::vector<Holder>& holders, const std::wstring& path) {
    std::wstring line = L"registered " + Quoted(path) + L" " + Audience(scope);
    if (const std::vector<Holder> displaced = Displaced(holders, path); !displaced.empty()) {
        line += L" in place of " + Listed(displaced);
    }
    if (!OtherPrograms(holders).empty()) {
        line += L"; /unregserver puts back what was there";
    }
    return line;
}

std::wstring DescribeAbsence(Scope scope) {
    const Scope other = OtherThan(scope);
    std::wstring line = std::wstring(L"nothing is registered ") + Audience(scope) + L" that could be removed";
    if (RegistrationRecord(RootOf(other)).Exists()) {
        line += std::wstring(L"; the registration ") + Audience(other) + L" is removed by /unregserver" +
                (other == Scope::CurrentUser ? L" /user" : L"");
    }
    return line;
}

} // namespace

RegistrationReport RegisterServer(Scope scope, const ContractTypes& types, const std::wstring& path,
                                  bool replace) {
    const HKEY root = RootOf(scope);
    const LibraryDescription library = DescribeLibrary(types.GetLibrary());
    const std::vector<Holder> holders = Holders(root, library);
    std::vector<Holder> others = OtherPrograms(holders);
    const std::vector<Holder> elsewhere = Displaced(Holders(RootOf(OtherThan(scope)), library), path);
    const std::vector<Holder> hidden =
        scope == Scope::CurrentUser ? OtherPrograms(elsewhere) : std::vector<Holder>();
    others.insert(others.end(), hidden.begin(), hidden.end());
    if (!others.empty() && !replace) {
        throw Failure{HRESULT_FROM_WIN32(ERROR_ALREADY_EXISTS),
                      L"another program is registered: " + Listed(others) +
                          L"; nothing was changed (/regserver /replace takes its place, "
                          L"and /unregserver puts it back)"};
    }
    WriteEntries(root, library, path, IsUnrecorded(root, holders));

    RegistrationReport report;
    report.done.push_back(DescribeRegistration(scope, holders, path));
    if (scope == Scope::CurrentUser) {
        report.done.emplace_back(L"programs that run as administrator, and services, do not see it");
        if (!hidden.empty()) {
            report.warnings.push_back(L"for this user it goes before the machine's registration: " +
                                      Listed(hidden));
        }
    } else {
        if (!elsewhere.empty()) {
            report.warnings.push_back(L"for this user, a registration of the user's own goes before it: " +
                                      Listed(elsewhere));
        }
        if (UsersMayReplace(path)) {
            report.warnings.push_back(L"any user of this computer may change " + Quoted(path) +
                                      L" or its folder, and so what others run; move it to where only "
                                      L"administrators may write");
        }
    }
    return report;
}

RegistrationReport UnregisterServer(Scope scope, const ContractTypes& types, const std::wstring& path) {
    const HKEY root = RootOf(scope);
    const LibraryDescription library = DescribeLibrary(types.GetLibrary());
    const std::vector<Holder> holders = Holders(root, library);
    RegistrationRecord record(root);
    std::wstring registered = record.Program();
    const bool unrecorded = IsUnrecorded(root, holders);
    if (unrecorded) {
        registered = holders.front().program;
    }
    if (!unrecorded && !record.Exists()) {
        return {{DescribeAbsence(scope)}, {}};
    }
    const bool isThere = GetFileAttributesW(registered.c_str()) != INVALID_FILE_ATTRIBUTES;
    if (isThere && !IsSameFile(registered, path)) { // a copy that is gone cannot remove anything itself
        throw Failure{HRESULT_FROM_WIN32(ERROR_ALREADY_EXISTS),
                      Quoted(registered) + L" is registered " + Audience(scope) +
                          L", not this program; nothing was changed (its own /unregserver removes it)"};
    }
    if (unrecorded) {
        WriteEntries(root, library, registered, true);
    }
    record.TakeBack(0, !OtherPrograms(holders).empty());

    RegistrationReport report;
    report.done.push_back(L"removed the registration of " + Quoted(registered) + L" " + Audience(scope));
    if (const std::vector<Holder> left = Holders(root, library); !left.empty()) {
        report.done.push_back(L"registered is now " + Listed(left));
    }
    return report;
}

} // namespace kemba::substitute
