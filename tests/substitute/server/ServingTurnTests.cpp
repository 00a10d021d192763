// One server at a time.
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <thread>

#include "substitute/base/Failure.h"
#include "substitute/server/ClassFactory.h"
#include "substitute/server/ServingTurn.h"
#include "tests/kit/Owners.h"
#include "tests/substitute/ObjectFixture.h"

using namespace kemba::substitute;
using namespace kit;
using namespace std::chrono_literals;

namespace {

/// A name that no other test has.
std::wstring UniqueTurnName() {
    return L"Local\\kemba test turn " + std::to_wstring(GetCurrentProcessId());
}

/// Whether another thread, as another process would, gets the turn at once; it gives it up again.
bool IsFree() {
    bool taken = false;
    std::thread([&] { taken = ServingTurn(UniqueTurnName()).Take(0ms); }).join();
    return taken;
}

TEST(ServingTurn, OneHasItUntilItIsGivenUp) {
    ServingTurn turn(UniqueTurnName());
    EXPECT_TRUE(IsFree());
    ASSERT_TRUE(turn.Take(0ms));
    EXPECT_TRUE(turn.Take(0ms)); // taken once all the same
    EXPECT_FALSE(IsFree());
    turn.GiveUp();
    EXPECT_TRUE(IsFree());
    turn.GiveUp(); // nothing to give up
    {
        ServingTurn inner(UniqueTurnName());
        ASSERT_TRUE(inner.Take(0ms));
        EXPECT_FALSE(IsFree());
    }
    EXPECT_TRUE(IsFree());
}

TEST(ServingTurn, WhoWaitsGetsItFromTheOneBefore) {
    ServingTurn turn(UniqueTurnName());
    ASSERT_TRUE(turn.Take(0ms));
    bool taken = false;
    std::thread other([&] { taken = ServingTurn(UniqueTurnName()).Take(30s); });
    std::this_thread::sleep_for(50ms);
    turn.GiveUp();
    other.join();
    EXPECT_TRUE(taken);
}

TEST(ServingTurn, TheTurnOfADeadServerIsFree) {
    ServingTurn turn(UniqueTurnName());
    std::thread([] {
        const UniqueHandle mutex(OpenMutexW(SYNCHRONIZE, FALSE, UniqueTurnName().c_str()));
        EXPECT_EQ(WaitForSingleObject(mutex.get(), 0), WAIT_OBJECT_0);
    }).join(); // ends without giving it up
    EXPECT_TRUE(turn.Take(0ms));
}

TEST(ServingTurn, ANameThatSomethingElseHasIsAFailure) {
    const UniqueHandle event(CreateEventW(nullptr, TRUE, FALSE, UniqueTurnName().c_str()));
    try {
        const ServingTurn turn(UniqueTurnName());
        FAIL() << "took an event for a mutex";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.status, HRESULT_FROM_WIN32(ERROR_INVALID_HANDLE));
        EXPECT_NE(failure.reason.find(UniqueTurnName()), std::wstring::npos);
    }
}

TEST(ServingTurn, EachLogonHasATurnOfItsOwn) {
    const std::set<std::wstring> names = {ServingTurnName({1, 0}), ServingTurnName({0, 1}),
                                          ServingTurnName({2, 0}), ServingTurnName({0, 2})};
    EXPECT_EQ(names.size(), 4u);
    EXPECT_EQ(ServingTurnName({3, -4}), L"Local\\{F56F2E65-2620-41A2-84B8-5CE2F149E1D0} -4 3");
}

class OfferedClasses : public ObjectFixture {};

TEST_F(OfferedClasses, AreNotShownWhileAnotherServerHasTheTurn) {
    ServingTurn turn(UniqueTurnName());
    ClassObjects classes(context, turn);
    std::thread([&] {
        ServingTurn another(UniqueTurnName());
        ASSERT_TRUE(another.Take(0ms));
        std::thread([&] { EXPECT_THROW(classes.Show(), Failure); }).join();
    }).join();
}

TEST_F(OfferedClasses, WhichCannotBeShownLeaveTheTurnToOthers) {
    ServingTurn turn(UniqueTurnName());
    ClassObjects classes(context, turn);
    ASSERT_TRUE(turn.Take(0ms));
    apartment.reset();
    EXPECT_THROW(classes.Show(), Failure);
    EXPECT_TRUE(IsFree());
}

} // namespace
