// The 40-element screen (OSTBenchmarkScreen.h) from its JSON text to its first frame, drawn by Qt
// Quick: parsing, substitution, layout, building every element item, then the window's next frame
// (polish, scene graph synchronisation, painting the items and rendering by the software renderer
// into the window's backing store, until the frame is swapped) at device pixel ratio 2. The
// counterpart of BM_ScreenFromJsonToPaint of the widget toolkit (OSTScreenViewBenchmark), which
// paints into an image made once.

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

// Asks for a frame and turns the event loop until it is on the glass.
void renderFrame(QQuickWindow &window)
{
    bool swapped = false;
    const QMetaObject::Connection connection =
        QObject::connect(&window, &QQuickWindow::frameSwapped, [&swapped] { swapped = true; });
    window.update();
    while (!swapped)
        QCoreApplication::processEvents(QEventLoop::AllEvents);
    QObject::disconnect(connection);
}

void BM_QuickScreenFromJsonToFirstFrame(benchmark::State &state)
{
    const auto screen = benchmarkScreen();
    QQuickWindow *window = benchmarkWindow();
    OSTQuickScreen::Environment environment;
    environment.area = QSizeF(375, 667);
    environment.substitution = &substituteFirstName;
    // The software renderer's grab carries no ratio of its own: its size tells.
    if (window->grabWindow().size() != window->size() * devicePixelRatio) {
        state.SkipWithError("the window does not draw at ratio 2");
        return;
    }
    for (auto _ : state) {
        std::unique_ptr<OSTQuickScreen> item(OSTQuickScreen::screenWithScreen(
            screen, environment, OSTQuickScreen::UnresolvedLayout::Fail, window->contentItem()));
        // Host images arrive on the next turn of the event loop.
        QCoreApplication::processEvents();
        if (!item) {
            state.SkipWithError("the screen did not build");
            return;
        }
        renderFrame(*window);
        state.PauseTiming();
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
    // A frame asked for is drawn at the next turn of the event loop, not after the platform's idle
    // delay (5 ms by default), which no real display waits for.
    qputenv("QT_QPA_UPDATE_IDLE_TIME", "0");
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    QGuiApplication application(argc, argv);
    bundle.install();
    return runRegisteredBenchmarks(argc, argv);
}
