// Cost of building a request envelope (serialise the parameters to JSON, AES-256-CBC encrypt,
// base64 the three members) for 1 KB, 100 KB and 1 MB parameter dictionaries, set beside raw
// AES-256-CBC of the same number of bytes with the same OpenSSL in the same run.

#include "OSTBenchmarkRunner.h"
#include "network/OSTEncryption.h"
#include "network/OSTRequestEnvelope.h"
#include "platform/OSTBundle.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <openssl/evp.h>
#include <openssl/x509.h>

#include <algorithm>
#include <memory>

using namespace ostrel;
using namespace Qt::StringLiterals;

namespace {

// A certificate whose key wraps the payload key; made once, as a service operator's would be.
QString makeCertificateBase64()
{
    std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)> key(EVP_RSA_gen(2048), EVP_PKEY_free);
    std::unique_ptr<X509, decltype(&X509_free)> certificate(X509_new(), X509_free);
    X509_set_version(certificate.get(), 2);
    X509_gmtime_adj(X509_getm_notBefore(certificate.get()), 0);
    X509_gmtime_adj(X509_getm_notAfter(certificate.get()), 86400);
    X509_set_pubkey(certificate.get(), key.get());
    X509_NAME *name = X509_get_subject_name(certificate.get());
    X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC, reinterpret_cast<const unsigned char *>("bench"), -1, -1, 0);
    X509_set_issuer_name(certificate.get(), name);
    X509_sign(certificate.get(), key.get(), EVP_sha256());
    QByteArray der(i2d_X509(certificate.get(), nullptr), Qt::Uninitialized);
    auto *out = reinterpret_cast<unsigned char *>(der.data());
    i2d_X509(certificate.get(), &out);
    return QString::fromLatin1(der.toBase64());
}

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
    const QByteArray input(OSTRequestEnvelope::serializedParameters(parametersOfSize(state.range(0))).size(), 'j');
    const QByteArray key = *OSTEncryption::aesKey();
    const QByteArray vector = *OSTEncryption::initializationVector();
    QByteArray output(input.size() + 16, Qt::Uninitialized);
    std::unique_ptr<EVP_CIPHER_CTX, decltype(&EVP_CIPHER_CTX_free)> context(EVP_CIPHER_CTX_new(), EVP_CIPHER_CTX_free);
    for (auto _ : state) {
        int moved = 0;
        int finalMoved = 0;
        EVP_EncryptInit_ex(context.get(), EVP_aes_256_cbc(), nullptr,
                           reinterpret_cast<const unsigned char *>(key.constData()),
                           reinterpret_cast<const unsigned char *>(vector.constData()));
        auto *out = reinterpret_cast<unsigned char *>(output.data());
        EVP_EncryptUpdate(context.get(), out, &moved, reinterpret_cast<const unsigned char *>(input.constData()),
                          static_cast<int>(input.size()));
        EVP_EncryptFinal_ex(context.get(), out + moved, &finalMoved);
        benchmark::DoNotOptimize(output.data());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * input.size());
}
BENCHMARK(BM_RawAES256CBC)->Apply(rangeForSizes);

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    QTemporaryDir bundle;
    QFile info(QDir(bundle.path()).filePath(u"Info.json"_s));
    if (!info.open(QIODevice::WriteOnly))
        return 1;
    info.write(QJsonDocument(QJsonObject{{u"OstrelServiceCertificate"_s, makeCertificateBase64()}}).toJson());
    info.close();
    OSTBundle::setMainBundlePath(bundle.path());
    // The one-time RSA step is not part of a request's cost.
    if (!OSTEncryption::encryptedAESKey())
        return 1;

    return ostrel::bench::runRegisteredBenchmarks(argc, argv);
}
