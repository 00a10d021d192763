// Loading the embedded type library.
#include "substitute/objects/ContractTypes.h"

#include <oleauto.h>

#include "automation/Owners.h"
#include "substitute/base/Failure.h"
#include "substitute/base/Paths.h"

namespace kemba::substitute {

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
