#pragma once

#include <benchmark/benchmark.h>

namespace ostrel::bench {

// Runs the registered benchmarks with the command line's options, for programs that set up
// their own Qt application first. Returns the process exit code.
inline int runRegisteredBenchmarks(int argc, char **argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

} // namespace ostrel::bench
