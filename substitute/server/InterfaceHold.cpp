// Marshalling an object that nobody gets.
#include "substitute/server/InterfaceHold.h"

#include <windows.h>
#include <DriverAutomation.h>

#include <algorithm>
#include <iterator>

#include "automation/Owners.h"
#include "core/Compiler.h"

namespace kemba::substitute {
namespace {

const IID kInterfaces[] = {__uuidof(IDispatch),           __uuidof(ISupportErrorInfo),
                           __uuidof(IDriverAutomation),   __uuidof(IDriverSettings),
                           __uuidof(IDriverActions),      __uuidof(IPrinterQueue),
                           __uuidof(IPrinterInformation), __uuidof(IVersionInformation)};

/// Says that it has each of the interfaces, and has none: without a client nobody calls more than what is
/// here.
class Placeholder final : public IUnknown {
  public:
    // The marshaller's identifiers lie in packed tables, at any address.
    KEMBA_ANY_ALIGNMENT HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid,
                                                                 void** object) noexcept override {
        const bool known =
            iid == __uuidof(IUnknown) ||
            std::find(std::begin(kInterfaces), std::end(kInterfaces), iid) != std::end(kInterfaces);
        *object = known ? this : nullptr;
        return known ? S_OK : E_NOINTERFACE;
    }
    // It stays for good.
    ULONG STDMETHODCALLTYPE AddRef() noexcept override { return 2; }
    ULONG STDMETHODCALLTYPE Release() noexcept override { return 1; }
};

} // namespace

void HoldInterfaces() {
    static Placeholder placeholder;
    ComPtr<IStream> stream;
    if (FAILED(CreateStreamOnHGlobal(nullptr, TRUE, stream.Put()))) {
        return;
    }
    for (const IID& iid : kInterfaces) {
        // "Table strong": it holds whether or not anybody ever reads what the stream says.
        [[maybe_unused]] const HRESULT kept =
            CoMarshalInterface(stream.Get(), iid, &placeholder, MSHCTX_LOCAL, nullptr, MSHLFLAGS_TABLESTRONG);
    }
}

} // namespace kemba::substitute
