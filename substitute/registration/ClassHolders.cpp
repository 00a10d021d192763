// Reading who holds the classes.
#include "substitute/registration/ClassHolders.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "core/Handles.h"
#include "substitute/base/Names.h"
#include "substitute/base/NumberText.h"
#include "substitute/base/Paths.h"
#include "substitute/objects/ServerClasses.h"
#include "substitute/registration/RegistrationEntries.h"
#include "substitute/registration/RegistryKeys.h"
#include "substitute/registration/ServerIdentity.h"

namespace kemba::substitute {
namespace {

/// Both files of a comparison are to be open at once: an index may be used again once its file is gone.
OCore::UniqueHandle OpenToIdentify(const std::wstring& path) {
    return OCore::OwnFile(CreateFileW(path.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                      nullptr, OPEN_EXISTING, 0, nullptr));
}

class HiveView {
  public:
    HiveView(HKEY root, View view) : m_root(root), m_view(view) {}

    std::wstring Text(const std::wstring& key, const std::wstring& name = {}) const {
        return RegistryKey::Open({m_root, m_view, kClassesKey + key}).ReadText(name);
    }

    void AppendClass(const std::wstring& id, const std::wstring& what, std::vector<Holder>& holders) const {
        const std::wstring key = L"CLSID\\" + id;
        for (const wchar_t* const server : {L"\\InprocServer32", L"\\InprocHandler32", L"\\LocalServer32"}) {
            if (const std::wstring commandLine = Text(key + server); !commandLine.empty()) {
                holders.push_back({what, ProgramOf(commandLine)});
            }
        }
        if (const std::wstring other = Text(key + L"\\TreatAs"); !other.empty()) {
            holders.push_back({what, L"class " + other});
        }
        if (const std::wstring application = Text(key, L"AppID"); !application.empty()) {
            const std::wstring service = Text(L"AppID\\" + application, L"LocalService");
            if (!service.empty()) {
                holders.push_back({what, L"service " + service});
            }
        }
    }

    void AppendLibrary(const LibraryDescription& library, std::vector<Holder>& holders) const {
        for (const wchar_t* const system : {L"\\0\\win64", L"\\0\\win32"}) {
            if (const std::wstring file = Text(LibraryKey(library) + system); !file.empty()) {
                holders.push_back({L"the type library", ProgramOf(file)});
            }
        }
    }

    void AppendInterface(const LibraryDescription& library, const LibraryDescription::Interface& described,
                         std::vector<Holder>& holders) const {
        const std::wstring proxy = Text(InterfaceKey(described) + L"\\ProxyStubClsid32");
        if (!proxy.empty() && !IsSameName(proxy, kAutomationMarshaller)) {
            const std::size_t before = holders.size();
            AppendClass(proxy, described.name, holders);
            if (holders.size() == before) {
                holders.push_back({described.name, L"class " + proxy});
            }
        }
        const std::wstring other = Text(InterfaceKey(described) + L"\\TypeLib");
        if (!other.empty() && !IsSameName(other, library.id)) {
            holders.push_back({described.name, L"type library " + other});
        }
    }

  private:
    HKEY m_root;
    View m_view;
};

} // namespace

std::wstring ProgramOf(std::wstring_view commandLine) {
    commandLine.remove_prefix(std::min(commandLine.find_first_not_of(L' '), commandLine.size()));
    if (!commandLine.empty() && commandLine.front() == L'"') {
        commandLine.remove_prefix(1);
        return std::wstring(commandLine.substr(0, commandLine.find(L'"')));
    }
    // Without quotes, blanks may be part of the path as well as its end.
    constexpr std::wstring_view kExtension = L".exe";
    for (std::size_t at = 0; at + kExtension.size() <= commandLine.size(); ++at) {
        const std::size_t end = at + kExtension.size();
        if (IsSameName(commandLine.substr(at, kExtension.size()), kExtension) &&
            (end == commandLine.size() || commandLine[end] == L' ')) {
            return std::wstring(commandLine.substr(0, end));
        }
    }
    return std::wstring(commandLine);
}

bool IsServerCopy(std::wstring_view program) {
    return IsSameName(FileNameOf(program), kProgramFile);
}

bool IsSameFile(const std::wstring& left, const std::wstring& right) {
    if (IsSameName(left, right)) {
        return true;
    }
    const OCore::UniqueHandle leftFile = OpenToIdentify(left);
    const OCore::UniqueHandle rightFile = OpenToIdentify(right);
    BY_HANDLE_FILE_INFORMATION one = {};
    BY_HANDLE_FILE_INFORMATION other = {};
    return leftFile && rightFile && GetFileInformationByHandle(leftFile.get(), &one) &&
           GetFileInformationByHandle(rightFile.get(), &other) &&
           one.dwVolumeSerialNumber == other.dwVolumeSerialNumber &&
           one.nFileIndexHigh == other.nFileIndexHigh && one.nFileIndexLow == other.nFileIndexLow;
}

std::vector<Holder> HoldersOfClass(HKEY root, View view, const ServerClass& served) {
    std::vector<Holder> holders;
    HiveView(root, view).AppendClass(Braced(served.id), served.name, holders);
    return holders;
}

std::vector<Holder> Holders(HKEY root, const LibraryDescription& library) {
    std::vector<Holder> found;
    for (const View view : kViews) {
        const HiveView hive(root, view);
        for (const ServerClass& served : ServerClasses()) {
            hive.AppendClass(Braced(served.id), served.name, found);
        }
        hive.AppendLibrary(library, found);
        for (const LibraryDescription::Interface& described : library.interfaces) {
            hive.AppendInterface(library, described, found);
        }
    }
    std::vector<Holder> holders;
    std::copy_if(found.begin(), found.end(), std::back_inserter(holders), [&](const Holder& holder) {
        return std::none_of(holders.begin(), holders.end(),
                            [&](const Holder& known) { return IsSameName(known.program, holder.program); });
    });
    return holders;
}

std::vector<Holder> OtherPrograms(const std::vector<Holder>& holders) {
    std::vector<Holder> others;
    std::copy_if(holders.begin(), holders.end(), std::back_inserter(others),
                 [](const Holder& holder) { return !IsServerCopy(holder.program); });
    return others;
}

std::wstring Listed(const std::vector<Holder>& holders) {
    std::wstring list;
    for (const Holder& holder : holders) {
        list += (list.empty() ? L"\"" : L", \"") + holder.program + L"\" (" + holder.what + L")";
    }
    return list;
}

} // namespace kemba::substitute
