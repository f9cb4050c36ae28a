// One layout element built from an element frame, and the numeric predicate that
// decides when an attribute is resolved (checked against ICU's reading by the fuzzer).

#include "layout/OSTLayoutElement.h"

#include <gtest/gtest.h>

#include <memory>

using namespace ostrel;
using namespace Qt::StringLiterals;

TEST(LayoutElement, AFrameGivesItsFormulasAnchoringAndLayer)
{
    const OSTLayoutElement element(OSTElementFrame{u"0"_s, u"10"_s, u"100%"_s, u"50%"_s, false, 7});
    EXPECT_EQ(element.attributes(), (QMap<QString, QString>{{u"x"_s, u"0"_s}, {u"y"_s, u"10"_s},
                                                            {u"width"_s, u"100%"_s}, {u"height"_s, u"50%"_s}}));
    EXPECT_EQ(element.attributesResolved(),
              (QMap<QString, bool>{{u"x"_s, true}, {u"y"_s, true}, {u"width"_s, false}, {u"height"_s, false}}));
    EXPECT_FALSE(element.isAnchored());
    EXPECT_EQ(element.zLayer(), 7);
    EXPECT_FALSE(element.isResolved());
    EXPECT_EQ(element.frame(), QRectF());
    EXPECT_EQ(OSTLayoutElement(OSTElementFrame()).zLayer(), 0) << "no layer given";

    const OSTLayoutElement nil;
    EXPECT_TRUE(nil.attributes().isEmpty());
    EXPECT_TRUE(nil.isResolved()) << "no attribute is unresolved";
    EXPECT_FALSE(nil.isAnchored());
    EXPECT_FALSE(nil.isAttributeResolved(u"x"_s));
}

TEST(LayoutElement, SetValueRecordsWhetherTheValueIsResolvedAndTheParentIsWeak)
{
    OSTLayoutElement element(OSTElementFrame{u"1"_s, u"2"_s, u"3.5"_s, u"50%"_s, true, std::nullopt});
    EXPECT_FALSE(element.isResolved());
    element.setValue(u"4"_s, u"height"_s);
    EXPECT_TRUE(element.isResolved());
    EXPECT_EQ(element.frame(), QRectF(1, 2, 3.5, 4));

    element.setValue(u"-1"_s, u"x"_s);
    EXPECT_FALSE(element.isAttributeResolved(u"x"_s));
    EXPECT_FALSE(element.isResolved());
    EXPECT_EQ(element.frame(), QRectF());

    element.setValue(u"5"_s, u"depth"_s);
    EXPECT_FALSE(element.valueOfAttribute(u"depth"_s)) << "only the four frame attributes are kept";
    EXPECT_EQ(element.attributes().size(), 4);

    OSTLayoutElement screen;
    screen.setValue(u"375.00"_s, u"width"_s);
    screen.setValue(u"667.00"_s, u"height"_s);
    EXPECT_TRUE(screen.isResolved());
    EXPECT_EQ(screen.frame(), QRectF(0, 0, 375, 667)) << "missing x and y read 0";

    auto child = std::make_shared<OSTLayoutElement>();
    {
        auto parent = std::make_shared<OSTLayoutElement>();
        child->setParent(parent);
        EXPECT_EQ(child->parent(), parent);
    }
    EXPECT_EQ(child->parent(), nullptr) << "the parent is held weakly";
}

TEST(LayoutNumericString, AcceptsUnsignedDecimalNumbersOnly)
{
    for (const char *text : {"0", "007", "375.00", "1.5", "12345678901234567890123"})
        EXPECT_TRUE(OSTLayoutElement::isNumericString(QString::fromUtf8(text))) << text;
    for (const char *text : {"", ".", "1.", ".5", "-1", "+1", "1e3", " 1", "1 ", "1\n", "1.2.3",
                             "1,5", "١٢", "１", "(1)", "inf", "nan"})
        EXPECT_FALSE(OSTLayoutElement::isNumericString(QString::fromUtf8(text))) << text;
}
