// Measures small parts of the program; the words are Google Benchmark's own.
#include "bench/micro/Micro.h"

#include <benchmark/benchmark.h>

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    micro::RegisterCatalogue();
    micro::RegisterConversion();
    micro::RegisterReplace();
    micro::RegisterMap();
    micro::RegisterPath();
    micro::RegisterWriting();
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
