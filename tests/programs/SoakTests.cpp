// Many clients that read, change, import, export and send at once, and a model of what must be there.
#include <windows.h>
#include <DriverAutomation.h>
#include <objbase.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "automation/Activation.h"
#include "automation/Owners.h"
#include "demo/Printers.h"
#include "substitute/settings/Settings.h"
#include "substitute/settings/SettingsFile.h"
#include "substitute/settings/VqsFormat.h"
#include "tests/kit/Environment.h"
#include "tests/kit/Owners.h"
#include "tests/kit/PrinterPort.h"
#include "tests/kit/TemporaryFolder.h"
#include "tests/programs/Clients.h"
#include "tests/programs/HeldServer.h"
#include "tests/programs/SoakModel.h"

using namespace kit;
using namespace std::chrono_literals;

namespace {

/// How long the clients work: KEMBA_SOAK_SECONDS, or what a run of all tests has time for.
std::chrono::seconds SoakTime() {
    const std::wstring seconds = EnvironmentVariable(L"KEMBA_SOAK_SECONDS");
    return std::chrono::seconds(seconds.empty() ? 12 : std::stol(seconds));
}

/// A printer with a port of its own, as the clients expect to find it.
struct SoakPrinter {
    SoakPrinter(int number, const std::wstring& folder)
        : printer({.port = HasFilePort(number) ? FilePortPath(folder, number) : port.Name(),
                   .comment = FieldText(number, 0, 0),
                   .location = FieldText(number, 1, 0),
                   .shareName = FieldText(number, 2, 0)}) {}

    const PrinterPort port;
    const demo::Printer printer;
};

/// What the clients say that they have done.
struct Reported {
    std::map<std::string, unsigned> did;
    unsigned disconnected = 0;
    std::array<std::array<unsigned, kSoakFieldCount>, kSoakPrinters> changes{};
    std::array<int, kSoakPrinters> states{};
    std::array<std::array<unsigned, kSoakClients>, kSoakPrinters> jobs{};

    void Take(std::size_t client, const std::string& output) {
        std::istringstream lines(output);
        for (std::string line; std::getline(lines, line);) {
            std::istringstream words(line);
            std::string kind;
            std::size_t printer = 0;
            words >> kind;
            if (kind == "did") {
                unsigned count = 0;
                words >> kind >> count;
                did[kind] += count;
            } else if (kind == "disconnected") {
                unsigned count = 0;
                words >> count;
                disconnected += count;
            } else if (kind == "change") {
                std::size_t field = 0;
                words >> printer >> field;
                words >> changes.at(printer).at(field);
            } else if (kind == "state") {
                words >> printer;
                words >> states.at(printer);
            } else if (kind == "jobs") {
                words >> printer;
                words >> jobs.at(printer).at(client);
            } else {
                ADD_FAILURE() << line;
            }
        }
    }
};

TEST(SoakModel, TakesATextForAChangeOnlyWhenItIsWhole) {
    const std::wstring text = FieldText(7, 1, 123);
    EXPECT_EQ(ChangeOf(7, 1, text), 123U);
    for (const std::wstring& torn : {text.substr(1), text.substr(0, text.size() - 1), text + L".",
                                     std::wstring(), FieldText(7, 0, 123), FieldText(6, 1, 123)}) {
        EXPECT_EQ(ChangeOf(7, 1, torn), std::nullopt) << torn.size();
    }
}

TEST(SoakModel, FindsWholeJobsOnly) {
    const SoakJob shortOne{3, 4, 0};
    const SoakJob longOne{5, 4, 7};
    const std::string both = JobBytes(shortOne) + JobBytes(longOne);
    EXPECT_EQ(JobsIn(both), (std::vector<SoakJob>{shortOne, longOne}));
    EXPECT_EQ(JobsIn(both + JobBytes(shortOne)), (std::vector<SoakJob>{shortOne, longOne, shortOne}));
    std::string mixed = both;
    std::swap(mixed[JobBytes(shortOne).size() - 1], mixed[JobBytes(shortOne).size()]);
    for (const std::string& torn : {both.substr(1), both.substr(0, both.size() - 1), both + "x", mixed}) {
        EXPECT_EQ(JobsIn(torn), std::nullopt);
    }
}

class ServerSoak : public testing::Test {
  protected:
    void MakePrinters() {
        for (int number = 0; number < kSoakPrinters; ++number) {
            printers.push_back(std::make_unique<SoakPrinter>(number, folder.Path()));
        }
    }

    const std::wstring& NameOf(int printer) const {
        return printers[static_cast<std::size_t>(printer)]->printer.Name();
    }

    static kemba::ComPtr<IDriverSettings> SettingsOf(const std::wstring& name) {
        return kemba::CallForObject(kemba::ActivateForPrinter(name.c_str()), &IDriverAutomation::GetSettings);
    }
    static void Import(const std::wstring& name, const std::wstring& path) {
        kemba::Call(SettingsOf(name), &IDriverSettings::ImportSettings, kemba::TextArgument(path).Get(),
                    kemba::OwnedVariant::Omitted().Get());
    }
    static void Export(const std::wstring& name, const std::wstring& path) {
        kemba::Call(SettingsOf(name), &IDriverSettings::ExportSettings, kemba::TextArgument(path).Get(),
                    kemba::OwnedVariant::Omitted().Get());
    }

    /// Writes the files that clients import and those that they compare exports with; all printers get the
    /// first of the states.
    void MakeStates() {
        using namespace kemba::substitute;
        const std::wstring first = folder.File(L"first.vqs");
        Export(NameOf(0), first);
        const Settings base = DecodeVqs(ReadSettingsFile(first, kMaximumVqsSize));
        for (int state = 0; state < kSoakStates; ++state) {
            WriteSettingsFile(ImportPath(folder.Path(), state), EncodeVqs(InState(base, state)));
            Import(NameOf(0), ImportPath(folder.Path(), state));
            Export(NameOf(0), ReferencePath(folder.Path(), state));
            references.push_back(ReadNameless(ReferencePath(folder.Path(), state)));
            for (int earlier = 0; earlier < state; ++earlier) {
                const Settings& other = references[static_cast<std::size_t>(earlier)];
                ASSERT_NE(references.back().globalMode, other.globalMode);
                ASSERT_NE(references.back().values, other.values);
            }
        }
        for (int printer = 0; printer < kSoakPrinters; ++printer) {
            Import(NameOf(printer), ImportPath(folder.Path(), 0));
        }
    }

    void RunClients(HeldServer& server) {
        const auto time = SoakTime();
        // Some start later than others; the time begins when all of them can be there.
        const ULONGLONG start = GetTickCount64() + 1'000;
        const ULONGLONG end = start + static_cast<ULONGLONG>(std::chrono::milliseconds(time).count());
        Clients clients;
        for (int client = 0; client < kSoakClients; ++client) {
            std::vector<std::wstring> words{std::to_wstring(client), std::to_wstring(start),
                                            std::to_wstring(end), folder.Path()};
            for (int printer = 0; printer < kSoakPrinters; ++printer) {
                words.push_back(NameOf(printer));
            }
            clients.Start(L"soak-client.exe", words);
        }
        bool allAnswered = true;
        const auto results = clients.Finish(time + 60s);
        for (std::size_t client = 0; client < results.size(); ++client) {
            allAnswered = allAnswered && !results[client].timedOut;
            EXPECT_EQ(results[client].status, 0U) << "client " << client;
            reported.Take(client, results[client].output);
        }
        if (!allAnswered) {
            server.End(); // whoever asks it now waits as long
            FAIL() << "clients waited in vain for an answer";
        }
        std::printf("%d clients, %d printers, %lld seconds:", kSoakClients, kSoakPrinters,
                    static_cast<long long>(time.count()));
        unsigned operations = 0;
        for (const auto& [kind, count] : reported.did) {
            operations += count;
            std::printf(" %s %u", kind.c_str(), count);
            EXPECT_GT(count, 0U) << kind;
        }
        std::printf("; disconnected and made again: %u\n", reported.disconnected);
        EXPECT_LE(reported.disconnected, 1 + operations / 10'000);
    }

    void CheckTexts(int printer) {
        const auto object = kemba::ActivateForPrinter(NameOf(printer).c_str());
        for (int field = 0; field < kSoakFieldCount; ++field) {
            const unsigned change =
                reported.changes[static_cast<std::size_t>(printer)][static_cast<std::size_t>(field)];
            EXPECT_EQ(std::wstring(kemba::CallForText(object, kSoakFields[field].get).Wide()),
                      FieldText(printer, field, change));
        }
    }

    void CheckSettings(int printer) {
        const std::wstring path = folder.File(L"last.vqs");
        Export(NameOf(printer), path);
        const auto settings = ReadNameless(path);
        if (HasOneImporter(printer)) {
            const int state = reported.states[static_cast<std::size_t>(printer)];
            EXPECT_TRUE(settings == references[static_cast<std::size_t>(state)]) << "state " << state;
        } else {
            EXPECT_NE(std::find(references.begin(), references.end(), settings), references.end());
        }
    }

    void CheckJobs(int printer) {
        if (HasFilePort(printer)) { // the client looked at each of its jobs
            EXPECT_FALSE(std::filesystem::exists(FilePortPath(folder.Path(), printer)));
            return;
        }
        std::size_t size = 0;
        std::vector<SoakJob> sent;
        for (int client = 0; client < kSoakClients; ++client) {
            const auto& counts = reported.jobs[static_cast<std::size_t>(printer)];
            for (unsigned number = 0; number < counts[static_cast<std::size_t>(client)]; ++number) {
                sent.push_back({client, printer, number});
                size += JobBytes(sent.back()).size();
            }
        }
        const std::string bytes = printers[static_cast<std::size_t>(printer)]->port.Received(size);
        EXPECT_EQ(bytes.size(), size);
        const auto received = JobsIn(bytes);
        ASSERT_TRUE(received) << "a torn job";
        EXPECT_TRUE(std::is_permutation(received->begin(), received->end(), sent.begin(), sent.end()))
            << received->size() << " jobs arrived, " << sent.size() << " were sent";
    }

    const Apartment apartment;
    const TemporaryFolder folder;
    std::vector<std::unique_ptr<SoakPrinter>> printers;
    std::vector<kemba::substitute::Settings> references;
    Reported reported;
};

TEST_F(ServerSoak, LosesNoChangeAndTearsNothing) {
    MakePrinters();
    HeldServer server(NameOf(0), SoakTime() + 150s);
    MakeStates();
    RunClients(server);
    if (HasFatalFailure()) {
        return;
    }
    for (int printer = 0; printer < kSoakPrinters; ++printer) {
        SCOPED_TRACE("printer " + std::to_string(printer));
        CheckTexts(printer);
        CheckSettings(printer);
        CheckJobs(printer);
    }
    EXPECT_TRUE(server.IsStillTheOne());
}

} // namespace
