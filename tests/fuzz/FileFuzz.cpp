// A real file against one in memory.
#include <windows.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "core/OFile.h"
#include "core/OString.h"
#include "tests/fuzz/Fuzz.h"
#include "tests/fuzz/GuardedHeap.h"
#include "tests/kit/TemporaryFile.h"
#include "tests/kit/TemporaryFolder.h"

using namespace kit;

namespace {

/// A file by the rules: what is written waits in a buffer until it is full, or until the file moves or
/// closes.
class Model {
  public:
    bool Open(std::uint32_t mode) {
        Close();
        if (!exists && !(mode & 0x1000)) {
            return false;
        }
        exists = open = true;
        writable = mode & 0x0001;
        share = (mode & 0x00F0) == 0x10 ? 0 : (mode & 0x00F0) == 0x20 ? 1 : (mode & 0x00F0) == 0x30 ? 2 : 3;
        position = 0;
        if (writable && (mode & 0x2000)) {
            Seek(0, FILE_END);
        } else if (writable) {
            contents.clear();
        }
        return true;
    }
    void Close() {
        if (open) {
            Flush();
            open = false;
        }
    }
    std::uint32_t Seek(std::int32_t distance, std::uint32_t method) {
        if (!open) {
            return 0;
        }
        Flush();
        const std::size_t from = method == FILE_BEGIN     ? 0
                                 : method == FILE_CURRENT ? position
                                                          : contents.size();
        const auto to = static_cast<std::int64_t>(from) + distance;
        if (to < 0) {
            return INVALID_SET_FILE_POINTER;
        }
        position = static_cast<std::size_t>(to);
        return static_cast<std::uint32_t>(position);
    }
    std::uint32_t GetSize() const { return open ? static_cast<std::uint32_t>(contents.size()) : 0; }
    std::string Read(std::size_t count) {
        if (!open || position >= contents.size()) {
            return {};
        }
        const std::string read = contents.substr(position, count);
        position += read.size();
        return read;
    }
    std::uint32_t Write(const std::string& bytes) {
        for (const char byte : bytes) {
            pending += byte;
            if (pending.size() == 1024 && Flush() < 1024) {
                return 0;
            }
        }
        return static_cast<std::uint32_t>(bytes.size());
    }
    std::uint32_t Flush() {
        const std::string bytes = pending;
        pending.clear();
        if (!open || !writable || bytes.empty()) {
            return 0;
        }
        contents.resize(std::max(contents.size(), position + bytes.size()), '\0');
        contents.replace(position, bytes.size(), bytes);
        position += bytes.size();
        return static_cast<std::uint32_t>(bytes.size());
    }

    bool exists = false;
    bool open = false;
    bool writable = false;
    unsigned share = 3;
    std::size_t position = 0;
    std::string contents;
    std::string pending;
};

void Open(Case& input, const OString& name, OFile& file, Model& model) {
    constexpr std::uint32_t kShares[] = {0x00, 0x10, 0x20, 0x30, 0x40, 0xF0};
    const std::uint32_t mode = input.OneOf(kShares) | (input.OnceIn(3) ? 0 : 0x0001) |
                               (input.OnceIn(3) ? 0 : 0x1000) | (input.OnceIn(2) ? 0x2000 : 0);
    input.Say([&] { return "file.Open(name, " + std::to_string(mode) + ");"; });
    EXPECT_EQ(file.Open(name, mode), model.Open(mode));
}

void Step(Case& input, const std::wstring& real, OFile& file, Model& model) {
    switch (input.Below(12)) {
    case 0: Open(input, real.c_str(), file, model); break;
    case 1:
        input.Say([] { return "file.Close();"; });
        file.Close();
        model.Close();
        break;
    case 2:
    case 3: {
        const auto method = static_cast<std::uint32_t>(input.Below(3));
        const auto distance = static_cast<std::int32_t>(input.Length(2000)) * (input.OnceIn(3) ? -1 : 1);
        input.Say(
            [&] { return "file.Seek(" + std::to_string(distance) + ", " + std::to_string(method) + ");"; });
        EXPECT_EQ(file.Seek(distance, method), model.Seek(distance, method));
        break;
    }
    case 4:
        input.Say([] { return "file.GetSize();"; });
        EXPECT_EQ(file.GetSize(), model.GetSize());
        break;
    case 5:
    case 6: {
        std::vector<char> buffer(input.Length(1500));
        input.Say([&] { return "file.Read(buffer, " + std::to_string(buffer.size()) + ");"; });
        const std::uint32_t count = file.Read(buffer.data(), static_cast<std::uint32_t>(buffer.size()));
        EXPECT_EQ(std::string(buffer.data(), count), model.Read(buffer.size()));
        break;
    }
    case 7:
        input.Say([] { return "file.Flush();"; });
        EXPECT_EQ(file.Flush(), model.Flush());
        break;
    case 8:
        input.Say([] { return "OFile::Exists(name);"; });
        EXPECT_EQ(OFile::Exists(real.c_str()), model.exists && (!model.open || (model.share & 1) != 0));
        break;
    default: {
        const std::string bytes = input.Bytes(input.OnceIn(4) ? 3000 : 100);
        input.Say(
            [&] { return "file.Write(" + Literal(bytes) + ", " + std::to_string(bytes.size()) + ");"; });
        EXPECT_EQ(file.Write(bytes.data(), static_cast<std::uint32_t>(bytes.size())), model.Write(bytes));
        break;
    }
    }
}

FUZZ_TARGET(Files, 400) {
    if (input.Number() % 8 != 0 && input.Number() > 2000) {
        return; // the system's part of a file is slow
    }
    const TemporaryFolder folder = [] {
        const OrdinaryHeap ordinary;
        return TemporaryFolder();
    }();
    const std::wstring real = folder.File(L"file");
    Model model;
    {
        OFile file;
        Open(input, real.c_str(), file, model);
        for (std::size_t left = 1 + input.Below(16); left > 0 && !testing::Test::HasFailure(); --left) {
            Step(input, real, file, model);
        }
        model.Close();
    }
    if (model.exists) {
        const OrdinaryHeap ordinary;
        EXPECT_EQ(ReadBytes(real), model.contents);
    }
}

} // namespace
