// Owners of interface pointers and BSTRs.
#pragma once

#include <windows.h>

#include <oleauto.h>

#include <memory>
#include <utility>

namespace kemba::substitute {

struct Releaser {
    template<class Interface>
    void operator()(Interface* pointer) const noexcept {
        pointer->Release();
    }
};

/// One reference to a COM object.
template<class Interface>
using Held = std::unique_ptr<Interface, Releaser>;

/// A new object of ours with its first reference.
template<class Object, class... Arguments>
Held<Object> Make(Arguments&&... arguments) {
    return Held<Object>(new Object(std::forward<Arguments>(arguments)...));
}

struct BstrFreer {
    void operator()(wchar_t* text) const noexcept { SysFreeString(text); }
};

using HeldBstr = std::unique_ptr<wchar_t, BstrFreer>;

} // namespace kemba::substitute
