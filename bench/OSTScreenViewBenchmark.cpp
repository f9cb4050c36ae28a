// The 40-element screen (OSTBenchmarkScreen.h) from its JSON text to a laid-out, painted screen
// at device pixel ratio 2, drawn by Qt Widgets: parsing, substitution, layout, building every element
// view and painting. Images are the host's own (found in the main bundle, as cached images would
// be), so no network is involved.
//
// Also the memory the screen's widgets take: the bytes allocated with operator new while building
// and still held afterwards, divided by the number of elements. Image pixels are allocated by
// QImage with malloc, not operator new, so bitmaps are excluded by construction.

#include "OSTBenchmarkScreen.h"
#include "OSTWidgetBenchmarkMain.h"
#include "widgets/OSTScreenView.h"
#include "paint/OSTPaintedLayerCache.h"

#include <QImage>

#include <benchmark/benchmark.h>

#include <atomic>
#include <cstdlib>
#include <malloc.h>
#include <new>

using namespace ostrel;
using namespace ostrel::bench;
using namespace Qt::StringLiterals;

namespace {
std::atomic<long long> liveHeapBytes{0};
} // namespace

void *operator new(std::size_t size)
{
    void *memory = std::malloc(size ? size : 1);
    if (!memory)
        throw std::bad_alloc();
    liveHeapBytes += static_cast<long long>(malloc_usable_size(memory));
    return memory;
}

void operator delete(void *memory) noexcept
{
    if (!memory)
        return;
    liveHeapBytes -= static_cast<long long>(malloc_usable_size(memory));
    std::free(memory);
}

void operator delete(void *memory, std::size_t) noexcept
{
    operator delete(memory);
}

namespace {

OSTScreenView *buildView(const std::shared_ptr<const OSTScreen> &screen)
{
    OSTScreenView *view = OSTScreenView::create(screen, QSizeF(375, 667), &bench::substituteFirstName);
    // Host images arrive on the next turn of the event loop.
    QCoreApplication::processEvents();
    return view;
}

enum class KeptLayers { Reused, ClearedEachTime };

void measureScreenFromJsonToPaint(benchmark::State &state, KeptLayers keptLayers)
{
    const auto screen = benchmarkScreen();
    QImage target(QSize(375, 667) * devicePixelRatio, QImage::Format_ARGB32_Premultiplied);
    target.setDevicePixelRatio(devicePixelRatio);
    for (auto _ : state) {
        std::unique_ptr<OSTScreenView> view(buildView(screen));
        if (!view || !view->isFullyLoaded()) {
            state.SkipWithError("the screen did not build with its images");
            return;
        }
        target.fill(Qt::transparent);
        view->render(&target, QPoint(), QRegion(), QWidget::DrawChildren);
        benchmark::DoNotOptimize(target.constBits());
        state.PauseTiming();
        view.reset();
        if (keptLayers == KeptLayers::ClearedEachTime)
            OSTPaintedLayerCache::clear();
        state.ResumeTiming();
    }
    state.counters["per_element_us"] = benchmark::Counter(
        double(state.iterations()) * elementCount, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

// A screen built again: the pictures its views share with the previous build are kept layers.
void BM_ScreenFromJsonToPaint(benchmark::State &state)
{
    measureScreenFromJsonToPaint(state, KeptLayers::Reused);
}
BENCHMARK(BM_ScreenFromJsonToPaint)->Unit(benchmark::kMillisecond);

// A screen whose pictures were never painted: every layer is painted for the first time.
void BM_ScreenFromJsonToPaintFirstTime(benchmark::State &state)
{
    measureScreenFromJsonToPaint(state, KeptLayers::ClearedEachTime);
}
BENCHMARK(BM_ScreenFromJsonToPaintFirstTime)->Unit(benchmark::kMillisecond);

void BM_ScreenWidgetMemory(benchmark::State &state)
{
    const auto screen = benchmarkScreen();
    long long held = 0;
    for (auto _ : state) {
        std::unique_ptr<OSTScreenView>(buildView(screen)); // warms the image table and fonts
        const long long before = liveHeapBytes;
        std::unique_ptr<OSTScreenView> view(buildView(screen));
        held = liveHeapBytes - before;
        view.reset();
    }
    state.counters["bytes_per_element"] = double(held) / elementCount;
    state.counters["bytes_per_screen"] = double(held);
}
BENCHMARK(BM_ScreenWidgetMemory)->Iterations(3);

} // namespace

int main(int argc, char **argv)
{
    return ostrel::bench::runWidgetBenchmarks(argc, argv);
}
