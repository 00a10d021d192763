// The texts, settings and jobs of a soak.
#include "tests/programs/SoakModel.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <cwchar>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "demo/Wine.h"
#include "substitute/settings/Settings.h"
#include "substitute/settings/SettingsFile.h"
#include "substitute/settings/VqsFormat.h"

namespace kit {

using namespace kemba::substitute;

int FieldOwner(int printer, int field) {
    return (printer + 3 * field) % kSoakClients;
}

bool HasOneImporter(int printer) {
    return printer % 2 == 0;
}

bool IsImporter(int printer, int client) {
    return client == (printer + 1) % kSoakClients ||
           (!HasOneImporter(printer) && client == (printer + 4) % kSoakClients);
}

std::wstring FieldText(int printer, int field, unsigned change) {
    // Longer and shorter by turns, so that a record never keeps its size.
    const std::wstring filler(change * 37 % 61, static_cast<wchar_t>(L'a' + change % 26));
    return std::wstring(kSoakFields[field].word) + L"-" + std::to_wstring(printer) + L"-" +
           std::to_wstring(change) + L"-" + filler + L".";
}

std::optional<unsigned> ChangeOf(int printer, int field, const std::wstring& text) {
    const std::size_t first = text.find(L'-');
    const std::size_t second = first == text.npos ? text.npos : text.find(L'-', first + 1);
    if (second == text.npos) {
        return std::nullopt;
    }
    const auto change = static_cast<unsigned>(std::wcstoul(text.c_str() + second + 1, nullptr, 10));
    return text == FieldText(printer, field, change) ? std::optional(change) : std::nullopt;
}

Settings InState(Settings settings, int state) {
    for (auto* const mode : {&settings.globalMode, &settings.userMode}) {
        if (*mode) {
            DEVMODEW changed = {};
            const std::size_t size = std::min(sizeof(changed), (*mode)->size());
            std::memcpy(&changed, (*mode)->data(), size);
            changed.dmFields |= DM_COPIES;
            changed.dmCopies = static_cast<short>(1 + state);
            std::memcpy((*mode)->data(), &changed, size);
        }
    }
    settings.values.clear();
    for (int index = 0; index < 8; ++index) {
        settings.values.push_back(
            {kDriverDataKey, L"Soak " + std::to_wstring(index), REG_BINARY,
             Bytes(static_cast<std::size_t>(10 * (1 + state) + index), static_cast<BYTE>(state))});
    }
    return settings;
}

Settings ReadNameless(const std::wstring& path) {
    Settings settings = DecodeVqs(ReadSettingsFile(path, kMaximumVqsSize));
    for (auto* const mode : {&settings.globalMode, &settings.userMode}) {
        if (*mode) {
            std::memset((*mode)->data() + offsetof(DEVMODEW, dmDeviceName), 0,
                        sizeof(DEVMODEW::dmDeviceName));
        }
    }
    return settings;
}

std::wstring ImportPath(const std::wstring& folder, int state) {
    return folder + L"\\import-" + std::to_wstring(state) + L".vqs";
}

std::wstring ReferencePath(const std::wstring& folder, int state) {
    return folder + L"\\reference-" + std::to_wstring(state) + L".vqs";
}

bool HasFilePort(int printer) {
    return printer % 2 == 1 || !demo::IsWine();
}

bool MaySend(int printer, int client) {
    return !HasFilePort(printer) || client == printer / 2 % kSoakClients;
}

std::wstring FilePortPath(const std::wstring& folder, int printer) {
    return folder + L"\\port-" + std::to_wstring(printer) + L".prn";
}

std::string JobBytes(const SoakJob& job) {
    std::minstd_rand random(static_cast<unsigned>(1 + job.client + 10 * job.printer) + 1000 * job.number);
    // Every eighth is longer than the blocks in which the server reads.
    const std::size_t size = 1 + random() % (job.number % 8 == 7 ? 150'000 : 3'000);
    std::string bytes = "job " + std::to_string(job.client) + " " + std::to_string(job.printer) + " " +
                        std::to_string(job.number) + "\n";
    for (std::size_t index = 0; index < size; ++index) {
        bytes += static_cast<char>(random() >> 8);
    }
    return bytes;
}

std::optional<std::vector<SoakJob>> JobsIn(std::string_view received) {
    std::vector<SoakJob> jobs;
    while (!received.empty()) {
        SoakJob job;
        const std::string line(received.substr(0, received.find('\n')));
        if (std::sscanf(line.c_str(), "job %d %d %u", &job.client, &job.printer, &job.number) != 3) {
            return std::nullopt;
        }
        const std::string bytes = JobBytes(job);
        if (!received.starts_with(bytes)) {
            return std::nullopt;
        }
        received.remove_prefix(bytes.size());
        jobs.push_back(job);
    }
    return jobs;
}

} // namespace kit
