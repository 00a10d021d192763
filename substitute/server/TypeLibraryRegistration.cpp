// Type library calls of either scope.
#include "substitute/server/TypeLibraryRegistration.h"

#include <oleauto.h>

#include <memory>

#include "substitute/base/Failure.h"

namespace kemba::substitute {
namespace {

using RegisterCall = HRESULT(WINAPI*)(ITypeLib*, OLECHAR*, OLECHAR*);
using UnregisterCall = HRESULT(WINAPI*)(REFGUID, WORD, WORD, LCID, SYSKIND);

/// A call for the current user's registration, which the oldest systems lack. Throws Failure.
template<class Call>
Call FindUserCall(const char* name) {
    const HMODULE automation = GetModuleHandleW(L"oleaut32.dll");
    auto* const address = reinterpret_cast<void*>(GetProcAddress(automation, name));
    if (!address) {
        throw WindowsFailure(L"this system registers no type library for one user", ERROR_PROC_NOT_FOUND);
    }
    return reinterpret_cast<Call>(address);
}

} // namespace

void RegisterTypeLibrary(Scope scope, ITypeLib& library, const std::wstring& path) {
    const RegisterCall call = scope == Scope::Machine ? static_cast<RegisterCall>(&RegisterTypeLib)
                                                      : FindUserCall<RegisterCall>("RegisterTypeLibForUser");
    std::wstring file = path; // the call asks for a text that could be changed, and does not change it
    ThrowIfFailed(call(&library, file.data(), nullptr), L"registering the type library failed");
}

void UnregisterTypeLibrary(Scope scope, ITypeLib& library) {
    const UnregisterCall call = scope == Scope::Machine
                                    ? static_cast<UnregisterCall>(&UnRegisterTypeLib)
                                    : FindUserCall<UnregisterCall>("UnRegisterTypeLibForUser");
    TLIBATTR* attributes = nullptr;
    ThrowIfFailed(library.GetLibAttr(&attributes), L"reading the type library failed");
    const auto release = [&library](TLIBATTR* held) { library.ReleaseTLibAttr(held); };
    const std::unique_ptr<TLIBATTR, decltype(release)> held(attributes, release);
    call(held->guid, held->wMajorVerNum, held->wMinorVerNum, held->lcid, held->syskind);
}

} // namespace kemba::substitute
