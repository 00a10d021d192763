// Version command.
#include "commands/Command_Version.h"

#include "automation/Activation.h"
#include "cli/Command_Base.h"
#include "cli/PrinterSelection.h"
#include "core/OArray.h"
#include "core/ORegistry.h"
#include "core/OString.h"
#include "core/WordTable.h"
#include "platform/OperatingSystem.h"

namespace kemba {
namespace {

struct Sections {
    const wchar_t* word;
    bool server;
    bool system;
    bool drivers;
};

constexpr Sections kSections[] = {
    {L"interface", true, false, false},
    {L"os", false, true, false},
    {L"driver", false, false, true},
};

/// No word and, on purpose without an error, an unknown word.
constexpr Sections kEverything = {nullptr, true, true, true};

const Sections& SectionsFor(const Arguments& arguments) {
    const Sections* const row = arguments.empty() ? nullptr : OCore::FindRow(kSections, arguments.front());
    return row ? *row : kEverything;
}

/// One text of the server's version, from an object of its own.
OString AskServer(HRESULT (IVersionInformation::*question)(BSTR*)) {
    return CallForText(Activate<VersionInformation, IVersionInformation>(), question);
}

} // namespace

bool Command_Version::Run() {
    const Sections& sections = SectionsFor(GetArguments());
    if (sections.server) {
        PrintServerVersion();
    }
    if (sections.system) {
        PrintSystemVersion();
    }
    return !sections.drivers || PrintDriverVersions();
}

void Command_Version::ShowHelp() {
    GetConsole().PrintMessage("help:version");
}

bool Command_Version::Execute(const OString& printerName) {
    OString text;
    {
        const auto automation = ActivateForPrinter(printerName);
        const OString version = CallForText(automation, &IDriverAutomation::GetDriverVersion);
        const OString detail = CallForText(automation, &IDriverAutomation::GetDriverVersionDetail);
        text = OrUnknown(version);
        if (!version.IsEmpty() && !detail.IsEmpty()) {
            text = text + L" (" + detail + L")";
        }
    }
    GetConsole().PrintText(printerName + L": " + text);
    return true;
}

OString Command_Version::GetName() const {
    return L"Version";
}

/// A failure is left to the entry point.
void Command_Version::PrintServerVersion() {
    const OString version = OrUnknown(AskServer(&IVersionInformation::GetVersion));
    const OString detail = OrUnknown(AskServer(&IVersionInformation::GetVersionDetail));
    GetConsole().PrintText(OString(L"DAL: ") + version + L" [" + detail + L"]");
}

void Command_Version::PrintSystemVersion() {
    const OperatingSystem& system = TheOperatingSystem();
    const OString release =
        ORegistry().ReadString("LOCAL_MACHINE:SOFTWARE/Microsoft/Windows NT/CurrentVersion/ReleaseId", {});
    GetConsole().PrintText(OString(L"OS: ") + system.name);
    if (!release.IsEmpty()) {
        GetConsole().PrintText(OString(L"OS Version: ") + release + L" (" + system.buildText + L")");
    }
}

/// One line per printer up to the first that fails; on purpose nothing is printed for that one.
bool Command_Version::PrintDriverVersions() {
    OStringArray printerNames;
    return SelectPrinters(GetSettings(), printerNames, GetConsole()) && ExecuteForEach(printerNames);
}

OString Command_Version::OrUnknown(const OString& version) {
    return version.IsEmpty() ? GetConsole().FetchMessage("text:Unknown") : version;
}

} // namespace kemba
