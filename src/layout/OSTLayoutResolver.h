#pragma once

#include "layout/OSTLayoutCompiledResolution.h"
#include "layout/OSTLayoutElement.h"
#include "layout/OSTLayoutFormula.h"
#include "layout/OSTLayoutKeyIndex.h"
#include "layout/OSTLayoutPatterns.h"

#include <QString>
#include <QStringList>
#include <QStringView>
#include <QVarLengthArray>

#include <optional>
#include <vector>

namespace ostrel {

// Resolution of one element: its attributes in the order x, y, width, height, each by its
// compiled formula (OSTLayoutCompiledResolution) or, when it has none, through the percentage,
// reference and expression steps on its text. Besides resolving, it reports whether any attribute
// string changed and which elements' attributes it found unresolved, which is what
// OSTLayoutPassScheduler needs.
// Internal to the layout engine (not exported); used on the GUI thread only.
class OSTLayoutResolver {
public:
    // A safety limit against hostile formulas. When a formula holds nested braces, the
    // references of the reference step are replaced one after the other over the whole text; a
    // formula whose matches times length exceeds this stays unresolved. Formulas without nested
    // braces are rewritten in one pass, whatever their size.
    static constexpr qint64 maximumReplacementWork = 50'000'000;

    // The table, its key index, the status bar text and the formulas must outlive the
    // resolver. Without formulas every attribute takes the string path.
    OSTLayoutResolver(const std::vector<OSTLayoutElement *> &table, const OSTLayoutKeyIndex &keys,
                      const QString &statusBarText, const OSTLayoutCompiledFormulas *formulas);

    struct Outcome {
        bool changed = false;       // some attribute string changed
        bool newlyResolved = false; // some attribute became resolved
    };

    // Resolves the unresolved attributes of the element at `position` in order; its parent is
    // resolved (`parentPosition` is its place in the table, -1 when it is not in the table).
    Outcome resolveElement(int position, const OSTLayoutElement &parent, int parentPosition);

    // At the end of resolution: the texts of the compiled formulas that stayed unresolved.
    void writeUnresolvedFormulas();

    // Positions of the elements whose unresolved attributes the last resolveElement() needed.
    const std::vector<int> &awaited() const { return m_awaited; }

private:
    using Attribute = OSTLayoutElement::Attribute;

    // "{key.attribute...}" split at its points.
    struct Reference {
        QStringView key;
        QStringView attributeName;
    };

    void resolveAttribute(int position, Attribute attribute, const OSTLayoutElement &parent,
                          int parentPosition);
    void resolveText(OSTLayoutElement &element, Attribute attribute,
                     const OSTLayoutElement &parent);

    // Step 1: percentages of the parent.
    bool resolvePercentages(OSTLayoutFormula &value, Attribute attribute,
                            const OSTLayoutElement &parent);
    QStringView percentageReplacement(QStringView number, const QString &parentValue);
    void appendHundredths(double percent);

    // Step 2: references to other elements, then the own attributes and "statusBar".
    bool resolveReferences(OSTLayoutFormula &working, const OSTLayoutElement &element,
                           const OSTLayoutFormula::Traits &traits);
    bool replaceElementReferences(OSTLayoutFormula &working, bool nestedBraces);
    bool replaceReferencesInOnePass(OSTLayoutFormula &working, QStringView original);
    bool replaceReferencesInTurn(OSTLayoutFormula &working, QStringView original);
    std::optional<QStringView> referencedValue(QStringView reference);
    static Reference parseReference(QStringView reference);
    static bool replaceOwnAttributes(OSTLayoutFormula &working, const OSTLayoutElement &element,
                                     const OSTLayoutFormula::Traits &traits);

    // Step 3: the arithmetic.
    static void resolveExpression(OSTLayoutFormula &value);

    const std::vector<OSTLayoutElement *> &m_table;
    const OSTLayoutKeyIndex &m_keyIndex;
    const QString &m_statusBarText;
    std::optional<OSTLayoutCompiledResolution> m_compiled;
    bool m_changed = false;
    std::vector<int> m_awaited;
    std::vector<OSTLayoutPatterns::Match> m_matches;
    OSTLayoutFormula m_value;
    OSTLayoutFormula m_original;
    OSTLayoutFormula m_scratch;
    QVarLengthArray<char16_t, 64> m_replacement;
};

} // namespace ostrel
