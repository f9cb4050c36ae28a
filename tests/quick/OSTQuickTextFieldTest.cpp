// The Qt Quick text field as a user types, edits, pastes and composes in it: the formatting and
// the limits, the value it reports, the invalid look, secrecy and restored values.

#include "model/OSTValidationItemModel.h"
#include "quick/OSTQuickLabel.h"
#include "quick/OSTQuickPicker.h"
#include "quick/OSTQuickShadow.h"
#include "quick/OSTQuickTextField.h"

#include "../model/OSTValidationTestFakes.h"
#include "../widgets/OSTInputTestSupport.h"
#include "OSTQuickTestWindow.h"

#include <QAccessible>
#include <QClipboard>
#include <QGuiApplication>
#include <QInputMethodEvent>
#include <QSet>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace ostrel {
namespace {

using test::bindModel;

OSTQuickTextField *fieldIn(test::QuickTestWindow &window, const char *properties, qreal y = 0)
{
    return new OSTQuickTextField(QRectF(0, y, 300, 40), test::textFieldOf(properties, u"field"_s), window.root());
}

void typeInto(OSTQuickTextField *field, const QString &text)
{
    field->forceActiveFocus();
    static_cast<test::QuickTestWindow *>(field->window())->type(text);
}

TEST(QuickTextField, TypingAppliesTheLimitsAndTheFormattingAndReportsTheValue)
{
    test::QuickTestWindow window;
    OSTQuickTextField *limited = fieldIn(window, R"({"maxLength": "6", "minLength": 3, "keyboardType": "emailAddress"})");
    const auto limitedModel = bindModel(*limited, "false");
    typeInto(limited, u"ab"_s);
    EXPECT_FALSE(limitedModel->isValid()) << "shorter than the minimum";
    typeInto(limited, u"cdefgh"_s);
    EXPECT_EQ(limited->text(), u"abcdef"_s) << "cut at the maximum";
    EXPECT_TRUE(limitedModel->isValid());
    EXPECT_EQ(limitedModel->value(), u"abcdef"_s);
    EXPECT_TRUE(Qt::InputMethodHints(limited->inputMethodQuery(Qt::ImHints).toInt()).testFlag(Qt::ImhEmailCharactersOnly));

    // Editing keys: Backspace, Home, Delete, Shift+End selects, copy and paste through the clipboard.
    QTest::keyClick(&window, Qt::Key_Backspace);
    QTest::keyClick(&window, Qt::Key_Home);
    QTest::keyClick(&window, Qt::Key_Delete);
    EXPECT_EQ(limited->text(), u"bcde"_s);
    QTest::keyClick(&window, Qt::Key_Right);
    QTest::keyClick(&window, Qt::Key_End, Qt::ShiftModifier);
    EXPECT_EQ(limited->selectedText(), u"cde"_s);
    QTest::keyClick(&window, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), u"cde"_s);
    QGuiApplication::clipboard()->setText(u"pasted-too-long"_s);
    QTest::keyClick(&window, Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(limited->text(), u"bpaste"_s) << "pasted over the selection, cut at the maximum";

    // A phone field formats under its country picker's code and reports the bare number.
    auto *picker = new OSTQuickPicker(QRectF(0, 50, 300, 40),
                                      test::pickerOf(R"({"picker": {"pickerType": "countryCode"}})", u"country"_s),
                                      window.root());
    OSTQuickTextField *phone = fieldIn(window, R"({"textType": "phoneNumberValidated"})", 100);
    const auto phoneModel = bindModel(*phone, "false");
    picker->setDelegate(phone);
    typeInto(phone, u"5551234567"_s);
    EXPECT_EQ(phone->text(), u"+1 (555) 123-4567"_s);
    EXPECT_EQ(phoneModel->value(), u"+1 5551234567"_s);
    phone->setCursorPosition(7);
    QTest::keyClick(&window, Qt::Key_9);
    EXPECT_EQ(phone->text(), u"+1 (555) 912-3456"_s);
    EXPECT_EQ(phone->cursorPosition(), 10) << "the caret stays after the typed digit";
    QTest::keyClick(&window, Qt::Key_Home);
    EXPECT_EQ(phone->cursorPosition(), 3) << "the caret stays out of the code";
    picker->setValue(u"France"_s);
    EXPECT_EQ(phone->text(), u"+33 5559123456"_s);

    // An input method's composition shows without being text; its commit string is inserted.
    phone->selectAll();
    QTest::keyClick(&window, Qt::Key_Backspace);
    EXPECT_EQ(phone->text(), u""_s) << "Backspace removes the selection";
    OSTQuickTextField *name = fieldIn(window, R"({"placeholder": {"text": "Name"}})", 150);
    name->forceActiveFocus();
    ASSERT_TRUE(name->placeholderLabel());
    EXPECT_TRUE(name->placeholderLabel()->isVisible());
    EXPECT_EQ(name->placeholderLabel()->text(), u"Name"_s);
    QAccessibleInterface *accessible = QAccessible::queryAccessibleInterface(name);
    ASSERT_TRUE(accessible);
    EXPECT_EQ(accessible->role(), QAccessible::EditableText);
    EXPECT_EQ(accessible->text(QAccessible::Name), u"Name"_s) << "named by its placeholder";
    QInputMethodEvent composing(u"Zo"_s, {});
    QGuiApplication::sendEvent(&window, &composing);
    EXPECT_EQ(name->text(), u""_s);
    EXPECT_FALSE(name->placeholderLabel()->isVisible()) << "the composition hides the placeholder";
    QInputMethodEvent committed;
    committed.setCommitString(u"Zoë"_s);
    QGuiApplication::sendEvent(&window, &committed);
    EXPECT_EQ(name->text(), u"Zoë"_s);
    EXPECT_EQ(name->inputMethodQuery(Qt::ImSurroundingText), u"Zoë"_s);
    EXPECT_EQ(name->inputMethodQuery(Qt::ImCursorPosition), 3);
    QInputMethodEvent replacing;
    replacing.setCommitString(u"Ann"_s, -3, 3);
    QGuiApplication::sendEvent(&window, &replacing);
    EXPECT_EQ(name->text(), u"Ann"_s);
}

TEST(QuickTextField, TheAlignmentKeysPlaceTheTextAndTheCaret)
{
    test::QuickTestWindow window;
    OSTQuickTextField *left = fieldIn(window, "{}");
    OSTQuickTextField *right = fieldIn(window, R"({"horizontalAlignment": "right", "verticalAlignment": "top"})", 50);
    OSTQuickTextField *centred = fieldIn(window, R"({"alignment": "center", "horizontalAlignment": "right"})", 100);
    EXPECT_EQ(left->alignment(), Qt::AlignLeft | Qt::AlignVCenter);
    EXPECT_EQ(right->alignment(), Qt::AlignRight | Qt::AlignTop);
    EXPECT_EQ(centred->alignment(), Qt::AlignHCenter | Qt::AlignVCenter) << "the alignment word wins";
    for (OSTQuickTextField *field : {left, right, centred})
        field->replaceText(u"abc"_s);
    const auto caretX = [](const OSTQuickTextField *field) { return field->inputMethodQuery(Qt::ImCursorRectangle).toRectF().x(); };
    EXPECT_LT(caretX(left), 60);
    EXPECT_NEAR(caretX(right), 300 - 2, 1) << "the caret ends a right-aligned text at the field's edge";
    EXPECT_GT(caretX(centred), 150);
    EXPECT_LT(caretX(centred), 200);
}

TEST(QuickTextField, SecretsAreMaskedAndNeverCopied)
{
    test::QuickTestWindow window;
    OSTQuickTextField *password = fieldIn(window, R"({"textType": "password"})");
    typeInto(password, u"hunter2"_s);
    EXPECT_EQ(password->displayText(), QString(7, QChar(0x25CF)));
    EXPECT_EQ(password->value(), u"hunter2"_s);
    QGuiApplication::clipboard()->setText(u"before"_s);
    password->selectAll();
    QTest::keyClick(&window, Qt::Key_C, Qt::ControlModifier);
    QTest::keyClick(&window, Qt::Key_X, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), u"before"_s);
    EXPECT_EQ(password->text(), u"hunter2"_s);
    EXPECT_EQ(password->inputMethodQuery(Qt::ImSurroundingText), QString());
    EXPECT_TRUE(Qt::InputMethodHints(password->inputMethodQuery(Qt::ImHints).toInt()).testFlag(Qt::ImhHiddenText));
}

TEST(QuickTextField, TheInvalidLookFollowsValidityOnceTheUserLeftAndRestoredValuesShowIt)
{
    test::QuickTestWindow window;
    OSTQuickTextField *field = fieldIn(window, R"({"minLength": 3, "maxLength": 10, "text": {"textColor": "#0000ff"},
        "states": {"invalid": {"text": {"textColor": "#ff0000"}}}})");
    OSTQuickTextField *other = fieldIn(window, "{}", 50);
    const auto model = bindModel(*field, "false");
    typeInto(field, u"ab"_s);
    EXPECT_FALSE(field->showsInvalidLook()) << "not while the user is typing";
    EXPECT_FALSE(field->shouldShowErrorMessage());
    other->forceActiveFocus();
    EXPECT_TRUE(field->showsInvalidLook());
    EXPECT_EQ(field->textColor(), QColor(u"#ff0000"_s));
    typeInto(field, u"c"_s);
    EXPECT_FALSE(field->showsInvalidLook()) << "typing hides it again";
    other->forceActiveFocus();
    EXPECT_FALSE(field->showsInvalidLook()) << "valid now";
    EXPECT_EQ(field->textColor(), QColor(u"#0000ff"_s));

    // Drawn: the state's box and text colour, the invalid ones while the invalid look shows.
    OSTQuickTextField *painted = fieldIn(window, R"({"backgroundColor": "#00ff00", "minLength": 3, "maxLength": 10,
        "text": {"textColor": "#0000ff", "size": "24"},
        "states": {"invalid": {"backgroundColor": "#ffff00", "text": {"textColor": "#ff0000"},
                               "objectShadow": ["#000000", "4", 2, "2"]}}})", 200);
    const auto paintedModel = bindModel(*painted, "false");
    typeInto(painted, u"WW"_s);
    other->forceActiveFocus();
    const auto colours = [&] {
        const QImage grab = window.grabWindow();
        QSet<QRgb> seen;
        for (int x = 0; x < 300; ++x)
            seen.insert(grab.pixel(x, 220) & 0xffffff);
        return seen;
    };
    EXPECT_TRUE(colours().contains(0xffff00) && colours().contains(0xff0000)) << "the invalid box and text";
    painted->forceActiveFocus();
    EXPECT_FALSE(colours().contains(0xffff00)) << "not while the user edits it again";
    other->forceActiveFocus();
    EXPECT_EQ(painted->findChildren<OSTQuickShadow *>().size(), 1) << "the invalid look's shadow";
    typeInto(painted, u"W"_s);
    other->forceActiveFocus();
    EXPECT_TRUE(colours().contains(0x00ff00) && colours().contains(0x0000ff)) << "the normal box and text";
    EXPECT_FALSE(colours().contains(0xffff00));
    EXPECT_TRUE(painted->findChildren<OSTQuickShadow *>().isEmpty());

    // A restored value shows as it is, and the invalid look with it when it is invalid.
    OSTQuickTextField *restored = fieldIn(window, R"({"minLength": 3, "maxLength": 4})", 100);
    const auto restoredModel = bindModel(*restored, "false");
    restored->setValue(u"toolong"_s);
    EXPECT_EQ(restored->text(), u"tool"_s);
    restored->setValue(42);
    EXPECT_EQ(restored->text(), u"tool"_s) << "not a text: ignored";
    EXPECT_TRUE(restored->shouldShowErrorMessage());
    restored->setValue(u"no"_s);
    restored->validate();
    EXPECT_TRUE(restored->showsInvalidLook());
}

} // namespace
} // namespace ostrel
