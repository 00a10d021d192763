// Counting uses under one lock.
#include "substitute/objects/UseCount.h"

#include <chrono>
#include <mutex>
#include <optional>

namespace kemba::substitute {

void UseCount::Enter() noexcept {
    const std::scoped_lock hold(m_lock);
    ++m_state.present;
    ++m_state.begun;
    m_changed.notify_all();
}

bool UseCount::TryEnter() noexcept {
    const std::scoped_lock hold(m_lock);
    if (m_ended) {
        return false;
    }
    ++m_state.present;
    ++m_state.begun;
    m_changed.notify_all();
    return true;
}

void UseCount::Leave() noexcept {
    const std::scoped_lock hold(m_lock);
    --m_state.present;
    m_changed.notify_all();
}

UseCount::State UseCount::Get() const noexcept {
    const std::scoped_lock hold(m_lock);
    return m_state;
}

UseCount::State UseCount::WaitForChange(const State& known,
                                        std::optional<std::chrono::milliseconds> patience) const {
    std::unique_lock hold(m_lock);
    const auto changed = [&] { return m_state != known; };
    if (patience) {
        m_changed.wait_for(hold, *patience, changed);
    } else {
        m_changed.wait(hold, changed);
    }
    return m_state;
}

bool UseCount::TryEnd(const State& known) noexcept {
    const std::scoped_lock hold(m_lock);
    m_ended = m_state == known && m_state.present == 0;
    return m_ended;
}

} // namespace kemba::substitute
