// Settings files on a real disk.
#include "substitute/settings/SettingsFile.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <thread>
#include <vector>

#include "substitute/settings/VqsFormat.h"
#include "tests/substitute/FailureOf.h"
#include "tests/substitute/TemporaryFolder.h"

namespace {

using namespace kemba::substitute;

const Bytes kOld = {1, 2, 3};
const Bytes kNew = {4, 5, 6, 7, 8};

class SettingsFileTest : public testing::Test {
  protected:
    HRESULT StatusOf(const std::function<void()>& work) {
        const Failure failure = FailureOf(work);
        reason = failure.reason;
        return failure.status;
    }
    Bytes Read(const std::wstring& file) { return ReadSettingsFile(file, kMaximumVqsSize); }

    TemporaryFolder folder;
    std::wstring path = folder.File(L"a \x00E4.vqs");
    std::wstring reason;
};

TEST_F(SettingsFileTest, WritesANewFileAndReplacesAnOldOne) {
    WriteSettingsFile(path, kOld);
    EXPECT_EQ(Read(path), kOld);
    WriteSettingsFile(path, kNew);
    EXPECT_EQ(Read(path), kNew);
    WriteSettingsFile(path, {});
    EXPECT_EQ(Read(path), Bytes());
    EXPECT_EQ(folder.Count(), 1);
}

TEST_F(SettingsFileTest, AReadOnlyTargetStaysAsItIs) {
    WriteSettingsFile(path, kOld);
    SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_READONLY);
    EXPECT_EQ(StatusOf([&] { WriteSettingsFile(path, kNew); }), E_ACCESSDENIED);
    EXPECT_NE(reason.find(path), std::wstring::npos);
    SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);
    EXPECT_EQ(Read(path), kOld);
    EXPECT_EQ(folder.Count(), 1);
}

TEST_F(SettingsFileTest, ALockedTargetStaysAsItIs) {
    WriteSettingsFile(path, kOld);
    const HANDLE lock = CreateFileW(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(lock, INVALID_HANDLE_VALUE);
    EXPECT_EQ(StatusOf([&] { Read(path); }), HRESULT_FROM_WIN32(ERROR_SHARING_VIOLATION));
    const HRESULT status = StatusOf([&] { WriteSettingsFile(path, kNew); });
    EXPECT_TRUE(status == E_ACCESSDENIED || status == HRESULT_FROM_WIN32(ERROR_SHARING_VIOLATION)) << status;
    EXPECT_EQ(folder.Count(), 1);
    CloseHandle(lock);
    EXPECT_EQ(Read(path), kOld);
}

TEST_F(SettingsFileTest, BadPlacesGiveTheSystemsStatus) {
    const std::wstring missing = folder.File(L"missing") + L"\\a.vqs";
    EXPECT_EQ(StatusOf([&] { WriteSettingsFile(missing, kNew); }), HRESULT_FROM_WIN32(ERROR_PATH_NOT_FOUND));
    EXPECT_EQ(StatusOf([&] { Read(missing); }), HRESULT_FROM_WIN32(ERROR_PATH_NOT_FOUND));
    EXPECT_EQ(StatusOf([&] { Read(path); }), HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND));
    EXPECT_NE(StatusOf([&] { Read(folder.File(L"")); }), S_OK);
    EXPECT_EQ(StatusOf([&] { Read(L""); }), HRESULT_FROM_WIN32(ERROR_INVALID_NAME));
    EXPECT_EQ(StatusOf([&] { WriteSettingsFile(L"", kNew); }), HRESULT_FROM_WIN32(ERROR_INVALID_NAME));
    std::filesystem::create_directory(path);
    EXPECT_EQ(StatusOf([&] { WriteSettingsFile(path, kNew); }), E_ACCESSDENIED);
    const std::wstring cut = path + std::wstring(L"b\0c", 3);
    EXPECT_EQ(StatusOf([&] { WriteSettingsFile(cut, kNew); }), HRESULT_FROM_WIN32(ERROR_INVALID_NAME));
    EXPECT_EQ(StatusOf([&] { Read(cut); }), HRESULT_FROM_WIN32(ERROR_INVALID_NAME));
    EXPECT_EQ(folder.Count(), 1);
}

TEST_F(SettingsFileTest, ASizeBombIsRefusedUnread) {
    WriteSettingsFile(path, kNew);
    EXPECT_EQ(ReadSettingsFile(path, kNew.size()), kNew);
    EXPECT_EQ(StatusOf([&] { ReadSettingsFile(path, kNew.size() - 1); }),
              HRESULT_FROM_WIN32(ERROR_FILE_TOO_LARGE));
    std::filesystem::resize_file(path, 1ull << 32); // takes no room on the disk
    EXPECT_EQ(StatusOf([&] { Read(path); }), HRESULT_FROM_WIN32(ERROR_FILE_TOO_LARGE));
}

TEST_F(SettingsFileTest, ADeviceIsRefused) {
    EXPECT_EQ(StatusOf([&] { Read(L"NUL"); }), HRESULT_FROM_WIN32(ERROR_BAD_FILE_TYPE));
}

TEST_F(SettingsFileTest, WritersAtTheSameTimeLeaveOneWholeFile) {
    WriteSettingsFile(path, kOld);
    std::vector<std::thread> threads;
    for (BYTE writer = 1; writer <= 4; ++writer) {
        threads.emplace_back([&, writer] {
            for (int round = 0; round < 10; ++round) {
                WriteSettingsFile(path, Bytes(100000u + writer, writer));
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    const Bytes bytes = Read(path);
    ASSERT_GT(bytes.size(), 100000u);
    EXPECT_EQ(bytes, Bytes(bytes.size(), static_cast<BYTE>(bytes.size() - 100000)));
    EXPECT_EQ(folder.Count(), 1);
}

} // namespace
