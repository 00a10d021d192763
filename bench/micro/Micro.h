// What all subjects share: pairs of benchmarks, and texts of any length.
#pragma once

#include <benchmark/benchmark.h>

#include <cstddef>
#include <string>

namespace micro {

// Each registers what it measures.
void RegisterCatalogue();
void RegisterConversion();
void RegisterMap();
void RegisterPath();
void RegisterReplace();
void RegisterWriting();

/// Registers a benchmark: `make` gets things ready and gives a callable, whose calls are measured and whose
/// results count as used.
template<class Make>
void Measure(const std::string& name, Make make) {
    benchmark::RegisterBenchmark(name.c_str(), [make](benchmark::State& state) {
        auto once = make();
        for (auto iteration : state) {
            benchmark::DoNotOptimize(once());
        }
    });
}

/// A benchmark, and beside it what a program without the library would do for the same; the report finds the
/// second by its name.
template<class Make, class MakeBare>
void Pair(const std::string& name, Make make, MakeBare makeBare) {
    Measure(name, make);
    Measure(name + "/Bare", makeBare);
}

inline constexpr std::size_t kSizes[] = {10, 1'000, 1'000'000};

/// `sample` again and again, to this length.
inline std::wstring Repeated(const std::wstring& sample, std::size_t length) {
    std::wstring text;
    while (text.size() < length) {
        text += sample;
    }
    text.resize(length);
    return text;
}

} // namespace micro
