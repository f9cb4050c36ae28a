#pragma once

#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <optional>

namespace ostrel {

// What a social log-in asks for: the profile fields, the graph version and the read permissions.
// Made from a flow's properties ("graphFields" array, "graphVersion" string, "permissions"
// array); a key that is absent or of the wrong type keeps its default. A plain value.
class OSTFacebookLoginInfo {
public:
    explicit OSTFacebookLoginInfo(const std::optional<QVariantMap> &properties = std::nullopt);

    static OSTFacebookLoginInfo defaultInfo() { return OSTFacebookLoginInfo(); }

    // Comma-separated field names.
    const QString &graphFields() const { return m_graphFields; }
    const QString &graphVersion() const { return m_graphVersion; }
    const QStringList &permissions() const { return m_permissions; }

private:
    QString m_graphFields;
    QString m_graphVersion;
    QStringList m_permissions;
};

} // namespace ostrel
