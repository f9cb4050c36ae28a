// Text fields as a user types, pastes and moves through them: lengths and patterns, live phone
// formatting under a chosen country, the input chain, the invalid look and what assistive
// technology reads, and the PIN field against the development service.

#include "events/OSTEventHook.h"
#include "events/OSTInternalEvent.h"
#include "events/OSTTrackedItem.h"
#include "model/OSTPhoneNumberManager.h"
#include "model/OSTValidationItemModel.h"
#include "platform/OSTApplication.h"
#include "support/OSTDevServerProcess.h"
#include "support/OSTTestSupport.h"
#include "widgets/OSTLabel.h"
#include "widgets/OSTPicker.h"
#include "widgets/OSTTextField.h"
#include "widgets/OSTToolbar.h"

#include "../model/OSTValidationTestFakes.h"
#include "OSTInputTestSupport.h"
#include "OSTPixelTestSupport.h"

#include <ostrel/Ostrel.h>

#include <QClipboard>
#include <QGuiApplication>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace ostrel {
namespace {

using test::bindModel;
using test::jsonObject;

OSTTextField *fieldIn(QWidget &window, const char *properties, const QString &name = u"field"_s)
{
    return test::shown(new OSTTextField(QRect(0, 0, 300, 40), test::textFieldOf(properties, name), &window));
}

void typeInto(OSTTextField *field, const QString &text)
{
    field->setFocus();
    field->selectAll();
    QTest::keyClick(field, Qt::Key_Backspace);
    QTest::keyClicks(field, text);
}

TEST(TextField, LengthsAndPatternsDecideValidityAsTheUserTypes)
{
    test::InputWindow window;
    struct Case {
        const char *properties;
        const char *optional;
        QString typed;
        bool valid;
        QString shown;
    };
    const Case cases[] = {
        {R"({"maxLength": "10", "minLength": 3})", "false", u"ab"_s, false, u"ab"_s},
        {R"({"maxLength": "10", "minLength": 3})", "false", u"abc"_s, true, u"abc"_s},
        {R"({"maxLength": "10", "minLength": 3})", "false", u"abcdefghijk"_s, true, u"abcdefghij"_s},
        {R"({"minLength": 3})", "false", u"a"_s, true, u"a"_s},          // no maximum: no minimum
        {R"({"minLength": 3, "maxLength": -1})", "false", u"ab"_s, false, u"ab"_s},
        {R"({"minLength": 2, "maxLength": 5})", "true", u""_s, false, u""_s},  // optional yet too short
        {R"({"maxLength": 5})", "true", u""_s, true, u""_s},
        {R"({})", "false", u""_s, false, u""_s},
        {R"({"validationPattern": "[0-9]"})", "false", u"5"_s, true, u"5"_s},
        {R"({"validationPattern": "[0-9]"})", "false", u"55"_s, false, u"55"_s},  // two matches
        {R"({"validationPattern": "^[^@]+@[^@]+$", "keyboardType": "emailAddress"})", "false", u"a@b.c"_s, true, u"a@b.c"_s},
        {R"({"validationPattern": "(["})", "false", u"x"_s, false, u"x"_s},  // does not compile
        {R"({"validationPattern": "(a+)+$"})", "false", QString(40, u'a') + u'!', false, QString(40, u'a') + u'!'},
        {R"({"textType": "phoneNumberPin"})", "false", u"123456"_s, false, u"1234"_s},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(std::string(c.properties) + " / " + c.typed.toStdString());
        OSTTextField *field = fieldIn(window, c.properties);
        const auto model = bindModel(*field, c.optional);
        typeInto(field, c.typed);
        if (c.typed.isEmpty())
            field->validate();
        EXPECT_EQ(field->text(), c.shown);
        EXPECT_EQ(model->isValid(), c.valid);
        EXPECT_EQ(model->value(), c.shown.isEmpty() ? QVariant() : QVariant(c.shown));
        delete field;
    }

    // Pasted text beyond the maximum is cut, not refused.
    OSTTextField *field = fieldIn(window, R"({"maxLength": 6, "keyboardType": "emailAddress"})");
    field->setFocus();
    QGuiApplication::clipboard()->setText(u"pasted-too-long"_s);
    QTest::keyClick(field, Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(field->text(), u"pasted"_s);
    EXPECT_TRUE(field->inputMethodHints().testFlag(Qt::ImhEmailCharactersOnly));
    EXPECT_TRUE(field->inputMethodHints().testFlag(Qt::ImhNoAutoUppercase));
}

TEST(TextField, TypesSetKeyboardHintsLimitsAndSecrecy)
{
    test::InputWindow window;
    const OSTTextField *password = fieldIn(window, R"({"textType": "password"})");
    EXPECT_EQ(password->echoMode(), QLineEdit::Password);
    const OSTTextField *secure = fieldIn(window, R"({"secureTextEntry": "YES", "autocapitalizationType": "words"})");
    EXPECT_EQ(secure->echoMode(), QLineEdit::Password);
    EXPECT_FALSE(secure->inputMethodHints().testFlag(Qt::ImhNoAutoUppercase));
    const OSTTextField *phone = fieldIn(window, R"({"textType": "phoneNumberValidated"})");
    EXPECT_TRUE(phone->inputMethodHints().testFlag(Qt::ImhDialableCharactersOnly));
    const OSTTextField *pin = fieldIn(window, R"({"textType": "phoneNumberPin", "keyboardType": "emailAddress"})");
    EXPECT_TRUE(pin->isAutoSubmit());
    EXPECT_TRUE(pin->inputMethodHints().testFlag(Qt::ImhDigitsOnly));

    // Insets: the description's, else 10 on the left and 16 on the right with a clear button.
    EXPECT_EQ(fieldIn(window, R"({"clearButtonMode": "always"})")->contentInsets(), QMargins(10, 0, 16, 0));
    EXPECT_EQ(fieldIn(window, R"({})")->contentInsets(), QMargins(10, 0, 0, 0));
    EXPECT_EQ(fieldIn(window, R"({"contentInsets": [1, 2, 3, 4], "clearButtonMode": "always"})")->contentInsets(),
              QMargins(2, 1, 4, 3));
}

TEST(TextField, AlignmentKeysPlaceTheTextAndAWideTextShrinksNoFurtherThanTheMinimumSize)
{
    test::InputWindow window;
    const auto alignmentOf = [&](const char *properties) { return fieldIn(window, properties)->alignment(); };
    EXPECT_EQ(alignmentOf("{}"), Qt::AlignLeft | Qt::AlignVCenter);
    EXPECT_EQ(alignmentOf(R"({"horizontalAlignment": "right"})"), Qt::AlignRight | Qt::AlignVCenter);
    EXPECT_EQ(alignmentOf(R"({"horizontalAlignment": "center", "verticalAlignment": "top"})"), Qt::AlignHCenter | Qt::AlignTop);
    EXPECT_EQ(alignmentOf(R"({"verticalAlignment": "bottom"})"), Qt::AlignLeft | Qt::AlignBottom) << "without an alignment word";
    EXPECT_EQ(alignmentOf(R"({"alignment": "center", "horizontalAlignment": "right"})"), Qt::AlignHCenter | Qt::AlignVCenter)
        << "the alignment word wins";

    OSTTextField *fitting = fieldIn(window, R"({"adjustsFontSizeToFitWidth": true, "minimumFontSize": 12,
                                               "text": {"size": "20"}})");
    OSTTextField *fixed = fieldIn(window, R"({"minimumFontSize": 12, "text": {"size": "20"}})");
    typeInto(fitting, u"Ada"_s);
    EXPECT_EQ(fitting->font().pixelSize(), 20) << "a short text keeps its size";
    typeInto(fitting, u"A rather long name that is wider than the field"_s);
    EXPECT_LT(fitting->font().pixelSize(), 20);
    EXPECT_GE(fitting->font().pixelSize(), 12);
    typeInto(fitting, u"W"_s.repeated(200));
    EXPECT_EQ(fitting->font().pixelSize(), 12) << "no smaller than the minimum";
    typeInto(fitting, u"Ada"_s);
    EXPECT_EQ(fitting->font().pixelSize(), 20) << "back to its size once the text fits";
    typeInto(fixed, u"W"_s.repeated(200));
    EXPECT_EQ(fixed->font().pixelSize(), 20) << "only when asked to";
}

TEST(TextField, PhoneNumbersFormatLiveUnderTheChosenCountry)
{
    test::InputWindow window;
    auto *picker = test::shown<OSTPicker>(new OSTPicker(QRect(0, 0, 300, 40),
            test::pickerOf(R"({"picker": {"pickerType": "countryCode"}})", u"country"_s), &window));
    OSTTextField *phone = fieldIn(window, R"({"textType": "phoneNumberValidated",
        "placeholder": {"text": "Phone number"}})", u"phone"_s);
    const auto model = bindModel(*phone, "false");
    picker->setDelegate(phone);
    EXPECT_EQ(phone->accessibleName(), u"Phone number"_s);
    EXPECT_TRUE(phone->placeholderLabel()->isVisibleTo(phone));

    phone->setFocus();
    QTest::keyClicks(phone, u"5551234567"_s);
    EXPECT_EQ(phone->text(), u"+1 (555) 123-4567"_s);
    EXPECT_FALSE(phone->placeholderLabel()->isVisibleTo(phone));
    EXPECT_EQ(model->value(), u"+1 5551234567"_s) << "the value is normalised";
    QTest::keyClicks(phone, u"89"_s);
    EXPECT_EQ(phone->text(), u"+1 (555) 123-4567"_s) << "a US number stops at ten digits";

    // Typing inside the number keeps the caret after the typed digit.
    phone->setCursorPosition(7);
    QTest::keyClick(phone, Qt::Key_9);
    EXPECT_EQ(phone->text(), u"+1 (555) 912-3456"_s);
    EXPECT_EQ(phone->cursorPosition(), 10);

    // The caret stays out of the code and its blank.
    QTest::keyClick(phone, Qt::Key_Home);
    EXPECT_EQ(phone->cursorPosition(), 3);
    phone->setCursorPosition(1);
    EXPECT_EQ(phone->cursorPosition(), 3);

    // Another country keeps the digits under its own code and format.
    picker->setValue(u"France"_s);
    EXPECT_EQ(phone->text(), u"+33 5559123456"_s);
    EXPECT_EQ(phone->beginningCaretOffset(), 4);

    // A pasted number loses its formatting and its old code.
    phone->selectAll();
    QGuiApplication::clipboard()->setText(u"+33 (6) 12-34 56 78"_s);
    QTest::keyClick(phone, Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(phone->text(), u"+33 612345678"_s);
    EXPECT_EQ(model->value(), u"+33 612345678"_s);

    // Erasing everything leaves an empty field, not a lone code.
    phone->selectAll();
    QTest::keyClick(phone, Qt::Key_Backspace);
    EXPECT_EQ(phone->text(), u""_s);
    EXPECT_TRUE(phone->placeholderLabel()->isVisibleTo(phone));

    // A plain field ignores country choices; so does a phone field told by another kind of picker.
    OSTTextField *plain = fieldIn(window, "{}");
    picker->setDelegate(plain);
    EXPECT_EQ(plain->beginningCaretOffset(), 0);
    OSTTextField *other = fieldIn(window, R"({"textType": "phoneNumber"})");
    other->pickerDidChangeCountry(OSTPickerTypeCustomData, u"United States"_s, u"+1"_s);
    QTest::keyClicks(other, u"5551234"_s);
    EXPECT_EQ(other->text(), u"5551234"_s);
}

TEST(TextField, ReturnAndTabWalkTheInputsInOrderAndTheLastTellsTheScreen)
{
    test::InputWindow window;
    OSTTextField *second = fieldIn(window, R"({"inputOrder": 2})", u"second"_s);
    OSTTextField *first = fieldIn(window, R"({"inputOrder": "1", "toolbar": {}})", u"first"_s);
    auto *third = test::shown<OSTPicker>(new OSTPicker(QRect(0, 100, 200, 40),
            test::pickerOf(R"({"inputOrder": 3, "picker": {"pickerData": ["a"]}})", u"third"_s), &window));
    OSTInput::chainInputs({second, third, first});
    QList<QString> returned;
    for (OSTInput *input : std::initializer_list<OSTInput *>{first, second, third})
        input->setInputProtocolDelegate([&returned](OSTInput &last) { returned.append(last.inputWidget().objectName()); });
    third->setObjectName(u"third"_s);

    first->setFocus();
    QTest::keyClick(first, Qt::Key_Return);
    EXPECT_TRUE(second->hasFocus());
    QTest::keyClick(second, Qt::Key_Tab);
    EXPECT_TRUE(third->hasFocus());
    QTest::keyClick(third, Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_TRUE(second->hasFocus());
    QTest::keyClick(second, Qt::Key_Enter);
    EXPECT_TRUE(third->hasFocus());
    EXPECT_TRUE(returned.isEmpty());
    QTest::keyClick(third, Qt::Key_Return);
    EXPECT_EQ(returned, QList<QString>{u"third"_s});
    EXPECT_FALSE(third->hasFocus());

    // The toolbar's cancel (Escape) gives the focus up without moving on.
    first->setFocus();
    QTest::keyClick(first, Qt::Key_Escape);
    EXPECT_FALSE(first->hasFocus());
    EXPECT_FALSE(second->hasFocus());

    // "enablesReturnKeyAutomatically": return does nothing while the field is empty.
    OSTTextField *guarded = fieldIn(window, R"({"enablesReturnKeyAutomatically": true})");
    int guardedReturns = 0;
    guarded->setInputProtocolDelegate([&guardedReturns](OSTInput &) { ++guardedReturns; });
    guarded->setFocus();
    QTest::keyClick(guarded, Qt::Key_Return);
    EXPECT_EQ(guardedReturns, 0);
    QTest::keyClicks(guarded, u"x"_s);
    QTest::keyClick(guarded, Qt::Key_Return);
    EXPECT_EQ(guardedReturns, 1);
}

TEST(TextField, TheInvalidLookShowsAfterEditingWithItsMessageForAssistiveTechnology)
{
    test::InputWindow window;
    OSTTextField *field = fieldIn(window, R"({"minLength": 3, "maxLength": 10, "backgroundColor": "FFFFFF",
        "states": {"invalid": {"backgroundColor": "FF0000", "text": {"textColor": "#00FF00"}}},
        "text": {"text": "", "textColor": "#000000"}})", u"nickname"_s);
    OSTTextField *next = fieldIn(window, "{}", u"next"_s);
    EXPECT_EQ(field->accessibleName(), u"nickname"_s);
    const auto model = bindModel(*field, {{u"errorMessage"_s, u"Too short."_s}});

    field->setFocus();
    QTest::keyClicks(field, u"ab"_s);
    EXPECT_FALSE(model->isValid());
    EXPECT_FALSE(field->showsInvalidLook()) << "not while typing";
    EXPECT_FALSE(model->shouldShowErrorMessage());
    next->setFocus();
    EXPECT_TRUE(field->showsInvalidLook());
    EXPECT_TRUE(model->shouldShowErrorMessage());
    EXPECT_EQ(field->accessibleDescription(), u"Too short."_s);
    EXPECT_EQ(field->palette().color(QPalette::Text), QColor(0, 255, 0));
    EXPECT_TRUE(test::colorNear(test::pixelAt(test::capture(*field, 1), {295, 20}), QColor(255, 0, 0)))
        << "the invalid look is drawn behind the text";

    field->setFocus();
    EXPECT_FALSE(field->showsInvalidLook());
    EXPECT_EQ(field->palette().color(QPalette::Text), QColor(0, 0, 0));
    QTest::keyClicks(field, u"c"_s);
    next->setFocus();
    EXPECT_TRUE(model->isValid());
    EXPECT_FALSE(field->showsInvalidLook());
    EXPECT_EQ(field->accessibleDescription(), u""_s);
    EXPECT_TRUE(test::colorNear(test::pixelAt(test::capture(*field, 1), {295, 20}), QColor(255, 255, 255)));

    // A restored value shows its errors at once and is not judged again; other types are ignored.
    OSTTextField *rebuilt = fieldIn(window, R"({"minLength": 3, "maxLength": 10})", u"nickname"_s);
    const auto restoredModel = bindModel(*rebuilt, "false"); // held here: the field holds it weakly
    rebuilt->setValue(u"xy"_s);
    EXPECT_EQ(rebuilt->text(), u"xy"_s);
    EXPECT_TRUE(rebuilt->shouldShowErrorMessage());
    EXPECT_TRUE(rebuilt->showsInvalidLook());
    rebuilt->setValue(12);
    EXPECT_EQ(rebuilt->text(), u"xy"_s);
    rebuilt->replaceText(QString());
    EXPECT_EQ(rebuilt->text(), u""_s);
}

TEST(TextField, TheInvalidLooksColourAndFontLeaveWithItWhenTheNormalLookNamesNone)
{
    test::InputWindow window;
    OSTTextField *field = fieldIn(window, R"({"minLength": 3, "maxLength": 10,
        "states": {"invalid": {"text": {"textColor": "#FF0000", "font": "bold", "size": "30"}}}})", u"nickname"_s);
    OSTTextField *next = fieldIn(window, "{}", u"next"_s);
    const auto model = bindModel(*field, {{u"errorMessage"_s, u"Too short."_s}});
    const QColor defaultText = field->palette().color(QPalette::Text);
    const int defaultSize = field->font().pixelSize();
    const auto redPixels = [&] {
        return test::countPixels(test::capture(*field, 1), [](QColor c) { return bool(test::colorNear(c, Qt::red, 60)); });
    };

    field->setFocus();
    QTest::keyClicks(field, u"ab"_s);
    next->setFocus();
    ASSERT_TRUE(field->showsInvalidLook());
    EXPECT_GT(redPixels(), 0) << "the invalid text is red";

    field->setFocus();
    QTest::keyClicks(field, u"c"_s);
    next->setFocus();
    ASSERT_FALSE(field->showsInvalidLook());
    EXPECT_EQ(field->palette().color(QPalette::Text), defaultText);
    EXPECT_EQ(field->font().pixelSize(), defaultSize);
    EXPECT_EQ(redPixels(), 0) << "the fixed text is no longer red";
}

// A screen of the experience document, as the events of a screen name it.
class TestScreen final : public OSTTrackedItem {
public:
    const QString &key() const override { return m_key; }
    const QString &name() const override { return m_name; }
    const QVariantMap &trackingParameters() const override { return m_parameters; }

private:
    QString m_key = u"verify"_s;
    QString m_name = u"Verify"_s;
    QVariantMap m_parameters;
};

TEST(TextField, AVerifiedPINSubmitsItselfAndItsEventReachesTheService)
{
    if (!test::OSTDevServerProcess::isAvailable())
        GTEST_SKIP() << "ostrel-devserver is not built";
    OSTApplication::setLifecycleSource(OSTApplication::LifecycleSource::Host);
    QTemporaryDir bundle;
    test::OSTDevServerProcess server;
    ASSERT_TRUE(server.start());
    server.installMainBundle(bundle.path(), {{u"OstrelToken"_s, u"pin-token"_s}});
    Ostrel::startWithToken(u"pin-token"_s);

    std::atomic<int> verified = -1;
    OSTPhoneNumberManager::sharedManager().validatePhoneNumber(u"15551234567"_s,
                                                               [&verified](bool ok) { verified = ok ? 1 : 0; });
    ASSERT_TRUE(test::waitUntil([&verified] { return verified != -1; }));
    ASSERT_EQ(verified, 1);
    const std::optional<QString> pin = server.verificationPin(u"15551234567"_s);
    ASSERT_TRUE(pin);
    EXPECT_EQ(server.recordedRequests(u"verify_phone_number"_s).first().parameters.value(u"token"_s), u"pin-token"_s)
        << "start-up gives phone verification the SDK token";

    test::InputWindow window;
    OSTTextField *field = fieldIn(window, R"({"textType": "phoneNumberPin"})", u"pin"_s);
    OSTTextField *manual = fieldIn(window, R"({"textType": "phoneNumberPin", "autoSubmit": "no"})", u"manual"_s);
    const auto model = bindModel(*field, "false");
    const auto manualModel = bindModel(*manual, "false");
    const TestScreen screen;
    int submissions = 0;
    field->setInputProtocolDelegate([&submissions, &screen](OSTInput &input) {
        // What the screen does for a PIN field that submits itself.
        const auto &pinField = static_cast<OSTTextField &>(input.inputWidget());
        if (pinField.type() == OSTTextFieldTypePhoneNumberPin && pinField.isAutoSubmit())
            OSTEventHook::sendEvent(OSTInternalEvent::actionTappedEventForTextFieldPINMatch(screen));
        ++submissions;
    });
    int manualSubmissions = 0;
    manual->setInputProtocolDelegate([&manualSubmissions](OSTInput &) { ++manualSubmissions; });

    const QString wrong = u"%1"_s.arg((pin->toInt() + 1) % 10000, 4, 10, QLatin1Char('0'));
    typeInto(field, wrong);
    EXPECT_FALSE(model->isValid());
    EXPECT_EQ(submissions, 0);
    typeInto(field, *pin);
    EXPECT_TRUE(model->isValid());
    EXPECT_EQ(submissions, 1);
    EXPECT_EQ(model->value(), *pin);

    typeInto(manual, *pin);
    EXPECT_TRUE(manualModel->isValid());
    EXPECT_EQ(manualSubmissions, 0) << "auto-submit is off";

    ASSERT_TRUE(test::waitUntil([&server] {
        const QList<QVariantMap> events = server.storedEvents();
        return std::any_of(events.begin(), events.end(),
                           [](const QVariantMap &event) { return event.value(u"action_name"_s) == u"pinMatch"_s; });
    }));
    for (const QVariantMap &event : server.storedEvents()) {
        if (event.value(u"action_name"_s) != u"pinMatch"_s)
            continue;
        EXPECT_EQ(event.value(u"action_type"_s), u"textField"_s);
        EXPECT_EQ(event.value(u"action_id"_s), u"next"_s);
    }
}

} // namespace
} // namespace ostrel
