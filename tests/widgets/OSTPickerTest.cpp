// Pickers of the three kinds as a user drives them with the mouse and the keyboard, the toolbar
// above their wheel, and what they report to the validation model and to a phone field.

#include "widgets/OSTPicker.h"
#include "widgets/OSTTextField.h"
#include "widgets/OSTToolbar.h"
#include "model/OSTValidationItemModel.h"
#include "widgets/OSTLabel.h"
#include "support/OSTTestSupport.h"

#include "OSTInputTestSupport.h"
#include "../model/OSTValidationTestFakes.h"
#include "OSTPixelTestSupport.h"

#include <QAction>
#include <QDateTimeEdit>
#include <QListWidget>
#include <QTest>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace ostrel {
namespace {

using test::bindModel;
using test::jsonObject;

TEST(Picker, CountryPickerStartsInTheUSAndTellsEachChoiceToItsPhoneField)
{
    test::InputWindow window;
    auto *picker = test::shown<OSTPicker>(new OSTPicker(QRect(0, 0, 300, 40),
            test::pickerOf(R"({"picker": {"pickerType": "countryCode"},
        "toolbar": {"acceptText": "OK"}, "inputOrder": "1"})", u"country"_s), &window));
    auto *phone = test::shown(new OSTTextField(QRect(0, 50, 300, 40),
            test::textFieldOf(R"({"textType": "phoneNumber", "inputOrder": 2})", u"phone"_s), &window));
    OSTInput::chainInputs({phone, picker});
    const auto model = bindModel(*picker, "false");

    EXPECT_EQ(picker->type(), OSTPickerTypeCountryCode);
    EXPECT_EQ(picker->textLabel()->text(), u"+1 United States"_s);
    EXPECT_EQ(picker->value(), u"United States"_s);
    EXPECT_TRUE(model->isValid()) << "a picker always holds a valid choice";
    EXPECT_EQ(model->value(), u"United States"_s);
    EXPECT_FALSE(picker->shouldShowErrorMessage());
    ASSERT_TRUE(picker->listWheel());
    EXPECT_EQ(picker->listWheel()->count(), 248);
    EXPECT_EQ(picker->listWheel()->item(0)->text(), u"+1      \tUnited States"_s);
    EXPECT_EQ(picker->rows().titleAtRow(50, OSTPickerRowModel::Formatting::Formatted), u"+ 345   \tCayman Islands"_s);
    EXPECT_EQ(picker->rows().titleAtRow(248, OSTPickerRowModel::Formatting::Plain), u""_s);
    EXPECT_EQ(picker->rows().titleAtRow(-1, OSTPickerRowModel::Formatting::Plain), u""_s);

    // Linking the field makes it format under the current code at once.
    picker->setDelegate(phone);
    EXPECT_EQ(phone->beginningCaretOffset(), 3);

    // Keyboard only: focus, open with Space, two rows down (live), Return chooses and moves on.
    picker->setFocus();
    QTest::keyClick(picker, Qt::Key_Space);
    ASSERT_TRUE(picker->isWheelShown());
    QTest::keyClick(picker->listWheel(), Qt::Key_Down);
    QTest::keyClick(picker->listWheel(), Qt::Key_Down);
    EXPECT_EQ(picker->textLabel()->text(), u"+44 United Kingdom"_s);
    EXPECT_EQ(model->value(), u"United Kingdom"_s);
    QTest::keyClick(picker->listWheel(), Qt::Key_Return);
    EXPECT_FALSE(picker->isWheelShown());
    EXPECT_TRUE(phone->hasFocus()) << "done hands the focus to the next input";
    EXPECT_EQ(picker->country(), u"United Kingdom"_s);
    EXPECT_EQ(picker->countryCode(), u"+44"_s);
    QTest::keyClicks(phone, u"2079460958"_s);
    EXPECT_EQ(phone->text(), u"+44 2079460958"_s);

    // Alt+Down opens it too; Escape closes it without a choice.
    picker->setFocus();
    QTest::keyClick(picker, Qt::Key_Down, Qt::AltModifier);
    EXPECT_TRUE(picker->isWheelShown());
    QTest::keyClick(picker->listWheel(), Qt::Key_Escape);
    EXPECT_FALSE(picker->isWheelShown());
    EXPECT_EQ(picker->country(), u"United Kingdom"_s);

    // The code with a blank inside reaches the field as it stands.
    picker->selectRow(50);
    EXPECT_EQ(picker->countryCode(), u"+ 345"_s);
    EXPECT_EQ(phone->text(), u"+ 345 2079460958"_s);
    EXPECT_EQ(phone->beginningCaretOffset(), 6);

    // Restoring: the first row holding the name; unknown names and other types change nothing.
    picker->setValue(u"Canada"_s);
    EXPECT_EQ(picker->listWheel()->currentRow(), 1);
    EXPECT_EQ(picker->countryCode(), u"+1"_s);
    picker->setValue(u"Atlantis"_s);
    picker->setValue(42);
    picker->setValue(QVariant());
    EXPECT_EQ(picker->country(), u"Canada"_s);
}

TEST(Picker, CustomPickerOffersItsStringsAndAnEmptyOneCannotBeOpened)
{
    test::InputWindow window;
    auto *picker = test::shown<OSTPicker>(new OSTPicker(QRect(0, 0, 200, 40),
            test::pickerOf(R"({"picker": {"pickerData": ["Red", "Green", 3, null, "Blue"]},
        "text": {"alignment": "right"}})", u"colour"_s), &window));
    const auto model = bindModel(*picker, "false");
    EXPECT_EQ(picker->customData(), (QStringList{u"Red"_s, u"Green"_s, u"Blue"_s})) << "entries that are no strings are skipped";
    EXPECT_EQ(picker->value(), u"Red"_s);
    EXPECT_EQ(picker->listWheel()->item(0)->textAlignment() & Qt::AlignHorizontal_Mask, Qt::AlignRight);

    QTest::mouseClick(picker, Qt::LeftButton);
    ASSERT_TRUE(picker->isWheelShown());
    QTest::keyClick(picker->listWheel(), Qt::Key_Down);
    QTest::keyClick(picker->listWheel(), Qt::Key_Enter);
    EXPECT_EQ(picker->value(), u"Green"_s);
    EXPECT_EQ(model->value(), u"Green"_s);
    EXPECT_EQ(picker->accessibleDescription(), u"Green"_s);
    EXPECT_EQ(picker->accessibleName(), u"colour"_s);

    // A click on a row chooses it and closes the wheel.
    QTest::mouseClick(picker, Qt::LeftButton);
    QListWidget *wheel = picker->listWheel();
    QTest::mouseClick(wheel->viewport(), Qt::LeftButton, {}, wheel->visualItemRect(wheel->item(2)).center());
    EXPECT_EQ(picker->value(), u"Blue"_s);
    EXPECT_FALSE(picker->isWheelShown());

    picker->setValue(u"Red"_s);
    EXPECT_EQ(picker->value(), u"Red"_s);

    // The screen goes away; the item keeps the user's choice for the next build of the screen.
    delete picker;
    EXPECT_EQ(model->value(), u"Red"_s);
    EXPECT_EQ(model->item(), nullptr);

    for (const char *properties : {R"({"picker": {"pickerData": []}})", R"({"picker": {"pickerData": "Red"}})",
                                   R"({"picker": {"pickerData": [1, {}]}})", R"({"picker": []})", R"({})"}) {
        SCOPED_TRACE(properties);
        OSTPicker empty(QRect(0, 0, 200, 40), test::pickerOf(properties, u"empty"_s), &window);
        empty.show();
        EXPECT_FALSE(empty.isEnabled());
        EXPECT_EQ(empty.value(), u""_s);
        EXPECT_FALSE(empty.listWheel());
        QTest::mouseClick(&empty, Qt::LeftButton);
        EXPECT_FALSE(empty.isWheelShown());
        empty.setValue(u"Red"_s);
        empty.selectRow(3);
        EXPECT_EQ(empty.value(), u""_s);
    }
}

TEST(Picker, DatePickerShowsItsStartDateAndKeepsChoicesWithinItsBounds)
{
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    test::InputWindow window;
    auto *picker = test::shown<OSTPicker>(new OSTPicker(QRect(0, 0, 200, 40),
            test::pickerOf(R"({"picker": {"pickerType": "date",
        "startDate": "03/15/2021", "minDate": "01/01/2021", "maxDate": "12/31/2021"},
        "text": {"text": "Birthday"}})", u"day"_s), &window));
    const auto model = bindModel(*picker, "false");
    ASSERT_TRUE(picker->dateWheel());
    EXPECT_EQ(picker->textLabel()->text(), u"03/15/2021"_s);
    EXPECT_EQ(picker->value().toDateTime().date(), QDate(2021, 3, 15));

    // Keyboard: open, step the month section up, choose.
    picker->setFocus();
    QTest::keyClick(picker, Qt::Key_F4);
    ASSERT_TRUE(picker->isWheelShown());
    picker->dateWheel()->setCurrentSection(QDateTimeEdit::MonthSection);
    QTest::keyClick(picker->dateWheel(), Qt::Key_Up);
    EXPECT_EQ(picker->value().toDateTime().date(), QDate(2021, 4, 15));
    EXPECT_EQ(model->value().toDateTime().date(), QDate(2021, 4, 15));
    EXPECT_EQ(picker->textLabel()->text(), u"04/15/2021"_s);
    QTest::keyClick(picker->dateWheel(), Qt::Key_Return);
    EXPECT_FALSE(picker->isWheelShown());

    // Restored dates outside the bounds are clamped; other values are ignored.
    picker->setValue(QDateTime(QDate(2030, 1, 1), QTime(0, 0)));
    EXPECT_EQ(picker->value().toDateTime().date(), QDate(2021, 12, 31));
    picker->setValue(u"06/01/2021"_s);
    EXPECT_EQ(picker->value().toDateTime().date(), QDate(2021, 12, 31));

    // Unparsable dates leave the editor without bounds and the label's own text; untouched, the
    // wheel holds now.
    const test::ManualClockScope clock(700000000.0); // 8 March 2023, in seconds since 2001
    OSTPicker loose(QRect(0, 0, 200, 40), test::pickerOf(R"({"picker": {"pickerType": "date", "startDate": "2021-03-15",
        "minDate": 7, "maxDate": "13/45/2021"}, "text": {"text": "Birthday"}})", u"loose"_s), &window);
    EXPECT_EQ(loose.textLabel()->text(), u"Birthday"_s);
    EXPECT_EQ(loose.dateWheel()->minimumDate(), QDateTimeEdit().minimumDate());
    EXPECT_EQ(loose.value().toDateTime().toUTC().date(), QDate(2023, 3, 8));

    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedKingdom));
    OSTPicker british(QRect(0, 0, 200, 40),
            test::pickerOf(R"({"picker": {"pickerType": "date", "startDate": "03/15/2021"}})", u"british"_s), &window);
    EXPECT_EQ(british.textLabel()->text(), u"15/03/2021"_s) << "day first outside the US";
}

TEST(Toolbar, TitlesStylesAndTheButtonsOfAPickersWheel)
{
    const OSTToolbar translucent(OSTToolbarSettings{u"No"_s, u"Done"_s, OSTToolbarSettings::BarStyle::Black, true});
    EXPECT_EQ(translucent.cancelAction()->text(), u"No"_s);
    EXPECT_EQ(translucent.doneAction()->text(), u"Done"_s);
    EXPECT_EQ(translucent.barStyle(), OSTToolbar::BarStyle::Black);
    EXPECT_TRUE(translucent.isTranslucent());
    EXPECT_EQ(translucent.palette().color(QPalette::Window).alpha(), 200);

    test::InputWindow window;
    auto *picker = test::shown<OSTPicker>(new OSTPicker(QRect(0, 0, 200, 40),
            test::pickerOf(R"({"picker": {"pickerData": ["a", "b"]}, "toolbar": {}})", u"letters"_s), &window));
    int returns = 0;
    picker->setInputProtocolDelegate([&returns, picker](OSTInput &input) {
        EXPECT_EQ(&input.inputWidget(), picker);
        ++returns;
    });
    picker->setFocus();
    QTest::keyClick(picker, Qt::Key_Space);
    ASSERT_TRUE(picker->inputAccessoryView());
    picker->inputAccessoryView()->cancelAction()->trigger();
    EXPECT_FALSE(picker->isWheelShown());
    EXPECT_EQ(returns, 0);
    EXPECT_FALSE(picker->hasFocus()) << "cancel gives up the focus";
    picker->setFocus();
    QTest::keyClick(picker, Qt::Key_Space);
    picker->inputAccessoryView()->doneAction()->trigger();
    EXPECT_FALSE(picker->isWheelShown());
    EXPECT_EQ(returns, 1) << "the last input tells the screen";
    EXPECT_FALSE(picker->hasFocus());
}

} // namespace
} // namespace ostrel
