#pragma once

#include "paint/OSTTextPainter.h"
#include "screen/OSTButtonDescription.h"

#include <QColor>
#include <QRectF>
#include <QString>

#include <array>
#include <optional>

class QFont;
class QPainter;

namespace ostrel {

// Paints what a button draws above the background of its state: the title of the state it shows,
// with that state's text look, and the keyboard focus frame. The backgrounds themselves are
// element boxes with an image (OSTBoxPainter, OSTImagePainter), one per state.
//
// Coordinates are the button's own: it fills (0, 0, size). Keeps each state's title laid out
// for the last size and font, so painting the title is not const. Owned by the button view or
// item; paints on whichever thread owns the painter and that owner.
class OSTButtonPainter {
public:
    enum class State { Normal, Pressed, Disabled };
    enum class Enablement { Enabled, Disabled };
    // Pressed: held down, or a toggle that is selected.
    enum class Press { Released, Pressed };

    explicit OSTButtonPainter(const OSTButtonDescription::States &states);

    bool hasState(State state) const { return m_titles.at(index(state)).has_value(); }
    // The state whose title shows: disabled while disabled, else pressed while pressed, each
    // only when the button has that state; normal otherwise.
    State shownState(Enablement enablement, Press press) const;
    const QString &title(State state) const;

    // Paints the title of `state` in `box`, centred vertically, with `fallbackFont` where its
    // text look names no font. Nothing for an empty title. The painter's state is kept.
    void paintTitle(QPainter &painter, State state, const QRectF &box, const QFont &fallbackFont);
    // Paints the focus frame in `color` one pixel inside a button of `size` whose shown
    // background has corners of `cornerRadius`, so it stays inside a rounded button. The
    // painter's state is kept.
    static void paintFocusFrame(QPainter &painter, const QSizeF &size, qreal cornerRadius, const QColor &color);

private:
    struct Title {
        QString text;
        OSTTextPainter painter;
    };

    static std::size_t index(State state) { return std::size_t(state); }
    Title &titleOf(State state) { return *m_titles.at(index(state)); }

    std::array<std::optional<Title>, 3> m_titles; // by State; absent states are empty
};

} // namespace ostrel
