// What the spooler in memory does.
#include "tests/substitute/FakeSpooler.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "substitute/base/Bytes.h"
#include "substitute/base/Names.h"

namespace kit {

using namespace kemba::substitute;

namespace {

constexpr DWORD kCreator = PRINTER_ACCESS_ADMINISTER | PRINTER_ACCESS_USE;

/// Makes a record as the spooler does it: what it points to stands behind it in the same buffer.
class RecordWriter {
  public:
    explicit RecordWriter(BYTE* buffer) : m_buffer(buffer) {}

    /// Size of the record with all that was added.
    DWORD Size(std::size_t record) const { return static_cast<DWORD>(record + m_tail.size()); }
    /// The place of a text, or null for an empty one; `begin` is the record's size.
    wchar_t* Text(const std::wstring& text, std::size_t begin) {
        return text.empty()
                   ? nullptr
                   : static_cast<wchar_t*>(Append(text.c_str(), (text.size() + 1) * sizeof(wchar_t), begin));
    }
    DEVMODEW* Mode(const std::optional<Bytes>& mode, std::size_t begin) {
        return mode ? static_cast<DEVMODEW*>(Append(mode->data(), mode->size(), begin)) : nullptr;
    }
    void Finish(const void* record, std::size_t size) const {
        std::memcpy(m_buffer, record, size);
        std::copy(m_tail.begin(), m_tail.end(), m_buffer + size);
    }

  private:
    void* Append(const void* bytes, std::size_t size, std::size_t begin) {
        m_tail.resize((begin + m_tail.size() + 7) / 8 * 8 - begin); // aligned as the spooler's own
        const std::size_t place = m_tail.size();
        const auto* const first = static_cast<const BYTE*>(bytes);
        m_tail.insert(m_tail.end(), first, first + size);
        return m_buffer + begin + place;
    }

    BYTE* m_buffer;
    Bytes m_tail;
};

bool IsBelow(const std::wstring& path, const std::wstring& begin) {
    return path.size() > begin.size() && IsSameName(path.substr(0, begin.size()), begin);
}

std::wstring TextOrEmpty(const wchar_t* text) {
    return text ? text : L"";
}

} // namespace

Bytes MakeMode(short copies, WORD privateSize) {
    DEVMODEW mode = {};
    mode.dmSize = sizeof(mode);
    mode.dmDriverExtra = privateSize;
    mode.dmFields = DM_COPIES;
    mode.dmCopies = copies;
    Bytes bytes(sizeof(mode) + privateSize, static_cast<BYTE>(copies));
    std::memcpy(bytes.data(), &mode, sizeof(mode));
    return bytes;
}

short CopiesOf(const std::optional<Bytes>& mode) {
    DEVMODEW read = {};
    read.dmCopies = -1;
    if (mode) {
        std::memcpy(&read, mode->data(), sizeof(read));
    }
    return read.dmCopies;
}

template<class Work>
DWORD FakeSpooler::Answer(Call call, HANDLE handle, Work&& work) {
    int number = 0;
    std::chrono::milliseconds pause{0};
    {
        const std::lock_guard hold(m_mutex);
        number = ++calls;
        pause = std::chrono::milliseconds(number == slowAt ? 20 : 0);
        if (handle) {
            overlaps += static_cast<Opened*>(handle)->inUse++ > 0 ? 1 : 0;
        }
    }
    if (before) {
        before(call);
    }
    std::this_thread::sleep_for(pause);
    const std::lock_guard hold(m_mutex);
    if (handle) {
        --static_cast<Opened*>(handle)->inUse;
    }
    if (number == failAt || (number > failAt && number <= failTo)) {
        return ERROR_WRITE_FAULT;
    }
    // The last write of a job is the one that fails, so that something has been written before.
    if (call == failing && (call != Call::Write || !Unfinished().empty())) {
        return failure;
    }
    const Record* const record = handle ? static_cast<Opened*>(handle)->record : nullptr;
    if (handle && !NameOf(record)) {
        return record ? ERROR_PRINTER_DELETED : ERROR_INVALID_HANDLE;
    }
    return work();
}

DWORD FakeSpooler::Note(Call call, HANDLE handle, const std::wstring& line) {
    return Answer(call, handle, [&] {
        journal.push_back(line);
        return DWORD{ERROR_SUCCESS};
    });
}

const std::wstring* FakeSpooler::NameOf(const Record* record) const {
    for (const auto& entry : printers) {
        if (&entry.second == record) {
            return &entry.first;
        }
    }
    return nullptr;
}

void FakeSpooler::Rename(const std::wstring& from, const std::wstring& to) {
    const std::lock_guard hold(m_mutex);
    auto node = printers.extract(from);
    node.key() = to;
    printers.insert(std::move(node));
}

void FakeSpooler::Lose(const std::wstring& name) {
    const std::lock_guard hold(m_mutex);
    auto node = printers.extract(name);
    node.key() += L" " + std::to_wstring(m_removed.size());
    m_removed.insert(std::move(node));
}

std::string FakeSpooler::Unfinished() const {
    const std::lock_guard hold(m_mutex);
    std::string bytes;
    for (const auto& [number, job] : queue) {
        bytes += job.bytes;
    }
    return bytes;
}

DWORD FakeSpooler::Open(const std::wstring& name, DWORD access, HANDLE& handle) {
    if (opening) {
        opening(name);
    }
    return Answer(Call::Open, nullptr, [&]() -> DWORD {
        const auto other = opensAs.find(name);
        const auto found = printers.find(other == opensAs.end() ? name : other->second);
        if (found == printers.end() && other == opensAs.end()) {
            return ERROR_INVALID_PRINTER_NAME;
        }
        if (access & ~rights) {
            return ERROR_ACCESS_DENIED;
        }
        handle = &m_opened.emplace_back(Opened{found == printers.end() ? nullptr : &found->second, access});
        accesses.push_back(access);
        ++open;
        ++opened;
        return ERROR_SUCCESS;
    });
}

void FakeSpooler::Close(HANDLE handle) {
    const std::lock_guard hold(m_mutex);
    --open;
    m_opened.remove_if([&](const Opened& entry) { return &entry == handle; });
}

DWORD FakeSpooler::GetRecord(HANDLE handle, DWORD level, BYTE* buffer, DWORD size, DWORD& needed) {
    return Answer(Call::GetRecord, handle, [&]() -> DWORD {
        ++asked;
        const Record& record = *static_cast<Opened*>(handle)->record;
        const std::wstring* const name = NameOf(&record);
        RecordWriter writer(buffer);
        const auto give = [&](const auto& information) -> DWORD {
            needed = writer.Size(sizeof(information));
            if (growths > 0 && size >= needed) {
                --growths;
                needed = size + 16;
            }
            if (size < needed) {
                return ERROR_INSUFFICIENT_BUFFER;
            }
            writer.Finish(&information, sizeof(information));
            return ERROR_SUCCESS;
        };
        if (level == 8 || level == 9) {
            PRINTER_INFO_8W information = {};
            information.pDevMode = writer.Mode(
                level == 8 ? record.settings.globalMode : record.settings.userMode, sizeof(information));
            return give(information);
        }
        if (level != 2) {
            return ERROR_INVALID_LEVEL;
        }
        PRINTER_INFO_2W information = {};
        constexpr std::size_t kSize = sizeof(information);
        information.pPrinterName = writer.Text(*name, kSize);
        information.pShareName = writer.Text(record.share, kSize);
        information.pPortName = writer.Text(record.port, kSize);
        information.pDriverName = writer.Text(record.driver, kSize);
        information.pComment = writer.Text(record.comment, kSize);
        information.pLocation = writer.Text(record.location, kSize);
        information.pDevMode = writer.Mode(record.settings.globalMode.value_or(MakeMode(1)), kSize);
        information.pSecurityDescriptor = writer.Text(L"security", kSize);
        information.Status = record.status;
        information.Attributes = record.attributes;
        information.cJobs = record.jobs;
        return give(information);
    });
}

DWORD FakeSpooler::SetRecord(HANDLE handle, DWORD level, BYTE* record, DWORD command) {
    return Answer(Call::SetRecord, handle, [&]() -> DWORD {
        const Opened& opener = *static_cast<Opened*>(handle);
        Record& printer = *opener.record;
        if (level != 9 && !(opener.access & PRINTER_ACCESS_ADMINISTER)) {
            return ERROR_ACCESS_DENIED;
        }
        if (level == 0) {
            commands.push_back(command);
            return record ? ERROR_INVALID_PARAMETER : ERROR_SUCCESS;
        }
        if (level == 8 || level == 9) {
            const DEVMODEW* const mode = reinterpret_cast<const PRINTER_INFO_8W*>(record)->pDevMode;
            const auto* const bytes = reinterpret_cast<const BYTE*>(mode);
            (level == 8 ? printer.settings.globalMode : printer.settings.userMode) =
                mode ? std::optional<Bytes>(Bytes(bytes, bytes + mode->dmSize + mode->dmDriverExtra))
                     : std::nullopt;
            return ERROR_SUCCESS;
        }
        const auto& information = *reinterpret_cast<const PRINTER_INFO_2W*>(record);
        keptSecurityAndMode =
            keptSecurityAndMode && !information.pDevMode && !information.pSecurityDescriptor;
        printer.share = TextOrEmpty(information.pShareName);
        printer.port = TextOrEmpty(information.pPortName);
        printer.driver = TextOrEmpty(information.pDriverName);
        printer.comment = TextOrEmpty(information.pComment);
        printer.location = TextOrEmpty(information.pLocation);
        printer.attributes = information.Attributes;
        return ERROR_SUCCESS;
    });
}

DWORD FakeSpooler::Add(PRINTER_INFO_2W& record, HANDLE& handle) {
    return Answer(Call::Add, nullptr, [&]() -> DWORD {
        if (printers.contains(record.pPrinterName)) {
            return ERROR_PRINTER_ALREADY_EXISTS;
        }
        Record& made = printers[record.pPrinterName];
        made.port = TextOrEmpty(record.pPortName);
        made.driver = TextOrEmpty(record.pDriverName);
        made.attributes = record.Attributes;
        made.settings.globalMode = defaultMode;
        handle = &m_opened.emplace_back(Opened{&made, kCreator});
        ++open;
        return ERROR_SUCCESS;
    });
}

DWORD FakeSpooler::Delete(HANDLE handle) {
    return Answer(Call::Delete, handle, [&] {
        Lose(std::wstring(*NameOf(static_cast<Opened*>(handle)->record)));
        return DWORD{ERROR_SUCCESS};
    });
}

DWORD FakeSpooler::GetDriver(HANDLE handle, DWORD level, BYTE* buffer, DWORD size, DWORD& needed) {
    return Answer(Call::GetDriver, handle, [&]() -> DWORD {
        if (level > driverLevel) {
            return ERROR_INVALID_LEVEL;
        }
        const std::size_t record = level == 8 ? sizeof(DRIVER_INFO_8W) : sizeof(DRIVER_INFO_6W);
        RecordWriter writer(buffer);
        DRIVER_INFO_8W information = {}; // level 6 is its beginning
        information.pName = writer.Text(static_cast<Opened*>(handle)->record->driver, record);
        information.pDriverPath = writer.Text(driver.path, record);
        information.pConfigFile = writer.Text(driver.configuration, record);
        information.ftDriverDate = driver.date;
        information.dwlDriverVersion = driver.version;
        information.pszProvider = writer.Text(driver.provider, record);
        information.dwPrinterDriverAttributes = driver.attributes;
        needed = writer.Size(record);
        if (size < needed) {
            return ERROR_INSUFFICIENT_BUFFER;
        }
        writer.Finish(&information, record);
        return ERROR_SUCCESS;
    });
}

DWORD FakeSpooler::GetDriverFolder(std::wstring& folder) {
    return Answer(Call::GetDriverFolder, nullptr, [&] {
        folder = L"C:\\drivers";
        return DWORD{ERROR_SUCCESS};
    });
}

DWORD FakeSpooler::StartDocument(HANDLE handle, const std::wstring& name, const wchar_t* dataType,
                                 DWORD& job) {
    return Answer(Call::StartDocument, handle, [&] {
        job = static_cast<Opened*>(handle)->job = ++m_latestJob;
        queue[job].name = name;
        journal.push_back(dataType + (L" job " + name));
        return DWORD{ERROR_SUCCESS};
    });
}

DWORD FakeSpooler::StartPage(HANDLE handle) {
    return Note(Call::StartPage, handle, L"page");
}

DWORD FakeSpooler::Write(HANDLE handle, const void* bytes, DWORD size, DWORD& written) {
    return Answer(Call::Write, handle, [&] {
        largestWrite = std::max<std::size_t>(largestWrite, size);
        written = std::min(size, mostAtOnce);
        queue[static_cast<Opened*>(handle)->job].bytes.append(static_cast<const char*>(bytes), written);
        return DWORD{ERROR_SUCCESS};
    });
}

DWORD FakeSpooler::EndPage(HANDLE handle) {
    return Note(Call::EndPage, handle, L"page's end");
}

DWORD FakeSpooler::EndDocument(HANDLE handle) {
    Opened& opener = *static_cast<Opened*>(handle);
    const DWORD error = Answer(Call::EndDocument, handle, [&] {
        printed += queue[opener.job].bytes;
        queue.erase(opener.job);
        opener.job = 0;
        journal.push_back(L"job's end");
        return DWORD{ERROR_SUCCESS};
    });
    if (error != ERROR_SUCCESS && endLosesDocument) {
        opener.job = 0;
    }
    return error;
}

DWORD FakeSpooler::AbortDocument(HANDLE handle) {
    return Answer(Call::AbortDocument, handle, [&]() -> DWORD {
        if (queue.erase(std::exchange(static_cast<Opened*>(handle)->job, DWORD{0})) == 0) {
            return ERROR_SPL_NO_STARTDOC;
        }
        journal.push_back(L"deleted");
        return ERROR_SUCCESS;
    });
}

DWORD FakeSpooler::DeleteJob(HANDLE handle, DWORD job) {
    return Answer(Call::DeleteJob, handle, [&]() -> DWORD {
        if (queue.erase(job) == 0) {
            return ERROR_INVALID_PARAMETER;
        }
        journal.push_back(L"deleted");
        return ERROR_SUCCESS;
    });
}

DWORD FakeSpooler::MergeMode(HANDLE handle, const std::wstring&, const Bytes& mode, Bytes& merged) {
    return Answer(Call::MergeMode, handle, [&] {
        merged = merge ? merge(*static_cast<Opened*>(handle)->record, mode) : mode;
        return DWORD{ERROR_SUCCESS};
    });
}

DWORD FakeSpooler::AskLibraryForMode(const std::wstring& library, const std::wstring&, Bytes& mode) {
    return Answer(Call::AskLibraryForMode, nullptr, [&] {
        loaded.push_back(library);
        mode = defaultMode;
        return DWORD{ERROR_SUCCESS};
    });
}

DWORD FakeSpooler::GetKeys(HANDLE handle, const std::wstring& key, std::vector<std::wstring>& names) {
    return Answer(Call::GetKeys, handle, [&]() -> DWORD {
        if (!lists) {
            return ERROR_CALL_NOT_IMPLEMENTED;
        }
        const std::wstring begin = key + L"\\";
        for (const auto& [path, values] : static_cast<Opened*>(handle)->record->settings.keys) {
            if (IsBelow(path, begin) && path.find(L'\\', begin.size()) == std::wstring::npos) {
                names.push_back(path.substr(begin.size()));
            }
        }
        return ERROR_SUCCESS;
    });
}

DWORD FakeSpooler::GetValues(HANDLE handle, const std::wstring& key, std::vector<PrinterValue>& values) {
    return Answer(Call::GetValues, handle, [&]() -> DWORD {
        const auto& keys = static_cast<Opened*>(handle)->record->settings.keys;
        const auto found = keys.find(key);
        if (found == keys.end()) {
            return ERROR_FILE_NOT_FOUND;
        }
        for (const auto& [name, value] : found->second) {
            values.push_back({key, name, value.first, value.second});
        }
        return ERROR_SUCCESS;
    });
}

DWORD FakeSpooler::SetValue(HANDLE handle, const PrinterValue& value) {
    return Answer(Call::SetValue, handle, [&]() -> DWORD {
        const Opened& opener = *static_cast<Opened*>(handle);
        if (!(opener.access & PRINTER_ACCESS_ADMINISTER)) {
            return ERROR_ACCESS_DENIED;
        }
        auto& keys = opener.record->settings.keys;
        for (auto end = value.key.find(L'\\'); end != std::wstring::npos;
             end = value.key.find(L'\\', end + 1)) {
            keys[value.key.substr(0, end)];
        }
        keys[value.key][value.name] = {value.type, value.data};
        return ERROR_SUCCESS;
    });
}

DWORD FakeSpooler::DeleteValue(HANDLE handle, const std::wstring& key, const std::wstring& name) {
    return Answer(Call::DeleteValue, handle, [&]() -> DWORD {
        if (!deletes) {
            return ERROR_CALL_NOT_IMPLEMENTED;
        }
        return static_cast<Opened*>(handle)->record->settings.keys[key].erase(name) ? ERROR_SUCCESS
                                                                                    : ERROR_FILE_NOT_FOUND;
    });
}

DWORD FakeSpooler::DeleteKey(HANDLE handle, const std::wstring& key) {
    return Answer(Call::DeleteKey, handle, [&]() -> DWORD {
        if (!deletes) {
            return ERROR_CALL_NOT_IMPLEMENTED;
        }
        const auto erased =
            std::erase_if(static_cast<Opened*>(handle)->record->settings.keys, [&](const auto& entry) {
                return IsSameName(entry.first, key) || IsBelow(entry.first, key + L"\\");
            });
        return erased ? ERROR_SUCCESS : ERROR_FILE_NOT_FOUND;
    });
}

DWORD FakeSpooler::ShowProperties(HANDLE handle) {
    const Opened& opener = *static_cast<Opened*>(handle);
    const bool changeable = opener.access & PRINTER_ACCESS_ADMINISTER;
    return Note(Call::ShowProperties, handle,
                (changeable ? L"properties of " : L"properties to look at of ") + *NameOf(opener.record));
}

DWORD FakeSpooler::ShowQueue(const std::wstring& printer) {
    return Note(Call::ShowQueue, nullptr, L"queue of " + printer);
}

} // namespace kit
