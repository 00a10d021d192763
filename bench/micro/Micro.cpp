// Measures small parts of the program. The words are Google Benchmark's own; what it has to say comes on
// standard error, and in a file of one's choice.
#include "bench/micro/Micro.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <iostream>

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
    // Standard output is written to as well. It has a buffer, as a file or a pipe has: to a device the
    // runtime would write byte by byte.
    benchmark::ConsoleReporter reporter(benchmark::ConsoleReporter::OO_None);
    reporter.SetOutputStream(&std::cerr);
    if (!_wfreopen(L"NUL", L"wb", stdout) || std::setvbuf(stdout, nullptr, _IOFBF, BUFSIZ) != 0) {
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}
