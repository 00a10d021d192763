// What the clients of a soak do to its printers, and so what has to be there whatever the others do
// meanwhile.
//
// Each text of a printer is changed by one client alone, its owner, which counts its changes: the owner reads
// the text of its latest change, and everybody else never an older one than before. Settings have a few
// states, each of them told by the device modes and by every value. Jobs say whose they are, and how long.
#pragma once

#include <windows.h>
#include <DriverAutomation.h>

#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "substitute/settings/Settings.h"

namespace kit {

inline constexpr int kSoakClients = 8;
inline constexpr int kSoakPrinters = 20;
inline constexpr int kSoakStates = 4;

/// A text that clients change, and kemba's word for it.
struct SoakField {
    const wchar_t* word;
    HRESULT (STDMETHODCALLTYPE IDriverAutomation::*get)(BSTR*);
    HRESULT (STDMETHODCALLTYPE IDriverAutomation::*put)(BSTR);
};
inline constexpr SoakField kSoakFields[] = {
    {L"comment", &IDriverAutomation::GetComment, &IDriverAutomation::PutComment},
    {L"location", &IDriverAutomation::GetLocation, &IDriverAutomation::PutLocation},
    {L"sharename", &IDriverAutomation::GetShareName, &IDriverAutomation::PutShareName},
};
inline constexpr int kSoakFieldCount = static_cast<int>(std::size(kSoakFields));

/// The client that alone changes a printer's text; a printer's texts have different owners.
int FieldOwner(int printer, int field);
/// Whether a client imports settings into a printer; every other printer has one such client, the rest two.
bool IsImporter(int printer, int client);
bool HasOneImporter(int printer);

/// The text of a change; 0 is the one that the printer begins with.
std::wstring FieldText(int printer, int field, unsigned change);
/// The number of the change whose text that is; nothing when it is none of that printer and field, or torn.
std::optional<unsigned> ChangeOf(int printer, int field, const std::wstring& text);

/// Settings in one of the states.
kemba::substitute::Settings InState(kemba::substitute::Settings settings, int state);
/// The settings in a file, without the printer's name. Throws Failure for a torn file.
kemba::substitute::Settings ReadNameless(const std::wstring& path);
/// Where a soak keeps the settings to import, and those that an export gives afterwards.
std::wstring ImportPath(const std::wstring& folder, int state);
std::wstring ReferencePath(const std::wstring& folder, int state);

/// Every other printer has a file as its port, on Windows each. A job replaces the one before it there, so
/// that one client alone sends to it, and looks after each job; all of them send at once. The rest have
/// PrinterPort, which collects the jobs of all clients; those go one at a time, under the lock, because Wine
/// starts a program for each of them, and two that are started in the same moment may wait for each other for
/// ever.
bool HasFilePort(int printer);
bool MaySend(int printer, int client);
std::wstring FilePortPath(const std::wstring& folder, int printer);
inline constexpr wchar_t kPortLock[] = L"kemba soak port";

/// A job: which client's, for which printer, and its number.
struct SoakJob {
    int client = 0;
    int printer = 0;
    unsigned number = 0;

    bool operator==(const SoakJob&) const = default;
};
/// The bytes of a job; some fit into one block of the server, some do not.
std::string JobBytes(const SoakJob& job);
/// The jobs that a printer received, in their order; nothing when there is a byte that belongs to no whole
/// one.
std::optional<std::vector<SoakJob>> JobsIn(std::string_view received);

} // namespace kit
