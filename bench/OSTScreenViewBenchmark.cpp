// A 40-element screen from its JSON text to a laid-out, painted screen at device pixel ratio 2:
// parsing, substitution, layout, building every element view and painting. 12 labels, 10 buttons
// with background images, 10 image views and 8 switches on a gradient backdrop, some placed by
// references to others. Images are the host's own (found in the main bundle, as cached images
// would be), so no network is involved.
//
// Also the memory the screen's widgets take: the bytes allocated with operator new while building
// and still held afterwards, divided by the number of elements. Image pixels are allocated by
// QImage with malloc, not operator new, so bitmaps are excluded by construction.

#include "OSTWidgetBenchmarkMain.h"
#include "experience/OSTScreen.h"
#include "widgets/OSTScreenView.h"
#include "paint/OSTPaintedLayerCache.h"

#include <QImage>

#include <benchmark/benchmark.h>

#include <atomic>
#include <cstdlib>
#include <malloc.h>
#include <new>

using namespace ostrel;
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

constexpr qreal devicePixelRatio = 2;
constexpr int elementCount = 40;

QString frame(int index)
{
    // Five columns of eight rows; every row after the first hangs below the one above it.
    const QString x = u"%1"_s.arg(8 + (index % 5) * 73);
    const QString y = index < 5 ? u"12"_s : u"{e%1.y} + {e%1.height} + 12"_s.arg(index - 5);
    return uR"("x": "%1", "y": "%2", "width": "65", "height": "70")"_s.arg(x, y);
}

QString screenJson()
{
    QStringList labels, buttons, images;
    for (int index = 0; index < elementCount; ++index) {
        const QString key = u"e%1"_s.arg(index);
        const QString picture = u"https://images.example.test/picture%1.png"_s.arg(index % 4);
        switch (index % 4) {
        case 0:
            labels << uR"("%1": {%2, "text": "Label %3 for {first_name} wraps", "size": "13", "textColor": "#FFFFFF"})"_s
                          .arg(key, frame(index))
                          .arg(index);
            break;
        case 1:
            buttons << uR"("%1": {%2, "cornerRadius": "10", "onClick": {"func": "next"},
                                  "states": {"normal": {"text": "Go", "size": "15", "image": "%3"},
                                             "pressed": {"textColor": "#FF0000"}}})"_s
                           .arg(key, frame(index), picture);
            break;
        case 2:
            images << uR"("%1": {%2, "image": "%3", "cornerRadius": "8", "required": "true"})"_s.arg(key, frame(index),
                                                                                                  picture);
            break;
        default:
            if (index % 8 == 3)
                buttons << uR"("%1": {%2, "buttonType": "toggleSwitch", "defaultState": "pressed"})"_s.arg(key, frame(index));
            else
                labels << uR"("%1": {%2, "text": "Short", "size": "17", "textColor": "#FFCC00",
                                     "shadow": ["#000000", "2", "1", "1"]})"_s.arg(key, frame(index));
        }
    }
    return uR"({"backgroundGradient": {"colors": ["#1E3C72", "#2A5298"]},
                "labels": {%1}, "buttons": {%2}, "images": {%3}})"_s
        .arg(labels.join(u","_s), buttons.join(u","_s), images.join(u","_s));
}

std::shared_ptr<const OSTScreen> benchmarkScreen()
{
    return std::make_shared<const OSTScreen>(u"bench"_s, QVariantMap{{u"json_data"_s, screenJson()}},
                                             OSTDocumentOrigin::Local);
}

OSTScreenView *buildView(const std::shared_ptr<const OSTScreen> &screen)
{
    OSTScreenView *view = OSTScreenView::create(screen, QSizeF(375, 667), [](const QString &text) {
        return QString(text).replace(u"{first_name}"_s, u"Ada"_s);
    });
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
