#include "network/OSTRequestEnvelope.h"

#include "core/OSTJsonWriter.h"
#include "network/OSTEncryption.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <openssl/evp.h>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

// The ciphertext is base64-encoded into the body piece by piece, so it never needs a buffer of
// its own: a multiple of the AES block and of 3 (only the last piece's base64 is padded), small
// enough to stay in cache between the cipher and the encoder.
constexpr qsizetype cipherPieceSize = 48 * 1024;
// Each thread keeps the buffer its parameters' JSON text is written into: written afresh every
// time, a text of some hundred kilobytes costs a page fault per page (three times the cost of
// the whole envelope, measured at 100 KB). One grown past this by a rare larger request is let
// go once that request is built, so that it does not stay with the thread.
constexpr qsizetype keptJsonCapacity = 2 * 1024 * 1024;
// Member names, quotes, colons, commas and braces of the three members, generously.
constexpr qsizetype envelopeFrame = 64;
constexpr qsizetype aesBlockLength = 16;

QByteArray &threadJsonBuffer()
{
    thread_local QByteArray buffer;
    return buffer;
}

qsizetype base64Size(qsizetype bytes)
{
    return (bytes + 2) / 3 * 4;
}

qsizetype optionalSize(const std::optional<QByteArray> &bytes)
{
    return bytes ? bytes->size() : 0;
}

void appendBase64(QByteArray &out, QByteArrayView bytes)
{
    if (bytes.isEmpty())
        return;
    const qsizetype start = out.size();
    const qsizetype encodedSize = base64Size(bytes.size());
    out.resize(start + encodedSize + 1); // EVP_EncodeBlock adds a terminating NUL
    EVP_EncodeBlock(reinterpret_cast<unsigned char *>(out.data() + start),
                    reinterpret_cast<const unsigned char *>(bytes.data()), static_cast<int>(bytes.size()));
    out.truncate(start + encodedSize);
}

void appendMember(QByteArray &out, const char *key, const std::optional<QByteArray> &bytes)
{
    out.append('"').append(key).append("\":\"");
    if (bytes)
        appendBase64(out, *bytes);
    out.append('"');
}

// The "encrypted_data" member, encrypted and encoded straight into `out`; its value stays "" when
// the cipher fails.
void appendEncryptedData(QByteArray &out, QByteArrayView json)
{
    out.append("\"encrypted_data\":\"");
    const qsizetype start = out.size();
    if (!OSTEncryption::encryptDataInPieces(json, cipherPieceSize,
                                            [&out](QByteArrayView piece) { appendBase64(out, piece); }))
        out.truncate(start);
    out.append('"');
}

// Values the direct writer refuses (dates, data) take QJsonValue's conversion.
QByteArray jsonDocumentText(const QVariantMap &parameters)
{
    return QJsonDocument(QJsonObject::fromVariantMap(parameters)).toJson(QJsonDocument::Compact);
}

} // namespace

QByteArray OSTRequestEnvelope::serializedParameters(const QVariantMap &parameters)
{
    if (std::optional<QByteArray> json = OSTJsonWriter::serialized(parameters))
        return *std::move(json);
    return jsonDocumentText(parameters);
}

QByteArray OSTRequestEnvelope::bodyForParameters(const QVariantMap &parameters)
{
    QByteArray &json = threadJsonBuffer();
    json.resize(0); // keeps the capacity
    if (!OSTJsonWriter::appendValue(json, parameters))
        json = jsonDocumentText(parameters);
    const QByteArray body = bodyForSerializedParameters(json);
    if (json.capacity() > keptJsonCapacity)
        json = QByteArray();
    return body;
}

QByteArray OSTRequestEnvelope::bodyForSerializedParameters(const QByteArray &json)
{
    const std::optional<QByteArray> vector = OSTEncryption::initializationVector();
    const std::optional<QByteArray> key = OSTEncryption::encryptedAESKey();
    // Padding adds one block at most; +1 for the encoder's terminating NUL.
    const qsizetype size = envelopeFrame + base64Size(optionalSize(vector)) + base64Size(optionalSize(key))
                           + base64Size(json.size() + aesBlockLength) + 1;
    QByteArray body;
    body.reserve(size);
    body.append('{');
    appendMember(body, "iv", vector);
    body.append(',');
    appendMember(body, "encrypted_key", key);
    body.append(',');
    appendEncryptedData(body, json);
    body.append('}');
    return body;
}

} // namespace ostrel
