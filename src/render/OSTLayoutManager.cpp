#include "render/OSTLayoutManager.h"

#include "core/OSTDictionaryHelpers.h"
#include "core/OSTLogging.h"
#include "platform/OSTDeviceScreen.h"
#include "render/OSTLayoutExpression.h"
#include "render/OSTLayoutNumbers.h"
#include "render/OSTLayoutPatterns.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <functional>
#include <queue>

#include <QVarLengthArray>

namespace ostrel {

namespace {

using Attribute = OSTLayoutElement::Attribute;

constexpr Attribute kAttributes[] = {OSTLayoutElement::X, OSTLayoutElement::Y,
                                     OSTLayoutElement::Width, OSTLayoutElement::Height};

bool isDigitOrPoint(char16_t c)
{
    return (c >= u'0' && c <= u'9') || c == u'.';
}

// The value of an attribute while one resolution step after another rewrites it: a local
// buffer, so that the rewriting costs no allocation; the result is stored as a string once.
class Formula {
public:
    QStringView view() const { return QStringView(m_text.constData(), m_text.size()); }
    qsizetype size() const { return m_text.size(); }
    char16_t operator[](qsizetype index) const { return m_text[index]; }

    void clear() { m_text.clear(); }
    void truncate(qsizetype size) { m_text.resize(size); }
    // `text` must not be a view of this formula.
    void append(QStringView text) { m_text.append(text.utf16(), text.size()); }
    void assign(QStringView text)
    {
        m_text.clear();
        append(text);
    }
    // Becomes a copy of `other`, whose contents are not needed any more.
    void takeFrom(const Formula &other) { m_text = other.m_text; }

    // The first occurrence of `needle` at or after `from`, or -1. Occurrences of a text that
    // begins with a character it does not contain again cannot overlap, so for the brace
    // texts of references this costs at most one comparison per character.
    qsizetype find(QStringView needle, qsizetype from = 0) const
    {
        const qsizetype last = m_text.size() - needle.size();
        const char16_t first = needle.front().unicode();
        for (; from <= last; ++from) {
            if (m_text[from] == first && view().sliced(from, needle.size()) == needle)
                return from;
        }
        return -1;
    }

    // Every occurrence of `needle`, left to right without overlap, as QString::replace and
    // the platform's replacing of occurrences do, in one pass. `with` must not be a view of
    // this formula.
    void replaceAll(QStringView needle, QStringView with)
    {
        qsizetype found = find(needle);
        if (found < 0)
            return;
        QVarLengthArray<char16_t, 160> result;
        qsizetype copied = 0;
        while (found >= 0) {
            result.append(m_text.constData() + copied, found - copied);
            result.append(with.utf16(), with.size());
            copied = found + needle.size();
            found = find(needle, copied);
        }
        result.append(m_text.constData() + copied, m_text.size() - copied);
        m_text = result;
    }

private:
    QVarLengthArray<char16_t, 160> m_text;
};

// What one look at a formula tells the steps: which of the characters they act on occur at all.
// The steps only remove such characters or add digits, points, operators and the letters of
// "inf" and "nan", so what the look finds stays true (or at worst says "maybe") throughout.
struct FormulaTraits {
    bool percent = false;
    bool brace = false;
    // Some "{" is followed by another "{" before a "}": only then can replacing one reference
    // complete another one around it.
    bool nestedBrace = false;
    // The first letters of "x", "y", "width", "height" and "statusBar", in that order.
    bool letters[5] = {};

    static FormulaTraits of(QStringView text)
    {
        FormulaTraits traits;
        unsigned seen = 0;
        bool open = false;
        for (const QChar c : text) {
            const char16_t code = c.unicode();
            if (code >= 128)
                continue;
            const unsigned flag = kFlags[code];
            seen |= flag;
            if (flag & (OpenBrace | CloseBrace)) {
                traits.nestedBrace = traits.nestedBrace || (open && (flag & OpenBrace));
                open = flag & OpenBrace;
            }
        }
        traits.percent = seen & Percent;
        traits.brace = seen & OpenBrace;
        for (int letter = 0; letter < 5; ++letter)
            traits.letters[letter] = seen & (LetterX << letter);
        return traits;
    }

private:
    enum Flag : unsigned {
        Percent = 1,
        OpenBrace = 2,
        CloseBrace = 4,
        LetterX = 8, // then y, w, h, s
    };
    static constexpr auto kFlags = [] {
        std::array<unsigned, 128> flags{};
        flags[u'%'] = Percent;
        flags[u'{'] = OpenBrace;
        flags[u'}'] = CloseBrace;
        flags[u'x'] = LetterX;
        flags[u'y'] = LetterX << 1;
        flags[u'w'] = LetterX << 2;
        flags[u'h'] = LetterX << 3;
        flags[u's'] = LetterX << 4;
        return flags;
    }();
};

// Resolution of one element: its attributes in the order x, y, width, height, each through the
// percentage, reference and expression steps. Besides resolving, it reports whether any attribute
// string changed and which elements' attributes it found unresolved, which is what the pass
// scheduler of resolveLayout() needs.
class Resolver {
public:
    Resolver(const std::vector<OSTLayoutElement *> &table, const QStringList &keys,
             const QString &statusBarText)
        : m_table(table), m_keys(keys), m_statusBarText(statusBarText)
    {
        indexKeys();
    }

    struct Outcome {
        bool changed = false;       // some attribute string changed
        bool newlyResolved = false; // some attribute became resolved
    };

    // Resolves the element's unresolved attributes in order; its parent is resolved.
    Outcome resolveElement(OSTLayoutElement &element, const OSTLayoutElement &parent)
    {
        m_changed = false;
        m_awaited.clear();
        bool newlyResolved = false;
        for (const Attribute attribute : kAttributes) {
            if (!element.hasAttribute(attribute) || element.isAttributeResolved(attribute))
                continue;
            resolveAttribute(element, attribute, parent);
            newlyResolved = newlyResolved || element.isAttributeResolved(attribute);
        }
        return Outcome{m_changed, newlyResolved};
    }

    // Positions of the elements whose unresolved attributes the last resolveElement() needed.
    const std::vector<int> &awaited() const { return m_awaited; }

private:
    // The steps rewrite a local copy of the value, which is stored once, after the last step
    // that ran: the same string as storing it after every step. (A step reads
    // the stored value of its own attribute only to see whether it is resolved, and the value
    // of an attribute being resolved cannot be a number while it still holds a name or a
    // reference.)
    void resolveAttribute(OSTLayoutElement &element, Attribute attribute,
                          const OSTLayoutElement &parent)
    {
        Formula &value = m_value;
        value.assign(element.value(attribute));
        const FormulaTraits traits = FormulaTraits::of(value.view());
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
    bool resolvePercentages(Formula &value, Attribute attribute, const OSTLayoutElement &parent)
    {
        const QStringView input = value.view();
        const Attribute base =
            (attribute == OSTLayoutElement::Height || attribute == OSTLayoutElement::Y)
            ? OSTLayoutElement::Height
            : OSTLayoutElement::Width;
        const QString &parentValue = parent.value(base);

        Formula &output = m_scratch;
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
            const QStringView number = output.view().sliced(match.start, match.length - 1);
            QStringView replacement;
            if (number == u"100") {
                replacement = parentValue;
            } else if (number != u"0") {
                // "(%.2f * %@)"
                const double wholePercent = std::ceil(OSTLayoutNumbers::decimalValue(number));
                m_replacement.clear();
                m_replacement.append(u'(');
                appendHundredths(wholePercent);
                m_replacement.append(u" * ", 3);
                m_replacement.append(reinterpret_cast<const char16_t *>(parentValue.constData()),
                                     parentValue.size());
                m_replacement.append(u')');
                replacement = QStringView(m_replacement.constData(), m_replacement.size());
            }
            output.truncate(match.start);
            output.append(replacement);

            from = match.start;
            const char16_t next = !replacement.isEmpty() ? replacement.front().unicode()
                : position < input.size()                ? input[position].unicode()
                                                         : u'\0';
            if (isDigitOrPoint(next) || next == u'%')
                from = 0;
        }
        value.takeFrom(output);
        return true;
    }

    // "%.2f" of percent / 100. For a whole percent below 10^12 the nearest double to
    // percent / 100 lies far closer than half a hundredth to it, so the digits are those of
    // the integer itself.
    void appendHundredths(double percent)
    {
        if (percent >= 0 && percent < 1e12) {
            const auto whole = qint64(percent);
            char16_t digits[24];
            const qsizetype length = OSTLayoutNumbers::writeInteger(whole / 100, digits);
            m_replacement.append(digits, length);
            m_replacement.append(u'.');
            m_replacement.append(char16_t(u'0' + whole % 100 / 10));
            m_replacement.append(char16_t(u'0' + whole % 10));
            return;
        }
        char digits[400];
        const qsizetype length =
            OSTLayoutNumbers::writeTwoDecimals(percent / 100.0, digits, sizeof digits);
        for (qsizetype index = 0; index < length; ++index)
            m_replacement.append(char16_t(digits[index]));
    }

    // Step 2, with the own attributes and "statusBar". True when everything was available.
    bool resolveReferences(Formula &working, const OSTLayoutElement &element,
                           const FormulaTraits &traits)
    {
        bool allAvailable = true;

        if (traits.brace) {
            // The matches are those of the value as it stood at the start of this step.
            m_original.assign(working.view());
            const QStringView original = m_original.view();
            std::vector<OSTLayoutPatterns::Match> &matches = m_matches;
            if (!OSTLayoutPatterns::findReferences(original, matches))
                return false;

            // Each match's text has every occurrence replaced, match after match. Without nested
            // braces no replacement can complete another reference, so the occurrences of
            // the texts are exactly the matches, and one pass over them gives the same text.
            // With nested braces the replacements are made in turn, within a limit of work that no
            // real formula comes near.
            const bool nested = traits.nestedBrace;
            if (nested
                && qint64(matches.size()) * original.size()
                    > OSTLayoutManager::maximumReplacementWork)
                return false;
            Formula &output = m_scratch;
            output.clear();
            qsizetype copied = 0;
            for (const OSTLayoutPatterns::Match &match : matches) {
                const QStringView text = original.sliced(match.start, match.length);
                // "{key.attribute...}": the pattern guarantees non-empty parts between points.
                const QStringView inner = text.sliced(1, text.size() - 2);
                const qsizetype firstPoint = OSTLayoutPatterns::indexOf(inner, u'.');
                const QStringView key = inner.first(firstPoint);
                QStringView name = inner.sliced(firstPoint + 1);
                const qsizetype secondPoint = OSTLayoutPatterns::indexOf(name, u'.');
                if (secondPoint >= 0)
                    name = name.first(secondPoint);

                QStringView replacement = text; // unavailable: stays
                const int position = positionOfKey(key);
                if (position < 0) {
                    replacement = u"0";
                } else {
                    const OSTLayoutElement &referenced = *m_table[size_t(position)];
                    const int index = OSTLayoutElement::attributeIndex(name);
                    if (index >= 0 && referenced.isAttributeResolved(Attribute(index))) {
                        replacement = referenced.value(Attribute(index));
                    } else {
                        allAvailable = false;
                        m_awaited.push_back(position);
                    }
                }
                if (nested) {
                    if (replacement.data() != text.data())
                        working.replaceAll(text, replacement);
                } else {
                    output.append(original.sliced(copied, match.start - copied));
                    output.append(replacement);
                    copied = match.start + match.length;
                }
            }
            if (!nested) {
                output.append(original.sliced(copied));
                working.takeFrom(output);
            }
            if (!allAvailable)
                return false;
        }

        // Own attributes and "statusBar", found by substring, where their first letter occurs.
        const bool *letters = traits.letters;
        for (const Attribute own : kAttributes) {
            if (!letters[own])
                continue;
            const QString &name = OSTLayoutElement::attributeName(own);
            if (working.find(name) < 0)
                continue;
            if (element.isAttributeResolved(own))
                working.replaceAll(name, element.value(own));
            else
                allAvailable = false;
        }

        if (letters[4])
            working.replaceAll(u"statusBar", m_statusBarText);
        return allAvailable;
    }

    // Step 3.
    static void resolveExpression(Formula &value)
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
        if (!result || !(*result >= -9223372036854775808.0 && *result < 9223372036854775808.0))
            return;
        char16_t digits[24];
        const qsizetype length =
            OSTLayoutNumbers::writeInteger(static_cast<qint64>(*result), digits);
        value.assign(QStringView(digits, length));
    }

    // An open-addressing hash index of the keys, so that a reference's key is found from a view
    // of the formula, without making a string of it.
    void indexKeys()
    {
        size_t slotCount = 16;
        while (slotCount < size_t(m_keys.size()) * 2)
            slotCount *= 2;
        m_keySlots.assign(slotCount, -1);
        for (qsizetype position = 0; position < m_keys.size(); ++position) {
            size_t slot = hashOf(m_keys.at(position)) & (slotCount - 1);
            while (m_keySlots[slot] >= 0)
                slot = (slot + 1) & (slotCount - 1);
            m_keySlots[slot] = int(position);
        }
    }

    // FNV-1a over the UTF-16 code units: keys are short, and the index lives for one resolution.
    static size_t hashOf(QStringView key)
    {
        std::uint64_t hash = 14695981039346656037ull;
        for (const QChar c : key) {
            hash ^= c.unicode();
            hash *= 1099511628211ull;
        }
        return size_t(hash);
    }

    // The table's position of a key, or -1.
    int positionOfKey(QStringView key) const
    {
        const size_t mask = m_keySlots.size() - 1;
        for (size_t slot = hashOf(key) & mask; m_keySlots[slot] >= 0; slot = (slot + 1) & mask) {
            if (QStringView(m_keys.at(m_keySlots[slot])) == key)
                return m_keySlots[slot];
        }
        return -1;
    }

    const std::vector<OSTLayoutElement *> &m_table;
    const QStringList &m_keys;
    std::vector<int> m_keySlots;
    const QString &m_statusBarText;
    bool m_changed = false;
    std::vector<int> m_awaited;
    std::vector<OSTLayoutPatterns::Match> m_matches;
    Formula m_value;
    Formula m_original;
    Formula m_scratch;
    QVarLengthArray<char16_t, 64> m_replacement;
};

QString shortened(const QString &text)
{
    constexpr qsizetype limit = 120;
    return text.size() <= limit ? text : text.left(limit) + QStringLiteral("...");
}

} // namespace

OSTLayoutManager::OSTLayoutManager(const QVariantMap &layout)
    : OSTLayoutManager(layout, screenBounds(), OSTDeviceScreen::statusBarHeight())
{
}

OSTLayoutManager::OSTLayoutManager(const QVariantMap &layout, const QRectF &screenBounds,
                                   double statusBarHeight)
    : m_statusBarHeight(statusBarHeight)
{
    build(layout, screenBounds);
}

OSTLayoutManager::~OSTLayoutManager() = default;

QRectF OSTLayoutManager::screenBounds()
{
    const QRectF bounds = OSTDeviceScreen::bounds();
    return QRectF(bounds.x(), bounds.y(), std::min(bounds.width(), bounds.height()),
                  std::max(bounds.width(), bounds.height()));
}

void OSTLayoutManager::build(const QVariantMap &layout, const QRectF &screenBounds)
{
    m_statusBarText = OSTLayoutNumbers::twoDecimals(m_statusBarHeight);
    m_baseElement = std::make_shared<OSTLayoutElement>();
    m_baseElement->setValue(OSTLayoutNumbers::twoDecimals(screenBounds.width()),
                            OSTLayoutElement::Width);
    m_baseElement->setValue(OSTLayoutNumbers::twoDecimals(screenBounds.height()),
                            OSTLayoutElement::Height);

    const auto isObject = [](const QVariant &value) {
        return value.metaType() == QMetaType::fromType<QVariantMap>();
    };
    const auto makeElement = [this](const QVariant &object, qint64 defaultLayer) {
        auto element = std::make_shared<OSTLayoutElement>(object.toMap());
        element->setParent(m_baseElement);
        if (element->zLayer() < 0)
            element->setZLayer(defaultLayer);
        return element;
    };

    // The categories in key order: of two same-keyed elements of different categories, the
    // one of the later category ("shapes" last) stays.
    struct Category {
        QString key;
        qint64 zLayer;
    };
    static const Category categories[] = {
        {QStringLiteral("buttons"), 700}, {QStringLiteral("images"), 300},
        {QStringLiteral("inputs"), 600},  {QStringLiteral("labels"), 500},
        {QStringLiteral("shapes"), 200},
    };
    ElementTable table;
    for (const Category &category : categories) {
        const std::optional<QVariantMap> objects = ost_dictionaryForKey(layout, category.key);
        if (!objects)
            continue;
        for (auto entry = objects->constBegin(); entry != objects->constEnd(); ++entry) {
            if (isObject(entry.value()))
                table.insert(entry.key(), makeElement(entry.value(), category.zLayer));
        }
    }

    // Groups after all categories, in key order: an element listed in two groups ends in the
    // later one.
    static const QString groupsKey = QStringLiteral("groups");
    static const QString membersKey = QStringLiteral("elements");
    const QVariantMap groups = ost_dictionaryForKey(layout, groupsKey).value_or(QVariantMap());
    for (auto entry = groups.constBegin(); entry != groups.constEnd(); ++entry) {
        if (!isObject(entry.value()))
            continue;
        const auto group = makeElement(entry.value(), 400);
        table.insert(entry.key(), group);
        const QVariantMap object = entry.value().toMap();
        const QVariantList members = ost_arrayForKey(object, membersKey).value_or(QVariantList());
        for (const QVariant &member : members) {
            if (member.metaType() != QMetaType::fromType<QString>())
                continue;
            const auto found = table.constFind(member.toString());
            if (found != table.constEnd())
                found.value()->setParent(group);
        }
    }

    m_elements = std::move(table);
    m_table.reserve(size_t(m_elements.size()));
    m_tableKeys.reserve(m_elements.size());
    for (auto entry = m_elements.constBegin(); entry != m_elements.constEnd(); ++entry) {
        m_table.push_back(entry.value().get());
        m_tableKeys.append(entry.key());
        if (entry.value()->isAnchored())
            m_anchoredElementKeys.append(entry.key());
    }
    std::vector<int> order(m_table.size());
    for (size_t position = 0; position < order.size(); ++position)
        order[position] = int(position);
    std::stable_sort(order.begin(), order.end(), [this](int left, int right) {
        return m_table[size_t(left)]->zLayer() < m_table[size_t(right)]->zLayer();
    });
    m_elementKeysSortedByZLayer.reserve(m_tableKeys.size());
    for (const int position : order)
        m_elementKeysSortedByZLayer.append(m_tableKeys.at(position));
}

void OSTLayoutManager::updateLayout(const QVariantMap &layout, const QString &key)
{
    const auto found = m_elements.constFind(key);
    if (found == m_elements.constEnd() || found.value()->isResolved())
        return;
    const OSTLayoutElement update(layout);
    for (const Attribute attribute : kAttributes)
        found.value()->setValue(update.value(attribute), attribute);
}

// Resolution is defined as full passes over the table until a pass changes nothing. A chain of n
// references that the table visits last to first then takes n passes of n elements. Here each
// pass visits, in table order, only the elements whose next visit could change something:
//
//  - every unresolved element in the first pass;
//  - an element whose strings changed in a pass, again in the next pass;
//  - an element that found an attribute it needed unresolved (a referenced element's, or its
//    parent unresolved), when that element resolves an attribute: still in the same pass when
//    it comes later in the table, as in a full pass, otherwise in the next pass.
//
// Any other visit would repeat a visit that changed nothing, with the same strings of its own
// and the same inputs (resolved attributes never change again), so it would change nothing
// again. The passes therefore make the same changes in the same order as full passes, and end
// with the same strings.
bool OSTLayoutManager::resolveLayout()
{
    const int count = int(m_table.size());
    struct Node {
        std::shared_ptr<OSTLayoutElement> parent;
        int parentPosition = -1; // -1: the base element, or an element outside the table
        std::vector<int> waiters;
        int currentPass = 0;
        int nextPass = 0;
    };
    std::vector<Node> nodes(static_cast<size_t>(count));
    {
        std::vector<std::pair<const OSTLayoutElement *, int>> positions;
        positions.reserve(size_t(count));
        for (int position = 0; position < count; ++position)
            positions.emplace_back(m_table[size_t(position)], position);
        std::sort(positions.begin(), positions.end());
        for (int position = 0; position < count; ++position) {
            Node &node = nodes[size_t(position)];
            node.parent = m_table[size_t(position)]->parent();
            if (!node.parent || node.parent == m_baseElement)
                continue;
            const auto found = std::lower_bound(
                positions.begin(), positions.end(),
                std::make_pair(static_cast<const OSTLayoutElement *>(node.parent.get()), 0));
            if (found != positions.end() && found->first == node.parent.get())
                node.parentPosition = found->second;
        }
    }

    Resolver resolver(m_table, m_tableKeys, m_statusBarText);
    int pass = 1;
    std::priority_queue<int, std::vector<int>, std::greater<int>> current;
    std::vector<int> next;
    const auto scheduleCurrent = [&](int position) {
        Node &node = nodes[size_t(position)];
        if (node.currentPass != pass) {
            node.currentPass = pass;
            current.push(position);
        }
    };
    const auto scheduleNext = [&](int position) {
        Node &node = nodes[size_t(position)];
        if (node.nextPass != pass + 1) {
            node.nextPass = pass + 1;
            next.push_back(position);
        }
    };
    const auto await = [&](int awaited, int waiter) {
        std::vector<int> &waiters = nodes[size_t(awaited)].waiters;
        if (waiters.empty() || waiters.back() != waiter)
            waiters.push_back(waiter);
    };

    for (int position = 0; position < count; ++position) {
        if (!m_table[size_t(position)]->isResolved())
            scheduleCurrent(position);
    }
    while (!current.empty()) {
        while (!current.empty()) {
            const int position = current.top();
            current.pop();
            OSTLayoutElement &element = *m_table[size_t(position)];
            if (element.isResolved())
                continue;
            Node &node = nodes[size_t(position)];
            if (!node.parent || !node.parent->isResolved()) {
                if (node.parentPosition >= 0)
                    await(node.parentPosition, position);
                continue;
            }
            const Resolver::Outcome outcome = resolver.resolveElement(element, *node.parent);
            for (const int awaited : resolver.awaited())
                await(awaited, position);
            if (outcome.newlyResolved) {
                std::vector<int> waiters;
                waiters.swap(node.waiters);
                for (const int waiter : waiters) {
                    if (waiter > position)
                        scheduleCurrent(waiter);
                    else
                        scheduleNext(waiter);
                }
            }
            if (outcome.changed && !element.isResolved())
                scheduleNext(position);
        }
        ++pass;
        for (const int position : next) {
            nodes[size_t(position)].currentPass = pass;
            current.push(position);
        }
        next.clear();
    }

    // Name one element that stayed unresolved, preferably one that is stuck on its own
    // formulas rather than waiting for its parent.
    int stuck = -1;
    bool stuckWaitsForParent = true;
    for (int position = 0; position < count && stuckWaitsForParent; ++position) {
        if (m_table[size_t(position)]->isResolved())
            continue;
        const Node &node = nodes[size_t(position)];
        const bool waitsForParent = !node.parent || !node.parent->isResolved();
        if (stuck < 0 || !waitsForParent) {
            stuck = position;
            stuckWaitsForParent = waitsForParent;
        }
    }
    if (stuck < 0)
        return true;
    QString detail = QStringLiteral("its parent stayed unresolved");
    if (!stuckWaitsForParent) {
        const OSTLayoutElement &element = *m_table[size_t(stuck)];
        for (const Attribute attribute : kAttributes) {
            if (element.hasAttribute(attribute) && !element.isAttributeResolved(attribute)) {
                detail = QStringLiteral("\"%1\" is \"%2\"")
                             .arg(OSTLayoutElement::attributeName(attribute),
                                  shortened(element.value(attribute)));
                break;
            }
        }
    }
    OSTLogging::logDebug(
        QStringLiteral("Layout not resolved: element \"%1\" stayed unresolved (%2)"),
        shortened(m_tableKeys.at(stuck)), detail);
    return false;
}

QRectF OSTLayoutManager::frameForKey(const QString &key) const
{
    const auto found = m_elements.constFind(key);
    if (found == m_elements.constEnd())
        return QRectF(0, 0, 0, 0);
    return found.value()->frame();
}

} // namespace ostrel
