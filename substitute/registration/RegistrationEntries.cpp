// What stands in the registry for COM, for scripts and for the marshaller.
#include "substitute/registration/RegistrationEntries.h"

#include <oleauto.h>

#include <memory>
#include <string>
#include <vector>

#include "automation/Owners.h"
#include "substitute/base/Failure.h"
#include "substitute/base/NumberText.h"
#include "substitute/objects/ServerClasses.h"
#include "substitute/registration/ServerIdentity.h"

namespace kemba::substitute {
namespace {

/// The name by which scripts make an object of the class.
std::wstring ProgramId(const ServerClass& served) {
    return std::wstring(L"Kemba.") + served.name;
}

/// Appends the interface that the information describes if it is one for the system's marshaller.
void AppendInterface(ITypeInfo& information, std::vector<LibraryDescription::Interface>& interfaces) {
    TYPEATTR* attributes = nullptr;
    ThrowIfFailed(information.GetTypeAttr(&attributes), L"reading the type library");
    const auto release = [&information](TYPEATTR* held) { information.ReleaseTypeAttr(held); };
    const std::unique_ptr<TYPEATTR, decltype(release)> held(attributes, release);
    if ((held->typekind != TKIND_INTERFACE && held->typekind != TKIND_DISPATCH) ||
        (held->wTypeFlags & (TYPEFLAG_FOLEAUTOMATION | TYPEFLAG_FDUAL)) == 0) {
        return;
    }
    OwnedBstr name;
    ThrowIfFailed(information.GetDocumentation(MEMBERID_NIL, name.Put(), nullptr, nullptr, nullptr),
                  L"reading the type library");
    interfaces.push_back({Braced(held->guid), name.Text()});
}

std::wstring VersionPart(WORD number) {
    return NumberText(number, 1, L"0123456789abcdef");
}

} // namespace

LibraryDescription DescribeLibrary(ITypeLib& library) {
    TLIBATTR* attributes = nullptr;
    ThrowIfFailed(library.GetLibAttr(&attributes), L"reading the type library");
    const auto release = [&library](TLIBATTR* held) { library.ReleaseTLibAttr(held); };
    const std::unique_ptr<TLIBATTR, decltype(release)> held(attributes, release);
    OwnedBstr name;
    ThrowIfFailed(library.GetDocumentation(MEMBERID_NIL, nullptr, name.Put(), nullptr, nullptr),
                  L"reading the type library");
    const std::wstring version = VersionPart(held->wMajorVerNum) + L"." + VersionPart(held->wMinorVerNum);
    const int flags = held->wLibFlags & ~LIBFLAG_FHASDISKIMAGE; // the loader's, not the library's
    LibraryDescription described{
        Braced(held->guid), name.Text(), version, NumberText(static_cast<WORD>(flags)), {}};
    for (UINT index = 0; index < library.GetTypeInfoCount(); ++index) {
        ComPtr<ITypeInfo> information;
        ThrowIfFailed(library.GetTypeInfo(index, information.Put()), L"reading the type library");
        AppendInterface(*information, described.interfaces);
    }
    return described;
}

std::wstring ClassKey(const ServerClass& served) {
    return L"CLSID\\" + Braced(served.id);
}

std::wstring LibraryKey(const LibraryDescription& library) {
    return L"TypeLib\\" + library.id + L"\\" + library.version;
}

std::wstring InterfaceKey(const LibraryDescription::Interface& described) {
    return L"Interface\\" + described.id;
}

std::vector<RegistrationEntry> RegistrationEntries(const LibraryDescription& library,
                                                   const std::wstring& path) {
    const std::wstring application = Braced(kApplication);
    std::vector<RegistrationEntry> entries = {
        {L"AppID\\" + application, L"", kApplicationName},
        {std::wstring(L"AppID\\") + kProgramFile, L"AppID", application},
    };
    for (const ServerClass& served : ServerClasses()) {
        const std::wstring key = ClassKey(served);
        const std::wstring name = std::wstring(kApplicationName) + L": " + served.name;
        entries.insert(entries.end(), {
                                          {key, L"", name},
                                          {key, L"AppID", application},
                                          // Quoted, so that no blank in the path is taken for its end.
                                          {key + L"\\LocalServer32", L"", L"\"" + path + L"\""},
                                          {key + L"\\LocalServer32", L"ServerExecutable", path},
                                          {key + L"\\TypeLib", L"", library.id, true},
                                          {key + L"\\Version", L"", library.version, true},
                                          {key + L"\\ProgID", L"", ProgramId(served)},
                                          {ProgramId(served), L"", name},
                                          {ProgramId(served) + L"\\CLSID", L"", Braced(served.id)},
                                      });
    }
    // The library is neutral in language, and stands for clients of either word size in the same file.
    const std::wstring key = LibraryKey(library);
    entries.insert(entries.end(), {
                                      {key, L"", library.name, true},
                                      {key + L"\\0\\win64", L"", path},
                                      {key + L"\\0\\win32", L"", path},
                                      {key + L"\\FLAGS", L"", library.flags, true},
                                      {key + L"\\HELPDIR", L"", path.substr(0, path.find_last_of(L"\\/"))},
                                  });
    for (const LibraryDescription::Interface& described : library.interfaces) {
        const std::wstring interfaceKey = InterfaceKey(described);
        entries.insert(entries.end(),
                       {
                           {interfaceKey, L"", described.name, true},
                           {interfaceKey + L"\\ProxyStubClsid32", L"", kAutomationMarshaller, true},
                           {interfaceKey + L"\\TypeLib", L"", library.id, true},
                           {interfaceKey + L"\\TypeLib", L"Version", library.version, true},
                       });
    }
    return entries;
}

} // namespace kemba::substitute
