#include "quick/OSTQuickInput.h"

#include "model/OSTInputOrder.h"

#include <QKeyEvent>

namespace ostrel {

OSTQuickInput::OSTQuickInput(QQuickItem &item, int inputPosition)
    : m_item(item),
      m_inputPosition(inputPosition)
{
}

void OSTQuickInput::chainInputs(QList<OSTQuickInput *> inputs)
{
    inputs.removeAll(nullptr);
    QList<int> inputOrders;
    for (const OSTQuickInput *input : std::as_const(inputs))
        inputOrders.append(input->inputPosition());
    const QList<qsizetype> chain = OSTInputOrder::chain(inputOrders);
    for (qsizetype link = 0; link < chain.size(); ++link) {
        OSTQuickInput &input = *inputs.at(chain.at(link));
        input.m_previousInput = link > 0 ? &inputs.at(chain.at(link - 1))->inputItem() : nullptr;
        input.m_nextInput = link + 1 < chain.size() ? &inputs.at(chain.at(link + 1))->inputItem() : nullptr;
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
