#include "layout/OSTLayoutCompiledResolution.h"

#include "layout/OSTLayoutNumbers.h"

#include <QVarLengthArray>

#include <cmath>
#include <limits>

namespace ostrel {

namespace {

using InputKind = OSTLayoutCompiledFormulas::InputKind;

constexpr std::uint64_t bitOf(int input)
{
    return std::uint64_t(1) << input;
}

// Room for about two results per element, within limits.
size_t integerTextSlots(size_t elementCount)
{
    size_t slotCount = 16;
    while (slotCount < elementCount * 2 && slotCount < 4096)
        slotCount *= 2;
    return slotCount;
}

} // namespace

OSTLayoutCompiledResolution::OSTLayoutCompiledResolution(
    const std::vector<OSTLayoutElement *> &table, const OSTLayoutCompiledFormulas &formulas,
    const QString &statusBarText)
    : m_table(table), m_formulas(formulas), m_statusBarText(statusBarText),
      m_statusBarValue(OSTLayoutNumbers::decimalValue(statusBarText)),
      m_progress(table.size() * OSTLayoutElement::attributeCount),
      m_numbers(table.size() * OSTLayoutElement::attributeCount,
                std::numeric_limits<double>::quiet_NaN()),
      m_integerTexts(integerTextSlots(table.size()))
{
}

// Percentages are replaced on the first visit (the parent is resolved then), references as soon
// as they are available; names and "statusBar" only in a visit that finds every reference
// available, and the arithmetic only once every name is available too.
bool OSTLayoutCompiledResolution::visit(int position, Attribute attribute, const Formula &formula,
                                        const OSTLayoutElement &parent, int parentPosition,
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
    return storeResult(position, attribute, formula, parent, parentPosition, progress)
        || substitutedMore;
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
bool OSTLayoutCompiledResolution::storeResult(int position, Attribute attribute,
                                              const Formula &formula,
                                              const OSTLayoutElement &parent, int parentPosition,
                                              Progress &progress)
{
    OSTLayoutElement &element = *m_table[size_t(position)];
    const Attribute base = OSTLayoutElement::percentageBase(attribute);
    if (formula.verbatim) {
        QString text;
        appendInputText(text, m_formulas.input(formula, 0), element, parent.value(base));
        element.setValue(text, attribute);
        progress.stored = true;
        return true;
    }
    const double parentValue =
        formula.hasPercentage ? parentNumber(parent, parentPosition, base) : 0.0;
    QVarLengthArray<double, 16> values(formula.inputCount);
    for (int index = 0; index < formula.inputCount; ++index)
        values[index] = inputValue(m_formulas.input(formula, index), position, parentValue);
    const std::optional<qint64> result =
        OSTLayoutNumbers::truncatedInteger(m_formulas.evaluate(formula, values.constData()));
    if (!result)
        return false;
    const QString &text = integerText(*result);
    if (formula.inputCount == 0 && text == formula.source)
        return false;
    element.setValue(text, attribute);
    if (*result >= 0)
        m_numbers[slotOf(position, attribute)] = double(*result);
    progress.stored = true;
    return true;
}

double OSTLayoutCompiledResolution::inputValue(const Input &input, int position,
                                               double parentValue)
{
    switch (input.kind) {
    case InputKind::Percentage:
        return input.wholePercent < 0 ? parentValue : input.hundredths * parentValue;
    case InputKind::Reference:
        return input.position < 0 ? 0.0
                                  : resolvedNumber(input.position, Attribute(input.attribute));
    case InputKind::OwnAttribute:
        return resolvedNumber(position, Attribute(input.attribute));
    case InputKind::StatusBar:
        break;
    }
    return m_statusBarValue;
}

double OSTLayoutCompiledResolution::resolvedNumber(int position, Attribute attribute)
{
    double &number = m_numbers[slotOf(position, attribute)];
    if (std::isnan(number))
        number = OSTLayoutNumbers::decimalValue(m_table[size_t(position)]->value(attribute));
    return number;
}

double OSTLayoutCompiledResolution::parentNumber(const OSTLayoutElement &parent,
                                                 int parentPosition, Attribute attribute)
{
    if (parentPosition >= 0)
        return resolvedNumber(parentPosition, attribute);
    return OSTLayoutNumbers::decimalValue(parent.value(attribute));
}

const QString &OSTLayoutCompiledResolution::integerText(qint64 value)
{
    const std::uint64_t hash = std::uint64_t(value) * 0x9E3779B97F4A7C15ull;
    IntegerText &slot = m_integerTexts[size_t(hash >> 40) & (m_integerTexts.size() - 1)];
    if (slot.text.isEmpty() || slot.value != value) {
        char16_t digits[24];
        slot.value = value;
        slot.text = QStringView(digits, OSTLayoutNumbers::writeInteger(value, digits)).toString();
    }
    return slot.text;
}

void OSTLayoutCompiledResolution::writeUnresolvedFormulas()
{
    for (size_t position = 0; position < m_table.size(); ++position) {
        OSTLayoutElement &element = *m_table[position];
        for (const Attribute attribute : OSTLayoutElement::allAttributes) {
            const Progress &progress = progressOf(int(position), attribute);
            if (!progress.visited || progress.stored || !progress.substituted)
                continue;
            const Formula *formula = m_formulas.formula(int(position), attribute);
            const auto parent = element.parent();
            if (!formula || !parent)
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
