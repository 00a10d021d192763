// One of the clients of a soak: works on the printers until its time is over, and looks at each answer.
//
//     soak-client CLIENT START END FOLDER PRINTER ...       START, END: ticks of the system in milliseconds
//
// Prints a line for each failure, "failure ...", and in the end what it did: "did KIND COUNT", "disconnected
// COUNT", and the last of its changes, "change PRINTER FIELD NUMBER", "state PRINTER STATE", "jobs PRINTER
// COUNT". Exit status 0: no failure.
#include <windows.h>
#include <DriverAutomation.h>
#include <objbase.h>

#include <array>
#include <cstdio>
#include <cwchar>
#include <exception>
#include <filesystem>
#include <random>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "automation/Activation.h"
#include "automation/ComError.h"
#include "automation/Owners.h"
#include "demo/LabelDriver.h"
#include "demo/SpoolerLock.h"
#include "substitute/base/Failure.h"
#include "substitute/settings/Settings.h"
#include "tests/kit/Owners.h"
#include "tests/kit/Printed.h"
#include "tests/kit/TemporaryFile.h"
#include "tests/programs/Kemba.h"
#include "tests/programs/SoakModel.h"

using namespace kemba;
using namespace kit;

namespace {

constexpr int kMostFailures = 20; // that are printed

class SoakClient {
  public:
    SoakClient(int client, ULONGLONG start, std::wstring folder, std::vector<std::wstring> printers)
        : m_client(client), m_start(start), m_folder(std::move(folder)), m_names(std::move(printers)),
          m_random(static_cast<unsigned>(1 + client)) {
        for (int state = 0; state < kSoakStates; ++state) {
            m_references.push_back(ReadNameless(ReferencePath(m_folder, state)));
        }
    }

    /// One operation with what belongs to it.
    void Step() {
        int left = Below(kWeights);
        for (const Kind& kind : kKinds) {
            left -= kind.weight;
            if (left < 0) {
                int printer = ChoosePrinter();
                while (!(this->*kind.mayWorkOn)(printer)) {
                    printer = (printer + 1) % kSoakPrinters;
                }
                Do(kind, printer);
                return;
            }
        }
    }

    /// Prints what was done; the exit status.
    int Report() const {
        for (std::size_t index = 0; index < std::size(kKinds); ++index) {
            std::printf("did %s %u\n", kKinds[index].name, m_done[index]);
        }
        std::printf("disconnected %u\n", m_disconnected);
        for (int printer = 0; printer < kSoakPrinters; ++printer) {
            for (int field = 0; field < kSoakFieldCount; ++field) {
                if (FieldOwner(printer, field) == m_client) {
                    std::printf("change %d %d %u\n", printer, field, At(printer).changes[Index(field)]);
                }
            }
            if (HasOneImporter(printer) && IsImporter(printer, m_client)) {
                std::printf("state %d %d\n", printer, At(printer).state);
            }
            std::printf("jobs %d %u\n", printer, At(printer).jobs);
        }
        return m_failures == 0 ? 0 : 1;
    }

  private:
    struct Kind {
        const char* name;
        int weight; ///< of kWeights
        bool (SoakClient::*mayWorkOn)(int printer) const;
        void (SoakClient::*work)(int printer);
    };
    static const Kind kKinds[6];
    static constexpr int kWeights = 200;

    bool AnyPrinter(int) const { return true; }
    bool OwnsText(int printer) const { return OwnField(printer) < kSoakFieldCount; }
    bool Imports(int printer) const { return IsImporter(printer, m_client); }
    bool Sends(int printer) const { return MaySend(printer, m_client); }

    /// What this client knows of a printer.
    struct Known {
        ComPtr<IDriverAutomation> object;                ///< kept for some operations
        std::array<unsigned, kSoakFieldCount> changes{}; ///< the own latest, or the newest that was seen
        int state = 0;
        unsigned jobs = 0;
    };

    static std::size_t Index(int number) { return static_cast<std::size_t>(number); }
    Known& At(int printer) { return m_known[Index(printer)]; }
    const Known& At(int printer) const { return m_known[Index(printer)]; }
    int Below(int limit) { return static_cast<int>(m_random() % static_cast<unsigned>(limit)); }

    /// Mostly the one that all the others are at as well, which changes every fifth of a second.
    int ChoosePrinter() {
        const auto common = static_cast<int>((GetTickCount64() - m_start) / 200 % kSoakPrinters);
        return Below(4) == 0 ? Below(kSoakPrinters) : common;
    }

    void Do(const Kind& kind, int printer) {
        ++m_done[static_cast<std::size_t>(&kind - kKinds)];
        if (!Try(kind, printer, true)) {
            ++m_disconnected;
            At(printer).object.Reset();
            Try(kind, printer, false);
        }
    }

    /// False when a call found its object disconnected, which is a failure unless it may happen. Wine was
    /// seen to give that status once in some ten thousands of operations, for a reason that is not known; the
    /// operation is made again then, and the model tells whether the call had been carried out all the same.
    bool Try(const Kind& kind, int printer, bool mayBeDisconnected) {
        try {
            (this->*kind.work)(printer);
        } catch (const kemba::ComError& error) {
            if (mayBeDisconnected && error.Status() == RPC_E_DISCONNECTED) {
                return false;
            }
            char status[16] = {};
            std::snprintf(status, sizeof(status), "0x%08lX", static_cast<unsigned long>(error.Status()));
            Fail(printer, std::string(kind.name) + " failed, status " + status);
        } catch (const kemba::substitute::Failure& failure) {
            Fail(printer, std::string(kind.name) + " gave a torn file: " + Printed(failure.reason));
        } catch (const std::exception& exception) {
            Fail(printer, std::string(kind.name) + " failed: " + exception.what());
        }
        return true;
    }

    void Fail(int printer, const std::string& what) {
        if (++m_failures <= kMostFailures) {
            std::printf("failure of client %d, printer %d: %s\n", m_client, printer, what.c_str());
        }
    }

    const ComPtr<IDriverAutomation>& ObjectFor(int printer) {
        auto& object = At(printer).object;
        if (!object || Below(16) == 0) {
            object = kemba::ActivateForPrinter(m_names[Index(printer)].c_str());
        }
        return object;
    }

    /// Reads a text, which must be the owner's latest for the owner, and no older one than before for others.
    void CheckText(int printer, int field) {
        const OString read = kemba::CallForText(ObjectFor(printer), kSoakFields[field].get);
        CheckText(printer, field, read.Wide());
    }
    void CheckText(int printer, int field, const std::wstring& text) {
        const auto change = ChangeOf(printer, field, text);
        unsigned& known = At(printer).changes[Index(field)];
        const bool own = FieldOwner(printer, field) == m_client;
        if (!change) {
            Fail(printer, "torn " + Printed(kSoakFields[field].word) + ": " + Printed(text));
        } else if (own ? *change != known : *change < known) {
            Fail(printer, "lost change " + std::to_string(known) + " of the " +
                              Printed(kSoakFields[field].word) + (own ? ", its own: " : ": ") +
                              Printed(text));
        } else {
            known = *change;
        }
    }

    void ReadTexts(int printer) {
        CheckText(printer, Below(kSoakFieldCount));
        if (Below(4) == 0) {
            const OString model = kemba::CallForText(ObjectFor(printer), &IDriverAutomation::GetModelName);
            if (model.Wide() != std::wstring(demo::LabelDriverName())) {
                Fail(printer, std::string("torn model name: ") + model.Narrow());
            }
        }
    }

    /// The text that this client owns of the printer; kSoakFieldCount when it owns none.
    int OwnField(int printer) const {
        int field = 0;
        while (field < kSoakFieldCount && FieldOwner(printer, field) != m_client) {
            ++field;
        }
        return field;
    }

    void ChangeText(int printer) {
        const int field = OwnField(printer);
        CheckText(printer, field);
        const unsigned change = At(printer).changes[Index(field)] + 1;
        kemba::CallWithText(ObjectFor(printer), kSoakFields[field].put,
                            FieldText(printer, field, change).c_str());
        At(printer).changes[Index(field)] = change;
        CheckText(printer, field);
    }

    /// The same through a kemba of its own.
    void ChangeTextByProgram(int printer) {
        const int field = OwnField(printer);
        const std::wstring& name = m_names[Index(printer)];
        const std::wstring word = kSoakFields[field].word;
        const unsigned change = At(printer).changes[Index(field)] + 1;
        const auto set = Kemba({L"/p", name, L"set", word, FieldText(printer, field, change)});
        if (set.timedOut || set.status != 0 || set.output != Framed("Set", {})) {
            Fail(printer, "kemba set: status " + std::to_string(set.status) + ": " + set.output + set.errors);
            return;
        }
        At(printer).changes[Index(field)] = change;
        const auto get = Kemba({L"/p", name, L"get", word});
        const std::string line = Printed(name) + ": " + Printed(FieldText(printer, field, change));
        if (get.timedOut || get.status != 0 || get.output != Framed("Get", {line})) {
            Fail(printer, "kemba get, change " + std::to_string(change) + ": status " +
                              std::to_string(get.status) + ": " + get.output + get.errors);
        }
    }

    ComPtr<IDriverSettings> SettingsOf(int printer) {
        return kemba::CallForObject(ObjectFor(printer), &IDriverAutomation::GetSettings);
    }

    /// An export has to be wholly one of the states; the one that a printer's only importer gave it.
    void Export(int printer) {
        const std::wstring path = m_folder + L"\\export-" + std::to_wstring(m_client) + L".vqs";
        kemba::Call(SettingsOf(printer), &IDriverSettings::ExportSettings, kemba::TextArgument(path).Get(),
                    kemba::OwnedVariant::Omitted().Get());
        const auto settings = ReadNameless(path);
        int state = 0;
        while (state < kSoakStates && m_references[Index(state)] != settings) {
            ++state;
        }
        if (state == kSoakStates) {
            Fail(printer, "the exported settings are a mixture");
        } else if (HasOneImporter(printer) && IsImporter(printer, m_client) && state != At(printer).state) {
            Fail(printer, "lost the import of state " + std::to_string(At(printer).state) + ", exported " +
                              std::to_string(state));
        }
    }

    void Import(int printer) {
        const int state = Below(kSoakStates);
        kemba::Call(SettingsOf(printer), &IDriverSettings::ImportSettings,
                    kemba::TextArgument(ImportPath(m_folder, state)).Get(),
                    kemba::OwnedVariant::Omitted().Get());
        At(printer).state = state;
        Export(printer);
    }

    void SendFile(int printer, const std::wstring& path) {
        kemba::Call(ObjectFor(printer), &IDriverAutomation::SendFile, kemba::TextArgument(path).Get(),
                    kemba::TextArgument(L"soak").Get());
        ++At(printer).jobs;
    }

    void Send(int printer) {
        const std::wstring path = m_folder + L"\\job-" + std::to_wstring(m_client) + L".prn";
        const std::string bytes = JobBytes({m_client, printer, At(printer).jobs});
        WriteBytes(path, bytes);
        if (!HasFilePort(printer)) {
            const demo::SpoolerLock alone(kPortLock);
            SendFile(printer, path);
            return;
        }
        const std::wstring port = FilePortPath(m_folder, printer);
        if (std::filesystem::exists(port)) {
            Fail(printer, "a job that nobody sent");
        }
        SendFile(printer, path);
        const std::string received = ReadBytes(port, bytes.size());
        if (received != bytes) {
            Fail(printer, "a torn job: " + std::to_string(received.size()) + " bytes instead of " +
                              std::to_string(bytes.size()));
        }
        // The spooler may hold the file for a moment longer.
        std::error_code refused;
        for (int tenths = 0; !std::filesystem::remove(port, refused) && tenths < 50; ++tenths) {
            Sleep(100);
        }
    }

    const int m_client;
    const ULONGLONG m_start;
    const std::wstring m_folder;
    const std::vector<std::wstring> m_names;
    std::vector<kemba::substitute::Settings> m_references;
    std::array<Known, kSoakPrinters> m_known;
    std::array<unsigned, std::size(kKinds)> m_done{};
    std::minstd_rand m_random;
    int m_failures = 0;
    unsigned m_disconnected = 0;
};

const SoakClient::Kind SoakClient::kKinds[6] = {
    {"read", 80, &SoakClient::AnyPrinter, &SoakClient::ReadTexts},
    {"change", 70, &SoakClient::OwnsText, &SoakClient::ChangeText},
    {"import", 14, &SoakClient::Imports, &SoakClient::Import},
    {"export", 20, &SoakClient::AnyPrinter, &SoakClient::Export},
    {"send", 15, &SoakClient::Sends, &SoakClient::Send},
    {"program", 1, &SoakClient::OwnsText, &SoakClient::ChangeTextByProgram},
};

} // namespace

int wmain(int argumentCount, wchar_t* arguments[]) {
    if (argumentCount != 5 + kSoakPrinters) {
        std::printf("failure: wrong words\n");
        return 2;
    }
    const ULONGLONG start = std::wcstoull(arguments[2], nullptr, 10);
    const ULONGLONG end = std::wcstoull(arguments[3], nullptr, 10);
    const Apartment apartment;
    SoakClient client(static_cast<int>(std::wcstol(arguments[1], nullptr, 10)), start, arguments[4],
                      {arguments + 5, arguments + argumentCount});
    while (GetTickCount64() < end) {
        client.Step();
    }
    return client.Report();
}
