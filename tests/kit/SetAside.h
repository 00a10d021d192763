// What a test changes for a while and leaves as it was.
#pragma once

#include <utility>

#include "core/SystemCalls.h"

namespace kit {

/// A place whose content is put back at the end of its scope. The place says what it holds with `Get`, and is
/// given it with `Put`.
template<class Place>
class SetAside : public Place {
  public:
    template<class... Arguments>
    explicit SetAside(Arguments&&... arguments) : Place{std::forward<Arguments>(arguments)...} {}
    SetAside(const SetAside&) = delete;
    SetAside& operator=(const SetAside&) = delete;
    ~SetAside() { Place::Put(m_before); }

  private:
    const decltype(std::declval<const Place&>().Get()) m_before = Place::Get();
};

/// The platform's calls, of which a test puts others in their place.
struct SystemCallsPlace {
    static OCore::SystemCalls Get() { return OCore::TheSystemCalls(); }
    static void Put(const OCore::SystemCalls& calls) { OCore::TheSystemCalls() = calls; }
    OCore::SystemCalls* operator->() const { return &OCore::TheSystemCalls(); }
};
using SystemCallsPreset = SetAside<SystemCallsPlace>;

} // namespace kit
