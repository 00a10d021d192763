// Loading the embedded type library.
#include "substitute/objects/ContractTypes.h"

#include <oleauto.h>

#include "substitute/base/Failure.h"

namespace kemba::substitute {

std::wstring ProgramPath() {
    std::wstring path(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
        if (length == 0) {
            throw WindowsFailure(L"asking for the program's path failed", GetLastError());
        }
        if (length < path.size()) {
            path.resize(length);
            return path;
        }
        path.resize(path.size() * 2); // cut off: the path is longer
    }
}

ContractTypes::ContractTypes() {
    ThrowIfFailed(LoadTypeLibEx(ProgramPath().c_str(), REGKIND_NONE, m_library.Put()),
                  L"loading the type library failed");
}

ComPtr<ITypeInfo> ContractTypes::Find(REFIID iid) const {
    ComPtr<ITypeInfo> information;
    ThrowIfFailed(m_library->GetTypeInfoOfGuid(iid, information.Put()),
                  L"the type library lacks an interface");
    return information;
}

} // namespace kemba::substitute
