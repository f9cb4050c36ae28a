#include "screen/OSTScreenVocabulary.h"

#include <QJsonArray>

using namespace Qt::StringLiterals;

namespace ostrel {

const QString OSTScreenVocabulary::backgroundKey = u"background"_s;
const QString OSTScreenVocabulary::errorMessageKey = u"errorMessage"_s;
const QString OSTScreenVocabulary::animationsKey = u"animations"_s;
const QString OSTScreenVocabulary::statusBarStyleKey = u"statusBarStyle"_s;
const QString OSTScreenVocabulary::groupMembersKey = u"elements"_s;

namespace {

// The schema definition ("$defs") each category's elements follow.
QString schemaDefinitionOf(OSTElementFamily family)
{
    switch (family) {
    case OSTElementFamily::Shape:
        return u"shape"_s;
    case OSTElementFamily::Image:
        return u"imageElement"_s;
    case OSTElementFamily::Label:
        return u"label"_s;
    case OSTElementFamily::Input:
        return u"input"_s;
    case OSTElementFamily::Button:
        return u"button"_s;
    case OSTElementFamily::Group:
        return u"group"_s;
    case OSTElementFamily::SelectionGroup:
        break;
    }
    return u"selectionGroup"_s;
}

QJsonObject objectOf(const QString &description, const QJsonObject &elements)
{
    return QJsonObject{{u"type"_s, u"object"_s}, {u"description"_s, description},
                       {u"additionalProperties"_s, elements}};
}

// animations.error.targets.errorMessage, and nothing else under those names.
QJsonObject errorAlternativeSchema()
{
    const auto closedObject = [](const QJsonObject &properties) {
        return QJsonObject{{u"type"_s, u"object"_s}, {u"properties"_s, properties},
                           {u"unevaluatedProperties"_s, false}};
    };
    const QJsonObject errorLook{{u"$ref"_s, u"#/$defs/label"_s},
                                {u"description"_s, u"Merged over the errorMessage label while a message shows"_s}};
    QJsonObject error = closedObject({{u"targets"_s, closedObject({{OSTScreenVocabulary::errorMessageKey, errorLook}})}});
    error.insert(u"description"_s, u"The error message's look while it shows"_s);
    QJsonObject animations = closedObject({{u"error"_s, error}});
    animations.insert(u"description"_s, u"Alternative looks"_s);
    return animations;
}

} // namespace

const QList<OSTElementCategory> &OSTScreenVocabulary::categories()
{
    static const QList<OSTElementCategory> table = {
        {u"shapes"_s, OSTElementFamily::Shape, u"Painted boxes; the key \"background\" always lies lowest"_s, 200},
        {u"images"_s, OSTElementFamily::Image, u"Images"_s, 300},
        {u"labels"_s, OSTElementFamily::Label, u"Texts; the key \"errorMessage\" shows validation and service errors"_s, 500},
        {u"inputs"_s, OSTElementFamily::Input, u"Text fields and pickers"_s, 600},
        {u"buttons"_s, OSTElementFamily::Button, u"Buttons, switches and picture choosers"_s, 700},
        {u"selectionGroups"_s, OSTElementFamily::SelectionGroup, u"Groups of buttons that act as one input"_s, std::nullopt},
        {u"groups"_s, OSTElementFamily::Group, u"Groups of elements"_s, 400},
    };
    return table;
}

std::optional<OSTElementCategory> OSTScreenVocabulary::category(const QString &name)
{
    for (const OSTElementCategory &each : categories()) {
        if (each.name == name)
            return each;
    }
    return std::nullopt;
}

const QStringList &OSTScreenVocabulary::laidOutCategoryNames()
{
    static const QStringList names = [] {
        QStringList laidOut;
        for (const OSTElementCategory &each : categories()) {
            if (each.defaultZLayer)
                laidOut.append(each.name);
        }
        return laidOut;
    }();
    return names;
}

const QStringList &OSTScreenVocabulary::layoutOrder()
{
    // Key order of the category names, groups last: the layout engine's historical order.
    static const QStringList order = {u"buttons"_s, u"images"_s, u"inputs"_s, u"labels"_s, u"shapes"_s, u"groups"_s};
    return order;
}

const QStringList &OSTScreenVocabulary::buildOrder()
{
    static const QStringList order = {u"shapes"_s, u"images"_s, u"groups"_s, u"labels"_s, u"buttons"_s, u"inputs"_s};
    return order;
}

const QStringList &OSTScreenVocabulary::frameKeys()
{
    static const QStringList keys = {u"x"_s, u"y"_s, u"width"_s, u"height"_s};
    return keys;
}

QJsonObject OSTScreenVocabulary::schemaTopLevelProperties()
{
    QJsonObject properties;
    for (const OSTElementCategory &each : categories()) {
        const QJsonObject elements{{u"$ref"_s, u"#/$defs/"_s + schemaDefinitionOf(each.family)}};
        properties.insert(each.name, objectOf(each.description, elements));
    }
    properties.insert(animationsKey, errorAlternativeSchema());
    properties.insert(statusBarStyleKey, QJsonObject{
        {u"type"_s, u"string"_s},
        {u"description"_s, u"\"disabled\" hides the status bar, \"white\" shows it light; otherwise the default look"_s}});
    return properties;
}

} // namespace ostrel
