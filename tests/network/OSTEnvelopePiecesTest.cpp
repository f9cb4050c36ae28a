#include "network/OSTEncryption.h"
#include "network/OSTRequestEnvelope.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

#include <thread>

using namespace ostrel;
using namespace Qt::StringLiterals;

namespace {

QByteArray encryptedDataOf(const QByteArray &body)
{
    return QJsonDocument::fromJson(body).object().value(u"encrypted_data"_s).toString().toLatin1();
}

} // namespace

TEST(EnvelopePieces, TheBodyCarriesTheWholeCiphertextAtEveryPieceBoundary)
{
    // Around the 48 KB pieces the ciphertext is encoded in, and around the 16-byte block.
    for (const qsizetype size : {8, 15, 16, 17, 49151, 49152, 49153, 2 * 49152, 3 * 49152 + 5, 1024 * 1024}) {
        const QByteArray json = "{\"a\":\"" + QByteArray(size - 8, 'x') + "\"}";
        const QByteArray encoded = encryptedDataOf(OSTRequestEnvelope::bodyForSerializedParameters(json));
        EXPECT_EQ(encoded, OSTEncryption::encryptData(json)->toBase64()) << size;
        EXPECT_EQ(OSTEncryption::decryptData(QByteArray::fromBase64(encoded)), json) << size;
    }
}

TEST(EnvelopePieces, AThreadsKeptTextBufferNeverCarriesOneRequestIntoTheNext)
{
    // Large, small, past the kept size, small again, empty: on two threads at once, every body
    // holds its own parameters and nothing else.
    const auto send = [](char filler, int *matches) {
        for (const qsizetype length : {600 * 1024, 10, 3 * 1024 * 1024, 10, 100 * 1024, 0}) {
            const QString text(length, QChar::fromLatin1(filler));
            const QByteArray body = OSTRequestEnvelope::bodyForParameters({{u"text"_s, text}});
            *matches += OSTEncryption::decryptData(QByteArray::fromBase64(encryptedDataOf(body)))
                        == "{\"text\":\"" + text.toLatin1() + "\"}";
        }
    };
    int first = 0;
    int second = 0;
    std::thread one(send, 'a', &first);
    std::thread two(send, 'b', &second);
    one.join();
    two.join();
    EXPECT_EQ(first, 6);
    EXPECT_EQ(second, 6);
}
