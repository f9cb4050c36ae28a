// Cost of a large delivery of the experience document: 50 flows and 500 screens of 30 KB of
// screen JSON each. Measured separately: what the thread that receives the delivery pays
// (registration and handing the delivery to the cache queue), the whole of it including the
// write to the settings store, and that write alone as it would cost if done inline.

#include "OSTBenchmarkRunner.h"

#include "core/OSTUserDefaultsManager.h"
#include "experience/OSTFlowManager.h"
#include "platform/OSTDefaultsStore.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <QTemporaryDir>

using namespace ostrel;
using namespace Qt::StringLiterals;

namespace {

constexpr int flowCount = 50;
constexpr int screenCount = 500;
constexpr int screenJSONBytes = 30 * 1024;

// Screen JSON of about 30 KB: labels with their layout formulas and text, as an authored screen.
QString screenJSON(int screen)
{
    QVariantMap labels;
    for (int label = 0; label * 300 < screenJSONBytes; ++label) {
        labels.insert(u"label%1"_s.arg(label),
                      QVariantMap{{u"x"_s, u"[screen.width]*0.1"_s},
                                  {u"y"_s, u"[label%1.bottom]+12"_s.arg(label)},
                                  {u"width"_s, u"[screen.width]*0.8"_s},
                                  {u"height"_s, u"44"_s},
                                  {u"text"_s, u"Screen %1 says something worth reading, line %2."_s.arg(screen).arg(label)},
                                  {u"textColor"_s, u"#333333"_s}});
    }
    return QString::fromUtf8(QJsonDocument::fromVariant(QVariantMap{{u"labels"_s, labels}}).toJson());
}

struct Delivery {
    QVariantMap flows;
    QVariantMap screens;
};

Delivery largeDelivery()
{
    Delivery delivery;
    for (int screen = 0; screen < screenCount; ++screen) {
        delivery.screens.insert(u"Screen%1"_s.arg(screen),
                                QVariantMap{{u"json_data"_s, screenJSON(screen)},
                                            {u"json_version"_s, u"version-%1"_s.arg(screen)},
                                            {u"experience_name"_s, u"Screen %1"_s.arg(screen)},
                                            {u"screen_name"_s, u"screen-%1"_s.arg(screen)},
                                            {u"ost_segment_id"_s, screen % 7}});
    }
    const int stepsPerFlow = screenCount / flowCount;
    for (int flow = 0; flow < flowCount; ++flow) {
        QVariantList steps;
        for (int step = 0; step < stepsPerFlow; ++step)
            steps.append(u"screen%1"_s.arg(flow * stepsPerFlow + step));
        delivery.flows.insert(u"Flow%1"_s.arg(flow),
                              QVariantMap{{u"name"_s, u"Flow %1"_s.arg(flow)},
                                          {u"steps"_s, steps},
                                          {u"properties"_s, QVariantMap{{u"flowEndAction"_s,
                                                                         QVariantMap{{u"func"_s, u"close"_s}}}}}});
    }
    return delivery;
}

const Delivery &delivery()
{
    static const Delivery shared = largeDelivery();
    return shared;
}

struct Settings {
    Settings() : store(folder.filePath(u"bench.sqlite"_s)), manager(store, u"com.ostrelhq.Ostrel"_s) {}
    QTemporaryDir folder;
    OSTDefaultsStore store;
    OSTUserDefaultsManager manager;
};

// What the receiving thread pays: registration, image scan, and handing over the write.
void registerDeliveryOnTheReceivingThread(benchmark::State &state)
{
    Settings settings;
    OSTFlowManager manager(settings.manager);
    for (auto _ : state) {
        manager.loadFlows(delivery().flows, delivery().screens);
        state.PauseTiming();
        manager.synchronize();
        state.ResumeTiming();
    }
}
BENCHMARK(registerDeliveryOnTheReceivingThread)->Unit(benchmark::kMillisecond)->UseRealTime();

// Registration and the write to the settings store, end to end.
void registerAndPersistDelivery(benchmark::State &state)
{
    Settings settings;
    OSTFlowManager manager(settings.manager);
    for (auto _ : state) {
        manager.loadFlows(delivery().flows, delivery().screens);
        manager.synchronize();
    }
}
BENCHMARK(registerAndPersistDelivery)->Unit(benchmark::kMillisecond)->UseRealTime();

// The write alone, as it would cost the receiving thread if done there.
void persistDeliveryInline(benchmark::State &state)
{
    Settings settings;
    for (auto _ : state) {
        settings.manager.setObject(delivery().flows, u"flows"_s);
        settings.manager.setObject(delivery().screens, u"screens"_s);
    }
}
BENCHMARK(persistDeliveryInline)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    return bench::runRegisteredBenchmarks(argc, argv);
}
