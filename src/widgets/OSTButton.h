#pragma once

#include "model/OSTToggleItem.h"
#include "paint/OSTButtonPainter.h"
#include "screen/OSTButtonDescription.h"

#include <QAbstractButton>

#include <memory>

namespace ostrel {

class OSTAction;
class OSTImageView;

// The "buttons" element: a button with a title and a background image per state, its opacity,
// drop shadow and action, all from its description (OSTButtonDescription). A toggle takes part in
// validation: a required toggle is valid while selected, an optional one always.
//
// The title and focus frame are drawn by OSTButtonPainter. A press shows the pressed state; a toggle stays selected (pressed) until pressed again. Space,
// Enter and Return press it from the keyboard; assistive technology reads its title (its element
// key when it has none).
//
// Lives on the GUI thread; owned by its parent widget.
class OSTButton : public QAbstractButton, public OSTToggleItem {
    Q_OBJECT

public:
    // The button the description describes, or null without a description or states.
    static OSTButton *create(const QRect &frame, std::shared_ptr<const OSTButtonDescription> description,
                             QWidget *parent = nullptr);
    ~OSTButton() override;

    const QString &name() const { return m_description->key(); }
    // The action of "onClick"; null when the button has none.
    const std::shared_ptr<const OSTAction> &action() const { return m_description->action(); }
    bool isToggle() const { return m_description->isToggle(); }

    OSTImageView *normalBackground() const { return m_normalBackground; }
    OSTImageView *highlightedBackground() const { return m_highlightedBackground; }
    OSTImageView *disabledBackground() const { return m_disabledBackground; }
    // The title shown in the current state.
    QString currentTitle() const;

    // OSTSelectionGroupMember
    const QString &memberKey() const override { return name(); }
    QObject &memberObject() override { return *this; }
    void joinGroup(QObject &group, std::function<void()> tapped) override;

signals:
    // Released inside the button (or pressed from the keyboard), after a toggle changed.
    void tapped(ostrel::OSTButton *button);

protected:
    // `description` has states.
    OSTButton(const QRect &frame, std::shared_ptr<const OSTButtonDescription> description, QWidget *parent);

    // Shows the background of the current state; subclasses that show their own picture override it.
    virtual void updateBackgrounds();
    // OSTToggleItem
    bool isToggleButton() const override { return isToggle(); }
    bool isSelected() const override { return isChecked(); }
    void setSelected(bool selected) override { setChecked(selected); }
    void paintEvent(QPaintEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void changeEvent(QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    OSTImageView *addBackground(const OSTImageDescription &background);
    qreal shownBackgroundCornerRadius() const;
    OSTButtonPainter::State shownState() const;
    bool showsPressed() const;
    void handleClick();
    void paintTitleLayer();

    const std::shared_ptr<const OSTButtonDescription> m_description;
    OSTButtonPainter m_buttonPainter;
    QWidget *const m_titleLayer; // child, above the backgrounds
    OSTImageView *m_normalBackground = nullptr;      // children; null when the state is absent
    OSTImageView *m_highlightedBackground = nullptr;
    OSTImageView *m_disabledBackground = nullptr;
};

} // namespace ostrel
