#pragma once

#include <QJsonObject>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace ostrel {

// What a category of a screen's elements holds.
enum class OSTElementFamily {
    Shape,          // a painted box ("shapes")
    Image,          // "images"
    Label,          // "labels"
    Input,          // a text field, or a picker with a "picker" object ("inputs")
    Button,         // a button, switch or picture chooser by "buttonType" ("buttons")
    Group,          // a painted box holding other elements ("groups")
    SelectionGroup, // buttons acting as one input; not an element of its own ("selectionGroups")
};

// One category of the screen JSON's top-level object: its name, what it holds and how the screen
// treats it. A value type.
struct OSTElementCategory {
    QString name;
    OSTElementFamily family;
    QString description;
    // The stacking layer of its elements without "zLayer"; none when it is not laid out.
    std::optional<qint64> defaultZLayer;
};

// THE table of the screen vocabulary: the categories and the top-level keys, read by the screen
// document, checked by the preview's --check and written into the screen schema. Immutable.
class OSTScreenVocabulary {
public:
    OSTScreenVocabulary() = delete;

    // Every element category, in the order the schema lists them.
    static const QList<OSTElementCategory> &categories();
    static std::optional<OSTElementCategory> category(const QString &name);

    // The categories of elements with a frame, in the order the schema lists them.
    static const QStringList &laidOutCategoryNames();
    // Of two elements of the same key in different categories, the one of the later category in
    // layoutOrder() is laid out and the one of the later category in buildOrder() is shown.
    static const QStringList &layoutOrder();
    static const QStringList &buildOrder();
    // The frame formula keys an element may hold.
    static const QStringList &frameKeys();

    // The shape named "background" lies lowest; the label named "errorMessage" shows errors.
    static const QString backgroundKey;
    static const QString errorMessageKey;
    // Alternative looks: animations.error.targets.<key> is laid over the element while an error shows.
    static const QString animationsKey;
    static const QString statusBarStyleKey;
    static const QString groupMembersKey;

    // The schema's top-level "properties": every category and the other top-level keys, with
    // their descriptions, as docs/screen.schema.json holds them.
    static QJsonObject schemaTopLevelProperties();
};

} // namespace ostrel
