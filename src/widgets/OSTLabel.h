#pragma once

#include "screen/OSTLabelDescription.h"
#include "widgets/OSTView.h"

namespace ostrel {

class OSTTextLabel;

// The "labels" element: multi-line styled text in an element box, as its label description gives
// it: besides the box of OSTView, the text, its look (OSTTextAttributes) and how far the font may
// shrink when the text does not fit. Taps pass through to what lies below. Accessibility reads it as static text named by its text.
//
// Lives on the GUI thread; owned by its parent widget.
class OSTLabel : public OSTView {
    Q_OBJECT

public:
    OSTLabel(const QRect &frame, const OSTLabelDescription &description, QWidget *parent = nullptr);

    // Restyles the label and sets its text; the description replaces the whole earlier look.
    void customize(const OSTLabelDescription &description);

    QString text() const;
    // A null or empty string clears the text.
    void setText(const QString &text);
    Qt::Alignment textAlignment() const;

    OSTTextLabel *internalLabel() const { return m_internalLabel; }

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    OSTTextLabel *const m_internalLabel; // child of the container
};

} // namespace ostrel
