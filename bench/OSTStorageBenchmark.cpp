// Cost of the SDK's settings: a read (in memory) and a write-through of one 1 KB value, with
// domains of 100 and 100,000 keys to show that a write does not grow with the domain.

#include "core/OSTUserDefaultsManager.h"
#include "platform/OSTDefaultsStore.h"

#include <QTemporaryDir>

#include <benchmark/benchmark.h>

using namespace ostrel;

namespace {

const QString domain = QStringLiteral("com.ostrelhq.Ostrel");

// A store whose domain already holds `keyCount` small values.
struct PopulatedStore {
    explicit PopulatedStore(int keyCount) : store(folder.filePath(QStringLiteral("bench.sqlite")))
    {
        QVariantMap values;
        for (int key = 0; key < keyCount; ++key)
            values.insert(QStringLiteral("key-%1").arg(key), key);
        store.setPersistentDomain(domain, values);
    }
    QTemporaryDir folder;
    OSTDefaultsStore store;
};

void readFromMemory(benchmark::State &state)
{
    PopulatedStore populated(static_cast<int>(state.range(0)));
    OSTUserDefaultsManager manager(populated.store, domain);
    const QString key = QStringLiteral("key-42");
    for (auto _ : state)
        benchmark::DoNotOptimize(manager.objectForKey(key));
}
BENCHMARK(readFromMemory)->Arg(100)->Arg(100000);

void writeThroughOneKilobyte(benchmark::State &state)
{
    PopulatedStore populated(static_cast<int>(state.range(0)));
    OSTUserDefaultsManager manager(populated.store, domain);
    QByteArray value(1024, 'v');
    const QString key = QStringLiteral("payload");
    int round = 0;
    for (auto _ : state) {
        value[0] = static_cast<char>('a' + round++ % 26);
        manager.setObject(value, key);
    }
    state.SetBytesProcessed(state.iterations() * value.size());
}
BENCHMARK(writeThroughOneKilobyte)->Arg(100)->Arg(100000)->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
