#include "render/OSTLayoutCompiledResolution.h"

#include "render/OSTLayoutNumbers.h"

#include <QVarLengthArray>

namespace ostrel {

namespace {

using InputKind = OSTLayoutCompiledFormulas::InputKind;

constexpr std::uint64_t bitOf(int input)
{
    return std::uint64_t(1) << input;
}

} // namespace

OSTLayoutCompiledResolution::OSTLayoutCompiledResolution(
    const std::vector<OSTLayoutElement *> &table, const OSTLayoutCompiledFormulas &formulas,
    const QString &statusBarText)
    : m_table(table), m_formulas(formulas), m_statusBarText(statusBarText),
      m_statusBarValue(OSTLayoutNumbers::decimalValue(statusBarText)),
      m_progress(table.size() * OSTLayoutElement::attributeCount)
{
}

// Percentages are replaced on the first visit (the parent is resolved then), references as soon
// as they are available; names and "statusBar" only in a visit that finds every reference
// available, and the arithmetic only once every name is available too.
bool OSTLayoutCompiledResolution::visit(int position, Attribute attribute, const Formula &formula,
                                        const OSTLayoutElement &parent,
                                        std::vector<int> &awaited)
{
    Progress &progress = progressOf(position, attribute);
    if (progress.evaluated)
        return false;
    OSTLayoutElement &element = *m_table[size_t(position)];
    const std::uint64_t before = progress.substituted;
    std::uint64_t substituted = before;
    bool referencesAvailable = true;
    for (int index = 0; index < formula.inputCount; ++index) {
        const Input &input = m_formulas.input(formula, index);
        if (input.kind == InputKind::Percentage) {
            substituted |= bitOf(index);
        } else if (input.kind == InputKind::Reference && !(before & bitOf(index))) {
            if (isAvailable(input)) {
                substituted |= bitOf(index);
            } else {
                referencesAvailable = false;
                awaited.push_back(input.position);
            }
        }
    }
    bool namesAvailable = referencesAvailable;
    for (int index = 0; referencesAvailable && index < formula.inputCount; ++index) {
        const Input &input = m_formulas.input(formula, index);
        if (input.kind == InputKind::StatusBar
            || (input.kind == InputKind::OwnAttribute
                && element.isAttributeResolved(Attribute(input.attribute))))
            substituted |= bitOf(index);
        else if (input.kind == InputKind::OwnAttribute)
            namesAvailable = false;
    }
    progress.visited = true;
    progress.substituted = substituted;
    const bool substitutedMore = substituted != before;
    if (!namesAvailable)
        return substitutedMore;
    progress.evaluated = true;
    return storeResult(element, attribute, formula, parent, progress) || substitutedMore;
}

bool OSTLayoutCompiledResolution::isAvailable(const Input &input) const
{
    if (input.position < 0)
        return true; // no such element: reads "0"
    return input.attribute >= 0
        && m_table[size_t(input.position)]->isAttributeResolved(Attribute(input.attribute));
}

// A single input keeps its text, a number; anything else is the arithmetic's integer part. A
// result that is not a number or beyond 64 bits leaves the substituted text; so does an integer
// written as the formula already is.
bool OSTLayoutCompiledResolution::storeResult(OSTLayoutElement &element, Attribute attribute,
                                              const Formula &formula,
                                              const OSTLayoutElement &parent, Progress &progress)
{
    const QString &parentText = parent.value(OSTLayoutElement::percentageBase(attribute));
    if (formula.verbatim) {
        QString text;
        appendInputText(text, m_formulas.input(formula, 0), element, parentText);
        element.setValue(text, attribute);
        progress.stored = true;
        return true;
    }
    const double parentValue = OSTLayoutNumbers::decimalValue(parentText);
    QVarLengthArray<double, 16> values(formula.inputCount);
    for (int index = 0; index < formula.inputCount; ++index)
        values[index] = inputValue(m_formulas.input(formula, index), element, parentValue);
    const std::optional<qint64> result =
        OSTLayoutNumbers::truncatedInteger(m_formulas.evaluate(formula, values.constData()));
    if (!result)
        return false;
    char16_t digits[24];
    const QStringView text(digits, OSTLayoutNumbers::writeInteger(*result, digits));
    if (formula.inputCount == 0 && text == formula.source)
        return false;
    element.setValue(text.toString(), attribute);
    progress.stored = true;
    return true;
}

double OSTLayoutCompiledResolution::inputValue(const Input &input,
                                               const OSTLayoutElement &element,
                                               double parentValue) const
{
    switch (input.kind) {
    case InputKind::Percentage:
        return input.wholePercent < 0 ? parentValue : input.hundredths * parentValue;
    case InputKind::Reference:
        return input.position < 0 ? 0.0
                                  : OSTLayoutNumbers::decimalValue(
                                        m_table[size_t(input.position)]->value(
                                            Attribute(input.attribute)));
    case InputKind::OwnAttribute:
        return OSTLayoutNumbers::decimalValue(element.value(Attribute(input.attribute)));
    case InputKind::StatusBar:
        break;
    }
    return m_statusBarValue;
}

void OSTLayoutCompiledResolution::writeUnresolvedFormulas()
{
    for (size_t position = 0; position < m_table.size(); ++position) {
        OSTLayoutElement &element = *m_table[position];
        const auto parent = element.parent();
        for (const Attribute attribute : OSTLayoutElement::allAttributes) {
            const Progress &progress = progressOf(int(position), attribute);
            const Formula *formula = m_formulas.formula(int(position), attribute);
            if (!formula || !progress.visited || progress.stored || !progress.substituted
                || !parent)
                continue;
            element.setValue(
                substitutedText(*formula, progress.substituted, element,
                                parent->value(OSTLayoutElement::percentageBase(attribute))),
                attribute);
        }
    }
}

QString OSTLayoutCompiledResolution::substitutedText(const Formula &formula,
                                                     std::uint64_t substituted,
                                                     const OSTLayoutElement &element,
                                                     const QString &parentValue) const
{
    const QStringView source = formula.source;
    QString text;
    qsizetype copied = 0;
    for (int index = 0; index < formula.inputCount; ++index) {
        const Input &input = m_formulas.input(formula, index);
        if (!(substituted & bitOf(index)))
            continue;
        text += source.sliced(copied, input.start - copied);
        appendInputText(text, input, element, parentValue);
        copied = input.start + input.length;
    }
    text += source.sliced(copied);
    return text;
}

void OSTLayoutCompiledResolution::appendInputText(QString &text, const Input &input,
                                                  const OSTLayoutElement &element,
                                                  const QString &parentValue) const
{
    switch (input.kind) {
    case InputKind::Percentage:
        if (input.wholePercent < 0) {
            text += parentValue;
        } else {
            char16_t hundredths[400];
            text += u'(';
            text += QStringView(hundredths,
                                OSTLayoutNumbers::writeHundredths(input.wholePercent, hundredths));
            text += u" * ";
            text += parentValue;
            text += u')';
        }
        return;
    case InputKind::Reference:
        text += input.position < 0
            ? QStringView(u"0")
            : QStringView(m_table[size_t(input.position)]->value(Attribute(input.attribute)));
        return;
    case InputKind::OwnAttribute:
        text += element.value(Attribute(input.attribute));
        return;
    case InputKind::StatusBar:
        text += m_statusBarText;
        return;
    }
}

} // namespace ostrel
