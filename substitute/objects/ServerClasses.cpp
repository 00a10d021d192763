// The classes and their makers.
#include "substitute/objects/ServerClasses.h"

#include <DriverAutomation.h>

#include <array>

#include "substitute/base/Failure.h"
#include "substitute/objects/DriverActionsObject.h"
#include "substitute/objects/DriverAutomationObject.h"
#include "substitute/objects/ServerContext.h"
#include "substitute/objects/VersionInformationObject.h"

namespace kemba::substitute {
namespace {

template<class Object>
HRESULT Create(const ServerContext& context, REFIID iid, void** object) noexcept {
    try {
        return MakeObject<Object>(context)->QueryInterface(iid, object);
    } catch (...) {
        return CurrentFailure().status;
    }
}

} // namespace

const std::array<ServerClass, 3>& ServerClasses() {
    static const std::array<ServerClass, 3> classes = {{
        {__uuidof(DriverAutomation), L"DriverAutomation", &Create<DriverAutomationObject>},
        {__uuidof(DriverActions), L"DriverActions", &Create<DriverActionsObject>},
        {__uuidof(VersionInformation), L"VersionInformation", &Create<VersionInformationObject>},
    }};
    return classes;
}

} // namespace kemba::substitute
