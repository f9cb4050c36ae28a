#pragma once

#include "screen/OSTElementDescription.h"
#include "screen/OSTShadow.h"

#include <QVariantMap>
#include <QWidget>

#include <optional>

namespace ostrel {

class OSTBackgroundView;

// The base of every element view, and the view of shapes, groups and a screen's backdrop. It
// carries its painted box as `container` (an OSTBackgroundView filling it, in which a group's
// members are placed) and applies the properties every element shares:
//
//   "alpha"         opacity as a string, default "1" (a JSON number is ignored)
//   the box keys of OSTBackgroundView
//   "objectShadow"  [colour, blur radius, horizontal offset, vertical offset]: a drop shadow of
//                   the view's rounded outline, cast outside the view when the radius is above 0;
//                   a clear colour still counts as a shadow, it just cannot be seen
//
// Construction and styling. A C++ constructor cannot reach an override: while OSTView's
// constructor runs, the object is an OSTView, so a virtual customizeWithProperties called there
// would style a subclass as a plain view and before the subclass's own members exist. So the
// public constructor, meant for plain views, styles the view at once, and the protected one,
// meant for subclasses, only builds the container: each subclass's constructor calls
// customizeWithProperties itself as its last step, once everything its override touches exists.
// A subclass that may itself be subclassed repeats the pattern with a protected constructor of
// its own.
//
// Lives on the GUI thread; owned by its parent widget.
class OSTView : public QWidget {
    Q_OBJECT

public:
    // A plain view, styled from `properties` before the constructor returns.
    OSTView(const QRect &frame, const QVariantMap &properties, QWidget *parent = nullptr);
    // A plain view of an element, styled from its description before the constructor returns.
    OSTView(const QRect &frame, const OSTElementDescription &description, QWidget *parent = nullptr);

    // Restyles the view. Each call describes the whole look: a key that is absent takes its
    // default, nothing carries over from an earlier call. Element views override it and call
    // this first.
    virtual void customizeWithProperties(const QVariantMap &properties);

    OSTBackgroundView *container() const { return m_container; }
    qreal alpha() const { return m_alpha; }
    const std::optional<OSTShadow> &objectShadow() const { return m_objectShadow; }

protected:
    enum class Styling {
        InThisConstructor,     // OSTView styles itself (plain views)
        InSubclassConstructor, // the subclass's constructor calls customizeWithProperties
    };

    OSTView(const QRect &frame, const QVariantMap &properties, Styling styling,
            QWidget *parent = nullptr);
    OSTView(const QRect &frame, const OSTElementDescription &description, Styling styling,
            QWidget *parent = nullptr);

    // Restyles the view from a description: its alpha, box and drop shadow.
    void customize(const OSTElementDescription &description);

    void resizeEvent(QResizeEvent *event) override;

private:
    void applyEffect();

    OSTBackgroundView *const m_container; // child widget, owned through the parent link
    qreal m_alpha = 1;
    std::optional<OSTShadow> m_objectShadow;
};

} // namespace ostrel
