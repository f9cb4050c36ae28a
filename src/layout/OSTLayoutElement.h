#pragma once

#include "screen/OSTElementFrame.h"

#include <QMap>
#include <QRectF>
#include <QString>
#include <QStringView>

#include <array>
#include <cstdint>
#include <memory>
#include <optional>

namespace ostrel {

// One element of a screen layout: its four frame attributes "x", "y", "width" and
// "height" as strings (plain numbers, percentages, references, own attributes, "statusBar" and
// arithmetic), whether each is resolved, its parent, whether it is anchored and its layer.
//
// An attribute counts as resolved exactly when its string is an unsigned decimal number
// (isNumericString). Only the four frame attributes are kept; other names are ignored.
class OSTLayoutElement {
public:
    enum Attribute : int { X = 0, Y = 1, Width = 2, Height = 3 };
    static constexpr int attributeCount = 4;
    // The four in the order in which they are resolved.
    static constexpr Attribute allAttributes[attributeCount] = {X, Y, Width, Height};

    // The exported name of an attribute (OSTLayoutElementXAttributeKey...), and back; -1 for a
    // name that is not one of the four.
    static const QString &attributeName(Attribute attribute);
    static int attributeIndex(QStringView name);

    // The attribute of the parent that percentages of `attribute` are taken of.
    static constexpr Attribute percentageBase(Attribute attribute)
    {
        return attribute == Height || attribute == Y ? Height : Width;
    }

    // The nil layout: no attributes, not anchored, zLayer 0.
    OSTLayoutElement();
    // An element's frame formulas and anchoring; its layer is the frame's, 0 when none is given
    // (the manager sets the layer its category gives).
    explicit OSTLayoutElement(const OSTElementFrame &frame);

    OSTLayoutElement(const OSTLayoutElement &) = delete;
    OSTLayoutElement &operator=(const OSTLayoutElement &) = delete;

    // Stores the value and whether it is resolved. A name other than the four is ignored.
    void setValue(const QString &value, const QString &attribute);
    void setValue(const QString &value, Attribute attribute);

    // The stored string, or nothing when the attribute is absent.
    std::optional<QString> valueOfAttribute(const QString &attribute) const;
    // False for an absent attribute and for an unknown name.
    bool isAttributeResolved(const QString &attribute) const;

    bool hasAttribute(Attribute attribute) const { return m_present & bit(attribute); }
    bool isAttributeResolved(Attribute attribute) const { return m_resolved & bit(attribute); }
    // The stored string; empty when absent.
    const QString &value(Attribute attribute) const { return m_values[attribute]; }

    // The attributes and whether each is resolved, by name.
    QMap<QString, QString> attributes() const;
    QMap<QString, bool> attributesResolved() const;

    // True when every present attribute is resolved (so also when there is none).
    bool isResolved() const { return m_resolved == m_present; }

    // The four values as doubles (an absent one reads 0) when resolved, else the zero rectangle.
    QRectF frame() const;

    // Held weakly: the manager owns all elements.
    std::shared_ptr<OSTLayoutElement> parent() const { return m_parent.lock(); }
    void setParent(const std::shared_ptr<OSTLayoutElement> &parent) { m_parent = parent; }

    bool isAnchored() const { return m_anchored; }

    qint64 zLayer() const { return m_zLayer; }
    void setZLayer(qint64 zLayer) { m_zLayer = zLayer; }

    // Whether the whole text matches ^[0-9]+(?:\.[0-9]+)?$ (ASCII digits, optionally a point
    // and digits; no sign, exponent or space). Written out by hand because it runs on every
    // store; the tests check it against ICU's reading of that pattern.
    static bool isNumericString(QStringView text);
    static const QString numericPattern;

private:
    static constexpr std::uint8_t bit(Attribute attribute) { return std::uint8_t(1u << attribute); }

    std::array<QString, attributeCount> m_values;
    std::uint8_t m_present = 0;
    std::uint8_t m_resolved = 0;
    std::weak_ptr<OSTLayoutElement> m_parent;
    bool m_anchored = false;
    qint64 m_zLayer = 0;
};

} // namespace ostrel
