#include "widgets/OSTInput.h"

#include "model/OSTInputOrder.h"

using namespace Qt::StringLiterals;

namespace ostrel {

OSTInput::OSTInput(QWidget &widget, int inputPosition)
    : m_widget(widget),
      m_inputPosition(inputPosition)
{
}

void OSTInput::chainInputs(QList<OSTInput *> inputs)
{
    inputs.removeAll(nullptr);
    QList<int> inputOrders;
    for (const OSTInput *input : std::as_const(inputs))
        inputOrders.append(input->inputPosition());
    const QList<qsizetype> chain = OSTInputOrder::chain(inputOrders);
    for (qsizetype link = 0; link < chain.size(); ++link) {
        OSTInput &input = *inputs.at(chain.at(link));
        const bool isLast = link + 1 == chain.size();
        QWidget *next = isLast ? nullptr : &inputs.at(chain.at(link + 1))->inputWidget();
        input.setNextInput(next);
        if (next)
            QWidget::setTabOrder(&input.inputWidget(), next);
    }
}

void OSTInput::handOnFocus()
{
    if (m_nextInput) {
        m_nextInput->setFocus(Qt::TabFocusReason);
        return;
    }
    if (m_returnHandler)
        m_returnHandler(*this);
    m_widget.clearFocus();
}

} // namespace ostrel
