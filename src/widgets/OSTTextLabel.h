#pragma once

#include "paint/OSTTextPainter.h"

#include <QLabel>

namespace ostrel {

// The text of a label: a QLabel (so accessibility reads it as static text) whose text
// OSTTextPainter draws with the element's text attributes. When the text does not fit its box
// and a minimum scale factor is set, the font shrinks, but not below that factor.
//
// Lives on the GUI thread; owned by its parent widget.
class OSTTextLabel final : public QLabel {
    Q_OBJECT

public:
    explicit OSTTextLabel(QWidget *parent = nullptr);

    void setAttributes(const OSTTextAttributes &attributes);
    const OSTTextAttributes &attributes() const { return m_textPainter.attributes(); }
    // Between 0 and 1; 0 or 1 never shrinks.
    void setMinimumScaleFactor(qreal factor);
    qreal minimumScaleFactor() const { return m_textPainter.minimumScaleFactor(); }
    // The scale the font is drawn at after shrinking to fit (1 when it fits).
    qreal fittedScale();

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    OSTTextPainter m_textPainter;
};

} // namespace ostrel
