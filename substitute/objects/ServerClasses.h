// The table of the server's classes: what is registered, and what a client can make.
#pragma once

#include <windows.h>

#include <array>

#include "substitute/objects/ServerContext.h"

namespace kemba::substitute {

struct ServerClass {
    CLSID id;
    const wchar_t* name;
    /// Makes an object and asks it for an interface.
    HRESULT (*create)(const ServerContext& context, REFIID iid, void** object) noexcept;
};

const std::array<ServerClass, 3>& ServerClasses();

} // namespace kemba::substitute
