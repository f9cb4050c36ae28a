#include "ScreenChecker.h"

#include "JsonLocator.h"

#include "layout/OSTLayoutManager.h"
#include "layout/OSTLayoutPatterns.h"
#include "screen/OSTScreenDocument.h"
#include "screen/OSTScreenVocabulary.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QSet>

#include <vector>

using namespace Qt::StringLiterals;
using ostrel::OSTScreenVocabulary;

namespace {

// Deeper than any screen; a hostile file stops being checked there instead of exhausting the stack.
constexpr int maximumDepth = 64;

const QStringList &elementCategories = OSTScreenVocabulary::laidOutCategoryNames();
const QStringList &frameKeys = OSTScreenVocabulary::frameKeys();

QString jsonTypeName(const QJsonValue &value)
{
    switch (value.type()) {
    case QJsonValue::Bool:
        return u"boolean"_s;
    case QJsonValue::Double:
        return u"number"_s;
    case QJsonValue::String:
        return u"string"_s;
    case QJsonValue::Array:
        return u"array"_s;
    case QJsonValue::Object:
        return u"object"_s;
    default:
        return u"null"_s;
    }
}

QStringList allowedTypes(const QJsonObject &schema)
{
    const QJsonValue type = schema.value("type"_L1);
    if (type.isString())
        return {type.toString()};
    QStringList types;
    for (const QJsonValue &entry : type.toArray())
        types << entry.toString();
    return types;
}

QString elementPointer(const QString &category, const QString &key)
{
    return JsonLocator::appendToPointer(JsonLocator::appendToPointer(QString(), category), key);
}

} // namespace

ScreenChecker::ScreenChecker(const QJsonObject &schema, QSizeF area) : m_schema(schema), m_area(area) {}

QList<ScreenChecker::Problem> ScreenChecker::check(const QByteArray &text) const
{
    QList<Problem> problems;
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(text, &error);
    if (error.error != QJsonParseError::NoError) {
        problems.append({QString(), u"the text does not parse: "_s + error.errorString(), error.offset});
        return problems;
    }
    if (!document.isObject()) {
        problems.append({QString(), u"a screen is a JSON object"_s});
        return problems;
    }
    checkAgainstSchema(document.object(), m_schema, QString(), problems, 0);
    const QVariantMap layout = document.object().toVariantMap();
    checkReferences(layout, problems);
    checkGroups(layout, problems);
    checkLayout(layout, problems);
    return problems;
}

QJsonObject ScreenChecker::resolved(const QJsonObject &schema) const
{
    const QString reference = schema.value("$ref"_L1).toString();
    if (!reference.startsWith("#/$defs/"_L1))
        return schema;
    QJsonObject target = m_schema.value("$defs"_L1).toObject().value(reference.mid(8)).toObject();
    // Keys beside "$ref" (a description, say) belong to the same schema.
    for (auto entry = schema.begin(); entry != schema.end(); ++entry) {
        if (entry.key() != "$ref"_L1)
            target.insert(entry.key(), entry.value());
    }
    return target;
}

QJsonObject ScreenChecker::namedProperties(const QJsonObject &schema) const
{
    QJsonObject properties = schema.value("properties"_L1).toObject();
    for (const QJsonValue &part : schema.value("allOf"_L1).toArray()) {
        const QJsonObject inherited = namedProperties(resolved(part.toObject()));
        for (auto entry = inherited.begin(); entry != inherited.end(); ++entry) {
            if (!properties.contains(entry.key()))
                properties.insert(entry.key(), entry.value());
        }
    }
    return properties;
}

void ScreenChecker::checkAgainstSchema(const QJsonValue &value, const QJsonObject &unresolvedSchema,
                                       const QString &pointer, QList<Problem> &problems, int depth) const
{
    if (depth > maximumDepth)
        return;
    const QJsonObject schema = resolved(unresolvedSchema);
    const QStringList types = allowedTypes(schema);
    const QString type = jsonTypeName(value);
    if (!types.isEmpty() && !types.contains(type)) {
        problems.append({pointer, u"wrong type: %1 where the screen reads %2; the value is ignored"_s.arg(
                                      type, types.join(u" or "_s))});
        return;
    }
    const QJsonArray choices = schema.value("enum"_L1).toArray();
    if (!choices.isEmpty() && !choices.contains(value))
        problems.append({pointer, u"unknown value %1"_s.arg(QString::fromUtf8(QJsonDocument(QJsonArray{value})
                                                                                 .toJson(QJsonDocument::Compact)
                                                                                 .chopped(1)
                                                                                 .mid(1)))});
    if (value.isArray() && schema.contains("items"_L1)) {
        const QJsonArray items = value.toArray();
        for (qsizetype index = 0; index < items.size(); ++index)
            checkAgainstSchema(items.at(index), schema.value("items"_L1).toObject(),
                               JsonLocator::appendToPointer(pointer, QString::number(index)), problems, depth + 1);
    }
    if (!value.isObject())
        return;
    const QJsonObject properties = namedProperties(schema);
    const QJsonValue others = schema.contains("additionalProperties"_L1) ? schema.value("additionalProperties"_L1)
                                                                           : schema.value("unevaluatedProperties"_L1);
    const QJsonObject object = value.toObject();
    for (auto entry = object.begin(); entry != object.end(); ++entry) {
        const QString child = JsonLocator::appendToPointer(pointer, entry.key());
        if (properties.contains(entry.key()))
            checkAgainstSchema(entry.value(), properties.value(entry.key()).toObject(), child, problems, depth + 1);
        else if (others.isObject())
            checkAgainstSchema(entry.value(), others.toObject(), child, problems, depth + 1);
        else if (others.isBool() && !others.toBool())
            problems.append({child, u"unknown key \"%1\"; the screen does not read it"_s.arg(entry.key())});
    }
}

void ScreenChecker::checkReferences(const QVariantMap &layout, QList<Problem> &problems) const
{
    QSet<QString> keys;
    for (const QString &category : elementCategories)
        for (const QString &key : layout.value(category).toMap().keys())
            keys.insert(key);
    for (const QString &category : elementCategories) {
        const QVariantMap elements = layout.value(category).toMap();
        for (auto element = elements.cbegin(); element != elements.cend(); ++element) {
            for (const QString &attribute : frameKeys) {
                const QVariant formula = element.value().toMap().value(attribute);
                if (formula.typeId() != QMetaType::QString)
                    continue;
                const QString text = formula.toString();
                std::vector<ostrel::OSTLayoutPatterns::Match> matches;
                ostrel::OSTLayoutPatterns::findReferences(text, matches);
                for (const auto &match : matches) {
                    const QString reference = text.mid(match.start + 1, match.length - 2);
                    const QString key = reference.section(u'.', 0, 0);
                    if (!keys.contains(key))
                        problems.append({JsonLocator::appendToPointer(elementPointer(category, element.key()), attribute),
                                         u"refers to element \"%1\", which does not exist (it counts as 0)"_s.arg(key)});
                }
            }
        }
    }
}

void ScreenChecker::checkGroups(const QVariantMap &layout, QList<Problem> &problems) const
{
    QSet<QString> keys;
    for (const QString &category : elementCategories)
        for (const QString &key : layout.value(category).toMap().keys())
            keys.insert(key);
    QHash<QString, QString> groupOf;
    const QVariantMap groups = layout.value(u"groups"_s).toMap();
    for (auto group = groups.cbegin(); group != groups.cend(); ++group) {
        const QVariantList members = group.value().toMap().value(OSTScreenVocabulary::groupMembersKey).toList();
        for (qsizetype index = 0; index < members.size(); ++index) {
            const QString member = members.at(index).toString();
            const QString pointer = JsonLocator::appendToPointer(
                JsonLocator::appendToPointer(elementPointer(u"groups"_s, group.key()), OSTScreenVocabulary::groupMembersKey),
                QString::number(index));
            if (!keys.contains(member))
                problems.append({pointer, u"group member \"%1\" does not exist"_s.arg(member)});
            else if (member == group.key())
                problems.append({pointer, u"group \"%1\" cannot contain itself"_s.arg(member)});
            else if (groupOf.contains(member))
                problems.append({pointer, u"\"%1\" is already a member of group \"%2\""_s.arg(member, groupOf.value(member))});
            groupOf.insert(member, group.key());
        }
    }
}

void ScreenChecker::checkLayout(const QVariantMap &layout, QList<Problem> &problems) const
{
    ostrel::OSTLayoutManager manager(*ostrel::OSTScreenDocument::fromLayout(layout), QRectF(QPointF(), m_area), 0);
    if (manager.resolveLayout())
        return;
    for (const QString &category : elementCategories) {
        const QVariantMap elements = layout.value(category).toMap();
        for (auto element = elements.cbegin(); element != elements.cend(); ++element) {
            const auto layoutElement = manager.elements().value(element.key());
            if (!layoutElement || layoutElement->isResolved())
                continue;
            for (const QString &attribute : frameKeys) {
                if (layoutElement->isAttributeResolved(attribute))
                    continue;
                const QString formula = element.value().toMap().value(attribute).toString();
                problems.append({JsonLocator::appendToPointer(elementPointer(category, element.key()), attribute),
                                 u"never resolves: %1 = \"%2\" (stuck at \"%3\")"_s.arg(
                                     attribute, formula, layoutElement->valueOfAttribute(attribute).value_or(QString()))});
            }
        }
    }
}
