// What uses the server's process.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <optional>

namespace kemba::substitute {

/// Counts what uses the process: objects, clients' locks, and calls that are about to make an object. When
/// the process ends is decided elsewhere; here the decision and a use that begins cannot pass each other.
/// From any thread.
class UseCount {
  public:
    /// How many uses there are, and how many there have ever been: both together tell that nobody came and
    /// went meanwhile.
    struct State {
        std::uint64_t present = 0;
        std::uint64_t begun = 0;

        bool operator==(const State&) const = default;
    };

    UseCount() = default;
    UseCount(const UseCount&) = delete;
    UseCount& operator=(const UseCount&) = delete;

    /// A further use begins, of somebody who is at work on behalf of one that is counted.
    void Enter() noexcept;
    /// The same for a caller from outside: false, and nothing is counted, once the end is decided.
    [[nodiscard]] bool TryEnter() noexcept;
    void Leave() noexcept;

    State Get() const noexcept;
    /// Waits until the state is another than `known`, but not longer than `patience` (without it: for ever);
    /// gives the state then.
    State WaitForChange(const State& known, std::optional<std::chrono::milliseconds> patience) const;
    /// Decides the end if the state is still `known` and nothing uses the process; tells whether it did.
    [[nodiscard]] bool TryEnd(const State& known) noexcept;

  private:
    mutable std::mutex m_lock;
    mutable std::condition_variable m_changed;
    State m_state;
    bool m_ended = false;
};

/// One use of the process, as long as it lives.
class Use {
  public:
    explicit Use(UseCount& uses) noexcept : m_uses(uses) { m_uses.Enter(); }
    Use(const Use&) = delete;
    Use& operator=(const Use&) = delete;
    ~Use() { m_uses.Leave(); }

  private:
    UseCount& m_uses;
};

} // namespace kemba::substitute
