#pragma once

#include "layout/OSTLayoutElement.h"
#include "layout/OSTLayoutKeyIndex.h"

#include <QHash>
#include <QString>
#include <QStringView>

#include <cstdint>
#include <vector>

namespace ostrel {

// The frame formulas of one screen, each parsed once into a small program: the arithmetic as a
// stack of operations over numbers and "inputs", the parts that resolution replaces with text
// (percentages of the parent, references to other elements, own attributes, "statusBar").
// Resolution then evaluates numbers instead of rewriting and re-reading strings.
//
// A formula compiles only when substituting its inputs as text could not change how the
// arithmetic reads: every input stands alone between operators, brackets or white space, each
// "{" opens a well-formed reference, each letter belongs to a name, each percentage is matched
// whole. Everything else (nested braces, "0%", adjacent operands, unknown names...) is left to
// the string path, attribute by attribute.
//
// Internal to the layout engine (not exported); built and used on the GUI thread only.
class OSTLayoutCompiledFormulas {
public:
    using Attribute = OSTLayoutElement::Attribute;

    enum class InputKind : std::uint8_t { Percentage, Reference, OwnAttribute, StatusBar };

    struct Input {
        InputKind kind = InputKind::Percentage;
        // Reference: the referenced attribute, -1 for a name that is not one of the four.
        // OwnAttribute: the attribute named.
        int attribute = -1;
        // Reference: the referenced element's position in the table, -1 when no element has
        // that key (the reference then reads "0").
        int position = -1;
        // Percentage: the percent rounded up to a whole one; -1 for exactly "100", which is
        // replaced by the parent's text itself.
        double wholePercent = 0;
        // Percentage: the hundredths as they are written into the formula, read back.
        double hundredths = 0;
        qsizetype start = 0; // in the source
        qsizetype length = 0;
    };

    enum class Operation : std::uint8_t { Number, Input, Add, Subtract, Multiply, Divide, Negate };

    struct Instruction {
        Operation operation;
        int operand; // Number: index in the numbers; Input: index in the formula's inputs
    };

    struct Formula {
        QString source;
        int firstInput = 0;
        int inputCount = 0;
        int firstInstruction = 0;
        int instructionCount = 0;
        // The whole formula is one input: its text, a number, is the result as it stands.
        bool verbatim = false;
        // Some input is a percentage, so evaluating needs the parent's number.
        bool hasPercentage = false;
    };

    // At most this many inputs per formula (resolution tracks them in one 64-bit mask).
    static constexpr int maximumInputs = 64;

    // `keys` finds reference keys; `statusBarText` is what replaces "statusBar".
    OSTLayoutCompiledFormulas(const OSTLayoutKeyIndex &keys, const QString &statusBarText);

    // Room for the formulas of `elementCount` elements, so that compiling them does not grow
    // the arrays step by step.
    void reserve(int elementCount);

    // Compiles the attribute's formula for the element at `position`, replacing any earlier
    // one; false (and the string path for it) when it cannot be compiled. A text compiled
    // before (screens repeat their formulas) shares that program: references name elements of
    // the same table, so equal texts compile alike.
    bool compile(int position, Attribute attribute, const QString &text);

    // The compiled formula, or nullptr when the attribute takes the string path.
    const Formula *formula(int position, Attribute attribute) const
    {
        const size_t slot = slotOf(position, attribute);
        if (slot >= m_slots.size() || m_slots[slot] < 0)
            return nullptr;
        return &m_formulas[size_t(m_slots[slot])];
    }

    const Input &input(const Formula &formula, int index) const
    {
        return m_inputs[size_t(formula.firstInput + index)];
    }

    // The value of the formula with its inputs worth `inputValues` (one per input), in the
    // order and precision in which OSTLayoutExpression reads the substituted text.
    double evaluate(const Formula &formula, const double *inputValues) const;

private:
    // The index of the new formula, or -1 when the text cannot be compiled.
    int compileText(const QString &text);

    static size_t slotOf(int position, Attribute attribute)
    {
        return size_t(position) * OSTLayoutElement::attributeCount + size_t(attribute);
    }

    const OSTLayoutKeyIndex &m_keys;
    const bool m_statusBarIsNumber;
    std::vector<int> m_slots;
    std::vector<Formula> m_formulas;
    std::vector<Input> m_inputs;
    std::vector<Instruction> m_instructions;
    std::vector<double> m_numbers;
    // Each text compiled so far: its formula, or -1 when it cannot be compiled.
    QHash<QString, int> m_formulaBySource;
};

} // namespace ostrel
