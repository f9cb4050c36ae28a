#pragma once

#include "model/OSTToggleItem.h"
#include "paint/OSTButtonPainter.h"
#include "screen/OSTButtonDescription.h"

#include <QQuickItem>

#include <memory>

namespace ostrel {

class OSTAction;
class OSTQuickImage;
class OSTQuickPaintedLayer;
class OSTQuickShadow;

// The "buttons" element drawn by Qt Quick: a title and a background image per state, its opacity,
// drop shadow and action, all from its description (OSTButtonDescription). The backgrounds are
// image items beneath the button's face, a child item painting the title and the focus frame
// (OSTButtonPainter); the shadow is cast by a child item beneath them (OSTQuickShadow). A toggle takes part in
// validation: a required toggle is valid while selected, an optional one always.
//
// A press shows the pressed state; a checkable button (a toggle, or a member of a selection
// group) stays selected (pressed) until pressed again. Space, Enter and Return press it from the
// keyboard. A disabled button takes no presses: they reach the screen beneath.
//
// Subclasses (the picture button) change what a click does by overriding clicked() and what shows
// behind the title by overriding updateBackgrounds().
//
// Lives on the GUI thread; owned by its parent item. Its state backgrounds are child items.
class OSTQuickButton : public QQuickItem, public OSTToggleItem {
    Q_OBJECT

public:
    // `description` has states (a button without them is not shown).
    OSTQuickButton(const QRect &frame, std::shared_ptr<const OSTButtonDescription> description, QQuickItem *parent);
    ~OSTQuickButton() override;

    const std::shared_ptr<const OSTButtonDescription> &description() const { return m_description; }
    const QString &name() const { return m_description->key(); }
    // The action of "onClick"; null when the button has none.
    const std::shared_ptr<const OSTAction> &action() const { return m_description->action(); }
    bool isToggle() const { return m_description->isToggle(); }

    OSTQuickImage *normalBackground() const { return m_normalBackground; }
    OSTQuickImage *highlightedBackground() const { return m_highlightedBackground; }
    OSTQuickImage *disabledBackground() const { return m_disabledBackground; }
    // The title shown in the current state.
    QString currentTitle() const;

    bool isDown() const { return m_down; }
    void setCheckable(bool checkable);
    bool isChecked() const { return m_checked; }
    void setChecked(bool checked);
    // What a press released inside does: a checkable button changes its selection, then clicked().
    void click();

    // OSTSelectionGroupMember
    const QString &memberKey() const override { return name(); }
    QObject &memberObject() override { return *this; }
    void joinGroup(QObject &group, std::function<void()> tapped) override;


signals:
    // Released inside the button (or pressed from the keyboard), after a toggle changed.
    void tapped(ostrel::OSTQuickButton *button);

protected:
    // A click, after a checkable button changed its selection: a toggle tells its validation,
    // then tapped() is emitted.
    virtual void clicked();
    // Shows the background of the current state; subclasses that show their own picture override it.
    virtual void updateBackgrounds();
    // OSTToggleItem
    bool isToggleButton() const override { return isToggle(); }
    bool isSelected() const override { return isChecked(); }
    void setSelected(bool selected) override { setChecked(selected); }

    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseUngrabEvent() override;
    void keyPressEvent(QKeyEvent *event) override;
    void itemChange(ItemChange change, const ItemChangeData &value) override;
    void geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry) override;

private:
    OSTQuickImage *addBackground(const OSTImageDescription &background);
    OSTButtonPainter::State shownState() const;
    bool showsPressed() const;
    qreal shownBackgroundCornerRadius() const;
    void setDown(bool down);
    void paintFace(QPainter &painter);

    const std::shared_ptr<const OSTButtonDescription> m_description;
    OSTQuickImage *m_normalBackground = nullptr; // child items; null when the state is absent
    OSTQuickImage *m_highlightedBackground = nullptr;
    OSTQuickImage *m_disabledBackground = nullptr;
    OSTQuickShadow *m_shadow = nullptr; // child item; null without a shadow
    OSTQuickPaintedLayer *m_face = nullptr; // child item above the backgrounds
    OSTButtonPainter m_buttonPainter;
    bool m_down = false;
    bool m_checkable = false;
    bool m_checked = false;
};

} // namespace ostrel
