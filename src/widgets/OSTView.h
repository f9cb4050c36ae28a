#pragma once

#include "screen/OSTElementDescription.h"
#include "screen/OSTShadow.h"

#include <QWidget>

#include <optional>

namespace ostrel {

class OSTBackgroundView;

// The base of every element view, and the view of shapes, groups and a screen's backdrop. It
// carries its painted box as `container` (an OSTBackgroundView filling it, in which a group's
// members are placed) and applies what every element description holds: its opacity, its box
// and its object shadow, a drop shadow of the view's rounded outline cast outside the view (a
// clear colour still counts as a shadow, it just cannot be seen).
//
// Construction and styling. The public constructor, meant for plain views, styles the view at
// once; the protected one, meant for subclasses, only builds the container: each subclass's
// constructor styles the view itself as its last step, once everything its styling touches exists.
// A subclass that may itself be subclassed repeats the pattern with a protected constructor of
// its own.
//
// Lives on the GUI thread; owned by its parent widget.
class OSTView : public QWidget {
    Q_OBJECT

public:
    // A plain view, styled from `description` before the constructor returns.
    OSTView(const QRect &frame, const OSTElementDescription &description, QWidget *parent = nullptr);

    // Restyles the view; the description replaces the whole earlier look.
    void customize(const OSTElementDescription &description);

    OSTBackgroundView *container() const { return m_container; }
    qreal alpha() const { return m_alpha; }
    const std::optional<OSTShadow> &objectShadow() const { return m_objectShadow; }

protected:
    enum class Styling {
        InThisConstructor,     // OSTView styles itself (plain views)
        InSubclassConstructor, // the subclass's constructor styles the view
    };

    OSTView(const QRect &frame, const OSTElementDescription &description, Styling styling,
            QWidget *parent = nullptr);

    void resizeEvent(QResizeEvent *event) override;

private:
    void applyEffect();

    OSTBackgroundView *const m_container; // child widget, owned through the parent link
    qreal m_alpha = 1;
    std::optional<OSTShadow> m_objectShadow;
};

} // namespace ostrel
