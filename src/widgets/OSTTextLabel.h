#pragma once

#include "widgets/OSTTextAttributes.h"

#include <QLabel>

#include <memory>

class QTextDocument;

namespace ostrel {

// The text of a label: a QLabel (so accessibility reads it as static text) that draws its text
// with the element's text attributes through Qt's text layout. When the text does not fit its
// box and a minimum scale factor is set, the font shrinks, but not below that factor.
//
// Lives on the GUI thread; owned by its parent widget.
class OSTTextLabel final : public QLabel {
    Q_OBJECT

public:
    explicit OSTTextLabel(QWidget *parent = nullptr);
    ~OSTTextLabel() override;

    void setAttributes(const OSTTextAttributes &attributes);
    const OSTTextAttributes &attributes() const { return m_attributes; }
    // Between 0 and 1; 0 or 1 never shrinks.
    void setMinimumScaleFactor(qreal factor);
    qreal minimumScaleFactor() const { return m_minimumScaleFactor; }
    // The scale the font is drawn at after shrinking to fit (1 when it fits).
    qreal fittedScale();

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    QTextDocument &document();
    void invalidateDocument();

    OSTTextAttributes m_attributes;
    qreal m_minimumScaleFactor = 0;
    QString m_laidOutText;
    std::unique_ptr<QTextDocument> m_document; // laid out for the current text and width
    qreal m_scale = 1;
};

} // namespace ostrel
