// Class objects, called as COM calls them.
#include <atomic>
#include <chrono>
#include <cstddef>
#include <thread>
#include <vector>

#include "automation/Owners.h"
#include "substitute/objects/ServerClasses.h"
#include "substitute/server/ClassFactory.h"
#include "substitute/server/ServerProcess.h"
#include "tests/kit/Owners.h"
#include "tests/substitute/ObjectFixture.h"

using namespace kemba;
using namespace kemba::substitute;
using namespace kit;
using namespace std::chrono_literals;

namespace {

class ClassFactory : public ObjectFixture {
  protected:
    ComPtr<kemba::substitute::ClassFactory> MakeFactory(std::size_t index = 0) {
        return MakeObject<kemba::substitute::ClassFactory>(context, ServerClasses().at(index));
    }

    static HRESULT Create(kemba::substitute::ClassFactory& factory, ComPtr<IUnknown>& made) {
        void* object = nullptr;
        const HRESULT status = factory.CreateInstance(nullptr, __uuidof(IUnknown), &object);
        made = ComPtr<IUnknown>(static_cast<IUnknown*>(object));
        return status;
    }
};

TEST_F(ClassFactory, CountsItsReferences) {
    const auto factory = MakeFactory();
    EXPECT_EQ(ReferencesTo(*factory), 1u);
    const auto second = ComPtr<IClassFactory>::Share(factory.Get());
    EXPECT_EQ(ReferencesTo(*factory), 2u);
}

TEST_F(ClassFactory, AnObjectIsAUseUntilItIsReleased) {
    const auto factory = MakeFactory();
    ComPtr<IUnknown> object;
    ASSERT_EQ(Create(*factory, object), S_OK);
    EXPECT_EQ(uses.Get().present, 1u);
    object.Reset();
    EXPECT_EQ(uses.Get().present, 0u);
}

TEST_F(ClassFactory, ACallIsAUseBeforeAnyObjectIsThere) {
    // An interface that no object has: nothing is made, and yet somebody was there.
    void* object = nullptr;
    EXPECT_EQ(MakeFactory()->CreateInstance(nullptr, __uuidof(IPrinterQueue), &object), E_NOINTERFACE);
    EXPECT_EQ(uses.Get(),
              (UseCount::State{.present = 0, .begun = 2})); // the call, and an object for a moment
}

TEST_F(ClassFactory, TurnsEveryoneAwayOnceTheEndIsDecided) {
    const auto factory = MakeFactory();
    ASSERT_TRUE(uses.TryEnd(uses.Get()));
    ComPtr<IUnknown> object;
    EXPECT_EQ(Create(*factory, object), CO_E_SERVER_STOPPING);
    EXPECT_FALSE(object);
    EXPECT_EQ(factory->LockServer(TRUE), CO_E_SERVER_STOPPING);
    EXPECT_EQ(factory->LockServer(FALSE), E_UNEXPECTED);
    EXPECT_EQ(uses.Get(), UseCount::State{});
}

TEST_F(ClassFactory, ALockTooManyTakenOffEndsNobodysUse) {
    const auto first = MakeFactory(0);
    const auto second = MakeFactory(1);
    ComPtr<IUnknown> object;
    ASSERT_EQ(Create(*first, object), S_OK);
    EXPECT_EQ(first->LockServer(FALSE), E_UNEXPECTED);
    EXPECT_EQ(uses.Get().present, 1u);
    EXPECT_EQ(first->LockServer(TRUE), S_OK);
    EXPECT_EQ(second->LockServer(FALSE), E_UNEXPECTED); // another class's lock
    EXPECT_EQ(uses.Get().present, 2u);
    EXPECT_EQ(first->LockServer(FALSE), S_OK);
    EXPECT_EQ(first->LockServer(FALSE), E_UNEXPECTED);
    EXPECT_EQ(uses.Get().present, 1u);
    EXPECT_FALSE(uses.TryEnd(uses.Get())); // the object is still there
}

/// Shows nothing: the test's clients have the class object already.
class FoundClasses final : public ClassOffer {
  public:
    void Show() override {}
    void Hide() noexcept override {}
};

TEST_F(ClassFactory, NoCallIsCaughtInTheMiddleByTheEnd) {
    const auto factory = MakeFactory();
    std::atomic<bool> ended{false};
    std::atomic<int> madeAfterTheEnd{0};
    std::atomic<int> otherFailures{0};
    std::vector<std::thread> clients;
    for (int index = 0; index < 4; ++index) {
        clients.emplace_back([&, index] {
            const Apartment own(COINIT_MULTITHREADED);
            for (int round = 0;; ++round) {
                const bool late = ended;
                ComPtr<IUnknown> object;
                const HRESULT status = Create(*factory, object);
                if (status != S_OK || late) {
                    madeAfterTheEnd += status == S_OK ? 1 : 0;
                    otherFailures += status == S_OK || status == CO_E_SERVER_STOPPING ? 0 : 1;
                    break;
                }
                object.Reset();
                std::this_thread::sleep_for(std::chrono::milliseconds((round * 7 + index * 3) % 12));
            }
        });
    }
    FoundClasses classes;
    ServeUntilUnused(uses, classes, {.start = 2s, .grace = 3ms, .settle = 1ms});
    EXPECT_EQ(uses.Get().present, 0u);
    const UseCount::State last = uses.Get();
    ended = true;
    for (std::thread& client : clients) {
        client.join();
    }
    EXPECT_EQ(uses.Get(), last);
    EXPECT_EQ(madeAfterTheEnd, 0);
    EXPECT_EQ(otherFailures, 0);
}

} // namespace
