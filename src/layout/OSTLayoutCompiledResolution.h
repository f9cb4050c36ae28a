#pragma once

#include "layout/OSTLayoutCompiledFormulas.h"
#include "layout/OSTLayoutElement.h"

#include <QString>

#include <cstdint>
#include <vector>

namespace ostrel {

// Resolution of the attributes whose formulas compiled. A visit does what the percentage,
// reference and expression steps do to the formula's text, but keeps only which inputs the text
// would have had replaced by now, and evaluates on numbers once all of them are. The element
// receives a string only when the attribute resolves or is left for good with a computed
// negative integer; the text of a formula that stays unresolved otherwise is written once, by
// writeUnresolvedFormulas(), exactly as the steps would have left it.
//
// Internal to the layout engine (not exported); used on the GUI thread only.
class OSTLayoutCompiledResolution {
public:
    using Attribute = OSTLayoutElement::Attribute;
    using Formula = OSTLayoutCompiledFormulas::Formula;

    // The table, the formulas and the status bar text must outlive this object.
    OSTLayoutCompiledResolution(const std::vector<OSTLayoutElement *> &table,
                                const OSTLayoutCompiledFormulas &formulas,
                                const QString &statusBarText);

    const Formula *formula(int position, Attribute attribute) const
    {
        return m_formulas.formula(position, attribute);
    }

    // One visit of the attribute, whose element's parent is resolved (`parentPosition` is its
    // place in the table, -1 when it is not in the table). Appends the positions of the elements
    // whose unresolved attributes it needs to `awaited`; true when the attribute's text changed
    // (as the string steps would have changed it).
    bool visit(int position, Attribute attribute, const Formula &formula,
               const OSTLayoutElement &parent, int parentPosition, std::vector<int> &awaited);

    // Gives every visited formula that stayed unresolved the text the steps leave it with.
    void writeUnresolvedFormulas();

private:
    struct Progress {
        std::uint64_t substituted = 0; // one bit per input whose text has been replaced
        bool visited = false;
        bool evaluated = false; // nothing more will change
        bool stored = false;    // the element holds the final text
    };

    using Input = OSTLayoutCompiledFormulas::Input;

    bool isAvailable(const Input &input) const;
    bool storeResult(int position, Attribute attribute, const Formula &formula,
                     const OSTLayoutElement &parent, int parentPosition, Progress &progress);
    double inputValue(const Input &input, int position, double parentValue);
    // The number a resolved attribute's text reads as, read once.
    double resolvedNumber(int position, Attribute attribute);
    double parentNumber(const OSTLayoutElement &parent, int parentPosition, Attribute attribute);
    // The text of a computed integer; equal results mostly share one string (a cache with one
    // place per hash of the value, so a collision only costs another string).
    const QString &integerText(qint64 value);
    QString substitutedText(const Formula &formula, std::uint64_t substituted,
                            const OSTLayoutElement &element, const QString &parentValue) const;
    void appendInputText(QString &text, const Input &input, const OSTLayoutElement &element,
                         const QString &parentValue) const;
    static size_t slotOf(int position, Attribute attribute)
    {
        return size_t(position) * OSTLayoutElement::attributeCount + size_t(attribute);
    }
    Progress &progressOf(int position, Attribute attribute)
    {
        return m_progress[slotOf(position, attribute)];
    }

    const std::vector<OSTLayoutElement *> &m_table;
    const OSTLayoutCompiledFormulas &m_formulas;
    const QString &m_statusBarText;
    const double m_statusBarValue;
    std::vector<Progress> m_progress;
    // By position and attribute: the number of a resolved attribute once read, NaN before.
    std::vector<double> m_numbers;
    struct IntegerText {
        qint64 value = 0;
        QString text;
    };
    std::vector<IntegerText> m_integerTexts; // a power of two in size
};

} // namespace ostrel
