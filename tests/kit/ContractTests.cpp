// The kit's table of operations against the contract itself.
#include <windows.h>
#include <oleauto.h>

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <ostream>
#include <string>

#include "automation/Owners.h"
#include "core/OString.h"
#include "tests/kit/Operations.h"
#include "tests/kit/ProcessRun.h"

using namespace kemba;
using namespace kit;

namespace {

/// What the table says of an operation.
struct Described {
    int position;
    std::string arguments;
    bool operator==(const Described&) const = default;
};

void PrintTo(const Described& operation, std::ostream* out) {
    *out << "position " << operation.position << ", (" << operation.arguments << ")";
}

using Contract = std::map<std::string, Described>; // by the operation's name

std::string NameOf(ITypeInfo& types, MEMBERID member) {
    OwnedBstr name;
    EXPECT_EQ(types.GetDocumentation(member, name.Put(), nullptr, nullptr, nullptr), S_OK);
    return OString(name.Text()).Narrow();
}

std::string NameOf(ITypeInfo& types, const TYPEDESC& type) {
    switch (type.vt) {
    case VT_PTR: return NameOf(types, *type.lptdesc);
    case VT_BSTR: return "BSTR";
    case VT_BOOL: return "VARIANT_BOOL";
    case VT_I4: return "long";
    case VT_VARIANT: return "VARIANT";
    case VT_USERDEFINED: {
        ComPtr<ITypeInfo> named;
        EXPECT_EQ(types.GetRefTypeInfo(type.hreftype, named.Put()), S_OK);
        return NameOf(*named, MEMBERID_NIL);
    }
    default: return "type " + std::to_string(type.vt);
    }
}

/// The operations of one interface as a table of functions has them.
void Describe(ITypeInfo& types, Contract& contract) {
    const auto release = [&](FUNCDESC* function) { types.ReleaseFuncDesc(function); };
    FUNCDESC* next = nullptr;
    for (UINT index = 0; SUCCEEDED(types.GetFuncDesc(index, &next)); ++index) {
        const std::unique_ptr<FUNCDESC, decltype(release)> function(next, release);
        Described described{function->oVft / static_cast<int>(sizeof(void*)) - 6,
                            {}}; // behind IDispatch's seven
        for (SHORT argument = 0; argument < function->cParams; ++argument) {
            const ELEMDESC& element = function->lprgelemdescParam[argument];
            described.arguments += described.arguments.empty() ? "" : ", ";
            described.arguments += element.paramdesc.wParamFlags & PARAMFLAG_FOUT ? "out " : "in ";
            described.arguments += NameOf(types, element.tdesc);
        }
        const std::string name = NameOf(types, function->memid);
        EXPECT_EQ(function->memid, described.position)
            << name << ": the identifier for late callers is its position";
        contract.emplace(NameOf(types, MEMBERID_NIL) + "." + name, described);
    }
}

/// Everything that the type library tells of its dual interfaces.
Contract TheContract() {
    Contract contract;
    ComPtr<ITypeLib> library;
    EXPECT_EQ(LoadTypeLibEx(ProgramPath(L"kit_tests.exe").c_str(), REGKIND_NONE, library.Put()), S_OK);
    for (UINT index = 0; library && index < library->GetTypeInfoCount(); ++index) {
        ComPtr<ITypeInfo> late;
        ComPtr<ITypeInfo> early;
        HREFTYPE other = 0;
        if (SUCCEEDED(library->GetTypeInfo(index, late.Put())) &&
            SUCCEEDED(late->GetRefTypeOfImplType(static_cast<UINT>(-1), &other)) &&
            SUCCEEDED(late->GetRefTypeInfo(other, early.Put()))) {
            Describe(*early, contract);
        }
    }
    return contract;
}

TEST(Contract, IsTheTableOfOperationsAndTheReservedOnes) {
    Contract contract = TheContract();
    ASSERT_FALSE(contract.empty());
    for (const Operation& operation : AllOperations()) {
        const auto found = contract.find(std::string(operation.name));
        ASSERT_NE(found, contract.end()) << "the contract has no " << operation.name;
        EXPECT_EQ(found->second, (Described{operation.position, std::string(operation.arguments)}))
            << operation.name << " moved or changed, which breaks every client and server";
        contract.erase(found);
    }
    for (const auto& [name, described] : contract) {
        EXPECT_EQ(name.substr(name.find('.') + 1), "Reserved" + std::to_string(described.position))
            << name << ": give it a row in tests/kit/Operations.cpp";
        EXPECT_EQ(described.arguments, "") << name;
    }
}

} // namespace
