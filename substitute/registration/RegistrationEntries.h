// The table of the server's registry entries.
#pragma once

#include <windows.h>
#include <oaidl.h>

#include <string>
#include <vector>

#include "substitute/objects/ServerClasses.h"

namespace kemba::substitute {

/// What the registration needs of the contract's type library.
struct LibraryDescription {
    struct Interface {
        std::wstring id;
        std::wstring name;
    };

    std::wstring id;
    std::wstring name;
    std::wstring version; ///< "1.0"
    std::wstring flags;
    std::vector<Interface> interfaces; ///< those that the system's own marshaller takes between processes
};

/// Throws Failure.
LibraryDescription DescribeLibrary(ITypeLib& library);

inline constexpr wchar_t kClassesKey[] = L"Software\\Classes\\";
/// The marshaller that works by the type library.
inline constexpr wchar_t kAutomationMarshaller[] = L"{00020424-0000-0000-C000-000000000046}";

/// Keys below "Software\Classes\".
std::wstring ClassKey(const ServerClass& served);
std::wstring LibraryKey(const LibraryDescription& library);
std::wstring InterfaceKey(const LibraryDescription::Interface& described);

/// One REG_SZ.
struct RegistrationEntry {
    std::wstring key;  ///< below "Software\Classes\"
    std::wstring name; ///< empty for the key's own value
    std::wstring text;
    bool shared = false; ///< says nothing of this program: any server of the contract would write the same
};

/// All entries of the program at `path`.
std::vector<RegistrationEntry> RegistrationEntries(const LibraryDescription& library,
                                                   const std::wstring& path);

} // namespace kemba::substitute
