// Settings between a printer and a file.
#include "substitute/objects/DriverSettingsObject.h"

#include <string>

#include "substitute/base/Failure.h"
#include "substitute/base/Paths.h"
#include "substitute/base/VariantArgument.h"
#include "substitute/objects/AutomationObject.h"
#include "substitute/settings/SettingsFile.h"
#include "substitute/settings/SettingsStore.h"
#include "substitute/settings/VqsFormat.h"

namespace kemba::substitute {
namespace {

/// Languages have several values that say "none".
void NeedOmitted(const VARIANT& option) {
    const VARIANT& value = BehindReference(option);
    if (value.vt != VT_EMPTY && value.vt != VT_NULL && !IsLeftOut(value)) {
        throw Failure{E_INVALIDARG, L"the optional argument has to be omitted"};
    }
}

/// Work on a file, which has to be named by an absolute path: any other would be looked for in the server's
/// folder. A failure says which file it was.
template<class Work>
void WithFile(const wchar_t* what, const std::wstring& path, Work&& work) {
    try {
        if (!IsAbsolutePath(path)) {
            throw WindowsFailure(L"the path is not absolute", ERROR_BAD_PATHNAME);
        }
        work();
    } catch (Failure& failure) {
        failure.reason = what + (L" \"" + path + L"\": ") + failure.reason;
        throw;
    }
}

} // namespace

HRESULT DriverSettingsObject::ImportSettings(BSTR path, VARIANT option) noexcept {
    return Answer(L"ImportSettings", [&] {
        NeedOmitted(option);
        const std::wstring file = TextFrom(path, L"the path");
        WithFile(L"importing the settings of", file,
                 [&] { ApplySettings(*m_printer, DecodeVqs(ReadSettingsFile(file, kMaximumVqsSize))); });
    });
}

HRESULT DriverSettingsObject::ExportSettings(BSTR path, VARIANT option) noexcept {
    return Answer(L"ExportSettings", [&] {
        NeedOmitted(option);
        const std::wstring file = TextFrom(path, L"the path");
        WithFile(L"exporting the settings to", file,
                 [&] { WriteSettingsFile(file, EncodeVqs(ReadSettings(*m_printer))); });
    });
}

HRESULT DriverSettingsObject::ResetSettings(VARIANT option) noexcept {
    return Answer(L"ResetSettings", [&] {
        NeedOmitted(option);
        substitute::ResetSettings(*m_printer);
    });
}

} // namespace kemba::substitute
