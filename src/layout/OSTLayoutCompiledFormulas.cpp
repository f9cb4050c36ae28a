#include "layout/OSTLayoutCompiledFormulas.h"

#include "layout/OSTLayoutNumbers.h"

#include <QVarLengthArray>

#include <algorithm>
#include <cmath>

namespace ostrel {

namespace {

using Input = OSTLayoutCompiledFormulas::Input;
using InputKind = OSTLayoutCompiledFormulas::InputKind;
using Instruction = OSTLayoutCompiledFormulas::Instruction;
using Operation = OSTLayoutCompiledFormulas::Operation;

// Brackets and signs nested deeper than this are left to the string path; well below the
// arithmetic's own limit, so that the bracket each percentage becomes cannot cross it.
constexpr int maximumDepth = 100;

bool isSpace(char16_t c)
{
    return c == u' ' || (c >= u'\t' && c <= u'\r');
}

bool isDigit(char16_t c)
{
    return c >= u'0' && c <= u'9';
}

bool isLetter(char16_t c)
{
    return (c >= u'A' && c <= u'Z') || (c >= u'a' && c <= u'z');
}

// The class [A-z0-9-_] of references: "A-z" spans the six characters between the alphabets.
bool isReferenceCharacter(char16_t c)
{
    return (c >= u'A' && c <= u'z') || isDigit(c) || c == u'-';
}

// The number "%.2f" of `wholePercent` / 100 reads as. For a whole number below 10^12 that is the
// quotient itself: "%.2f" writes its two decimals exactly and reading them back gives the nearest
// double, which the division gives too.
double hundredthsAsRead(double wholePercent)
{
    if (wholePercent >= 0 && wholePercent < 1e12)
        return wholePercent / 100.0;
    char16_t hundredths[400];
    const qsizetype length = OSTLayoutNumbers::writeHundredths(wholePercent, hundredths);
    return OSTLayoutNumbers::decimalValue(QStringView(hundredths, length));
}

// Recursive descent over the grammar of OSTLayoutExpression, with inputs as further kinds of
// operand, emitting operations in the order that parser applies them.
class Compiler {
public:
    Compiler(QStringView text, const OSTLayoutKeyIndex &keys, bool statusBarIsNumber,
             std::vector<Input> &inputs, std::vector<Instruction> &instructions,
             std::vector<double> &numbers)
        : m_text(text), m_keys(keys), m_statusBarIsNumber(statusBarIsNumber), m_inputs(inputs),
          m_firstInput(inputs.size()), m_instructions(instructions), m_numbers(numbers)
    {
    }

    bool compile()
    {
        expression();
        skipSpaces();
        return !m_failed && m_position == m_text.size()
            && m_inputs.size() - m_firstInput <= size_t(OSTLayoutCompiledFormulas::maximumInputs);
    }

private:
    void skipSpaces()
    {
        while (m_position < m_text.size() && isSpace(m_text[m_position].unicode()))
            ++m_position;
    }

    char16_t peek()
    {
        skipSpaces();
        return m_position < m_text.size() ? m_text[m_position].unicode() : u'\0';
    }

    char16_t current() const
    {
        return m_position < m_text.size() ? m_text[m_position].unicode() : u'\0';
    }

    void fail() { m_failed = true; }

    void push(Operation operation, int operand = 0)
    {
        m_instructions.push_back(Instruction{operation, operand});
    }

    void pushInput(const Input &input)
    {
        push(Operation::Input, int(m_inputs.size() - m_firstInput));
        m_inputs.push_back(input);
    }

    void expression()
    {
        term();
        while (!m_failed) {
            const char16_t c = peek();
            if (c != u'+' && c != u'-')
                break;
            ++m_position;
            term();
            push(c == u'+' ? Operation::Add : Operation::Subtract);
        }
    }

    void term()
    {
        factor();
        while (!m_failed) {
            const char16_t c = peek();
            if (c != u'*' && c != u'/')
                break;
            ++m_position;
            factor();
            push(c == u'*' ? Operation::Multiply : Operation::Divide);
        }
    }

    void factor()
    {
        if (m_failed)
            return;
        int negations = 0;
        while (peek() == u'-') {
            ++m_position;
            if (++negations + m_depth > maximumDepth)
                return fail();
        }
        primary();
        if (negations % 2)
            push(Operation::Negate);
    }

    void primary()
    {
        const char16_t c = peek();
        if (c == u'(') {
            if (++m_depth > maximumDepth)
                return fail();
            ++m_position;
            expression();
            if (m_failed || peek() != u')')
                return fail();
            ++m_position;
            --m_depth;
        } else if (isDigit(c) || c == u'.' || c == u'%') {
            numberOrPercentage();
        } else if (c == u'{') {
            reference();
        } else if (isLetter(c)) {
            name();
        } else {
            fail();
        }
    }

    void numberOrPercentage()
    {
        const qsizetype start = m_position;
        qsizetype integerDigits = 0;
        qsizetype fractionDigits = 0;
        while (isDigit(current())) {
            ++m_position;
            ++integerDigits;
        }
        const bool point = current() == u'.';
        if (point) {
            ++m_position;
            while (isDigit(current())) {
                ++m_position;
                ++fractionDigits;
            }
        }
        if (current() == u'%')
            return percentage(start, integerDigits, point);
        if (integerDigits == 0 && fractionDigits == 0)
            return fail(); // a point alone
        m_numbers.push_back(
            OSTLayoutNumbers::decimalValue(m_text.sliced(start, m_position - start)));
        push(Operation::Number, int(m_numbers.size() - 1));
    }

    // The percentage pattern [0-1]{0,1}[0-9]{0,2}[\.]{0,1}[0-9]*% takes a run of digits whole,
    // and a run with a point whole only when at most two digits, or three beginning with 0 or
    // 1, stand before the point. "0%" becomes nothing, which breaks the formula.
    void percentage(qsizetype start, qsizetype integerDigits, bool point)
    {
        if (point && (integerDigits > 3 || (integerDigits == 3 && m_text[start] > u'1')))
            return fail();
        const QStringView number = m_text.sliced(start, m_position - start);
        ++m_position; // the "%"
        if (number == u"0")
            return fail();
        Input input;
        input.kind = InputKind::Percentage;
        input.start = start;
        input.length = m_position - start;
        if (number == u"100") {
            input.wholePercent = -1;
        } else {
            input.wholePercent = std::ceil(OSTLayoutNumbers::decimalValue(number));
            input.hundredths = hundredthsAsRead(input.wholePercent);
        }
        pushInput(input);
    }

    // "{key.attribute...}": segments of [A-z0-9-_] between single points, at least two.
    void reference()
    {
        const qsizetype start = m_position++;
        QStringView segments[2];
        int count = 0;
        for (;;) {
            const qsizetype segmentStart = m_position;
            while (isReferenceCharacter(current()))
                ++m_position;
            if (m_position == segmentStart)
                return fail();
            if (count < 2)
                segments[count] = m_text.sliced(segmentStart, m_position - segmentStart);
            ++count;
            if (current() != u'.')
                break;
            ++m_position;
        }
        if (count < 2 || current() != u'}')
            return fail();
        ++m_position;
        Input input;
        input.kind = InputKind::Reference;
        input.start = start;
        input.length = m_position - start;
        input.position = m_keys.positionOf(segments[0]);
        input.attribute = OSTLayoutElement::attributeIndex(segments[1]);
        pushInput(input);
    }

    // Names are replaced wherever they occur as text, so every run of letters must be exactly
    // one of them.
    void name()
    {
        const qsizetype start = m_position;
        while (isLetter(current()))
            ++m_position;
        const QStringView word = m_text.sliced(start, m_position - start);
        Input input;
        input.start = start;
        input.length = word.size();
        if (word == u"statusBar") {
            if (!m_statusBarIsNumber)
                return fail();
            input.kind = InputKind::StatusBar;
        } else {
            input.kind = InputKind::OwnAttribute;
            input.attribute = OSTLayoutElement::attributeIndex(word);
            if (input.attribute < 0)
                return fail();
        }
        pushInput(input);
    }

    QStringView m_text;
    const OSTLayoutKeyIndex &m_keys;
    bool m_statusBarIsNumber;
    std::vector<Input> &m_inputs;
    size_t m_firstInput;
    std::vector<Instruction> &m_instructions;
    std::vector<double> &m_numbers;
    qsizetype m_position = 0;
    int m_depth = 0;
    bool m_failed = false;
};

bool isVerbatim(const Input &input, qsizetype sourceSize)
{
    const bool numberAsItStands =
        input.kind != InputKind::Percentage || input.wholePercent < 0;
    return numberAsItStands && input.start == 0 && input.length == sourceSize;
}

} // namespace

OSTLayoutCompiledFormulas::OSTLayoutCompiledFormulas(const OSTLayoutKeyIndex &keys,
                                                     const QString &statusBarText)
    : m_keys(keys), m_statusBarIsNumber(OSTLayoutElement::isNumericString(statusBarText))
{
}

void OSTLayoutCompiledFormulas::reserve(int elementCount)
{
    const size_t count = size_t(elementCount);
    m_slots.reserve(count * OSTLayoutElement::attributeCount);
    m_formulas.reserve(count);
    m_inputs.reserve(count * 2);
    m_instructions.reserve(count * 6);
    m_numbers.reserve(count);
    m_formulaBySource.reserve(elementCount);
}

bool OSTLayoutCompiledFormulas::compile(int position, Attribute attribute, const QString &text)
{
    const size_t slot = slotOf(position, attribute);
    if (slot >= m_slots.size())
        m_slots.resize(slot + 1, -1);
    int &compiled = m_formulaBySource[text];
    if (compiled == 0)
        compiled = compileText(text) + 1; // 0 means not yet compiled
    m_slots[slot] = compiled - 1;
    return compiled > 0;
}

int OSTLayoutCompiledFormulas::compileText(const QString &text)
{
    Formula formula;
    formula.source = text;
    formula.firstInput = int(m_inputs.size());
    formula.firstInstruction = int(m_instructions.size());
    const size_t numberCount = m_numbers.size();
    Compiler compiler(text, m_keys, m_statusBarIsNumber, m_inputs, m_instructions, m_numbers);
    if (!compiler.compile()) {
        m_inputs.resize(size_t(formula.firstInput));
        m_instructions.resize(size_t(formula.firstInstruction));
        m_numbers.resize(numberCount);
        return -1;
    }
    formula.inputCount = int(m_inputs.size()) - formula.firstInput;
    formula.instructionCount = int(m_instructions.size()) - formula.firstInstruction;
    formula.verbatim =
        formula.inputCount == 1 && isVerbatim(m_inputs[size_t(formula.firstInput)], text.size());
    formula.hasPercentage = std::any_of(
        m_inputs.begin() + formula.firstInput, m_inputs.end(),
        [](const Input &input) { return input.kind == InputKind::Percentage; });
    m_formulas.push_back(formula);
    return int(m_formulas.size()) - 1;
}

double OSTLayoutCompiledFormulas::evaluate(const Formula &formula,
                                           const double *inputValues) const
{
    QVarLengthArray<double, 32> stack;
    const Instruction *instruction = m_instructions.data() + formula.firstInstruction;
    const Instruction *const end = instruction + formula.instructionCount;
    for (; instruction != end; ++instruction) {
        switch (instruction->operation) {
        case Operation::Number:
            stack.append(m_numbers[size_t(instruction->operand)]);
            continue;
        case Operation::Input:
            stack.append(inputValues[instruction->operand]);
            continue;
        case Operation::Negate:
            stack.back() = -stack.back();
            continue;
        default:
            break;
        }
        const double right = stack.back();
        stack.removeLast();
        double &left = stack.back();
        switch (instruction->operation) {
        case Operation::Add:
            left = left + right;
            break;
        case Operation::Subtract:
            left = left - right;
            break;
        case Operation::Multiply:
            left = left * right;
            break;
        default:
            left = left / right;
            break;
        }
    }
    return stack.back();
}

} // namespace ostrel
