#pragma once

#include <QList>
#include <QPointer>
#include <QWidget>

#include <functional>

namespace ostrel {

// An input of a screen that takes part in the return-key chain: text fields and pickers.
//
// The screen orders its inputs by inputPosition (their description's input order) as
// OSTInputOrder does and links them with chainInputs(), which sets each input's nextInput and the
// Tab order, so that the return key (or a toolbar's done button) and Tab both move the focus to
// the next input and Shift+Tab back.
// The last input has no next input: return there calls the return handler (the screen queues
// its return event and moves on) and the input gives up the focus.
//
// A plain interface adopted next to a Qt widget base; `widget` is that widget. GUI thread only.
class OSTInput {
public:
    // Told when return is tapped on an input that has no next input.
    using ReturnHandler = std::function<void(OSTInput &input)>;

    explicit OSTInput(QWidget &widget, int inputPosition);
    OSTInput(const OSTInput &) = delete;
    OSTInput &operator=(const OSTInput &) = delete;
    virtual ~OSTInput() = default;

    QWidget &inputWidget() const { return m_widget; }
    int inputPosition() const { return m_inputPosition; }
    QWidget *nextInput() const { return m_nextInput; }
    void setNextInput(QWidget *input) { m_nextInput = input; }
    void setInputProtocolDelegate(ReturnHandler handler) { m_returnHandler = std::move(handler); }

    // Sorts `inputs` by inputPosition (stable), links each to the next and sets the Tab order.
    static void chainInputs(QList<OSTInput *> inputs);

protected:
    // What return does: the next input takes the focus; without one the return handler is told
    // and this input gives up the focus.
    void handOnFocus();

private:
    QWidget &m_widget;
    const int m_inputPosition;
    QPointer<QWidget> m_nextInput;
    ReturnHandler m_returnHandler;
};

} // namespace ostrel
