// Arbitrary bytes as a decrypted response body, through both forms of the response decoder.
//
// Checks, besides the sanitizers' own: the dictionary form yields a value exactly when the bytes
// are a JSON object, and then equals that object with its nulls dropped at every depth (computed
// here on QJsonValue, independently of the decoder's QVariant walk); a failure always carries an
// error; null removal is idempotent. The string form yields the text exactly when the bytes are
// UTF-8.

#include "core/OSTLogging.h"
#include "network/OSTResponseDecoder.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStringDecoder>

#include <cstdint>
#include <cstdio>
#include <cstdlib>

using namespace ostrel;

namespace {

[[noreturn]] void fail(const char *what)
{
    std::fprintf(stderr, "response decoder fuzz check failed: %s\n", what);
    std::abort();
}

QJsonValue withoutNulls(const QJsonValue &value)
{
    if (value.isObject()) {
        QJsonObject cleaned;
        const QJsonObject object = value.toObject();
        for (auto member = object.begin(); member != object.end(); ++member) {
            if (!member.value().isNull())
                cleaned.insert(member.key(), withoutNulls(member.value()));
        }
        return cleaned;
    }
    if (value.isArray()) {
        QJsonArray cleaned;
        for (const QJsonValue &element : value.toArray()) {
            if (!element.isNull())
                cleaned.append(withoutNulls(element));
        }
        return cleaned;
    }
    return value;
}

void checkDictionaryForm(const QByteArray &body)
{
    const auto decoded = OSTResponseDecoder::dictionaryFromBody(QStringLiteral("launch_v3"), body, std::nullopt);
    if (decoded.value.has_value() == decoded.error.has_value())
        fail("exactly one of value and error");

    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(body, &parseError);
    const bool isObject = parseError.error == QJsonParseError::NoError && document.isObject();
    if (isObject != decoded.value.has_value())
        fail("a value exactly for a JSON object");
    if (!isObject)
        return;
    if (*decoded.value != withoutNulls(document.object()).toObject().toVariantMap())
        fail("the object without its nulls");

    QVariant again = *decoded.value;
    OSTResponseDecoder::recursivelyRemoveNullsFromObject(again);
    if (again != QVariant(*decoded.value))
        fail("null removal is idempotent");
}

void checkStringForm(const QByteArray &body)
{
    const auto decoded = OSTResponseDecoder::stringFromBody(QStringLiteral("event"), body, std::nullopt);
    QStringDecoder utf8(QStringDecoder::Utf8);
    const QString text = utf8.decode(body);
    const bool isUtf8 = !utf8.hasError();
    if (isUtf8 != decoded.value.has_value())
        fail("a text exactly for UTF-8");
    if (isUtf8 && *decoded.value != text)
        fail("the text is the UTF-8 reading");
    if (!decoded.value && !decoded.error)
        fail("no text carries an error");
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    static QCoreApplication application(*argc, *argv);
    OSTLogging::setLoggingLevel(OSTLoggingLevelNone);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray body(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    checkDictionaryForm(body);
    checkStringForm(body);
    return 0;
}
