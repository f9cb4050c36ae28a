// The event queue's costs: taking in host events with the journal on (each call returns once its
// event is committed), assembling a 1 MB batch from stored event texts, and building every
// request's envelope for a 10,000-event flush, set beside raw AES-256-CBC of the same bytes.

#include "OSTBenchmarkCrypto.h"
#include "OSTBenchmarkRunner.h"
#include "events/OSTEventManager.h"
#include "events/OSTEventRequestBuilder.h"
#include "network/OSTRequestEnvelope.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <deque>

using namespace ostrel;
using namespace Qt::StringLiterals;

namespace {

// What a host typically sends with an event.
QVariantMap hostParameters(int index)
{
    return {{u"screen"_s, u"checkout"_s}, {u"item_count"_s, index % 7}, {u"price"_s, 19.99},
            {u"currency"_s, u"EUR"_s}, {u"first_purchase"_s, index % 2 == 0}};
}

// The stored texts of typical events, as many as fill `bytes` of JSON.
std::deque<OSTEventJournal::Record> storedEventsOfSize(qsizetype bytes)
{
    std::deque<OSTEventJournal::Record> records;
    qsizetype size = 0;
    for (int index = 0; size < bytes; ++index) {
        QVariantMap parameters = OSTEvent(u"purchase"_s, hostParameters(index)).parameters();
        parameters.insert({{u"system"_s, u"debian,12"_s}, {u"device_name"_s, u"workstation"_s},
                           {u"app"_s, u"com.example.host"_s}, {u"app_version"_s, u"2.1"_s},
                           {u"has_internet"_s, true}, {u"wifi"_s, false}});
        records.push_back({index + 1, OSTEventJournal::Kind::Queued, OSTRequestEnvelope::serializedParameters(parameters)});
        size += records.back().json.size() + 1;
    }
    return records;
}

void BM_Intake(benchmark::State &state)
{
    OSTEventManager &manager = OSTEventManager::sharedManager();
    int index = 0;
    for (auto _ : state) {
        manager.sendEventWithName(u"purchase"_s, hostParameters(index));
        // Stay below the storage limit, so no drop is measured.
        if (++index % 5000 == 0) {
            state.PauseTiming();
            manager.setEventsEnabled(false);
            manager.setEventsEnabled(true);
            state.ResumeTiming();
        }
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_Intake)->Unit(benchmark::kMicrosecond)->UseRealTime();

void BM_AssembleStoredBatch1MB(benchmark::State &state)
{
    // All of it in one body, past the 500-event limit of a request, to measure a full megabyte.
    const std::deque<OSTEventJournal::Record> records = storedEventsOfSize(1000 * 1000);
    const size_t count = records.size();
    qsizetype bytes = 0;
    for (auto _ : state) {
        const QByteArray parameters = OSTEventRequestBuilder::batchParameters(records, count, u"sdk-token"_s);
        bytes = parameters.size();
        if (state.range(0) == 1)
            benchmark::DoNotOptimize(OSTRequestEnvelope::bodyForSerializedParameters(parameters));
        else
            benchmark::DoNotOptimize(parameters.data());
    }
    state.SetBytesProcessed(state.iterations() * bytes);
    state.counters["events"] = static_cast<double>(count);
    state.counters["json_bytes"] = static_cast<double>(bytes);
}
// 0: the JSON text only; 1: with the envelope (AES and base64).
BENCHMARK(BM_AssembleStoredBatch1MB)->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

void BM_Flush10000Envelopes(benchmark::State &state)
{
    std::deque<OSTEventJournal::Record> all = storedEventsOfSize(1);
    while (all.size() < 10000)
        all.push_back(storedEventsOfSize(1).front());
    int requests = 0;
    for (auto _ : state) {
        std::deque<OSTEventJournal::Record> pending = all;
        requests = 0;
        while (!pending.empty()) {
            const size_t count = OSTEventRequestBuilder::batchSize(pending);
            benchmark::DoNotOptimize(OSTRequestEnvelope::bodyForSerializedParameters(
                OSTEventRequestBuilder::batchParameters(pending, count, u"sdk-token"_s)));
            pending.erase(pending.begin(), pending.begin() + static_cast<qsizetype>(count));
            ++requests;
        }
    }
    state.counters["requests"] = requests;
}
BENCHMARK(BM_Flush10000Envelopes)->Unit(benchmark::kMillisecond);

void BM_RawAES256CBC1MB(benchmark::State &state)
{
    bench::runRawAES256CBC(state, 1000 * 1000);
}
BENCHMARK(BM_RawAES256CBC1MB)->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char **argv)
{
    QTemporaryDir home;
    qputenv("XDG_DATA_HOME", home.path().toLocal8Bit());
    QCoreApplication application(argc, argv);
    QTemporaryDir bundle;
    if (!bench::installServiceBundle(bundle.path()))
        return 1;
    return ostrel::bench::runRegisteredBenchmarks(argc, argv);
}
