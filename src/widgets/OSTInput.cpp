#include "widgets/OSTInput.h"

#include <algorithm>

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
    std::stable_sort(inputs.begin(), inputs.end(),
                     [](const OSTInput *a, const OSTInput *b) { return a->inputPosition() < b->inputPosition(); });
    for (qsizetype index = 0; index < inputs.size(); ++index) {
        const bool isLast = index + 1 == inputs.size();
        inputs[index]->setNextInput(isLast ? nullptr : &inputs[index + 1]->inputWidget());
        if (!isLast)
            QWidget::setTabOrder(&inputs[index]->inputWidget(), &inputs[index + 1]->inputWidget());
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
