// The 40-element screen (OSTBenchmarkScreen.h) from its JSON text to its first frame, drawn by Qt
// Quick: parsing, substitution, layout, building every element item, then the window's first
// frame (polish, scene graph synchronisation and rendering by the software renderer, which is what
// a grab of the window runs) at device pixel ratio 2. The counterpart of BM_ScreenFromJsonToPaint
// of the widget toolkit (OSTScreenViewBenchmark).

#include "OSTBenchmarkBundle.h"
#include "OSTBenchmarkRunner.h"
#include "OSTBenchmarkScreen.h"
#include "quick/OSTQuickScreen.h"
#include "quick/OSTQuickLoadingOverlay.h"

#include <QGuiApplication>
#include <QQuickWindow>

#include <benchmark/benchmark.h>

#include <memory>

using namespace ostrel;
using namespace ostrel::bench;

namespace {

QQuickWindow *benchmarkWindow()
{
    static QQuickWindow *const window = [] {
        auto *made = new QQuickWindow;
        made->resize(375, 667);
        made->show();
        return made;
    }();
    return window;
}

void BM_QuickScreenFromJsonToFirstFrame(benchmark::State &state)
{
    const auto screen = benchmarkScreen();
    QQuickWindow *window = benchmarkWindow();
    OSTQuickScreen::Environment environment;
    environment.area = QSizeF(375, 667);
    environment.substitution = &substituteFirstName;
    for (auto _ : state) {
        std::unique_ptr<OSTQuickScreen> item(OSTQuickScreen::screenWithScreen(
            screen, environment, OSTQuickScreen::UnresolvedLayout::Fail, window->contentItem()));
        // Host images arrive on the next turn of the event loop.
        QCoreApplication::processEvents();
        if (!item) {
            state.SkipWithError("the screen did not build");
            return;
        }
        const QImage frame = window->grabWindow();
        benchmark::DoNotOptimize(frame.constBits());
        state.PauseTiming();
        if (frame.devicePixelRatio() != devicePixelRatio)
            state.SkipWithError("the window does not draw at ratio 2");
        item.reset();
        state.ResumeTiming();
    }
    state.counters["per_element_us"] = benchmark::Counter(
        double(state.iterations()) * elementCount, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}
BENCHMARK(BM_QuickScreenFromJsonToFirstFrame)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv)
{
    BenchmarkBundle bundle;
    qputenv("QT_SCALE_FACTOR", QByteArray::number(devicePixelRatio));
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    QGuiApplication application(argc, argv);
    bundle.install();
    return runRegisteredBenchmarks(argc, argv);
}
