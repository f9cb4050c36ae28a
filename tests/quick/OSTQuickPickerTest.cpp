// The Qt Quick inputs chained by their input order, and pickers as a user drives them with the
// keyboard and the mouse: what they show, choose and report, and restored values.

#include "model/OSTCountryTable.h"
#include "model/OSTValidationItemModel.h"
#include "quick/OSTQuickPicker.h"
#include "quick/OSTQuickPickerWheel.h"
#include "quick/OSTQuickTextField.h"
#include "quick/OSTQuickToolbar.h"

#include "../model/OSTValidationTestFakes.h"
#include "../widgets/OSTInputTestSupport.h"
#include "OSTQuickTestWindow.h"

#include <QAccessible>
#include <QGuiApplication>
#include <QWheelEvent>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace ostrel {
namespace {

using test::bindModel;

OSTQuickPicker *pickerIn(test::QuickTestWindow &window, const char *properties, qreal y = 0)
{
    return new OSTQuickPicker(QRectF(0, y, 300, 40), test::pickerOf(properties, u"picker"_s), window.root());
}

TEST(QuickInput, ReturnAndTabFollowTheInputOrderAndTheLastOneCallsTheReturnHandler)
{
    test::QuickTestWindow window;
    auto *last = new OSTQuickTextField(QRectF(0, 0, 300, 40), test::textFieldOf(R"({"inputOrder": 3})", u"c"_s), window.root());
    auto *first = new OSTQuickTextField(QRectF(0, 50, 300, 40), test::textFieldOf(R"({"inputOrder": 1})", u"a"_s), window.root());
    OSTQuickPicker *middle = pickerIn(window, R"({"inputOrder": 2, "picker": {"pickerData": ["x", "y"]}})", 100);
    OSTQuickInput::chainInputs({last, nullptr, middle, first});
    QList<QString> returned;
    last->setReturnHandler([&](OSTQuickInput &input) { returned.append(static_cast<OSTQuickTextField &>(input).name()); });

    first->forceActiveFocus();
    QTest::keyClick(&window, Qt::Key_Return);
    EXPECT_TRUE(middle->hasActiveFocus());
    QTest::keyClick(&window, Qt::Key_Tab);
    EXPECT_TRUE(last->hasActiveFocus());
    QTest::keyClick(&window, Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_TRUE(middle->hasActiveFocus());
    QTest::keyClick(&window, Qt::Key_Return);
    EXPECT_TRUE(last->hasActiveFocus());
    EXPECT_TRUE(returned.isEmpty());
    EXPECT_EQ(last->inputMethodQuery(Qt::ImEnterKeyType), Qt::EnterKeyDone);
    EXPECT_EQ(first->inputMethodQuery(Qt::ImEnterKeyType), Qt::EnterKeyNext);
    QTest::keyClick(&window, Qt::Key_Return);
    EXPECT_EQ(returned, QList<QString>{u"c"_s});
    EXPECT_FALSE(last->hasActiveFocus()) << "the last input gives up the focus";
}

TEST(QuickPicker, ACountryIsChosenByKeysAndByClickAndReported)
{
    test::QuickTestWindow window;
    OSTQuickPicker *picker = pickerIn(window, R"({"picker": {"pickerType": "countryCode"},
        "toolbar": {"acceptText": "OK"}, "inputOrder": 1, "accessibilityLabel": "Country"})");
    auto *phone = new OSTQuickTextField(QRectF(0, 300, 300, 40),
                                        test::textFieldOf(R"({"textType": "phoneNumber", "inputOrder": 2})", u"phone"_s),
                                        window.root());
    OSTQuickInput::chainInputs({phone, picker});
    const auto model = bindModel(*picker, "false");
    picker->setDelegate(phone);
    EXPECT_EQ(picker->choiceText(), u"+1 United States"_s);
    EXPECT_TRUE(model->isValid()) << "a picker always holds a valid choice";
    EXPECT_EQ(model->value(), u"United States"_s);
    EXPECT_EQ(picker->rowCount(), 248);
    EXPECT_EQ(picker->titleAtRow(50, OSTQuickPicker::Formatting::Formatted), u"+ 345   \tCayman Islands"_s);
    EXPECT_EQ(picker->titleAtRow(248, OSTQuickPicker::Formatting::Plain), u""_s);
    QAccessibleInterface *accessible = QAccessible::queryAccessibleInterface(picker);
    ASSERT_TRUE(accessible);
    EXPECT_EQ(accessible->role(), QAccessible::ComboBox);
    EXPECT_EQ(accessible->text(QAccessible::Name), u"Country"_s);

    // Keys: Space opens, Down twice chooses live, Return chooses and moves on.
    picker->forceActiveFocus();
    QTest::keyClick(&window, Qt::Key_Space);
    ASSERT_TRUE(picker->isWheelShown());
    QTest::keyClick(&window, Qt::Key_Down);
    QTest::keyClick(&window, Qt::Key_Down);
    EXPECT_EQ(picker->choiceText(), u"+44 United Kingdom"_s);
    EXPECT_EQ(model->value(), u"United Kingdom"_s);
    QTest::keyClick(&window, Qt::Key_Return);
    EXPECT_FALSE(picker->isWheelShown());
    EXPECT_TRUE(phone->hasActiveFocus()) << "done hands the focus to the next input";
    window.type(u"2079460958"_s);
    EXPECT_EQ(phone->text(), u"+44 2079460958"_s);

    // Mouse: a click opens the wheel below the picker, a click on a row chooses it and closes it.
    window.click(*picker, {150, 20});
    ASSERT_TRUE(picker->isWheelShown());
    OSTQuickPickerWheel *wheel = picker->wheel();
    EXPECT_GE(wheel->mapToScene({0, 0}).y(), picker->mapToScene({0, picker->height()}).y());
    window.click(*wheel, {100, wheel->rowHeight() * 3.5});
    EXPECT_FALSE(picker->isWheelShown());
    EXPECT_EQ(picker->country(), u"France"_s);
    EXPECT_EQ(model->value(), u"France"_s);
    EXPECT_EQ(phone->text(), u"+33 2079460958"_s);

    // The toolbar's done button moves on too; its cancel closes the wheel without a choice.
    window.click(*picker, {150, 20});
    QTest::keyClick(&window, Qt::Key_Down);
    window.click(*picker->toolbar(), picker->toolbar()->doneButtonRect().center());
    EXPECT_FALSE(picker->isWheelShown());
    EXPECT_EQ(picker->country(), u"Germany"_s);
    EXPECT_TRUE(phone->hasActiveFocus());
    window.click(*picker, {150, 20});
    EXPECT_EQ(picker->toolbar()->doneText(), u"OK"_s);
    EXPECT_EQ(picker->toolbar()->cancelText(), u"Cancel"_s);
    window.click(*picker->toolbar(), picker->toolbar()->cancelButtonRect().center());
    EXPECT_FALSE(picker->isWheelShown());
    EXPECT_FALSE(picker->hasActiveFocus());
    EXPECT_EQ(picker->country(), u"Germany"_s);
}

TEST(QuickToolbar, ABlackBarIsDrawnBlackAndTranslucentWhenAsked)
{
    test::QuickTestWindow window;
    window.setColor(Qt::white);
    OSTQuickToolbar black(OSTToolbarSettings::fromProperties(test::jsonObject(R"({"barStyle": "black"})")), window.root());
    OSTQuickToolbar translucent(OSTToolbarSettings::fromProperties(test::jsonObject(R"({"barStyle": "translucent"})")),
                                window.root());
    black.setWidth(200);
    translucent.setWidth(200);
    translucent.setY(100);
    const QImage grab = window.grabWindow();
    EXPECT_EQ(grab.pixelColor(100, 2), QColor(Qt::black));
    EXPECT_NEAR(grab.pixelColor(100, 102).red(), 255 - 200, 1) << "black at alpha 200 over white";
}

TEST(QuickPicker, RestoredValuesSelectTheirRowsAndOthersAreIgnored)
{
    test::QuickTestWindow window;
    OSTQuickPicker *custom = pickerIn(window, R"({"picker": {"pickerData": ["small", "medium", "large"]}})");
    const auto model = bindModel(*custom, "false");
    custom->setValue(u"large"_s);
    EXPECT_EQ(custom->value(), u"large"_s);
    EXPECT_EQ(custom->wheel()->currentRow(), 2);
    custom->setValue(u"huge"_s);
    custom->setValue(3);
    EXPECT_EQ(model->value(), u"large"_s);

    OSTQuickPicker *empty = pickerIn(window, R"({"picker": {"pickerData": []}})", 50);
    EXPECT_FALSE(empty->isEnabled());
    EXPECT_EQ(empty->value(), u""_s);
    EXPECT_EQ(empty->wheel(), nullptr);

    OSTQuickPicker *date = pickerIn(window, R"({"picker": {"pickerType": "date", "minDate": "01/01/2000",
        "maxDate": "12/31/2000", "startDate": "03/15/2000"}})", 100);
    const auto dateModel = bindModel(*date, "false");
    EXPECT_EQ(date->value().toDateTime().date(), QDate(2000, 3, 15));
    EXPECT_EQ(date->rowCount(), 366);
    date->forceActiveFocus();
    QTest::keyClick(&window, Qt::Key_Space);
    QTest::keyClick(&window, Qt::Key_Up);
    EXPECT_EQ(dateModel->value().toDateTime().date(), QDate(2000, 3, 14));
    date->setValue(QDateTime(QDate(2001, 6, 1), QTime(9, 0)));
    EXPECT_EQ(date->value().toDateTime().date(), QDate(2000, 12, 31)) << "held within the bounds";
    date->setValue(u"06/01/2000"_s);
    EXPECT_EQ(date->value().toDateTime().date(), QDate(2000, 12, 31)) << "a text is no date";
}

TEST(QuickPicker, TheWheelScrollsByDragAndMouseWheelWithoutChoosing)
{
    test::QuickTestWindow window;
    OSTQuickPicker *picker = pickerIn(window, R"({"picker": {"pickerType": "countryCode"}})");
    const auto model = bindModel(*picker, "false");
    window.click(*picker, {150, 20});
    OSTQuickPickerWheel *wheel = picker->wheel();
    ASSERT_TRUE(picker->isWheelShown());
    const QPoint top = wheel->mapToScene({100, wheel->rowHeight() * 4}).toPoint();
    QTest::mousePress(&window, Qt::LeftButton, {}, top);
    QTest::mouseMove(&window, top - QPoint(0, 20));
    QTest::mouseMove(&window, top - QPoint(0, int(wheel->rowHeight() * 3)));
    QTest::mouseRelease(&window, Qt::LeftButton, {}, top - QPoint(0, int(wheel->rowHeight() * 3)));
    EXPECT_NEAR(wheel->scrollOffset(), wheel->rowHeight() * 3, 1);
    EXPECT_TRUE(picker->isWheelShown()) << "a drag chooses nothing";
    EXPECT_EQ(model->value(), u"United States"_s);

    QWheelEvent notch(wheel->mapToScene({100, 10}), wheel->mapToGlobal(QPointF(100, 10)), {}, {0, -240},
                      Qt::NoButton, {}, Qt::NoScrollPhase, false);
    QGuiApplication::sendEvent(&window, &notch);
    EXPECT_NEAR(wheel->scrollOffset(), wheel->rowHeight() * 5, 1);
    EXPECT_EQ(wheel->rowAt(0), 5);
    window.click(*wheel, {100, 1});
    EXPECT_EQ(model->value(), OSTCountryTable::sortedCountries().at(5)) << "the row under the click, scrolled";

    // A time picker's rows are the minutes of its day; Up and Down step them.
    OSTQuickPicker *time = pickerIn(window, R"({"picker": {"pickerType": "date", "pickerMode": "time",
        "startDate": "03/15/2000"}})", 300);
    EXPECT_EQ(time->rowCount(), 24 * 60);
    time->forceActiveFocus();
    QTest::keyClick(&window, Qt::Key_Space);
    QTest::keyClick(&window, Qt::Key_Down);
    EXPECT_EQ(time->value().toDateTime(), QDateTime(QDate(2000, 3, 15), QTime(0, 1)));
    EXPECT_EQ(time->wheel()->titleAtRow(61), QLocale().toString(QTime(1, 1), QLocale::ShortFormat));
}

} // namespace
} // namespace ostrel
