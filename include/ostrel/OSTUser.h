#pragma once

#include <ostrel/OSTExport.h>
#include <ostrel/OSTUserABNTest.h>

#include <QList>
#include <QString>
#include <QVariantMap>

#include <optional>

namespace ostrel {

// The current user of the installation as the SDK keeps it: identifier and name (absent until
// known), custom properties, the A/B tests the service has put the user in, and the last
// experience variation shown.
//
// A plain value: Ostrel::currentUser() hands the host a copy, which stays as it was when taken
// and may be read on any thread. Changing a copy changes nothing in the SDK; the SDK's own user
// changes only through the facade (log-in, log-out, appending properties).
class OSTREL_EXPORT OSTUser {
public:
    OSTUser() = default;

    const std::optional<QString> &userID() const { return m_userID; }
    const std::optional<QString> &name() const { return m_name; }
    const QVariantMap &properties() const { return m_properties; }
    const QList<OSTUserABNTest> &activeABNTests() const { return m_activeABNTests; }
    const std::optional<QString> &lastViewedVariation() const { return m_lastViewedVariation; }

    void setUserID(const std::optional<QString> &userID) { m_userID = userID; }
    void setName(const std::optional<QString> &name) { m_name = name; }
    void setProperties(const QVariantMap &properties) { m_properties = properties; }
    void setActiveABNTests(const QList<OSTUserABNTest> &tests) { m_activeABNTests = tests; }
    void setLastViewedVariation(const std::optional<QString> &variation) { m_lastViewedVariation = variation; }

    // Overlays the entries of `properties` whose values differ from the current ones; returns
    // whether anything changed. Equal values leave the user untouched.
    bool appendUserProperties(const QVariantMap &properties);

    bool operator==(const OSTUser &other) const = default;

private:
    std::optional<QString> m_userID;
    std::optional<QString> m_name;
    QVariantMap m_properties;
    QList<OSTUserABNTest> m_activeABNTests;
    std::optional<QString> m_lastViewedVariation;
};

} // namespace ostrel
