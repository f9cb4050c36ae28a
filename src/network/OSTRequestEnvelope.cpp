#include "network/OSTRequestEnvelope.h"

#include "core/OSTJsonWriter.h"
#include "network/OSTEncryption.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <openssl/evp.h>

#include <limits>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

// Appends "key":"<base64 of bytes>", encoding straight into `out`: a megabyte batch then needs no
// second buffer of its size.
void appendMember(QByteArray &out, const char *key, const std::optional<QByteArray> &bytes)
{
    out.append('"').append(key).append("\":\"");
    if (bytes && !bytes->isEmpty() && bytes->size() <= std::numeric_limits<int>::max() / 4 * 3) {
        const qsizetype start = out.size();
        const qsizetype encodedSize = (bytes->size() + 2) / 3 * 4;
        out.resize(start + encodedSize + 1); // EVP_EncodeBlock adds a terminating NUL
        EVP_EncodeBlock(reinterpret_cast<unsigned char *>(out.data() + start),
                        reinterpret_cast<const unsigned char *>(bytes->constData()), static_cast<int>(bytes->size()));
        out.truncate(start + encodedSize);
    }
    out.append('"');
}

} // namespace

QByteArray OSTRequestEnvelope::serializedParameters(const QVariantMap &parameters)
{
    if (std::optional<QByteArray> json = OSTJsonWriter::serialized(parameters))
        return *std::move(json);
    return QJsonDocument(QJsonObject::fromVariantMap(parameters)).toJson(QJsonDocument::Compact);
}

QByteArray OSTRequestEnvelope::bodyForParameters(const QVariantMap &parameters)
{
    return bodyForSerializedParameters(serializedParameters(parameters));
}

QByteArray OSTRequestEnvelope::bodyForSerializedParameters(const QByteArray &json)
{
    const std::optional<QByteArray> encrypted = OSTEncryption::encryptData(json);
    QByteArray body;
    // Base64 grows by a third; the members never need escaping.
    body.reserve((encrypted ? encrypted->size() : 0) * 4 / 3 + 512);
    body.append('{');
    appendMember(body, "iv", OSTEncryption::initializationVector());
    body.append(',');
    appendMember(body, "encrypted_key", OSTEncryption::encryptedAESKey());
    body.append(',');
    appendMember(body, "encrypted_data", encrypted);
    body.append('}');
    return body;
}

} // namespace ostrel
