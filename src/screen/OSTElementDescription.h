#pragma once

#include "screen/OSTBoxLook.h"
#include "screen/OSTElementFrame.h"
#include "screen/OSTShadow.h"

#include <QString>
#include <QVariantMap>

#include <optional>

namespace ostrel {

// What an element is, by its category and the keys that choose its view.
enum class OSTElementKind {
    Shape,         // "shapes", and the screen's own backdrop
    Group,         // "groups"
    Image,         // "images"
    Label,         // "labels"
    Button,        // "buttons" without a "buttonType" below, or "toggle"
    Switch,        // "buttons" with "buttonType" "toggleSwitch"
    PictureButton, // "buttons" with "buttonType" "imageUpload"
    TextField,     // "inputs" without a "picker" object
    Picker,        // "inputs" with a "picker" object
};

// One element of a screen as its view takes it, read once from its JSON object. The part every
// element has: where it lies and its painted box.
//
//   "alpha"               a numeric string, clamped to 0...1; 1 otherwise (buttons and text
//                         fields also take a number: see their descriptions)
//   "objectShadow"        drop shadow [colour, blur radius, x offset, y offset]; none unless the
//                         blur radius is above 0
//   "accessibilityLabel"  the name assistive technology reads
//   and the frame (OSTElementFrame) and the box (OSTBoxLook).
//
// Immutable once read; shared by the document and the views, on any thread.
class OSTElementDescription {
public:
    OSTElementDescription(OSTElementKind kind, const QString &key, const QVariantMap &properties);
    virtual ~OSTElementDescription();

    OSTElementDescription(const OSTElementDescription &) = delete;
    OSTElementDescription &operator=(const OSTElementDescription &) = delete;

    OSTElementKind kind() const { return m_kind; }
    const QString &key() const { return m_key; }
    const OSTElementFrame &frame() const { return m_frame; }
    qreal alpha() const { return m_alpha; }
    const OSTBoxLook &box() const { return m_box; }
    const std::optional<OSTShadow> &objectShadow() const { return m_objectShadow; }
    const std::optional<QString> &accessibilityLabel() const { return m_accessibilityLabel; }

private:
    const OSTElementKind m_kind;
    const QString m_key;
    const OSTElementFrame m_frame;
    const qreal m_alpha;
    const OSTBoxLook m_box;
    const std::optional<OSTShadow> m_objectShadow;
    const std::optional<QString> m_accessibilityLabel;
};

} // namespace ostrel
