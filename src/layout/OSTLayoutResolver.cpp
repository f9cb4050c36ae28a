#include "layout/OSTLayoutResolver.h"

#include "layout/OSTLayoutExpression.h"
#include "layout/OSTLayoutNumbers.h"

#include <cmath>

namespace ostrel {

namespace {

bool isDigitOrPoint(char16_t c)
{
    return (c >= u'0' && c <= u'9') || c == u'.';
}

// Where the search for the next percentage begins after a replacement made at `start`, given
// the input that follows it: at the replacement, unless the two could continue a percentage.
qsizetype nextPercentageSearchStart(qsizetype start, QStringView replacement,
                                    QStringView followingInput)
{
    const char16_t next = !replacement.isEmpty() ? replacement.front().unicode()
        : !followingInput.isEmpty()               ? followingInput.front().unicode()
                                                  : u'\0';
    return isDigitOrPoint(next) || next == u'%' ? 0 : start;
}

} // namespace

OSTLayoutResolver::OSTLayoutResolver(const std::vector<OSTLayoutElement *> &table,
                                     const OSTLayoutKeyIndex &keys, const QString &statusBarText,
                                     const OSTLayoutCompiledFormulas *formulas)
    : m_table(table), m_keyIndex(keys), m_statusBarText(statusBarText)
{
    if (formulas)
        m_compiled.emplace(table, *formulas, statusBarText);
}

OSTLayoutResolver::Outcome OSTLayoutResolver::resolveElement(int position,
                                                             const OSTLayoutElement &parent,
                                                             int parentPosition)
{
    OSTLayoutElement &element = *m_table[size_t(position)];
    m_changed = false;
    m_awaited.clear();
    bool newlyResolved = false;
    for (const Attribute attribute : OSTLayoutElement::allAttributes) {
        if (!element.hasAttribute(attribute) || element.isAttributeResolved(attribute))
            continue;
        resolveAttribute(position, attribute, parent, parentPosition);
        newlyResolved = newlyResolved || element.isAttributeResolved(attribute);
    }
    return Outcome{m_changed, newlyResolved};
}

void OSTLayoutResolver::writeUnresolvedFormulas()
{
    if (m_compiled)
        m_compiled->writeUnresolvedFormulas();
}

void OSTLayoutResolver::resolveAttribute(int position, Attribute attribute,
                                         const OSTLayoutElement &parent, int parentPosition)
{
    const OSTLayoutCompiledFormulas::Formula *formula =
        m_compiled ? m_compiled->formula(position, attribute) : nullptr;
    if (!formula)
        resolveText(*m_table[size_t(position)], attribute, parent);
    else if (m_compiled->visit(position, attribute, *formula, parent, parentPosition,
                                   m_awaited))
        m_changed = true;
}

// The steps rewrite a local copy of the value, which is stored once, after the last step
// that ran: the same string as storing it after every step. (A step reads
// the stored value of its own attribute only to see whether it is resolved, and the value
// of an attribute being resolved cannot be a number while it still holds a name or a
// reference.)
void OSTLayoutResolver::resolveText(OSTLayoutElement &element, Attribute attribute,
                                    const OSTLayoutElement &parent)
{
    OSTLayoutFormula &value = m_value;
    value.assign(element.value(attribute));
    const OSTLayoutFormula::Traits traits = value.traits();
    if (traits.percent && !resolvePercentages(value, attribute, parent))
        return; // an ICU failure: the attribute stays as it was
    if (resolveReferences(value, element, traits))
        resolveExpression(value);
    if (value.view() != element.value(attribute)) {
        element.setValue(value.view().toString(), attribute);
        m_changed = true;
    }
}

// Step 1. Each "%" is replaced, leftmost first, searching the new value again from the
// start after each replacement. The value is rewritten front to back: the text up to each
// "%" is moved to the output, the match (which ends at that "%") is replaced there, and
// the next search begins at the replacement, or, when the replacement and what follows
// could continue a percentage, at the start of the output. Places before the replacement
// cannot match otherwise (the previous search found none there, and their text is
// unchanged up to the replacement), so every search finds what a search from the start
// finds. False on an ICU failure.
bool OSTLayoutResolver::resolvePercentages(OSTLayoutFormula &value, Attribute attribute,
                                           const OSTLayoutElement &parent)
{
    const QStringView input = value.view();
    const QString &parentValue = parent.value(OSTLayoutElement::percentageBase(attribute));

    OSTLayoutFormula &output = m_scratch;
    output.clear();
    qsizetype position = 0; // the input before it is in the output
    qsizetype from = 0;     // where the next search of the output begins
    for (;;) {
        const qsizetype percent = OSTLayoutPatterns::indexOf(input, u'%', position);
        if (percent < 0) {
            output.append(input.sliced(position));
            break;
        }
        output.append(input.sliced(position, percent + 1 - position));
        position = percent + 1;

        // The output holds no other "%": replacements never bring one.
        OSTLayoutPatterns::Match match;
        if (OSTLayoutPatterns::matchPercentage(output.view(), from, output.size() - 1, match)
            != OSTLayoutPatterns::Search::Found)
            return false;
        const QStringView replacement = percentageReplacement(
            output.view().sliced(match.start, match.length - 1), parentValue);
        output.truncate(match.start);
        output.append(replacement);
        from = nextPercentageSearchStart(match.start, replacement, input.sliced(position));
    }
    value.takeFrom(output);
    return true;
}

// What replaces `number` percent of the parent's `parentValue`: the value itself for 100,
// nothing for 0, otherwise "(%.2f * %@)" of the whole percent above it and the value.
QStringView OSTLayoutResolver::percentageReplacement(QStringView number,
                                                     const QString &parentValue)
{
    if (number == u"100")
        return parentValue;
    if (number == u"0")
        return QStringView();
    const double wholePercent = std::ceil(OSTLayoutNumbers::decimalValue(number));
    m_replacement.clear();
    m_replacement.append(u'(');
    appendHundredths(wholePercent);
    m_replacement.append(u" * ", 3);
    m_replacement.append(reinterpret_cast<const char16_t *>(parentValue.constData()),
                         parentValue.size());
    m_replacement.append(u')');
    return QStringView(m_replacement.constData(), m_replacement.size());
}

void OSTLayoutResolver::appendHundredths(double percent)
{
    char16_t digits[400];
    m_replacement.append(digits, OSTLayoutNumbers::writeHundredths(percent, digits));
}

// Step 2, with the own attributes and "statusBar". True when everything was available.
bool OSTLayoutResolver::resolveReferences(OSTLayoutFormula &working,
                                          const OSTLayoutElement &element,
                                          const OSTLayoutFormula::Traits &traits)
{
    if (traits.brace && !replaceElementReferences(working, traits.nestedBrace))
        return false;

    // Own attributes and "statusBar", found by substring, where their first letter occurs.
    const bool ownAttributesAvailable = replaceOwnAttributes(working, element, traits);
    if (traits.letters[OSTLayoutFormula::Traits::statusBarLetter])
        working.replaceAll(u"statusBar", m_statusBarText);
    return ownAttributesAvailable;
}

// True when every referenced attribute was available; false also on an ICU failure and beyond
// the limit of work.
bool OSTLayoutResolver::replaceElementReferences(OSTLayoutFormula &working, bool nestedBraces)
{
    // The matches are those of the value as it stood at the start of this step.
    m_original.assign(working.view());
    const QStringView original = m_original.view();
    if (!OSTLayoutPatterns::findReferences(original, m_matches))
        return false;

    // Each match's text has every occurrence replaced, match after match. Without nested
    // braces no replacement can complete another reference, so the occurrences of
    // the texts are exactly the matches, and one pass over them gives the same text.
    // With nested braces the replacements are made in turn, within a limit of work that no
    // real formula comes near.
    if (!nestedBraces)
        return replaceReferencesInOnePass(working, original);
    if (qint64(m_matches.size()) * original.size() > maximumReplacementWork)
        return false;
    return replaceReferencesInTurn(working, original);
}

bool OSTLayoutResolver::replaceReferencesInOnePass(OSTLayoutFormula &working,
                                                   QStringView original)
{
    bool allAvailable = true;
    OSTLayoutFormula &output = m_scratch;
    output.clear();
    qsizetype copied = 0;
    for (const OSTLayoutPatterns::Match &match : m_matches) {
        const QStringView text = original.sliced(match.start, match.length);
        const std::optional<QStringView> replacement = referencedValue(text);
        if (!replacement)
            allAvailable = false;
        output.append(original.sliced(copied, match.start - copied));
        output.append(replacement.value_or(text)); // unavailable: stays
        copied = match.start + match.length;
    }
    output.append(original.sliced(copied));
    working.takeFrom(output);
    return allAvailable;
}

bool OSTLayoutResolver::replaceReferencesInTurn(OSTLayoutFormula &working, QStringView original)
{
    bool allAvailable = true;
    for (const OSTLayoutPatterns::Match &match : m_matches) {
        const QStringView text = original.sliced(match.start, match.length);
        const std::optional<QStringView> replacement = referencedValue(text);
        if (replacement)
            working.replaceAll(text, *replacement);
        else
            allAvailable = false; // stays
    }
    return allAvailable;
}

// What replaces a reference: "0" when no element has its key, the referenced attribute's value
// when it is resolved. Nothing when it is not (or is no attribute); the referenced element is
// then awaited.
std::optional<QStringView> OSTLayoutResolver::referencedValue(QStringView reference)
{
    const Reference parts = parseReference(reference);
    const int position = m_keyIndex.positionOf(parts.key);
    if (position < 0)
        return QStringView(u"0");
    const OSTLayoutElement &referenced = *m_table[size_t(position)];
    const int index = OSTLayoutElement::attributeIndex(parts.attributeName);
    if (index >= 0 && referenced.isAttributeResolved(Attribute(index)))
        return QStringView(referenced.value(Attribute(index)));
    m_awaited.push_back(position);
    return std::nullopt;
}

OSTLayoutResolver::Reference OSTLayoutResolver::parseReference(QStringView reference)
{
    // "{key.attribute...}": the pattern guarantees non-empty parts between points.
    const QStringView inner = reference.sliced(1, reference.size() - 2);
    const qsizetype firstPoint = OSTLayoutPatterns::indexOf(inner, u'.');
    QStringView attributeName = inner.sliced(firstPoint + 1);
    const qsizetype secondPoint = OSTLayoutPatterns::indexOf(attributeName, u'.');
    if (secondPoint >= 0)
        attributeName = attributeName.first(secondPoint);
    return Reference{inner.first(firstPoint), attributeName};
}

// True when each own attribute the formula names is resolved.
bool OSTLayoutResolver::replaceOwnAttributes(OSTLayoutFormula &working,
                                             const OSTLayoutElement &element,
                                             const OSTLayoutFormula::Traits &traits)
{
    bool allAvailable = true;
    for (const Attribute own : OSTLayoutElement::allAttributes) {
        if (!traits.letters[own])
            continue;
        const QString &name = OSTLayoutElement::attributeName(own);
        if (working.find(name) < 0)
            continue;
        if (element.isAttributeResolved(own))
            working.replaceAll(name, element.value(own));
        else
            allAvailable = false;
    }
    return allAvailable;
}

// Step 3.
void OSTLayoutResolver::resolveExpression(OSTLayoutFormula &value)
{
    // Already a number: kept as it is, not evaluated and truncated ("100%" of a 667-high
    // screen stays 667.00, a single reference keeps the referred value's decimals).
    if (OSTLayoutElement::isNumericString(value.view()))
        return;
    // A plain integer, possibly negative: nothing to evaluate.
    if (OSTLayoutNumbers::isCanonicalInteger(value.view()))
        return;
    // Malformed arithmetic, division by zero and results beyond 64 bits leave the
    // attribute unresolved.
    const std::optional<double> result = OSTLayoutExpression::evaluate(value.view());
    const std::optional<qint64> integer =
        result ? OSTLayoutNumbers::truncatedInteger(*result) : std::nullopt;
    if (!integer)
        return;
    char16_t digits[24];
    const qsizetype length = OSTLayoutNumbers::writeInteger(*integer, digits);
    value.assign(QStringView(digits, length));
}

} // namespace ostrel
