// Version texts.
#include "substitute/objects/VersionInformationObject.h"

#include <string_view>

#include "Version.h"
#include "substitute/base/Failure.h"
#include "substitute/objects/AutomationObject.h"

namespace kemba::substitute {
namespace {

constexpr std::string_view kVersion = KEMBA_VERSION_TEXT;
#ifdef NDEBUG
constexpr wchar_t kBuild[] = L"release build";
#else
constexpr wchar_t kBuild[] = L"debug build";
#endif

} // namespace

HRESULT VersionInformationObject::GetVersion(BSTR* version) noexcept {
    return Answer(L"GetVersion", version,
                  [&] { HandOut(std::wstring(kVersion.begin(), kVersion.end()), version); });
}

HRESULT VersionInformationObject::GetVersionDetail(BSTR* detail) noexcept {
    return Answer(L"GetVersionDetail", detail, [&] {
        HandOut(std::wstring(kServerName) + L", " + kBuild + L", on the Windows print spooler", detail);
    });
}

} // namespace kemba::substitute
