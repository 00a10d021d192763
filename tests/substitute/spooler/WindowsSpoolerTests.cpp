// What the seam adds to the system's spooler.
#include <windows.h>

#include <gtest/gtest.h>

#include "substitute/base/Bytes.h"
#include "substitute/spooler/WindowsSpooler.h"

using namespace kemba::substitute;

namespace {

TEST(WindowsSpooler, TellsARefusalFromWhatTheSystemDoesNotOffer) {
    EXPECT_EQ(RemovalError(ERROR_INVALID_PARAMETER, true), DWORD{ERROR_INVALID_PARAMETER});
    EXPECT_EQ(RemovalError(ERROR_INVALID_PARAMETER, false), DWORD{ERROR_CALL_NOT_IMPLEMENTED});
    EXPECT_EQ(RemovalError(ERROR_ACCESS_DENIED, false), DWORD{ERROR_ACCESS_DENIED});
    EXPECT_EQ(RemovalError(ERROR_SUCCESS, true), DWORD{ERROR_SUCCESS});
}

TEST(WindowsSpooler, AsksADriversConfigurationLibraryForItsDefaultMode) {
    Bytes mode;
    EXPECT_EQ(WindowsSpooler().AskLibraryForMode(DEFAULTS_DRIVER, L"Label", mode), DWORD{ERROR_SUCCESS});
    ASSERT_EQ(mode.size(), sizeof(DEVMODEW) + 2);
    const auto& read = *reinterpret_cast<const DEVMODEW*>(mode.data());
    EXPECT_STREQ(read.dmDeviceName, L"Label");
    EXPECT_EQ(read.dmCopies, 42);
}

TEST(WindowsSpooler, ALibraryWithoutTheFunctionHasNoDefaultMode) {
    Bytes mode;
    EXPECT_EQ(WindowsSpooler().AskLibraryForMode(L"kernel32.dll", L"Label", mode),
              DWORD{ERROR_CALL_NOT_IMPLEMENTED});
    EXPECT_EQ(WindowsSpooler().AskLibraryForMode(L"no such library.dll", L"Label", mode),
              DWORD{ERROR_MOD_NOT_FOUND});
}

} // namespace
