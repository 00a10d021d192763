// The server's own version.
#pragma once

#include <DriverAutomation.h>

#include "substitute/objects/AutomationObject.h"
#include "substitute/objects/ServerContext.h"

namespace kemba::substitute {

class VersionInformationObject final : public AutomationObject<IVersionInformation> {
  public:
    /// Throws Failure.
    explicit VersionInformationObject(const ServerContext& context) : AutomationObject(context) {}

    /// The product's version, such as "1.0.0".
    HRESULT STDMETHODCALLTYPE GetVersion(BSTR* version) noexcept override;
    /// The program's name, the kind of build and what stands behind the server.
    HRESULT STDMETHODCALLTYPE GetVersionDetail(BSTR* detail) noexcept override;

  private:
    ~VersionInformationObject() override = default;
};

} // namespace kemba::substitute
