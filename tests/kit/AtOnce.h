// Work that several threads begin at the same moment.
#pragma once

#include <functional>
#include <latch>
#include <thread>
#include <vector>

namespace kit {

/// Runs the work on that many threads, each with its number from 0, and waits for all of them. None begins
/// before all are there.
inline void AtOnce(int count, const std::function<void(int)>& work) {
    std::latch gate(count);
    std::vector<std::jthread> threads;
    for (int number = 0; number < count; ++number) {
        threads.emplace_back([&gate, &work, number] {
            gate.arrive_and_wait();
            work(number);
        });
    }
}

} // namespace kit
