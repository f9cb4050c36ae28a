#pragma once

#include "OSTBenchmarkBundle.h"
#include "OSTBenchmarkRunner.h"

#include <QApplication>

namespace ostrel::bench {

// The main() of the widget benchmarks: an offscreen QApplication in a BenchmarkBundle. Returns the
// process exit code.
inline int runWidgetBenchmarks(int argc, char **argv)
{
    BenchmarkBundle bundle;
    QApplication application(argc, argv);
    bundle.install();
    return runRegisteredBenchmarks(argc, argv);
}

} // namespace ostrel::bench
