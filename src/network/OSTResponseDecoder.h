#pragma once

#include <ostrel/OSTError.h>

#include <QByteArray>
#include <QString>
#include <QVariant>
#include <QVariantMap>

#include <optional>

namespace ostrel {

// Turns a decrypted response body into what the caller asked for. Every failure is logged at
// debug level as "Failed to parse response for endpoint: <endpoint>" and reported with an error.
class OSTResponseDecoder {
public:
    template <typename T>
    struct Result {
        std::optional<T> value;
        std::optional<OSTError> error;
    };

    OSTResponseDecoder() = delete;

    // A JSON object with every null removed, at any depth. Anything else (not JSON, a top-level
    // array or scalar, no body) is an error: the incoming one when there is one, else
    // NSURLErrorCannotParseResponse.
    static Result<QVariantMap> dictionaryFromBody(const QString &endpoint,
                                                  const std::optional<QByteArray> &body,
                                                  const std::optional<OSTError> &error);
    // The body as UTF-8 text; no body or bytes that are not UTF-8 give no text. The incoming
    // error is passed on; when there is none and no text, NSURLErrorCannotDecodeContentData.
    static Result<QString> stringFromBody(const QString &endpoint,
                                          const std::optional<QByteArray> &body,
                                          const std::optional<OSTError> &error);

    // Drops dictionary members and array elements that are JSON null, recursively.
    static void recursivelyRemoveNullsFromObject(QVariant &object);
    static bool isNull(const QVariant &value);
};

} // namespace ostrel
