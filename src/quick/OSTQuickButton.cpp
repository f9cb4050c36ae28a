#include "quick/OSTQuickButton.h"

#include "quick/OSTQuickAccessibility.h"
#include "quick/OSTQuickImage.h"
#include "quick/OSTQuickPaintedLayer.h"
#include "quick/OSTQuickShadow.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPalette>
#include <QPainter>

namespace ostrel {

OSTQuickButton::OSTQuickButton(const QRect &frame, std::shared_ptr<const OSTButtonDescription> description,
                               QQuickItem *parent)
    : QQuickItem(parent), m_description(std::move(description)), m_buttonPainter(*m_description->states()),
      m_checkable(m_description->isToggle())
{
    setObjectName(name());
    setAntialiasing(true);
    setPosition(frame.topLeft());
    setSize(frame.size());
    setAcceptedMouseButtons(Qt::LeftButton);
    setActiveFocusOnTab(true);
    setOpacity(m_description->buttonAlpha());
    const OSTButtonDescription::States &states = *m_description->states();
    m_normalBackground = addBackground(*states.normal.background);
    if (states.pressed)
        m_highlightedBackground = addBackground(*states.pressed->background);
    if (states.disabled)
        m_disabledBackground = addBackground(*states.disabled->background);
    // The description's backgrounds have no shadow: the button casts it around the normal one.
    if (const auto &shadow = m_description->buttonShadow()) {
        m_shadow = new OSTQuickShadow(*shadow, this);
        m_shadow->setZ(-2);
        m_shadow->setCornerRadius(m_normalBackground->boxPainter().cornerRadius(size()));
    }
    m_face = new OSTQuickPaintedLayer([this](QPainter &painter) { paintFace(painter); }, this);
    m_face->setSize(size());
    updateBackgrounds();
    // The title doubles as the name; the element key names a button without one.
    const QString &title = states.normal.title;
    OSTQuickAccessibility::describe(*this, QAccessible::Button, title.isEmpty() ? name() : title);
}

OSTQuickButton::~OSTQuickButton() = default;

OSTQuickImage *OSTQuickButton::addBackground(const OSTImageDescription &background)
{
    // Beneath the button's own painting, the title.
    auto *image = new OSTQuickImage(QRect(QPoint(), size().toSize()), background, this);
    image->setZ(-1);
    return image;
}

bool OSTQuickButton::showsPressed() const
{
    return (m_down || m_checked) && m_highlightedBackground;
}

void OSTQuickButton::updateBackgrounds()
{
    const bool disabled = !isEnabled();
    const bool pressed = showsPressed();
    if (m_normalBackground)
        m_normalBackground->setVisible(!pressed && !(m_disabledBackground && disabled));
    if (m_highlightedBackground)
        m_highlightedBackground->setVisible(!disabled && pressed);
    if (m_disabledBackground)
        m_disabledBackground->setVisible(disabled);
    m_face->update();
}

OSTButtonPainter::State OSTQuickButton::shownState() const
{
    using Enablement = OSTButtonPainter::Enablement;
    using Press = OSTButtonPainter::Press;
    return m_buttonPainter.shownState(isEnabled() ? Enablement::Enabled : Enablement::Disabled,
                                      m_down || m_checked ? Press::Pressed : Press::Released);
}

QString OSTQuickButton::currentTitle() const
{
    return m_buttonPainter.title(shownState());
}

qreal OSTQuickButton::shownBackgroundCornerRadius() const
{
    for (const OSTQuickImage *background : {m_disabledBackground, m_highlightedBackground, m_normalBackground}) {
        if (background && background->isVisible())
            return background->boxPainter().cornerRadius(size());
    }
    return 0;
}

void OSTQuickButton::setCheckable(bool checkable)
{
    m_checkable = checkable;
    if (!checkable)
        setChecked(false);
}

void OSTQuickButton::setChecked(bool checked)
{
    if (!m_checkable || checked == m_checked)
        return;
    m_checked = checked;
    updateBackgrounds();
}

void OSTQuickButton::setDown(bool down)
{
    if (down == m_down)
        return;
    m_down = down;
    updateBackgrounds();
}

void OSTQuickButton::click()
{
    if (!isEnabled())
        return;
    if (m_checkable)
        setChecked(!m_checked);
    clicked();
}

void OSTQuickButton::clicked()
{
    toggleTapped();
    emit tapped(this);
}

void OSTQuickButton::joinGroup(QObject &group, std::function<void()> tapped)
{
    disconnect(this, &OSTQuickButton::tapped, nullptr, nullptr);
    setCheckable(true);
    connect(this, &OSTQuickButton::tapped, &group, [this, tapped = std::move(tapped)] {
        // The click has already changed the selection; the group decides instead.
        setChecked(!isChecked());
        tapped();
    });
}

void OSTQuickButton::paintFace(QPainter &painter)
{
    m_buttonPainter.paintTitle(painter, shownState(), boundingRect(), QGuiApplication::font());
    if (hasActiveFocus())
        OSTButtonPainter::paintFocusFrame(painter, size(), shownBackgroundCornerRadius(),
                                          QGuiApplication::palette().color(QPalette::Highlight));
}

void OSTQuickButton::mousePressEvent(QMouseEvent *event)
{
    setDown(true);
    event->accept();
}

void OSTQuickButton::mouseReleaseEvent(QMouseEvent *event)
{
    const bool inside = contains(event->position());
    const bool wasDown = m_down;
    setDown(false);
    if (wasDown && inside)
        click();
}

void OSTQuickButton::mouseUngrabEvent()
{
    setDown(false);
}

void OSTQuickButton::keyPressEvent(QKeyEvent *event)
{
    if (event->key() != Qt::Key_Space && event->key() != Qt::Key_Return && event->key() != Qt::Key_Enter) {
        QQuickItem::keyPressEvent(event);
        return;
    }
    click();
}

void OSTQuickButton::itemChange(ItemChange change, const ItemChangeData &value)
{
    QQuickItem::itemChange(change, value);
    if (change == ItemEnabledHasChanged) {
        if (!isEnabled())
            setDown(false);
        updateBackgrounds();
    }
    else if (change == ItemActiveFocusHasChanged && m_face)
        m_face->update();
}

void OSTQuickButton::geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry)
{
    QQuickItem::geometryChange(newGeometry, oldGeometry);
    for (OSTQuickImage *background : {m_normalBackground, m_highlightedBackground, m_disabledBackground})
        if (background)
            background->setSize(newGeometry.size());
    if (m_face)
        m_face->setSize(newGeometry.size());
    if (m_shadow)
        m_shadow->setCornerRadius(m_normalBackground->boxPainter().cornerRadius(newGeometry.size()));
}

} // namespace ostrel
