// Owners of what tests take from the system.
#pragma once

#include <windows.h>
#include <objbase.h>
#include <winspool.h>

#include <stdexcept>
#include <string>

#include "automation/Owners.h"
#include "core/Handles.h"

namespace kit {

using OCore::OwnFile;
using OCore::UniqueHandle;
using OCore::UniqueKey;
using OCore::UniqueLibrary;
using OCore::UniqueLocal;
using OCore::UniquePrinter;

/// A key below `root`, or none when there is none with that access.
inline UniqueKey OpenKey(HKEY root, const std::wstring& path, REGSAM access) {
    HKEY opened = nullptr;
    RegOpenKeyExW(root, path.c_str(), 0, access, &opened);
    return UniqueKey(opened);
}

/// A key below `root`, made if it is not there; none when that is refused.
inline UniqueKey MakeKey(HKEY root, const std::wstring& path, REGSAM access, DWORD options = 0) {
    HKEY made = nullptr;
    RegCreateKeyExW(root, path.c_str(), 0, nullptr, options, access, nullptr, &made, nullptr);
    return UniqueKey(made);
}

/// A file that is there, or none when it cannot be opened so.
inline UniqueHandle OpenExisting(const std::wstring& path, DWORD access, DWORD share) {
    return OwnFile(CreateFileW(path.c_str(), access, share, nullptr, OPEN_EXISTING, 0, nullptr));
}

/// A printer, or none when it cannot be opened so.
inline UniquePrinter OwnPrinter(std::wstring name, DWORD access = PRINTER_ACCESS_USE) {
    PRINTER_DEFAULTSW defaults{nullptr, nullptr, access};
    HANDLE opened = nullptr;
    return UniquePrinter(OpenPrinterW(name.data(), &opened, &defaults) ? opened : nullptr);
}

/// The thread is in an apartment as long as it lives.
class Apartment {
  public:
    /// Throws std::runtime_error when the thread is in one of another kind.
    explicit Apartment(DWORD kind = COINIT_APARTMENTTHREADED) {
        if (FAILED(CoInitializeEx(nullptr, kind))) {
            throw std::runtime_error("the component runtime cannot be initialised");
        }
    }
    Apartment(const Apartment&) = delete;
    Apartment& operator=(const Apartment&) = delete;
    ~Apartment() { CoUninitialize(); }
};

/// How many references an object has.
template<class Object>
ULONG ReferencesTo(Object& object) {
    object.AddRef();
    return object.Release();
}

/// An interface of an object's; `status`, if any, gets what the object answers.
template<class Interface>
kemba::ComPtr<Interface> Query(IUnknown& object, HRESULT* status = nullptr) {
    kemba::ComPtr<Interface> found;
    const HRESULT answer = object.QueryInterface(__uuidof(Interface), reinterpret_cast<void**>(found.Put()));
    if (status) {
        *status = answer;
    }
    return found;
}

} // namespace kit
