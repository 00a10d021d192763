// What the server's two objects of an action tell each other.
#pragma once

#include <windows.h>
#include <unknwn.h>

namespace kemba::substitute {

/// What a client may ask for after an action.
struct alignas(2) ActionOutcome { // aligned as one value, which threads read and write whole
    bool supported = false;       ///< it can be done; after an execution: it has been done
    bool displays = false;        ///< it shows a dialog
};

/// The request's side that the contract does not show: the flag is written by the client and the answers are
/// read by it, so that no other server's request could serve here. Only inside the process.
struct IActionRequest : public IUnknown {
    virtual bool IsToBeExecuted() const noexcept = 0;
    virtual void SetOutcome(const ActionOutcome& outcome) noexcept = 0;

  protected:
    ~IActionRequest() = default;
};

inline constexpr IID kActionRequest = {
    0x3D9C5B1E, 0x7A64, 0x4F0B, {0x9E, 0x21, 0x6C, 0x58, 0xD3, 0xA0, 0x4B, 0x97}};

} // namespace kemba::substitute
