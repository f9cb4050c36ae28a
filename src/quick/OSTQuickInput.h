#pragma once

#include <QList>
#include <QPointer>
#include <QQuickItem>

#include <functional>

class QKeyEvent;

namespace ostrel {

// An input of a screen drawn by Qt Quick that takes part in the return-key chain: text fields
// and pickers.
//
// The screen orders its inputs by inputPosition (their description's input order) and links them
// with chainInputs(), which sets each input's next and previous input. Return (or a toolbar's
// done button) and Tab move the active focus to the next input, Shift+Tab back; Qt Quick's own
// Tab chain follows the item tree, not the input order, so the inputs handle Tab themselves
// (handleChainKey). The last input has no next input: return there calls the return handler (the
// screen queues its return event and moves on) and the input gives up the focus.
//
// A plain interface adopted next to a QQuickItem base; `item` is that item. GUI thread only.
class OSTQuickInput {
public:
    // Told when return is tapped on an input that has no next input.
    using ReturnHandler = std::function<void(OSTQuickInput &input)>;

    explicit OSTQuickInput(QQuickItem &item, int inputPosition);
    OSTQuickInput(const OSTQuickInput &) = delete;
    OSTQuickInput &operator=(const OSTQuickInput &) = delete;
    virtual ~OSTQuickInput() = default;

    QQuickItem &inputItem() const { return m_item; }
    int inputPosition() const { return m_inputPosition; }
    QQuickItem *nextInput() const { return m_nextInput; }
    QQuickItem *previousInput() const { return m_previousInput; }
    void setReturnHandler(ReturnHandler handler) { m_returnHandler = std::move(handler); }

    // Sorts `inputs` by inputPosition (stable) and links each to its neighbours.
    static void chainInputs(QList<OSTQuickInput *> inputs);

protected:
    // What return does: the next input takes the active focus; without one the return handler
    // is told and this input gives up the focus.
    void handOnFocus();
    // Tab and Shift+Tab (Backtab) move along the chain; true when the key was one of them and an
    // input took the focus.
    bool handleChainKey(const QKeyEvent &event);

private:
    QQuickItem &m_item;
    const int m_inputPosition;
    QPointer<QQuickItem> m_nextInput;
    QPointer<QQuickItem> m_previousInput;
    ReturnHandler m_returnHandler;
};

} // namespace ostrel
