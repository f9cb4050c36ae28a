#pragma once

#include <QByteArray>
#include <QVariantMap>

namespace ostrel {

// The body of every API request: a JSON object with exactly the three base64 strings "iv",
// "encrypted_key" and "encrypted_data" (the parameters' JSON under the process's AES key). A
// member whose value could not be made is "" and the request still goes out.
class OSTRequestEnvelope {
public:
    OSTRequestEnvelope() = delete;

    // The parameters' compact JSON text. Values JSON cannot carry directly (dates, data) take
    // QJsonValue's conversion.
    static QByteArray serializedParameters(const QVariantMap &parameters);
    static QByteArray bodyForParameters(const QVariantMap &parameters);
    // The envelope of parameters that are already JSON text (a JSON object), as the event queue
    // keeps them; the text is encrypted as it stands.
    static QByteArray bodyForSerializedParameters(const QByteArray &json);
};

} // namespace ostrel
