#pragma once

#include <ostrel/OSTExport.h>

#include <QString>
#include <QVariant>
#include <QVariantMap>

#include <optional>

namespace ostrel {

// One A/B test the service has put the user in: the test's name and the variation the user sees.
// A plain value.
class OSTREL_EXPORT OSTUserABNTest {
public:
    OSTUserABNTest(const QString &name, const QString &variation);

    // From the service's form {"test_name": string, "variation": string}: a field that is missing
    // or not a string reads as ""; nothing when `properties` is not a dictionary.
    static std::optional<OSTUserABNTest> fromProperties(const QVariant &properties);

    const QString &name() const { return m_name; }
    const QString &variation() const { return m_variation; }

    bool operator==(const OSTUserABNTest &other) const = default;

private:
    QString m_name;
    QString m_variation;
};

} // namespace ostrel
