#pragma once

#include "paint/OSTBoxPainter.h"
#include "quick/OSTQuickBoxBorder.h"
#include "quick/OSTQuickShadow.h"

#include <QPointer>
#include <QQuickPaintedItem>

#include <optional>

namespace ostrel {

class OSTElementDescription;
struct OSTShadow;

// The base of every Qt Quick element item, and the item of shapes, groups and a screen's backdrop:
// it paints its element box (OSTBoxPainter), takes the element's opacity as the item's and casts
// the element's object shadow through a child item beneath it (OSTQuickShadow), since a painted
// item cannot draw outside its bounds. A group's members are placed in container(), which clips
// them to the box's rectangle when the box has a border or rounded corners (Qt Quick clips to
// rectangles only); the border is then drawn above them (OSTQuickBoxBorder).
//
// Lives on the GUI thread; owned by its parent item.
class OSTQuickElement : public QQuickPaintedItem {
    Q_OBJECT

public:
    OSTQuickElement(const QRect &frame, const OSTElementDescription &description, QQuickItem *parent);
    ~OSTQuickElement() override;

    // Restyles the item; the description replaces the whole earlier look.
    void customize(const OSTElementDescription &description);
    void setFrame(const QRect &frame);

    const OSTBoxPainter &boxPainter() const { return m_boxPainter; }
    // The item members are placed in, made on first use.
    QQuickItem *container();

    void paint(QPainter *painter) override;

protected:
    // What a subclass draws above the box.
    virtual void paintContent(QPainter &painter);
    void geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry) override;

private:
    void castShadow(const std::optional<OSTShadow> &shadow);
    void updateContainer();

    OSTBoxPainter m_boxPainter;
    QPointer<OSTQuickShadow> m_shadow; // child item, present while the element casts a shadow
    QPointer<QQuickItem> m_container;  // child item
    QPointer<OSTQuickBoxBorder> m_border; // child item of the container, made with it
};

} // namespace ostrel
