#pragma once

#include "render/OSTLayoutElement.h"
#include "render/OSTLayoutFormula.h"
#include "render/OSTLayoutKeyIndex.h"
#include "render/OSTLayoutPatterns.h"

#include <QString>
#include <QStringList>
#include <QStringView>
#include <QVarLengthArray>

#include <optional>
#include <vector>

namespace ostrel {

// Resolution of one element: its attributes in the order x, y, width, height, each through the
// percentage, reference and expression steps. Besides resolving, it reports whether any attribute
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

    // The table, its keys and the status bar text must outlive the resolver.
    OSTLayoutResolver(const std::vector<OSTLayoutElement *> &table, const QStringList &keys,
                      const QString &statusBarText);

    struct Outcome {
        bool changed = false;       // some attribute string changed
        bool newlyResolved = false; // some attribute became resolved
    };

    // Resolves the element's unresolved attributes in order; its parent is resolved.
    Outcome resolveElement(OSTLayoutElement &element, const OSTLayoutElement &parent);

    // Positions of the elements whose unresolved attributes the last resolveElement() needed.
    const std::vector<int> &awaited() const { return m_awaited; }

private:
    using Attribute = OSTLayoutElement::Attribute;

    // "{key.attribute...}" split at its points.
    struct Reference {
        QStringView key;
        QStringView attributeName;
    };

    void resolveAttribute(OSTLayoutElement &element, Attribute attribute,
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
    const OSTLayoutKeyIndex m_keyIndex;
    const QString &m_statusBarText;
    bool m_changed = false;
    std::vector<int> m_awaited;
    std::vector<OSTLayoutPatterns::Match> m_matches;
    OSTLayoutFormula m_value;
    OSTLayoutFormula m_original;
    OSTLayoutFormula m_scratch;
    QVarLengthArray<char16_t, 64> m_replacement;
};

} // namespace ostrel
