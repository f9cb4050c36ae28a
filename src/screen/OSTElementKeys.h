#pragma once

#include "screen/OSTToolbarSettings.h"

#include <ostrel/OSTPropertyConversions.h>

#include <QString>
#include <QVariantMap>

#include <memory>
#include <optional>

namespace ostrel {

class OSTAction;

// The element keys that more than one description takes, each read here and nowhere else, so a
// key keeps one reading rule (or the rule is an argument). Stateless.
class OSTElementKeys {
public:
    OSTElementKeys() = delete;

    // Most visual numbers are numeric strings only; a few elements also take a JSON number.
    enum class NumberSpelling { NumericString, NumberOrNumericString };
    // Most flags are strings read as booleans; a few also take a JSON boolean.
    enum class FlagSpelling { String, StringOrBoolean };

    // "alpha", clamped to 0...1; 1 without a usable value. A numeric-string-only alpha that does
    // not read as a number is logged.
    static qreal alpha(const QVariantMap &properties, NumberSpelling spelling);
    // "buttonType": the word choosing a button's kind; nothing for a plain button.
    static std::optional<QString> buttonType(const QVariantMap &properties);
    // "onClick": the action a press runs; null without an object.
    static std::shared_ptr<const OSTAction> onClick(const QVariantMap &properties);
    // "text" of a label, an input's text object or a button state: the text; empty without a string.
    static QString text(const QVariantMap &properties);
    // "text" of an input: its text object, with the text and its look; empty without one.
    static QVariantMap inputText(const QVariantMap &properties);
    // "picker": the wheel of an input that is a picker; nothing for a text field.
    static std::optional<QVariantMap> picker(const QVariantMap &properties);
    // "toolbar": the bar of an input's keyboard or wheel; nothing without an object.
    static std::optional<OSTToolbarSettings> toolbar(const QVariantMap &properties);
    // "inputOrder": the input's position in the Return chain; 0 without a number.
    static int inputOrder(const QVariantMap &properties);
    // "textType": the text field's kind; plain without a known word.
    static OSTTextFieldType textType(const QVariantMap &properties);
    // "secureTextEntry": whether the text is hidden; false otherwise.
    static bool secureTextEntry(const QVariantMap &properties, FlagSpelling spelling);
    // "alignment" of a text look: the word as written; nothing without a string.
    static std::optional<QString> alignment(const QVariantMap &properties);
};

} // namespace ostrel
