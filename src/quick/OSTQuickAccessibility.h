#pragma once

#include <QAccessible>
#include <QString>

class QQuickItem;

namespace ostrel {

// Names an element item and gives it its role for assistive technology. Qt Quick publishes an
// item to assistive technology only once its QML "Accessible" attached properties are set, and
// C++ reaches those only through QML: a small script run by the QML engine of the item or of the
// nearest item above it that QML made, or by one engine of the SDK's own outside any QML scene.
//
// GUI thread only. The SDK's own engine lives until the application object is destroyed.
class OSTQuickAccessibility {
public:
    OSTQuickAccessibility() = delete;

    static void describe(QQuickItem &item, QAccessible::Role role, const QString &name);
};

} // namespace ostrel
