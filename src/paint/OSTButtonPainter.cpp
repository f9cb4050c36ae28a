#include "paint/OSTButtonPainter.h"

#include <QPainter>

#include <algorithm>

namespace ostrel {

OSTButtonPainter::OSTButtonPainter(const OSTButtonDescription::States &states)
{
    const auto addTitle = [this](State state, const OSTButtonDescription::StateLook &look) {
        Title &title = m_titles.at(index(state)).emplace();
        title.text = look.title;
        title.painter.setAttributes(OSTTextAttributes(look.textLook));
    };
    addTitle(State::Normal, states.normal);
    if (states.pressed)
        addTitle(State::Pressed, *states.pressed);
    if (states.disabled)
        addTitle(State::Disabled, *states.disabled);
}

OSTButtonPainter::State OSTButtonPainter::shownState(Enablement enablement, Press press) const
{
    if (enablement == Enablement::Disabled && hasState(State::Disabled))
        return State::Disabled;
    if (press == Press::Pressed && hasState(State::Pressed))
        return State::Pressed;
    return State::Normal;
}

const QString &OSTButtonPainter::title(State state) const
{
    return m_titles.at(index(hasState(state) ? state : State::Normal))->text;
}

void OSTButtonPainter::paintTitle(QPainter &painter, State state, const QRectF &box, const QFont &fallbackFont)
{
    Title &shown = titleOf(hasState(state) ? state : State::Normal);
    if (!shown.text.isEmpty())
        shown.painter.paint(painter, shown.text, box, fallbackFont);
}

void OSTButtonPainter::paintFocusFrame(QPainter &painter, const QSizeF &size, qreal cornerRadius, const QColor &color)
{
    const qreal radius = std::max<qreal>(0, cornerRadius - 1);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(color, 2));
    painter.drawRoundedRect(QRectF(QPointF(), size).adjusted(1, 1, -1, -1), radius, radius);
    painter.restore();
}

} // namespace ostrel
