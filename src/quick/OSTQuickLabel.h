#pragma once

#include "quick/OSTQuickElement.h"
#include "paint/OSTTextPainter.h"

namespace ostrel {

class OSTLabelDescription;

// The "labels" element drawn by Qt Quick: multi-line styled text in an element box, as its label
// description gives it: the text, its look and how far the font may shrink when the text does not
// fit. Taps pass through to what lies below.
//
// Lives on the GUI thread; owned by its parent item.
class OSTQuickLabel final : public OSTQuickElement {
    Q_OBJECT

public:
    OSTQuickLabel(const QRect &frame, const OSTLabelDescription &description, QQuickItem *parent);

    // Restyles the label and sets its text; the description replaces the whole earlier look.
    void customize(const OSTLabelDescription &description);

    const QString &text() const { return m_text; }
    // A null or empty string clears the text.
    void setText(const QString &text);

protected:
    void paintContent(QPainter &painter) override;

private:
    QString m_text;
    OSTTextPainter m_textPainter;
};

} // namespace ostrel
