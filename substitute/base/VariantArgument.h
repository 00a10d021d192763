// What languages pass for one argument, in VARIANTs.
#pragma once

#include <windows.h>
#include <oaidl.h>

namespace kemba::substitute {

/// The value itself, where a variable came by reference: scripts pass those. A reference to a further one,
/// and one to nothing, stand for themselves, as no value.
inline const VARIANT& BehindReference(const VARIANT& argument) {
    constexpr VARTYPE kReference = VT_BYREF | VT_VARIANT;
    const bool leads = argument.vt == kReference && argument.pvarVal && argument.pvarVal->vt != kReference;
    return leads ? *argument.pvarVal : argument;
}

/// Whether it is the standard value of an argument that is left out, itself or by reference.
inline bool IsLeftOut(const VARIANT& argument) {
    return (argument.vt == VT_ERROR && argument.scode == DISP_E_PARAMNOTFOUND) ||
           (argument.vt == (VT_BYREF | VT_ERROR) && argument.pscode &&
            *argument.pscode == DISP_E_PARAMNOTFOUND);
}

} // namespace kemba::substitute
