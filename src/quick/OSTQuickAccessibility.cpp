#include "quick/OSTQuickAccessibility.h"

#include "core/OSTLogging.h"

#include <QCoreApplication>
#include <QPointer>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

const QByteArray describer = R"(import QtQuick
QtObject {
    function describe(target, role, name) {
        target.Accessible.role = role
        target.Accessible.name = name
    }
})";

// The describer made by `engine`, kept as the engine's child.
QObject *describerOf(QQmlEngine &engine)
{
    const QString name = u"ostrelAccessibilityDescriber"_s;
    if (auto *made = engine.findChild<QObject *>(name, Qt::FindDirectChildrenOnly))
        return made;
    QQmlComponent component(&engine);
    component.setData(describer, QUrl());
    QObject *made = component.create();
    if (!made) {
        OSTLogging::logWarning(u"Accessibility names are not available: %1"_s, component.errorString());
        return nullptr;
    }
    made->setObjectName(name);
    made->setParent(&engine);
    return made;
}

// The engine of the nearest item up the tree that QML made (the host's, when the experience lies
// in its QML scene), else the SDK's own.
QQmlEngine &engineFor(const QQuickItem &item)
{
    for (const QQuickItem *ancestor = &item; ancestor; ancestor = ancestor->parentItem()) {
        if (QQmlEngine *itemEngine = qmlEngine(ancestor))
            return *itemEngine;
    }
    static QPointer<QQmlEngine> own;
    if (!own)
        own = new QQmlEngine(QCoreApplication::instance());
    return *own;
}

} // namespace

void OSTQuickAccessibility::describe(QQuickItem &item, QAccessible::Role role, const QString &name)
{
    QObject *target = describerOf(engineFor(item));
    if (!target)
        return;
    QMetaObject::invokeMethod(target, "describe", Q_ARG(QVariant, QVariant::fromValue<QObject *>(&item)),
                              Q_ARG(QVariant, int(role)), Q_ARG(QVariant, name));
}

} // namespace ostrel
