// Layout resolution, which runs on the GUI thread before a screen appears. Targets on the
// project machine: resolving a typical 40-element screen within 15 µs and 500 elements within
// 200 µs, building and resolving 500 within 350 µs, and a 2,000-element chain of references
// that the table visits last to first within 1.74 ms.
//
//   BM_Resolve/<n>              resolveLayout() alone, right after building the manager (the
//                               building is not timed; the time is wall time)
//   BM_BuildAndResolve/<n>      from the parsed JSON: reading the screen document, building the
//                               manager from it and resolveLayout()
//   BM_BuildFromDocumentAndResolve/<n>  building the manager from an already read document plus
//                               resolveLayout(): the layout engine's part of BM_BuildAndResolve
//   BM_ResolveChain/2000        resolveLayout() of the chain alone, as BM_Resolve
//   BM_BuildAndResolveChain/2000 as BM_BuildAndResolve
//
// Build and run in the release preset:
//   cmake --preset release && cmake --build --preset release --target
//   ostrel-bench-OSTLayoutBenchmark build/release/bench/ostrel-bench-OSTLayoutBenchmark

#include "layout/OSTLayoutManager.h"
#include "screen/OSTScreenDocument.h"

#include <QRectF>
#include <QString>
#include <QVariantList>
#include <QVariantMap>

#include <benchmark/benchmark.h>

#include <chrono>
#include <ctime>
#include <memory>

using namespace ostrel;
using namespace Qt::StringLiterals;

namespace {

const QRectF kScreen(0, 0, 375, 667);
constexpr double kStatusBar = 20;

void insert(QVariantMap &screen, const QString &category, const QString &key,
            const QVariantMap &object)
{
    QVariantMap objects = screen.value(category).toMap();
    objects.insert(key, object);
    screen.insert(category, objects);
}

// A screen like the service sends: a backdrop, a header group with a logo and a title beside
// it, then cards (groups) of rows stacked below each other, each row placed below the
// previous one; percentages, centring, "statusBar", references to earlier elements, own
// attributes and groups. `count` elements in all (at least 4).
QVariantMap typicalScreen(int count)
{
    QVariantMap screen;
    QVariantMap groups;
    insert(screen, u"shapes"_s, u"background"_s, {});
    groups.insert(u"header"_s,
                  QVariantMap{{u"y"_s, u"statusBar"_s},
                              {u"height"_s, u"10%"_s},
                              {u"elements"_s, QVariantList{u"logo"_s, u"title"_s}}});
    insert(screen, u"images"_s, u"logo"_s,
           {{u"x"_s, u"16"_s},
            {u"y"_s, u"(100% - height) / 2"_s},
            {u"width"_s, u"height"_s},
            {u"height"_s, u"60%"_s}});
    insert(screen, u"labels"_s, u"title"_s,
           {{u"x"_s, u"{logo.x} + {logo.width} + 8"_s},
            {u"width"_s, u"100% - x - 16"_s},
            {u"alignment"_s, u"left"_s}});

    static const QString categories[] = {u"labels"_s, u"inputs"_s, u"buttons"_s, u"images"_s};
    QString previousCard = u"header"_s;
    int remaining = count - 4;
    for (int card = 0; remaining > 0; ++card) {
        const QString cardKey = QStringLiteral("card%1").arg(card, 3, 10, QChar(u'0'));
        const int rows = std::min(remaining - 1, 8);
        QVariantList members;
        QString previousRow;
        for (int row = 0; row < rows; ++row) {
            const QString rowKey = QStringLiteral("%1row%2").arg(cardKey).arg(row);
            QVariantMap object{{u"x"_s, row % 2 ? u"(100% - width) / 2"_s : u"12"_s},
                               {u"y"_s,
                                previousRow.isEmpty() ? u"8"_s
                                                      : u"{"_s + previousRow + u".y} + {"_s
                                        + previousRow + u".height} + 8"_s},
                               {u"width"_s, row % 2 ? u"90%"_s : u"100% - 24"_s},
                               {u"height"_s, row % 3 ? u"44"_s : u"width * 0.25"_s},
                               {u"anchored"_s, u"false"_s}};
            if (row == 0)
                object.insert(u"zLayer"_s, 650);
            insert(screen, categories[row % 4], rowKey, object);
            members.append(rowKey);
            previousRow = rowKey;
        }
        groups.insert(
            cardKey,
            QVariantMap{
                {u"x"_s, u"16"_s},
                {u"y"_s, u"{"_s + previousCard + u".y} + {"_s + previousCard + u".height} + 12"_s},
                {u"width"_s, u"100% - 32"_s},
                {u"height"_s, QStringLiteral("%1").arg(8 + rows * 52)},
                {u"elements"_s, members},
                {u"anchored"_s, u"false"_s}});
        previousCard = cardKey;
        remaining -= rows + 1;
    }
    screen.insert(u"groups"_s, groups);
    return screen;
}

// Element i refers to element i + 1 and the last one is a number; the keys make the table
// visit element 0 first, so full passes would resolve one link per pass.
QVariantMap chainScreen(int count)
{
    QVariantMap shapes;
    for (int link = 0; link < count; ++link) {
        const QString key = QStringLiteral("c%1").arg(link, 5, 10, QChar(u'0'));
        const QString next = QStringLiteral("c%1").arg(link + 1, 5, 10, QChar(u'0'));
        shapes.insert(
            key,
            QVariantMap{{u"y"_s, link == count - 1 ? u"10"_s : u"{"_s + next + u".y} + 1"_s},
                        {u"height"_s, u"10"_s}});
    }
    return QVariantMap{{u"shapes"_s, shapes}};
}

double threadCpuSeconds()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return double(now.tv_sec) + double(now.tv_nsec) * 1e-9;
}

// Times resolveLayout() alone, as the screen view runs it: right after building the manager,
// which is not timed. The reported time is wall time (a steady clock around the call); the
// counter resolve_cpu_us is the thread's processor time for the same calls, which a busy
// machine does not inflate.
void resolveTimed(benchmark::State &state, const QVariantMap &screen)
{
    const auto document = OSTScreenDocument::fromLayout(screen);
    double cpuSeconds = 0;
    for (auto _ : state) {
        auto manager = std::make_unique<OSTLayoutManager>(*document, kScreen, kStatusBar);
        const double cpuStart = threadCpuSeconds();
        const auto start = std::chrono::steady_clock::now();
        const bool resolved = manager->resolveLayout();
        const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
        cpuSeconds += threadCpuSeconds() - cpuStart;
        if (!resolved) {
            state.SkipWithError("the layout did not resolve");
            break;
        }
        state.SetIterationTime(elapsed.count());
    }
    state.counters["resolve_cpu_us"] =
        benchmark::Counter(cpuSeconds * 1e6, benchmark::Counter::kAvgIterations);
}

void BM_Resolve(benchmark::State &state)
{
    const QVariantMap screen = typicalScreen(int(state.range(0)));
    {
        OSTLayoutManager check(*OSTScreenDocument::fromLayout(screen), kScreen, kStatusBar);
        if (check.elements().size() != state.range(0)) {
            state.SkipWithError("wrong element count");
            return;
        }
    }
    resolveTimed(state, screen);
    state.counters["elements"] = double(state.range(0));
}
BENCHMARK(BM_Resolve)->Arg(40)->Arg(500)->UseManualTime()->Unit(benchmark::kMicrosecond);

void BM_BuildAndResolve(benchmark::State &state)
{
    const QVariantMap screen = typicalScreen(int(state.range(0)));
    for (auto _ : state) {
        // The document is read in the loop: the layout starts from the parsed JSON, as a screen does.
        OSTLayoutManager manager(*OSTScreenDocument::fromLayout(screen), kScreen, kStatusBar);
        if (!manager.resolveLayout()) {
            state.SkipWithError("the layout did not resolve");
            break;
        }
        benchmark::DoNotOptimize(manager.frameForKey(u"title"_s));
    }
}
BENCHMARK(BM_BuildAndResolve)->Arg(40)->Arg(500)->Unit(benchmark::kMicrosecond);

void BM_BuildFromDocumentAndResolve(benchmark::State &state)
{
    const auto document = OSTScreenDocument::fromLayout(typicalScreen(int(state.range(0))));
    for (auto _ : state) {
        OSTLayoutManager manager(*document, kScreen, kStatusBar);
        if (!manager.resolveLayout()) {
            state.SkipWithError("the layout did not resolve");
            break;
        }
        benchmark::DoNotOptimize(manager.frameForKey(u"title"_s));
    }
}
BENCHMARK(BM_BuildFromDocumentAndResolve)->Arg(40)->Arg(500)->Unit(benchmark::kMicrosecond);

void BM_ResolveChain(benchmark::State &state)
{
    const QVariantMap screen = chainScreen(int(state.range(0)));
    resolveTimed(state, screen);
}
BENCHMARK(BM_ResolveChain)->Arg(2000)->UseManualTime()->Unit(benchmark::kMillisecond);

void BM_BuildAndResolveChain(benchmark::State &state)
{
    const QVariantMap screen = chainScreen(int(state.range(0)));
    for (auto _ : state) {
        // The document is read in the loop: the layout starts from the parsed JSON, as a screen does.
        OSTLayoutManager manager(*OSTScreenDocument::fromLayout(screen), kScreen, kStatusBar);
        if (!manager.resolveLayout()) {
            state.SkipWithError("the layout did not resolve");
            break;
        }
    }
}
BENCHMARK(BM_BuildAndResolveChain)->Arg(2000)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
