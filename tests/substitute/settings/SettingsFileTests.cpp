// Settings files on a real disk.
#include <gtest/gtest.h>

#include <cstddef>
#include <filesystem>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "substitute/base/Bytes.h"
#include "substitute/base/Failure.h"
#include "substitute/base/InputFile.h"
#include "substitute/base/Paths.h"
#include "substitute/settings/SettingsFile.h"
#include "substitute/settings/VqsFormat.h"
#include "tests/kit/Owners.h"
#include "tests/kit/TemporaryFolder.h"
#include "tests/substitute/FailureOf.h"
#include "tests/substitute/Texts.h"

using namespace kemba::substitute;
using namespace kit;

namespace {

const Bytes kOld = {1, 2, 3};
const Bytes kNew = {4, 5, 6, 7, 8};
const Bytes kOther{5, 6};

class SettingsFile : public testing::Test {
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

/// Stands between the writing and the system's call.
struct Replacer {
    DWORD error = ERROR_SUCCESS; ///< of the first `failures` calls; the others go on to the system
    int failures = 0;
    bool renames = false; ///< whether a failing call has changed the former file's name already
    bool holds = false;   ///< whether it then lets nobody change either file's name
    bool reuses = false;  ///< whether somebody else takes the new file's former name at once
    int calls = 0;
    DWORD flags = 0;      ///< of the last call
    std::wstring added{}; ///< the new file of the last call
    std::wstring former{};
    UniqueHandle held[2] = {};
} replacer;

UniqueHandle Hold(const wchar_t* path) {
    return OwnFile(CreateFileW(path, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
}

BOOL WINAPI ReplaceOrFail(const wchar_t* path, const wchar_t* added, const wchar_t* former, DWORD flags,
                          void* exclude, void* reserved) {
    replacer.flags = flags;
    replacer.added = added;
    replacer.former = former;
    if (++replacer.calls > replacer.failures) {
        const BOOL replaced = ReplaceFileW(path, added, former, flags, exclude, reserved);
        if (replacer.reuses) {
            WriteSettingsFile(added, kOther);
        }
        return replaced;
    }
    if (replacer.renames) {
        EXPECT_TRUE(MoveFileW(path, former));
    }
    if (replacer.holds) {
        replacer.held[0] = Hold(added);
        replacer.held[1] = Hold(former);
    }
    SetLastError(replacer.error);
    return FALSE;
}

class SettingsReplace : public SettingsFile {
  protected:
    SettingsReplace() { replacer = {}; }
    HRESULT Write(const Bytes& bytes) {
        return StatusOf([&] { WriteSettingsFile(path, bytes, &ReplaceOrFail); });
    }
};

TEST_F(SettingsFile, WritesANewFileAndReplacesAnOldOne) {
    WriteSettingsFile(path, kOld);
    EXPECT_EQ(Read(path), kOld);
    WriteSettingsFile(path, kNew);
    EXPECT_EQ(Read(path), kNew);
    WriteSettingsFile(path, {});
    EXPECT_EQ(Read(path), Bytes());
    EXPECT_EQ(folder.Count(), 1);
}

TEST_F(SettingsFile, AReadOnlyTargetStaysAsItIs) {
    WriteSettingsFile(path, kOld);
    SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_READONLY);
    EXPECT_EQ(StatusOf([&] { WriteSettingsFile(path, kNew); }), E_ACCESSDENIED);
    EXPECT_NE(reason.find(path), std::wstring::npos);
    SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);
    EXPECT_EQ(Read(path), kOld);
    EXPECT_EQ(folder.Count(), 1);
}

TEST_F(SettingsFile, ALockedTargetStaysAsItIs) {
    WriteSettingsFile(path, kOld);
    UniqueHandle lock = OpenExisting(path, GENERIC_READ, 0);
    ASSERT_TRUE(lock);
    EXPECT_EQ(StatusOf([&] { Read(path); }), HRESULT_FROM_WIN32(ERROR_SHARING_VIOLATION));
    const HRESULT status = StatusOf([&] { WriteSettingsFile(path, kNew); });
    EXPECT_TRUE(status == E_ACCESSDENIED || status == HRESULT_FROM_WIN32(ERROR_SHARING_VIOLATION)) << status;
    EXPECT_EQ(folder.Count(), 1);
    lock.reset();
    EXPECT_EQ(Read(path), kOld);
}

TEST_F(SettingsFile, BadPlacesGiveTheSystemsStatus) {
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

TEST_F(SettingsFile, ASizeBombIsRefusedUnread) {
    WriteSettingsFile(path, kNew);
    EXPECT_EQ(ReadSettingsFile(path, kNew.size()), kNew);
    EXPECT_EQ(StatusOf([&] { ReadSettingsFile(path, kNew.size() - 1); }),
              HRESULT_FROM_WIN32(ERROR_FILE_TOO_LARGE));
    std::filesystem::resize_file(path, 1ull << 32); // takes no room on the disk
    EXPECT_EQ(StatusOf([&] { Read(path); }), HRESULT_FROM_WIN32(ERROR_FILE_TOO_LARGE));
}

TEST_F(SettingsFile, ADeviceIsRefused) {
    for (const std::wstring& device : {std::wstring(L"NUL"), folder.File(L"NUL"), folder.File(L"com1.vqs"),
                                       std::wstring(L"\\\\.\\C:"), L"\\\\.\\" + path, L"//./" + path}) {
        SCOPED_TRACE(device);
        EXPECT_EQ(StatusOf([&] { Read(device); }), HRESULT_FROM_WIN32(ERROR_BAD_FILE_TYPE));
        EXPECT_EQ(StatusOf([&] { WriteSettingsFile(device, kNew); }),
                  HRESULT_FROM_WIN32(ERROR_BAD_FILE_TYPE));
        EXPECT_EQ(folder.Count(), 0);
    }
}

TEST_F(SettingsFile, AStreamOfAFileIsRefusedBeforeAnythingIsMade) {
    for (const wchar_t* const stream : {L":s", L"::$DATA"}) {
        EXPECT_EQ(StatusOf([&] { WriteSettingsFile(path + stream, kNew); }),
                  HRESULT_FROM_WIN32(ERROR_INVALID_NAME));
        EXPECT_NE(reason.find(path + stream), std::wstring::npos);
        EXPECT_EQ(folder.Count(), 0);
    }
}

TEST_F(SettingsFile, TheLongestNamesAreTaken) {
    for (const std::size_t length : {249, 255}) {
        const std::wstring file = L"\\\\?\\" + folder.File(std::wstring(length, L'x'));
        EXPECT_EQ(StatusOf([&] { WriteSettingsFile(file, kOld); }), S_OK);
        EXPECT_EQ(StatusOf([&] { WriteSettingsFile(file, kNew); }), S_OK);
        EXPECT_EQ(Read(file), kNew);
        DeleteFileW(file.c_str());
        EXPECT_EQ(folder.Count(), 0);
    }
}

TEST_F(SettingsFile, AFileThatIsBeingReadIsReplaced) {
    WriteSettingsFile(path, kOld);
    {
        InputFile reader(L"file", path);
        EXPECT_EQ(StatusOf([&] { WriteSettingsFile(path, kNew); }), S_OK);
        EXPECT_EQ(reader.ReadAll<Bytes>(kMaximumVqsSize), kOld);
        EXPECT_EQ(Read(path), kNew);
    }
    EXPECT_EQ(folder.Count(), 1); // the former file has gone with its last reader
}

TEST_F(SettingsReplace, OnlyAFileThatIsThereIsReplaced) {
    EXPECT_EQ(Write(kOld), S_OK);
    EXPECT_EQ(replacer.calls, 0);
    EXPECT_EQ(Write(kNew), S_OK);
    EXPECT_EQ(replacer.calls, 1);
    EXPECT_EQ(replacer.flags, 0u); // nothing that goes over from the former file may fail unnoticed
    EXPECT_EQ(Read(path), kNew);
    EXPECT_EQ(folder.Count(), 1);
}

TEST_F(SettingsReplace, WhatKilledServersLeftBehindIsLeftAlone) {
    Write(kOld);
    Write(kNew);
    const std::size_t digits = replacer.added.size() - 8; // and ".tmp"
    auto number = static_cast<unsigned>(std::stoul(replacer.added.substr(digits), nullptr, 16));
    std::filesystem::create_directory(TemporaryNameBeside(path, ++number, L"tmp"));
    for (int count = 0; count < 10; ++count) {
        for (const wchar_t* const ending : {L"tmp", L"old"}) {
            folder.Put(std::wstring(FileNameOf(TemporaryNameBeside(path, ++number, ending))), "left");
        }
    }
    EXPECT_EQ(Write(kOld), S_OK);
    EXPECT_EQ(replacer.added, TemporaryNameBeside(path, number + 1, L"tmp"));
    EXPECT_EQ(Read(path), kOld);
    EXPECT_EQ(Read(TemporaryNameBeside(path, number, L"old")), (Bytes{'l', 'e', 'f', 't'}));
    EXPECT_EQ(folder.Count(), 22);
}

TEST_F(SettingsReplace, ANameThatIsGivenUpIsAnothersAtOnce) {
    Write(kOld);
    replacer.reuses = true;
    EXPECT_EQ(Write(kNew), S_OK);
    EXPECT_EQ(Read(path), kNew);
    EXPECT_EQ(Read(replacer.added), kOther);
}

TEST_F(SettingsReplace, APassingHindranceIsWaitedFor) {
    Write(kOld);
    for (const DWORD error : {ERROR_ACCESS_DENIED, ERROR_SHARING_VIOLATION, ERROR_UNABLE_TO_REMOVE_REPLACED,
                              ERROR_UNABLE_TO_MOVE_REPLACEMENT, ERROR_FILE_NOT_FOUND}) {
        SCOPED_TRACE(error);
        replacer = {.error = error, .failures = 2};
        EXPECT_EQ(Write(kNew), S_OK);
        EXPECT_EQ(replacer.calls, 3);
        EXPECT_EQ(Read(path), kNew);
        EXPECT_EQ(folder.Count(), 1);
    }
}

TEST_F(SettingsReplace, AHindranceThatStaysLeavesTheFormerFile) {
    Write(kOld);
    for (const DWORD error :
         {ERROR_UNABLE_TO_REMOVE_REPLACED, ERROR_UNABLE_TO_MOVE_REPLACEMENT, ERROR_INVALID_PARAMETER}) {
        SCOPED_TRACE(error);
        replacer = {.error = error, .failures = 1000};
        EXPECT_EQ(Write(kNew), HRESULT_FROM_WIN32(error));
        EXPECT_TRUE(BeginsWith(reason, L"replacing the file \"" + path + L"\" failed: "));
        EXPECT_EQ(Read(path), kOld);
        EXPECT_EQ(folder.Count(), 1);
    }
    EXPECT_EQ(replacer.calls, 1); // the last one is nothing to wait for
}

TEST_F(SettingsReplace, AFileSystemThatCannotReplaceGetsAMove) {
    Write(kOld);
    for (const DWORD error : {ERROR_INVALID_FUNCTION, ERROR_NOT_SUPPORTED, ERROR_CALL_NOT_IMPLEMENTED}) {
        SCOPED_TRACE(error);
        replacer = {.error = error, .failures = 1};
        EXPECT_EQ(Write(kNew), S_OK);
        EXPECT_EQ(Read(path), kNew);
        EXPECT_EQ(folder.Count(), 1);
    }
}

TEST_F(SettingsReplace, AHalfDoneReplacingIsUndoneAndTriedAgain) {
    Write(kOld);
    replacer = {.error = ERROR_UNABLE_TO_MOVE_REPLACEMENT_2, .failures = 2, .renames = true};
    EXPECT_EQ(Write(kNew), S_OK);
    EXPECT_EQ(replacer.calls, 3);
    EXPECT_EQ(Read(path), kNew);
    EXPECT_EQ(folder.Count(), 1);
    replacer.failures = 1000;
    EXPECT_EQ(Write(kOld), HRESULT_FROM_WIN32(ERROR_UNABLE_TO_MOVE_REPLACEMENT_2));
    EXPECT_TRUE(BeginsWith(reason, L"replacing the file \"" + path + L"\" failed: "));
    EXPECT_EQ(Read(path), kNew);
    EXPECT_EQ(folder.Count(), 1);
}

TEST_F(SettingsReplace, AFormerFileThatCannotBePutBackIsKeptAndNamed) {
    Write(kOld);
    replacer = {.error = ERROR_UNABLE_TO_MOVE_REPLACEMENT_2, .failures = 1, .renames = true, .holds = true};
    EXPECT_NE(Write(kNew), S_OK);
    EXPECT_EQ(replacer.calls, 1); // there was nothing to replace any more
    EXPECT_TRUE(BeginsWith(reason, L"the former file is \"" + replacer.former + L"\" now; replacing"));
    EXPECT_EQ(Read(replacer.former), kOld);
    replacer = {};
}

TEST_F(SettingsFile, WritersAtTheSameTimeLeaveOneWholeFile) {
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
