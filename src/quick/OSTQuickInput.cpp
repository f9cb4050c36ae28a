#include "quick/OSTQuickInput.h"

#include <QKeyEvent>

#include <algorithm>

namespace ostrel {

OSTQuickInput::OSTQuickInput(QQuickItem &item, int inputPosition)
    : m_item(item),
      m_inputPosition(inputPosition)
{
}

void OSTQuickInput::chainInputs(QList<OSTQuickInput *> inputs)
{
    inputs.removeAll(nullptr);
    std::stable_sort(inputs.begin(), inputs.end(), [](const OSTQuickInput *a, const OSTQuickInput *b) {
        return a->inputPosition() < b->inputPosition();
    });
    for (qsizetype index = 0; index < inputs.size(); ++index) {
        OSTQuickInput &input = *inputs[index];
        input.m_previousInput = index > 0 ? &inputs[index - 1]->inputItem() : nullptr;
        input.m_nextInput = index + 1 < inputs.size() ? &inputs[index + 1]->inputItem() : nullptr;
    }
}

void OSTQuickInput::handOnFocus()
{
    if (m_nextInput) {
        m_nextInput->forceActiveFocus(Qt::TabFocusReason);
        return;
    }
    if (m_returnHandler)
        m_returnHandler(*this);
    m_item.setFocus(false);
}

bool OSTQuickInput::handleChainKey(const QKeyEvent &event)
{
    if (event.key() != Qt::Key_Tab && event.key() != Qt::Key_Backtab)
        return false;
    const bool backwards = event.key() == Qt::Key_Backtab || event.modifiers().testFlag(Qt::ShiftModifier);
    QQuickItem *target = backwards ? m_previousInput : m_nextInput;
    if (!target)
        return false;
    target->forceActiveFocus(backwards ? Qt::BacktabFocusReason : Qt::TabFocusReason);
    return true;
}

} // namespace ostrel
