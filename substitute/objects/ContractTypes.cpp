// Loading the embedded type library.
#include "substitute/objects/ContractTypes.h"

#include <oleauto.h>

#include "automation/Owners.h"
#include "substitute/base/Failure.h"
#include "substitute/base/Paths.h"

namespace kemba::substitute {

ContractTypes::ContractTypes() {
    ThrowIfFailed(LoadTypeLibEx(ProgramPath().c_str(), REGKIND_NONE, m_library.Put()),
                  L"loading the type library");
}

ComPtr<ITypeInfo> ContractTypes::Find(REFIID iid) const {
    ComPtr<ITypeInfo> information;
    if (const HRESULT found = m_library->GetTypeInfoOfGuid(iid, information.Put()); FAILED(found)) {
        throw ComFailure(L"the type library lacks an interface", found);
    }
    return information;
}

} // namespace kemba::substitute
