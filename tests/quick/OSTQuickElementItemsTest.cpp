// The Qt Quick element items as a user drives them: the button's states, toggles and keys, the
// switch, and the loading overlay that covers a screen.

#include "model/OSTValidationItemModel.h"
#include "quick/OSTQuickButton.h"
#include "quick/OSTQuickImage.h"
#include "quick/OSTQuickLoadingOverlay.h"
#include "quick/OSTQuickSwitch.h"
#include "screen/OSTSwitchDescription.h"

#include "../model/OSTValidationTestFakes.h"
#include "../widgets/OSTInputTestSupport.h"
#include "OSTQuickTestWindow.h"

#include <QPropertyAnimation>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace ostrel {
namespace {

OSTQuickButton *buttonIn(test::QuickTestWindow &window, const char *properties, const QString &key = u"b"_s)
{
    return new OSTQuickButton(QRect(10, 10, 100, 40), test::buttonOf(properties, key), window.root());
}

const char *const threeStates = R"({"states": {
    "normal": {"text": "Buy", "image": "ftp://example.invalid/n.png", "required": "true"},
    "pressed": {"text": "Buying", "image": "ftp://example.invalid/p.png"},
    "disabled": {"text": "Sold out"}}})";

TEST(QuickButton, ShowsTheLookOfItsStateAndTakesNoPressWhileDisabled)
{
    test::QuickTestWindow window;
    OSTQuickButton *button = buttonIn(window, threeStates);
    int taps = 0;
    QObject::connect(button, &OSTQuickButton::tapped, [&taps] { ++taps; });
    EXPECT_TRUE(button->normalBackground()->isLoadingRequiredImage());
    EXPECT_EQ(button->normalBackground()->candidateURLs().size(), 1);
    EXPECT_EQ(button->currentTitle(), u"Buy"_s);
    EXPECT_TRUE(button->normalBackground()->isVisible());

    const QPoint centre = button->mapToScene(QPointF(50, 20)).toPoint();
    QTest::mousePress(&window, Qt::LeftButton, {}, centre);
    EXPECT_EQ(button->currentTitle(), u"Buying"_s);
    EXPECT_TRUE(button->highlightedBackground()->isVisible());
    EXPECT_FALSE(button->normalBackground()->isVisible());
    QTest::mouseRelease(&window, Qt::LeftButton, {}, centre);
    EXPECT_EQ(taps, 1);
    EXPECT_EQ(button->currentTitle(), u"Buy"_s);

    // A press released outside is no tap.
    QTest::mousePress(&window, Qt::LeftButton, {}, centre);
    QTest::mouseMove(&window, centre + QPoint(200, 0));
    QTest::mouseRelease(&window, Qt::LeftButton, {}, centre + QPoint(200, 0));
    EXPECT_EQ(taps, 1);

    button->setEnabled(false);
    EXPECT_EQ(button->currentTitle(), u"Sold out"_s);
    EXPECT_TRUE(button->disabledBackground()->isVisible());
    EXPECT_FALSE(button->normalBackground()->isVisible());
    window.click(*button, {50, 20});
    button->click();
    EXPECT_EQ(taps, 1);

    // From the keyboard.
    button->setEnabled(true);
    button->forceActiveFocus();
    for (const Qt::Key key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter, Qt::Key_A})
        QTest::keyClick(&window, key);
    EXPECT_EQ(taps, 4);
}

TEST(QuickButton, ADisabledButtonShowsItsTitleFromItsFirstFrame)
{
    test::QuickTestWindow window;
    OSTQuickButton *button = buttonIn(window, R"({"states": {
        "normal": {"text": "Continue", "textColor": "#FFFFFF", "backgroundColor": "#3A5BD9"},
        "disabled": {"backgroundColor": "#FFFFFF", "textColor": "#000000"}}})");
    button->setEnabled(false);
    const QImage grab = window.grabWindow().copy(QRect(10, 10, 100, 40));
    int dark = 0;
    for (int y = 0; y < grab.height(); ++y)
        for (int x = 0; x < grab.width(); ++x)
            dark += qGray(grab.pixel(x, y)) < 100;
    EXPECT_GT(dark, 20) << "the title lies above the disabled background";
}

TEST(QuickButton, AToggleStaysSelectedAndIsValidWhileSelectedUnlessOptional)
{
    test::QuickTestWindow window;
    OSTQuickButton *toggle = buttonIn(window, R"({"buttonType": "toggle", "states": {"normal": {"text": "Agree"}}})");
    const auto model = test::bindModel(*toggle, QVariantMap());
    EXPECT_FALSE(model->isValid());
    EXPECT_EQ(toggle->value(), QVariant(false));
    window.click(*toggle, {50, 20});
    EXPECT_TRUE(toggle->isChecked());
    EXPECT_TRUE(model->isValid());
    window.click(*toggle, {50, 20});
    EXPECT_FALSE(model->isValid());

    toggle->setValue(true);
    EXPECT_EQ(toggle->value(), QVariant(true));
    toggle->setValue(QVariant());
    EXPECT_EQ(toggle->value(), QVariant(true)) << "no value keeps the selection";

    OSTQuickButton *optional = buttonIn(window, R"({"buttonType": "toggle", "states": {"normal": {}}})", u"o"_s);
    EXPECT_TRUE(test::bindModel(*optional, "true")->isValid());

    OSTQuickButton *plain = buttonIn(window, R"({"states": {"normal": {}}})", u"p"_s);
    plain->setValue(true);
    EXPECT_FALSE(plain->isChecked());
    EXPECT_FALSE(plain->value().isValid());
}

TEST(QuickSwitch, TakesItsNaturalSizeAndTurnsByClickOrKeyForItsValidation)
{
    test::QuickTestWindow window;
    const auto description = std::make_shared<const OSTSwitchDescription>(
        u"news"_s, test::jsonObject(R"({"onTintColor": "#FF0000"})"));
    auto *toggle = new OSTQuickSwitch(QRect(0, 0, 151, 71), *description, window.root());
    EXPECT_EQ(QRectF(toggle->position(), toggle->size()), QRectF(50, 20, 51, 31));
    const auto model = test::bindModel(*toggle, QVariantMap());
    EXPECT_FALSE(model->isValid());
    int taps = 0;
    QObject::connect(toggle, &OSTQuickSwitch::tapped, [&taps] { ++taps; });

    window.click(*toggle, {25, 15});
    EXPECT_TRUE(toggle->isOn());
    EXPECT_TRUE(model->isValid());
    EXPECT_LT(toggle->thumbPosition(), 1) << "the thumb slides";
    for (QPropertyAnimation *slide : toggle->findChildren<QPropertyAnimation *>())
        slide->setCurrentTime(slide->duration());
    EXPECT_EQ(toggle->thumbPosition(), 1);

    toggle->forceActiveFocus();
    QTest::keyClick(&window, Qt::Key_Space);
    EXPECT_FALSE(toggle->isOn());
    EXPECT_EQ(taps, 2);

    toggle->setValue(true);
    EXPECT_TRUE(toggle->isOn());
    EXPECT_EQ(toggle->thumbPosition(), 1);
    EXPECT_FALSE(model->isValid()) << "a restored value does not tell the model";
}

TEST(QuickLoadingOverlay, CoversTheScreenTakesItsInputAndGivesTheFocusBack)
{
    test::QuickTestWindow window;
    auto *screen = new QQuickItem(window.root());
    screen->setSize({300, 400});
    OSTQuickButton *button = buttonIn(window, R"({"states": {"normal": {"text": "Go"}}})");
    button->setParentItem(screen);
    int taps = 0;
    QObject::connect(button, &OSTQuickButton::tapped, [&taps] { ++taps; });
    button->forceActiveFocus();

    auto *overlay = new OSTQuickLoadingOverlay(screen);
    EXPECT_FALSE(overlay->isVisible());
    overlay->present();
    EXPECT_TRUE(overlay->isPresented());
    EXPECT_TRUE(overlay->isVisible());
    EXPECT_EQ(overlay->size(), QSizeF(300, 400));
    EXPECT_TRUE(overlay->hasActiveFocus());
    window.click(*button, {50, 20});
    QTest::keyClick(&window, Qt::Key_Return);
    EXPECT_EQ(taps, 0);
    screen->setHeight(500);
    EXPECT_EQ(overlay->height(), 500);

    overlay->fade()->setCurrentTime(overlay->fade()->duration());
    EXPECT_EQ(overlay->presence(), 1);
    overlay->dismiss();
    EXPECT_FALSE(overlay->isPresented());
    EXPECT_TRUE(overlay->isVisible()) << "it fades out first";
    overlay->fade()->setCurrentTime(overlay->fade()->duration());
    EXPECT_FALSE(overlay->isVisible());
    EXPECT_TRUE(button->hasActiveFocus());
}

} // namespace
} // namespace ostrel
