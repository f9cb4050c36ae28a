// The switch element: its validity rules, its value, keyboard use and its pixels.

#include "widgets/OSTSwitch.h"
#include "model/OSTValidationItemModel.h"
#include "widgets/OSTSwitchControl.h"

#include "../model/OSTValidationTestFakes.h"
#include "OSTPixelTestSupport.h"

#include <QAccessible>
#include <QPropertyAnimation>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;

namespace ostrel {
namespace {

using test::bindModel;
using test::capture;
using test::colorNear;
using test::jsonObject;
using test::pixelAt;

TEST(Switch, RequiredSwitchIsValidWhileOnAndReportsTheUsersTaps)
{
    OSTSwitch pressed(QRect(0, 0, 100, 100), OSTSwitchDescription(u"terms"_s, jsonObject(R"({"defaultState": "pressed"})")));
    auto model = bindModel(pressed, "false");
    EXPECT_TRUE(model->isValid()) << "on from the start: valid as soon as the model is attached";
    EXPECT_EQ(model->value(), QVariant(true));

    QSignalSpy taps(&pressed, &OSTSwitch::tapped);
    QTest::mouseClick(pressed.internalSwitch(), Qt::LeftButton);
    EXPECT_FALSE(model->isValid());
    EXPECT_EQ(model->value(), QVariant(false));
    EXPECT_EQ(taps.count(), 1);

    // setValue turns it on but leaves the model as it was.
    pressed.setValue(true);
    EXPECT_TRUE(pressed.isOn());
    EXPECT_FALSE(model->isValid());
    EXPECT_EQ(model->value(), QVariant(false));
    EXPECT_EQ(taps.count(), 1);

    OSTSwitch optional(QRect(0, 0, 100, 100), OSTSwitchDescription(u"news"_s, {}));
    auto optionalModel = bindModel(optional, "true");
    EXPECT_FALSE(optional.isOn());
    EXPECT_TRUE(optionalModel->isValid()) << "an optional switch is always valid";
}

TEST(Switch, ShrinksToItsNaturalSizeAroundTheLayoutCentreAndWorksFromTheKeyboard)
{
    OSTSwitch element(QRect(0, 0, 100, 100), OSTSwitchDescription(u"terms"_s, {}));
    EXPECT_EQ(element.size(), OSTSwitchControl::naturalSize());
    EXPECT_EQ(element.geometry().center(), QRect(0, 0, 100, 100).center());

    element.show();
    element.internalSwitch()->setFocus();
    QTest::keyClick(element.internalSwitch(), Qt::Key_Space);
    EXPECT_TRUE(element.isOn());
    QTest::keyClick(element.internalSwitch(), Qt::Key_Return);
    EXPECT_FALSE(element.isOn());

    QAccessibleInterface *accessible = QAccessible::queryAccessibleInterface(element.internalSwitch());
    ASSERT_NE(accessible, nullptr);
    EXPECT_EQ(accessible->text(QAccessible::Name), u"terms"_s);
    EXPECT_TRUE(accessible->state().checkable);

    OSTSwitch labelled(QRect(0, 0, 60, 40),
            OSTSwitchDescription(u"terms"_s, jsonObject(R"({"accessibilityLabel": "Accept the terms"})")));
    EXPECT_EQ(QAccessible::queryAccessibleInterface(labelled.internalSwitch())->text(QAccessible::Name),
              u"Accept the terms"_s);
}

class SwitchPixels : public ::testing::TestWithParam<qreal> {};

TEST_P(SwitchPixels, TrackAndThumbTakeTheirColoursOffAndOn)
{
    const qreal ratio = GetParam();
    const auto properties = jsonObject(R"({"onTintColor": "#FF0000", "tintColor": "#00FF00", "thumbTintColor": "#0000FF"})");
    OSTSwitch off(QRect(0, 0, 51, 31), OSTSwitchDescription(u"s"_s, properties));
    QImage image = capture(off, ratio);
    EXPECT_TRUE(colorNear(pixelAt(image, {16, 15}), QColor(0, 0, 255), 8)) << "thumb at the left when off";
    EXPECT_TRUE(colorNear(pixelAt(image, {25, 0.5}), QColor(0, 255, 0), 100)) << "green outline";

    auto onProperties = properties;
    onProperties.insert(u"defaultState"_s, u"pressed"_s);
    OSTSwitch on(QRect(0, 0, 51, 31), OSTSwitchDescription(u"s"_s, onProperties));
    image = capture(on, ratio);
    EXPECT_TRUE(colorNear(pixelAt(image, {35, 15}), QColor(0, 0, 255), 8)) << "thumb at the right when on";
    EXPECT_TRUE(colorNear(pixelAt(image, {8, 15}), QColor(255, 0, 0), 8)) << "red track when on";
}

INSTANTIATE_TEST_SUITE_P(DevicePixelRatios, SwitchPixels, ::testing::Values(1.0, 2.0), test::ratioTestName);

} // namespace
} // namespace ostrel
