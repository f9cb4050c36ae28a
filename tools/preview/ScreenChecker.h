#pragma once

#include <QJsonObject>
#include <QJsonValue>
#include <QList>
#include <QSizeF>
#include <QString>
#include <QVariantMap>

// Finds what an author can fix in a screen JSON text: a text that does not parse, values of a type
// the screen reader ignores, keys it does not read (both from the screen vocabulary's schema), references
// to elements that do not exist, group membership the screen cannot honour, and frame formulas
// that never resolve (found by the SDK's own layout engine at the given size).
class ScreenChecker {
public:
    struct Problem {
        QString pointer; // JSON pointer of the value concerned ("" for the whole text)
        QString message;
        qsizetype offset = -1; // byte offset, for parse errors only
    };

    ScreenChecker(const QJsonObject &schema, QSizeF area);

    // Every problem of `text`, in document order within each kind of check.
    QList<Problem> check(const QByteArray &text) const;

private:
    void checkAgainstSchema(const QJsonValue &value, const QJsonObject &schema, const QString &pointer,
                            QList<Problem> &problems, int depth) const;
    QJsonObject resolved(const QJsonObject &schema) const;
    // The properties a schema names itself or through allOf.
    QJsonObject namedProperties(const QJsonObject &schema) const;
    void checkLayout(const QVariantMap &layout, QList<Problem> &problems) const;
    void checkReferences(const QVariantMap &layout, QList<Problem> &problems) const;
    void checkGroups(const QVariantMap &layout, QList<Problem> &problems) const;

    const QJsonObject m_schema;
    const QSizeF m_area;
};
