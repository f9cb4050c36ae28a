#pragma once

// Resolution written the straightforward way, to check the layout manager against: full passes
// over the whole element table, the screen format's regular expressions exactly as defined
// (the nested reference pattern included), a search from the start of the value
// after every percentage, the numeric predicate through ICU, and the integer reading of the
// expression step written out. It shares only the number formatting and the arithmetic
// evaluator with the engine, which their own tests cover.
//
// It ends where the engine does: after a pass that changed no string. The fuzz target compares
// the two on arbitrary screens; one seeded test of the render suite compares them on generated ones.

#include "layout/OSTLayoutElement.h"
#include "layout/OSTLayoutExpression.h"
#include "layout/OSTLayoutManager.h"
#include "layout/OSTLayoutNumbers.h"
#include "layout/OSTLayoutResolver.h"

#include <QHash>
#include <QString>
#include <QStringList>

#include <unicode/regex.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <vector>

namespace ostrel::test {

class OSTLayoutReferenceResolution {
public:
    enum class Result { Resolved, Unresolved, Inconclusive };

    struct Element {
        QString key;
        std::array<std::optional<QString>, 4> values;
        int parent = -2; // -1: the base element, -2: none, otherwise a position in the table
    };

    // Copies the manager's elements, parents and screen as they stand (before resolution).
    OSTLayoutReferenceResolution(const OSTLayoutManager &manager, double statusBarHeight)
        : m_statusBar(OSTLayoutNumbers::twoDecimals(statusBarHeight))
    {
        const auto &table = manager.elements();
        QHash<const OSTLayoutElement *, int> positions;
        for (auto entry = table.constBegin(); entry != table.constEnd(); ++entry)
            positions.insert(entry.value().get(), int(positions.size()));
        for (auto entry = table.constBegin(); entry != table.constEnd(); ++entry) {
            Element element;
            element.key = entry.key();
            for (int index = 0; index < 4; ++index)
                element.values[size_t(index)] = entry.value()->valueOfAttribute(
                    OSTLayoutElement::attributeName(OSTLayoutElement::Attribute(index)));
            const auto parent = entry.value()->parent();
            if (parent == manager.baseElement())
                element.parent = -1;
            else if (parent)
                element.parent = positions.value(parent.get(), -2);
            m_index.insert(element.key, int(m_elements.size()));
            m_elements.push_back(element);
        }
        m_baseWidth =
            manager.baseElement()->valueOfAttribute(QStringLiteral("width")).value_or(QString());
        m_baseHeight =
            manager.baseElement()->valueOfAttribute(QStringLiteral("height")).value_or(QString());
        UErrorCode status = U_ZERO_ERROR;
        UParseError parseError;
        m_percentage.reset(icu::RegexPattern::compile(
            icu::UnicodeString(u"[0-1]{0,1}[0-9]{0,2}[\\.]{0,1}[0-9]*%"), 0, parseError, status));
        m_reference.reset(icu::RegexPattern::compile(
            icu::UnicodeString(u"\\{([A-z0-9-_]+(\\.[A-z0-9-_]+)+)+\\}"), 0, parseError, status));
        m_numeric.reset(icu::RegexPattern::compile(icu::UnicodeString(u"^[0-9]+(?:\\.[0-9]+)?$"), 0,
                                                   parseError, status));
        m_failed = U_FAILURE(status);
    }

    // Limits for arbitrary input: element visits in all, and the ICU time limit of one match
    // (roughly milliseconds). Beyond them the result is Inconclusive.
    void setLimits(qint64 maximumVisits, int32_t matchTimeLimit)
    {
        m_maximumVisits = maximumVisits;
        m_matchTimeLimit = matchTimeLimit;
    }

    Result resolve()
    {
        for (;;) {
            if (m_failed)
                return Result::Inconclusive;
            bool allResolved = true;
            bool changed = false;
            for (Element &element : m_elements) {
                if (isResolved(element))
                    continue;
                allResolved = false;
                if (!isParentResolved(element))
                    continue;
                if (++m_visits > m_maximumVisits)
                    return Result::Inconclusive;
                changed = resolveElement(element) || changed;
                if (m_failed)
                    return Result::Inconclusive;
            }
            ++m_passes;
            if (allResolved)
                return Result::Resolved;
            if (!changed)
                return Result::Unresolved;
        }
    }

    const std::vector<Element> &elements() const { return m_elements; }
    int passes() const { return m_passes; }

    bool isNumeric(const QString &text)
    {
        const icu::UnicodeString input(false, reinterpret_cast<const UChar *>(text.utf16()),
                                       int32_t(text.size()));
        UErrorCode status = U_ZERO_ERROR;
        std::unique_ptr<icu::RegexMatcher> matcher(m_numeric->matcher(input, status));
        const bool matches = matcher->matches(status);
        if (U_FAILURE(status))
            m_failed = true;
        return matches;
    }

private:
    bool isResolved(Element &element)
    {
        for (const auto &value : element.values) {
            if (value && !isNumeric(*value))
                return false;
        }
        return true;
    }

    bool isParentResolved(Element &element)
    {
        if (element.parent == -1)
            return isNumeric(m_baseWidth) && isNumeric(m_baseHeight);
        if (element.parent < 0)
            return false;
        return isResolved(m_elements[size_t(element.parent)]);
    }

    const QString &parentValue(const Element &element, int attribute) const
    {
        if (element.parent == -1)
            return attribute == 3 ? m_baseHeight : m_baseWidth;
        return *m_elements[size_t(element.parent)].values[size_t(attribute)];
    }

    // True when some string changed.
    bool resolveElement(Element &element)
    {
        bool changed = false;
        for (int attribute = 0; attribute < 4; ++attribute) {
            const auto &value = element.values[size_t(attribute)];
            if (!value || isNumeric(*value))
                continue;
            const QString before = *value;
            resolveAttribute(element, attribute);
            changed = changed || *element.values[size_t(attribute)] != before;
        }
        return changed;
    }

    void resolveAttribute(Element &element, int attribute)
    {
        resolvePercentages(element, attribute);
        if (resolveReferences(element, attribute))
            resolveExpression(element, attribute);
    }

    void resolvePercentages(Element &element, int attribute)
    {
        const int base = (attribute == 3 || attribute == 1) ? 3 : 2;
        const QString parent = parentValue(element, base);
        QString value = *element.values[size_t(attribute)];
        for (;;) {
            const icu::UnicodeString input(false, reinterpret_cast<const UChar *>(value.utf16()),
                                           int32_t(value.size()));
            UErrorCode status = U_ZERO_ERROR;
            std::unique_ptr<icu::RegexMatcher> matcher(m_percentage->matcher(input, status));
            matcher->setTimeLimit(m_matchTimeLimit, status);
            const bool found = matcher->find(status);
            if (U_FAILURE(status)) {
                m_failed = true;
                return;
            }
            if (!found)
                break;
            const int32_t start = matcher->start(status);
            const int32_t end = matcher->end(status);
            const QString number = value.mid(start, end - start - 1);
            QString replacement;
            if (number == u"100")
                replacement = parent;
            else if (number == u"0")
                replacement = QString();
            else
                replacement = QStringLiteral("(%1 * %2)")
                                  .arg(OSTLayoutNumbers::twoDecimals(
                                           std::ceil(OSTLayoutNumbers::decimalValue(number)) / 100),
                                       parent);
            value.replace(start, end - start, replacement);
        }
        element.values[size_t(attribute)] = value;
    }

    bool resolveReferences(Element &element, int attribute)
    {
        const QString original = *element.values[size_t(attribute)];
        QString working = original;
        QStringList matches;
        {
            const icu::UnicodeString input(false, reinterpret_cast<const UChar *>(original.utf16()),
                                           int32_t(original.size()));
            UErrorCode status = U_ZERO_ERROR;
            std::unique_ptr<icu::RegexMatcher> matcher(m_reference->matcher(input, status));
            matcher->setTimeLimit(m_matchTimeLimit, status);
            while (matcher->find(status)) {
                const int32_t start = matcher->start(status);
                matches.append(original.mid(start, matcher->end(status) - start));
            }
            if (U_FAILURE(status)) {
                m_failed = true;
                return false;
            }
        }
        // The manager's safety limit for formulas with nested braces (see OSTLayoutManager).
        bool nested = false;
        for (qsizetype index = 0, open = 0; index < original.size(); ++index) {
            if (original.at(index) == u'{') {
                nested = nested || open;
                open = 1;
            } else if (original.at(index) == u'}') {
                open = 0;
            }
        }
        if (nested
            && qint64(matches.size()) * original.size() > OSTLayoutResolver::maximumReplacementWork)
            return false;
        bool allAvailable = true;
        for (const QString &match : matches) {
            const QStringList parts = match.mid(1, match.size() - 2).split(u'.');
            const int position = m_index.value(parts.at(0), -1);
            if (position < 0) {
                working.replace(match, QStringLiteral("0"));
                continue;
            }
            const Element &referenced = m_elements[size_t(position)];
            const int index = OSTLayoutElement::attributeIndex(parts.at(1));
            const bool resolved = index >= 0 && referenced.values[size_t(index)]
                && isNumeric(*referenced.values[size_t(index)]);
            if (resolved)
                working.replace(match, *referenced.values[size_t(index)]);
            else
                allAvailable = false;
        }
        if (!allAvailable) {
            element.values[size_t(attribute)] = working;
            return false;
        }
        static const char16_t *const names[] = {u"x", u"y", u"width", u"height"};
        for (int own = 0; own < 4; ++own) {
            const QString name = QString::fromUtf16(names[own]);
            if (!working.contains(name))
                continue;
            const auto &value = element.values[size_t(own)];
            if (value && isNumeric(*value))
                working.replace(name, *value);
            else
                allAvailable = false;
        }
        working.replace(QStringLiteral("statusBar"), m_statusBar);
        element.values[size_t(attribute)] = working;
        return allAvailable;
    }

    // NSString integerValue: white space, an optional sign, digits; saturating.
    static qint64 integerValue(const QString &text)
    {
        qsizetype index = 0;
        while (index < text.size() && text.at(index).isSpace())
            ++index;
        bool negative = false;
        if (index < text.size() && (text.at(index) == u'-' || text.at(index) == u'+'))
            negative = text.at(index++) == u'-';
        qint64 value = 0;
        for (; index < text.size() && text.at(index) >= u'0' && text.at(index) <= u'9'; ++index) {
            const int digit = text.at(index).unicode() - u'0';
            if (value > (std::numeric_limits<qint64>::max() - digit) / 10)
                return negative ? std::numeric_limits<qint64>::min()
                                : std::numeric_limits<qint64>::max();
            value = value * 10 + digit;
        }
        return negative ? -value : value;
    }

    void resolveExpression(Element &element, int attribute)
    {
        const QString value = *element.values[size_t(attribute)];
        if (isNumeric(value))
            return; // a value that is already a number is kept as it is
        if (QString::number(integerValue(value)) == value)
            return;
        const std::optional<double> result = OSTLayoutExpression::evaluate(value);
        if (!result || std::isnan(*result) || *result >= 9223372036854775808.0
            || *result < -9223372036854775808.0)
            return;
        const QString integer = QString::number(qint64(*result));
        if (integer != value)
            element.values[size_t(attribute)] = integer;
    }

    std::vector<Element> m_elements;
    QHash<QString, int> m_index;
    QString m_baseWidth;
    QString m_baseHeight;
    QString m_statusBar;
    std::unique_ptr<icu::RegexPattern> m_percentage;
    std::unique_ptr<icu::RegexPattern> m_reference;
    std::unique_ptr<icu::RegexPattern> m_numeric;
    qint64 m_maximumVisits = std::numeric_limits<qint64>::max();
    int32_t m_matchTimeLimit = 0;
    qint64 m_visits = 0;
    int m_passes = 0;
    bool m_failed = false;
};

} // namespace ostrel::test
