// Cost of building a request envelope (serialise the parameters to JSON, AES-256-CBC encrypt,
// base64 the three members) for 1 KB, 100 KB and 1 MB parameter dictionaries, set beside raw
// AES-256-CBC of the same number of bytes with the same OpenSSL in the same run.

#include "OSTBenchmarkCrypto.h"
#include "OSTBenchmarkRunner.h"
#include "network/OSTEncryption.h"
#include "network/OSTRequestEnvelope.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <memory>

using namespace ostrel;
using namespace Qt::StringLiterals;

namespace {

// Parameters shaped like an event batch: events of a few strings and numbers each, as many as it
// takes to reach `bytes` of JSON.
QVariantMap parametersOfSize(qsizetype bytes)
{
    QVariantList events;
    QVariantMap parameters;
    int index = 0;
    qsizetype size = 0;
    while (size < bytes) {
        const qsizetype more = std::max<qsizetype>(1, (bytes - size) / 256);
        for (qsizetype added = 0; added < more; ++added, ++index) {
            events.append(QVariantMap{{u"ost_event_id"_s, u"3F2504E0-4F89-11D3-9A0C-0305E82C%1"_s.arg(index, 4, 10, QLatin1Char('0'))},
                                      {u"event_type"_s, u"OST Action Tapped"_s},
                                      {u"device_timestamp"_s, u"2026-11-21 17:35:15.123000"_s},
                                      {u"screen_name"_s, u"welcome"_s},
                                      {u"flow_name"_s, u"signup"_s},
                                      {u"wifi"_s, true},
                                      {u"timing"_s, 0.25 * index}});
        }
        parameters = {{u"token"_s, u"sdk-token"_s}, {u"events"_s, events}};
        size = OSTRequestEnvelope::serializedParameters(parameters).size();
    }
    return parameters;
}

void rangeForSizes(benchmark::internal::Benchmark *benchmark)
{
    benchmark->Arg(1024)->Arg(100 * 1024)->Arg(1024 * 1024)->Unit(benchmark::kMicrosecond);
}

void BM_EnvelopeBuilding(benchmark::State &state)
{
    const QVariantMap parameters = parametersOfSize(state.range(0));
    const qsizetype jsonBytes = OSTRequestEnvelope::serializedParameters(parameters).size();
    for (auto _ : state)
        benchmark::DoNotOptimize(OSTRequestEnvelope::bodyForParameters(parameters));
    state.SetBytesProcessed(state.iterations() * jsonBytes);
    state.counters["json_bytes"] = static_cast<double>(jsonBytes);
}
BENCHMARK(BM_EnvelopeBuilding)->Apply(rangeForSizes);

void BM_Serialization(benchmark::State &state)
{
    const QVariantMap parameters = parametersOfSize(state.range(0));
    const qsizetype jsonBytes = OSTRequestEnvelope::serializedParameters(parameters).size();
    for (auto _ : state)
        benchmark::DoNotOptimize(OSTRequestEnvelope::serializedParameters(parameters));
    state.SetBytesProcessed(state.iterations() * jsonBytes);
}
BENCHMARK(BM_Serialization)->Apply(rangeForSizes);

// OpenSSL alone: one EVP AES-256-CBC pass with padding over the same number of bytes.
void BM_RawAES256CBC(benchmark::State &state)
{
    bench::runRawAES256CBC(state, OSTRequestEnvelope::serializedParameters(parametersOfSize(state.range(0))).size());
}
BENCHMARK(BM_RawAES256CBC)->Apply(rangeForSizes);

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    QTemporaryDir bundle;
    if (!bench::installServiceBundle(bundle.path()))
        return 1;

    return ostrel::bench::runRegisteredBenchmarks(argc, argv);
}
