// The contract's type library as the program file carries it.
#pragma once

#include <windows.h>
#include <oaidl.h>

#include "automation/Owners.h"

namespace kemba::substitute {

/// The type library embedded in the running program; read-only after its construction.
class ContractTypes {
  public:
    /// Loads it without registering anything. Throws Failure.
    ContractTypes();

    /// What the library says of one interface. Throws Failure.
    ComPtr<ITypeInfo> Find(REFIID iid) const;
    ITypeLib& GetLibrary() const { return *m_library; }

  private:
    ComPtr<ITypeLib> m_library;
};

} // namespace kemba::substitute
