// The layout manager visits only the elements whose next visit can change something, instead
// of every element on every pass. These tests show that it ends with exactly the strings and
// the result of straightforward full-pass resolution (fuzz/OSTLayoutReferenceResolution.h, which
// the layout fuzzer compares against on arbitrary screens) on seeded generated screens,
// including chains, groups, cycles, self-references, negative results and broken formulas.

#include "OSTLayoutReferenceResolution.h"
#include "OSTLayoutTestSupport.h"

#include "layout/OSTLayoutCompiledFormulas.h"
#include "layout/OSTLayoutKeyIndex.h"
#include "layout/OSTLayoutManager.h"
#include "screen/OSTScreenDocument.h"

#include <QJsonDocument>
#include <QStringList>
#include <QVariantList>

#include <gtest/gtest.h>

#include <random>

using namespace ostrel;
using namespace ostrel::test;
using namespace Qt::StringLiterals;

namespace {

using Reference = OSTLayoutReferenceResolution;

// Compares the manager (resolved) with the reference (resolved from the same start).
void expectSameResolution(OSTLayoutManager &manager, double statusBar, const QString &context)
{
    Reference reference(manager, statusBar);
    const Reference::Result expected = reference.resolve();
    ASSERT_NE(expected, Reference::Result::Inconclusive) << context.toStdString();
    const bool resolved = manager.resolveLayout();
    ASSERT_EQ(resolved, expected == Reference::Result::Resolved) << context.toStdString();
    for (const Reference::Element &element : reference.elements()) {
        const auto actual = manager.elements().value(element.key);
        ASSERT_TRUE(actual);
        for (int index = 0; index < 4; ++index) {
            const QString &name =
                OSTLayoutElement::attributeName(OSTLayoutElement::Attribute(index));
            ASSERT_EQ(actual->valueOfAttribute(name), element.values[size_t(index)])
                << element.key.toStdString() << "." << name.toStdString() << " in "
                << context.toStdString();
        }
    }
}

// Counts the formulas of the screen that compile and those left to the string path.
void countFormulas(const QVariantMap &screen, int &compiled, int &textual)
{
    const OSTLayoutManager manager(*OSTScreenDocument::fromLayout(screen), QRectF(0, 0, 375, 667), 20);
    const QStringList keys = manager.elements().keys();
    const OSTLayoutKeyIndex index(keys);
    OSTLayoutCompiledFormulas formulas(index, u"20.00"_s);
    for (const auto &element : manager.elements()) {
        for (const OSTLayoutElement::Attribute attribute : OSTLayoutElement::allAttributes) {
            if (!element->isAttributeResolved(attribute))
                (formulas.compile(0, attribute, element->value(attribute)) ? compiled : textual)++;
        }
    }
}

// Random screens. A tidy screen refers only to elements generated before (in an order that
// the table does not follow) and to own attributes that cannot form a loop, adds and
// multiplies only (signs come in pairs), and so mostly resolves; an untidy one also has
// cycles, self-references, unknown attribute names, negative numbers and broken formulas.
// Both nest brackets, negate, compute with "statusBar" and own attributes, and chain through
// groups: members stacked below each other inside a group, groups stacked below each other.
class ScreenGenerator {
public:
    explicit ScreenGenerator(unsigned seed) : m_random(seed) {}

    QVariantMap screen(bool tidy)
    {
        m_tidy = tidy;
        const int count = 2 + pick(24);
        m_keys.clear();
        static const QString categories[] = {u"shapes"_s, u"images"_s, u"labels"_s, u"inputs"_s,
                                             u"buttons"_s};
        QVariantMap screen;
        m_lastGroup.clear();
        for (int index = 0; index < count; ++index) {
            const QString key =
                pick(5) ? u"e%1"_s.arg(pick(40)) : QStringLiteral("group%1").arg(pick(4));
            const QString &category = categories[pick(5)];
            QVariantMap objects = screen.value(category).toMap();
            objects.insert(key, element());
            screen.insert(category, objects);
            m_keys.append(key);
        }
        QVariantMap groups;
        for (int group = pick(4); group > 0; --group) {
            QVariantMap object = element();
            QVariantList members;
            for (int member = pick(5); member > 0; --member)
                members.append(pick(6) ? m_keys.at(pick(m_keys.size()))
                                       : QStringLiteral("group%1").arg(pick(4)));
            const QString key = QStringLiteral("group%1").arg(pick(4));
            if (pick(2))
                chainThroughGroup(screen, object, members, key);
            object.insert(u"elements"_s, members);
            groups.insert(key, object);
            m_keys.append(key);
        }
        if (!groups.isEmpty())
            screen.insert(u"groups"_s, groups);
        return screen;
    }

private:
    int pick(qsizetype bound) { return int(m_random() % quint32(bound)); }

    // Members placed one below the other inside the group, and the group placed below the
    // last member of the screen's previous such group.
    void chainThroughGroup(QVariantMap &screen, QVariantMap &group, QVariantList &members,
                           const QString &groupKey)
    {
        QString previous;
        for (int member = 1 + pick(4); member > 0; --member) {
            const QString key = QStringLiteral("%1m%2").arg(groupKey).arg(member);
            const QString y = previous.isEmpty()
                ? QStringLiteral("statusBar * %1 - %1 * statusBar").arg(pick(3))
                : u"{"_s + previous + u".y} + {"_s + previous + u".height} + "_s
                    + QString::number(pick(9));
            QVariantMap object{{u"y"_s, y},
                               {u"height"_s, pick(2) ? u"-(-(width / 4))"_s : u"10% + 2"_s},
                               {u"x"_s, pick(2) ? u"(100% - width) / 2"_s : u"- -8"_s},
                               {u"width"_s, pick(3) ? u"((90%))"_s : u"100% - (2 * 8)"_s}};
            QVariantMap objects = screen.value(u"labels"_s).toMap();
            objects.insert(key, object);
            screen.insert(u"labels"_s, objects);
            members.append(key);
            previous = key;
        }
        group.insert(u"height"_s, u"(30% + statusBar)"_s);
        if (!m_lastGroup.isEmpty() && m_lastGroup != groupKey)
            group.insert(u"y"_s, u"{"_s + m_lastGroup + u".y} + {"_s + m_lastMember + u".y} + {"_s
                                     + m_lastMember + u".height}"_s);
        m_lastGroup = groupKey;
        m_lastMember = previous;
    }

    QVariantMap element()
    {
        QVariantMap object;
        for (int attribute = 0; attribute < 4; ++attribute) {
            if (pick(5)) {
                m_attribute = attribute;
                object.insert(
                    OSTLayoutElement::attributeName(OSTLayoutElement::Attribute(attribute)),
                    formula(0));
            }
        }
        return object;
    }

    QString reference()
    {
        static const QString attributes[] = {u"x"_s, u"y"_s, u"width"_s, u"height"_s, u"colour"_s};
        if (m_tidy && m_keys.isEmpty())
            return u"{missing.x}"_s;
        const QString key =
            pick(8) && !m_keys.isEmpty() ? m_keys.at(pick(m_keys.size())) : u"missing"_s;
        return u'{' + key + u'.' + attributes[pick(m_tidy || pick(10) ? 4 : 5)] + u'}';
    }

    QString ownAttribute()
    {
        // Tidy: width uses nothing, height uses width, x and y use width and height.
        static const QString names[] = {u"x"_s, u"y"_s, u"width"_s, u"height"_s};
        if (!m_tidy)
            return pick(5) ? names[pick(4)] : u"statusBar"_s;
        switch (m_attribute) {
        case OSTLayoutElement::Width:
            return u"statusBar"_s;
        case OSTLayoutElement::Height:
            return pick(2) ? u"width"_s : u"statusBar"_s;
        default:
            return pick(3) ? names[2 + pick(2)] : u"statusBar"_s;
        }
    }

    QString operand()
    {
        static const QString numbers[] = {u"0"_s, u"10"_s,  u"12.5"_s, u"007"_s,
                                          u"3"_s, u"200"_s, u".5"_s};
        static const QString percentages[] = {u"50%"_s, u"33.3%"_s, u"100%"_s,
                                              u"0%"_s,  u"%"_s,     u"150%"_s,
                                              u"10%"_s, u"25.5%"_s, u"199.99%"_s};
        static const QString odd[] = {
            u"-5"_s,           u"{a.{b.x}.y}"_s,        u"10%0%"_s, u"1e2"_s, u"100%%"_s,
            u"{e1.x}{e1.x}"_s, u"(100% - width) / 2"_s, u"5.5.5"_s};
        switch (pick(m_tidy ? 18 : 20)) {
        case 0:
        case 1:
        case 2:
        case 3:
        case 4:
        case 5:
            return numbers[pick(7)];
        case 6:
        case 7:
        case 8:
        case 9:
            return percentages[pick(m_tidy ? 3 : 9)];
        case 10:
        case 11:
        case 12:
        case 13:
        case 14:
        case 15:
            return reference();
        case 16:
        case 17:
            return ownAttribute();
        default:
            return odd[pick(8)];
        }
    }

    // An operand, sometimes negated: twice (in all spellings) on a tidy screen.
    QString signedOperand(int depth)
    {
        QString text = depth < 3 && !pick(4) ? u'(' + formula(depth + 1) + u')' : operand();
        switch (pick(8)) {
        case 0:
            return u"-(-"_s + text + u')';
        case 1:
            return u"- -"_s + text;
        case 2:
            return m_tidy ? u"--"_s + text : u'-' + text;
        default:
            return text;
        }
    }

    QString formula(int depth)
    {
        static const QString operators[] = {u" + "_s, u" * "_s, u" - "_s, u" / "_s, u"+"_s,
                                            u"*"_s,  u"-"_s};
        QString text = signedOperand(depth);
        for (int more = pick(depth ? 2 : 4); more > 0; --more)
            text += operators[m_tidy ? (pick(2) ? pick(2) : 5) : pick(7)] + signedOperand(depth);
        return text;
    }

    std::mt19937 m_random;
    QStringList m_keys;
    bool m_tidy = false;
    int m_attribute = 0;
    QString m_lastGroup;
    QString m_lastMember;
};

} // namespace

TEST(LayoutEquivalence, GeneratedScreensResolveAsPassByPassResolutionDoes)
{
    ScreenGenerator generator(20240501);
    int resolved = 0;
    int unresolved = 0;
    int compiled = 0;
    int textual = 0;
    for (int round = 0; round < 5000; ++round) {
        const QVariantMap screen = generator.screen(round % 2 == 0);
        const double statusBar = round % 3 ? 20.0 : 24.5;
        OSTLayoutManager manager(*OSTScreenDocument::fromLayout(screen), QRectF(0, 0, round % 4 < 2 ? 375 : 320.5, 667), statusBar);
        const QString context =
            QString::fromUtf8(QJsonDocument::fromVariant(screen).toJson(QJsonDocument::Compact));
        const bool before = !HasFatalFailure();
        expectSameResolution(manager, statusBar, context);
        if (HasFatalFailure() && before)
            return;
        bool all = true;
        for (const auto &element : manager.elements())
            all = all && element->isResolved();
        (all ? resolved : unresolved)++;
        countFormulas(screen, compiled, textual);
    }
    // Both ways of resolving an attribute must be exercised, the compiled one most.
    EXPECT_GT(compiled, 20000);
    EXPECT_GT(textual, 5000);
    // The generator must exercise both outcomes.
    EXPECT_GT(resolved, 600);
    EXPECT_GT(unresolved, 600);
}

TEST(LayoutEquivalence, ChangesAreSeenInTheSamePassAsInFullPasses)
{
    // Usually only the number of passes depends on when an element sees a change; here the
    // result does. "{p{a.x}.x}" becomes the reference "{p1.x}" once a.x is 1. If b.x is still
    // unresolved in that visit, the formula is kept and "{p1.x}" is read as a reference (3) on
    // the next visit; if b.x is resolved too, the own attribute "x" is substituted first and
    // "{p1.7}" never resolves. a.x resolves in pass 2 and b.x in pass 3, both before "e" in
    // the table: a full pass 2 visits "e" after a.x resolved, and so must the manager.
    const char *screen = R"({"shapes": {
        "e": {"x": "7", "width": "1", "height": "1", "y": "{p{a.x}.x} + {b.x}"}, "p1": {"x": "3"},
        "a": {"x": "{za.x}"}, "za": {"x": "1 + 0"},
        "b": {"x": "{zb.x}"}, "zb": {"x": "{zc.x}"}, "zc": {"x": "2 + 3"}}})";
    OSTLayoutManager manager = layoutManager(screen);
    expectSameResolution(manager, 20, QString::fromUtf8(screen));
    EXPECT_EQ(layoutValue(manager, u"e"_s, u"y"_s), u"8"_s);

    // The same with the element first in the table: it sees each change one pass later.
    const char *first = R"({"shapes": {
        "0e": {"x": "7", "width": "1", "height": "1", "y": "{p{a.x}.x} + {b.x}"}, "p1": {"x": "3"},
        "a": {"x": "{za.x}"}, "za": {"x": "1 + 0"},
        "b": {"x": "{zb.x}"}, "zb": {"x": "{zc.x}"}, "zc": {"x": "2 + 3"}}})";
    OSTLayoutManager later = layoutManager(first);
    expectSameResolution(later, 20, QString::fromUtf8(first));
    EXPECT_EQ(layoutValue(later, u"0e"_s, u"y"_s), u"8"_s);

    // And with b.x available in the same visit as a.x.
    const char *together = R"({"shapes": {
        "e": {"x": "7", "width": "1", "height": "1", "y": "{p{a.x}.x} + {b.x}"}, "p1": {"x": "3"},
        "a": {"x": "{za.x}"}, "za": {"x": "1 + 0"}, "b": {"x": "{zb.x}"}, "zb": {"x": "2 + 3"}}})";
    OSTLayoutManager same = layoutManager(together);
    expectSameResolution(same, 20, QString::fromUtf8(together));
    EXPECT_EQ(layoutValue(same, u"e"_s, u"y"_s), u"{p1.7} + 5"_s);
}
