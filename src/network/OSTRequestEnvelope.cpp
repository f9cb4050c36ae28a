#include "network/OSTRequestEnvelope.h"

#include "network/OSTEncryption.h"

#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

QString base64OrEmpty(const std::optional<QByteArray> &bytes)
{
    return bytes ? QString::fromLatin1(bytes->toBase64()) : QString();
}

} // namespace

QByteArray OSTRequestEnvelope::serializedParameters(const QVariantMap &parameters)
{
    return QJsonDocument(QJsonObject::fromVariantMap(parameters)).toJson(QJsonDocument::Compact);
}

QByteArray OSTRequestEnvelope::bodyForParameters(const QVariantMap &parameters)
{
    const QJsonObject envelope{
        {u"iv"_s, base64OrEmpty(OSTEncryption::initializationVector())},
        {u"encrypted_key"_s, base64OrEmpty(OSTEncryption::encryptedAESKey())},
        {u"encrypted_data"_s, base64OrEmpty(OSTEncryption::encryptData(serializedParameters(parameters)))},
    };
    return QJsonDocument(envelope).toJson(QJsonDocument::Compact);
}

} // namespace ostrel
