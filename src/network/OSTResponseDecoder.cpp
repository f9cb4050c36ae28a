#include "network/OSTResponseDecoder.h"

#include "core/OSTLogging.h"
#include "network/OSTURLErrorTable.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonParseError>
#include <QStringDecoder>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

void logParseFailure(const QString &endpoint)
{
    OSTLogging::logDebug(u"Failed to parse response for endpoint: %1"_s, endpoint);
}

void removeNullsFromDictionary(QVariantMap &dictionary)
{
    for (auto member = dictionary.begin(); member != dictionary.end();) {
        if (OSTResponseDecoder::isNull(*member)) {
            member = dictionary.erase(member);
            continue;
        }
        OSTResponseDecoder::recursivelyRemoveNullsFromObject(*member);
        ++member;
    }
}

void removeNullsFromArray(QVariantList &array)
{
    array.removeIf([](const QVariant &element) { return OSTResponseDecoder::isNull(element); });
    for (QVariant &element : array)
        OSTResponseDecoder::recursivelyRemoveNullsFromObject(element);
}

} // namespace

bool OSTResponseDecoder::isNull(const QVariant &value)
{
    return value.metaType() == QMetaType::fromType<std::nullptr_t>();
}

void OSTResponseDecoder::recursivelyRemoveNullsFromObject(QVariant &object)
{
    if (object.metaType() == QMetaType::fromType<QVariantMap>()) {
        QVariantMap dictionary = object.toMap();
        removeNullsFromDictionary(dictionary);
        object = dictionary;
    } else if (object.metaType() == QMetaType::fromType<QVariantList>()) {
        QVariantList array = object.toList();
        removeNullsFromArray(array);
        object = array;
    }
}

OSTResponseDecoder::Result<QVariantMap> OSTResponseDecoder::dictionaryFromBody(
    const QString &endpoint, const std::optional<QByteArray> &body, const std::optional<OSTError> &error)
{
    if (body) {
        QJsonParseError parseError;
        const QJsonDocument document = QJsonDocument::fromJson(*body, &parseError);
        if (document.isObject()) {
            QVariant object = document.object().toVariantMap();
            recursivelyRemoveNullsFromObject(object);
            return {object.toMap(), std::nullopt};
        }
        logParseFailure(endpoint);
        const QString reason = parseError.error != QJsonParseError::NoError
            ? parseError.errorString()
            : u"the response is not a JSON object"_s;
        return {std::nullopt,
                error ? error : OSTURLErrorTable::errorWithCode(OSTURLErrorCannotParseResponse, reason)};
    }
    logParseFailure(endpoint);
    return {std::nullopt,
            error ? error
                  : OSTURLErrorTable::errorWithCode(OSTURLErrorCannotParseResponse, u"No response body."_s)};
}

OSTResponseDecoder::Result<QString> OSTResponseDecoder::stringFromBody(
    const QString &endpoint, const std::optional<QByteArray> &body, const std::optional<OSTError> &error)
{
    if (body) {
        QStringDecoder decoder(QStringDecoder::Utf8);
        const QString text = decoder(*body);
        if (!decoder.hasError())
            return {text, error};
    }
    logParseFailure(endpoint);
    return {std::nullopt,
            error ? error
                  : OSTURLErrorTable::errorWithCode(OSTURLErrorCannotDecodeContentData,
                                                    u"The response is not UTF-8 text."_s)};
}

} // namespace ostrel
