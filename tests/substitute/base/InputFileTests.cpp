// Reading real files.
#include <gtest/gtest.h>

#include <cstddef>
#include <filesystem>
#include <string>

#include "core/Handles.h"
#include "substitute/base/Failure.h"
#include "substitute/base/InputFile.h"
#include "tests/kit/TemporaryFolder.h"
#include "tests/substitute/FailureOf.h"
#include "tests/substitute/Texts.h"

using namespace kemba::substitute;
using namespace kit;

namespace {

class InputFile : public testing::Test {
  protected:
    void Put(const std::string& bytes) { folder.Put(name, bytes); }
    /// What opening fails with.
    Failure Refusal(const std::wstring& file) {
        return FailureOf([&] { kemba::substitute::InputFile(L"parcel", file); });
    }

    TemporaryFolder folder;
    std::wstring name = L"a \x00E4.bin";
    std::wstring path = folder.File(name);
};

TEST_F(InputFile, GivesAllBytesInPiecesOrAtOnce) {
    std::string bytes(2'500'000, '\0');
    for (std::size_t index = 0; index < bytes.size(); ++index) {
        bytes[index] = static_cast<char>(index * 7 + index / 256);
    }
    Put(bytes);
    EXPECT_TRUE(kemba::substitute::InputFile(L"parcel", path).ReadAll<std::string>(bytes.size()) == bytes);
    kemba::substitute::InputFile file(L"parcel", path);
    std::string read(1'500'000, '\0');
    EXPECT_EQ(file.Read(read.data(), read.size()), read.size());
    EXPECT_TRUE(read == bytes.substr(0, read.size()));
    EXPECT_EQ(file.Read(read.data(), read.size()), 1'000'000u);
    EXPECT_TRUE(read.substr(0, 1'000'000) == bytes.substr(1'500'000));
    EXPECT_EQ(file.Read(read.data(), read.size()), 0u);
}

TEST_F(InputFile, MoreThanTheLimitIsRefusedUnread) {
    Put("12345");
    EXPECT_EQ(kemba::substitute::InputFile(L"parcel", path).ReadAll<std::string>(5), "12345");
    const Failure failure =
        FailureOf([&] { kemba::substitute::InputFile(L"parcel", path).ReadAll<std::string>(4); });
    EXPECT_EQ(failure.status, HRESULT_FROM_WIN32(ERROR_FILE_TOO_LARGE));
    EXPECT_TRUE(BeginsWith(failure.reason, L"reading the parcel \"" + path + L"\" failed: "));
    std::filesystem::resize_file(path, 1ull << 32); // takes no room on the disk
    EXPECT_EQ(FailureOf([&] {
                  kemba::substitute::InputFile(L"parcel", path).ReadAll<std::string>(1u << 24);
              }).status,
              HRESULT_FROM_WIN32(ERROR_FILE_TOO_LARGE));
}

TEST_F(InputFile, SaysWhichFileItCouldNotOpen) {
    const Failure failure = Refusal(path);
    EXPECT_EQ(failure.status, HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND));
    EXPECT_TRUE(BeginsWith(failure.reason, L"opening the parcel \"" + path + L"\" failed: "));
    EXPECT_EQ(Refusal(folder.File(L"no folder\\a")).status, HRESULT_FROM_WIN32(ERROR_PATH_NOT_FOUND));
    std::filesystem::create_directory(path);
    EXPECT_EQ(Refusal(path).status, E_ACCESSDENIED);
    EXPECT_EQ(Refusal(L"").status, HRESULT_FROM_WIN32(ERROR_INVALID_NAME));
    EXPECT_EQ(Refusal(path + std::wstring(L"\0b", 2)).status, HRESULT_FROM_WIN32(ERROR_INVALID_NAME));
}

TEST_F(InputFile, AFileByADevicesWayIsRefusedToo) {
    Put("x");
    for (const std::wstring& device : {L"\\\\.\\" + path, L"//./" + path, std::wstring(L"\\\\.\\C:"),
                                       std::wstring(L"\\\\.\\PhysicalDrive0"), folder.File(L"NUL")}) {
        SCOPED_TRACE(device);
        const Failure failure = Refusal(device);
        EXPECT_EQ(failure.status, HRESULT_FROM_WIN32(ERROR_BAD_FILE_TYPE));
        EXPECT_TRUE(BeginsWith(failure.reason, L"\"" + device + L"\" is no file: "));
    }
    EXPECT_EQ(Refusal(L"\\\\?\\" + path).status, S_OK);
}

TEST_F(InputFile, NobodyMayWriteMeanwhileButTheFileMayGo) {
    Put("old");
    kemba::substitute::InputFile file(L"parcel", path);
    const auto open = [&](DWORD access) {
        return OCore::OwnFile(CreateFileW(path.c_str(), access,
                                          FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                          OPEN_EXISTING, 0, nullptr));
    };
    EXPECT_FALSE(open(GENERIC_WRITE));
    EXPECT_TRUE(open(GENERIC_READ));
    EXPECT_TRUE(MoveFileW(path.c_str(), folder.File(L"b").c_str()));
    EXPECT_EQ(file.ReadAll<std::string>(3), "old");
}

} // namespace
