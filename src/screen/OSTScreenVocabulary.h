#pragma once

#include <QFlags>
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

// The JSON types a value may take.
enum class OSTValueType : unsigned {
    String = 1,
    Number = 2,
    Boolean = 4,
    Array = 8,
    Object = 16,
};
Q_DECLARE_FLAGS(OSTValueTypes, OSTValueType)
Q_DECLARE_OPERATORS_FOR_FLAGS(OSTValueTypes)

// One key of an element's object, or of an object inside one: its name, the types its value may
// take and what it does. A value of another type is ignored and the default applies. A value type.
struct OSTPropertyKey {
    QString name;
    OSTValueTypes types = {};         // none: any value (one that is accepted and has no effect)
    QString description = {};
    QString definition = {};          // the key set the value follows (an object with its keys), if any
    QStringList choices = {};         // the only words it takes, when they are limited
    OSTValueTypes itemTypes = {};     // an array's items
    QList<OSTPropertyKey> keys = {};  // an object's own keys; no other key is read
    OSTValueTypes otherKeyTypes = {}; // an object whose keys are free: the types of their values
};

// A named set of keys: a part several kinds of element share (the frame, the box, the text...),
// or the keys of one kind, which include the shared parts it names. A value type.
struct OSTKeySet {
    QString name;
    QString description;
    bool isClosedObject; // a whole object: keys neither here nor in its included sets are not read
    QStringList includes;
    QList<OSTPropertyKey> keys;
};

// THE table of the screen vocabulary: the categories, the top-level keys and every key of every
// kind of element with its value types, read by the screen document, checked by the preview's
// --check and written into the screen schema (docs/screen.schema.json is schema()). Immutable.
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
    // Keys that several element descriptions take (read by OSTElementKeys).
    static const QString alphaKey;
    static const QString alignmentKey;
    static const QString buttonTypeKey;
    static const QString contentInsetsKey;
    static const QString inputOrderKey;
    static const QString onClickKey;
    static const QString pickerKey;
    static const QString secureTextEntryKey;
    static const QString textKey;
    static const QString textTypeKey;
    static const QString toolbarKey;

    // Every key set, the shared parts first.
    static const QList<OSTKeySet> &keySets();
    static std::optional<OSTKeySet> keySet(const QString &name);
    // Every key an element of the family may hold, its included parts' keys first.
    static QList<OSTPropertyKey> elementKeys(OSTElementFamily family);

    // The screen schema (JSON Schema 2020-12) of the whole vocabulary.
    static QJsonObject schema();
    // The schema's top-level "properties": every category and the other top-level keys.
    static QJsonObject schemaTopLevelProperties();
};

} // namespace ostrel
