// Work that several threads begin at the same moment.
#pragma once

#include <atomic>
#include <functional>
#include <thread>
#include <vector>

namespace kit {

/// Runs the work on that many threads, each with its number from 0, and waits for all of them. None begins
/// before all are there.
inline void AtOnce(int count, const std::function<void(int)>& work) {
    std::atomic<int> missing{count};
    std::vector<std::jthread> threads;
    for (int number = 0; number < count; ++number) {
        threads.emplace_back([&missing, &work, number] {
            --missing;
            while (missing > 0) { // awake, so that they begin close together
                std::this_thread::yield();
            }
            work(number);
        });
    }
}

} // namespace kit
