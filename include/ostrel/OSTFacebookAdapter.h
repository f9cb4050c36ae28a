#pragma once

#include <ostrel/OSTExport.h>

#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <functional>
#include <optional>

namespace ostrel {

// What the SDK needs from a social log-in SDK, for hosts that contain one. The SDK links none:
// a host that wants "log in with Facebook" implements this interface over its social SDK and
// registers it before starting the SDK:
//
//     OSTRuntime::registerInstance<OSTFacebookAdapter>(OSTFacebookAdapter::runtimeName, adapter);
//
// Register one instance: the SDK asks the registry for the adapter at every operation, and a
// factory that made a new adapter each time would forget the log-in in between. Without a
// registered adapter every social log-in operation fails at once and quietly.
//
// Threads: the SDK calls the adapter on the GUI thread. Completions may be called on any thread;
// the SDK brings them to the GUI thread and takes only the first call of each completion, so an
// adapter that answers twice does no harm. An adapter that never answers leaves that one
// operation pending and blocks nothing.
class OSTREL_EXPORT OSTFacebookAdapter {
public:
    // The name under which the SDK looks the adapter up in OSTRuntime.
    static inline const QString runtimeName = QStringLiteral("com.ostrelhq.FacebookAdapter");

    struct AccessToken {
        QString userID;
        QString tokenString;
    };

    enum class LoginResult { Success, Cancelled, Failed };
    using LoginCompletion = std::function<void(LoginResult result)>;

    // A graph GET request.
    struct GraphRequest {
        QString path;
        QVariantMap parameters;
        QString tokenString;
        QString graphVersion;
    };
    // The decoded JSON object of the answer; nothing after an error.
    using GraphCompletion = std::function<void(const std::optional<QVariantMap> &result)>;

    virtual ~OSTFacebookAdapter();

    // The token of the logged-in user; nothing while nobody is logged in.
    virtual std::optional<AccessToken> currentAccessToken() const = 0;
    // Logs in asking for `permissions`, showing whatever user interface the social SDK needs.
    virtual void logInWithReadPermissions(const QStringList &permissions, LoginCompletion completion) = 0;
    virtual void logOut() = 0;
    virtual void startGraphRequest(const GraphRequest &request, GraphCompletion completion) = 0;
};

} // namespace ostrel
