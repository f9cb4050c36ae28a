#pragma once

#include "layout/OSTLayoutManager.h"
#include "screen/OSTScreenDocument.h"

#include <QByteArray>
#include <QJsonDocument>
#include <QRectF>
#include <QString>
#include <QVariantMap>

namespace ostrel::test {

inline QVariantMap layoutJson(const char *text)
{
    return QJsonDocument::fromJson(QByteArray(text)).toVariant().toMap();
}

// A manager on a 375 x 667 screen with a 20-point status bar unless told otherwise.
inline OSTLayoutManager layoutManager(const char *json, double width = 375, double height = 667,
                                      double statusBar = 20)
{
    return OSTLayoutManager(*OSTScreenDocument::fromLayout(layoutJson(json)), QRectF(0, 0, width, height), statusBar);
}

inline OSTElementFrame frameJson(const char *text)
{
    return OSTElementFrame::fromProperties(layoutJson(text));
}

inline QString layoutValue(const OSTLayoutManager &manager, const QString &key,
                           const QString &attribute)
{
    const auto element = manager.elements().value(key);
    if (!element)
        return QStringLiteral("<no element>");
    return element->valueOfAttribute(attribute).value_or(QStringLiteral("<absent>"));
}

} // namespace ostrel::test
