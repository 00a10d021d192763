// Owners of the system's handles.
#pragma once

#include <windows.h>
#include <winspool.h>

#include <memory>
#include <type_traits>

namespace OCore {

struct HandleCloser {
    void operator()(void* handle) const noexcept { CloseHandle(handle); }
};
/// A kernel object's handle, or none.
using UniqueHandle = std::unique_ptr<void, HandleCloser>;

/// Takes over what CreateFileW gave; none when that was no handle.
inline UniqueHandle OwnFile(HANDLE opened) noexcept {
    return UniqueHandle(opened == INVALID_HANDLE_VALUE ? nullptr : opened);
}

struct LibraryFreer {
    void operator()(HMODULE library) const noexcept { FreeLibrary(library); }
};
/// A loaded library, or none.
using UniqueLibrary = std::unique_ptr<std::remove_pointer_t<HMODULE>, LibraryFreer>;

struct KeyCloser {
    void operator()(HKEY key) const noexcept { RegCloseKey(key); }
};
/// An opened registry key, or none.
using UniqueKey = std::unique_ptr<std::remove_pointer_t<HKEY>, KeyCloser>;

struct PrinterCloser {
    void operator()(HANDLE printer) const noexcept { ClosePrinter(printer); }
};
/// An opened printer, or none.
using UniquePrinter = std::unique_ptr<std::remove_pointer_t<HANDLE>, PrinterCloser>;

struct LocalFreer {
    void operator()(void* memory) const noexcept { LocalFree(memory); }
};
/// Memory that the system allocated for its caller, to be freed by LocalFree; or none.
template<class Content>
using UniqueLocal = std::unique_ptr<Content, LocalFreer>;

} // namespace OCore
