#include "model/OSTValidationManager.h"

#include "core/OSTLogging.h"
#include "OSTValidationTestFakes.h"
#include "screen/OSTScreenDocument.h"
#include "support/OSTTestSupport.h"

#include <gtest/gtest.h>

#include <memory>

using namespace ostrel;
using namespace ostrel::test;
using namespace Qt::StringLiterals;

namespace {

std::shared_ptr<const OSTScreenDocument> screenDocument(const char *json)
{
    return OSTScreenDocument::read(QString::fromUtf8(json));
}

// A screen view with one text input per element key, the inputs owned by the view as the screen
// view's element views are.
struct ScreenViews {
    std::unique_ptr<FakeScreenView> view = std::make_unique<FakeScreenView>();
    QMap<QString, FakeTextInput *> inputs;

    FakeTextInput &input(const QString &key) { return *inputs.value(key); }
};

ScreenViews attachScreen(OSTValidationManager &manager, const QString &screenKey, const QStringList &inputKeys)
{
    ScreenViews screen;
    OSTValidationManager::Inputs inputs;
    for (const QString &key : inputKeys) {
        screen.inputs.insert(key, new FakeTextInput(screen.view.get()));
        inputs.insert(key, screen.inputs.value(key));
    }
    manager.attachGroup(*screen.view, screenKey, inputs);
    return screen;
}

QStringList itemKeys(const OSTValidationGroupModel &group)
{
    QStringList keys;
    for (const auto &item : group.items())
        keys.append(item->key());
    return keys;
}

const char *const signUpLayout = R"({"inputs": {"email": {"isUnique": "true", "userPropertyName": "email"},
    "password": {"textType": "password"}, "pin": {"textType": "phoneNumberPin", "secureTextEntry": "true"}}})";

// A manager with the sign-up screen registered first, as most cases start.
class ValidationManagerWithSignUp : public ::testing::Test {
protected:
    OSTValidationManager manager;
    const std::shared_ptr<OSTValidationGroupModel> group = registerSignUp(manager);

private:
    static std::shared_ptr<OSTValidationGroupModel> registerSignUp(OSTValidationManager &manager)
    {
        manager.addScreen(u"signup"_s, *screenDocument(signUpLayout));
        return manager.groupModelForKey(u"signup"_s);
    }
};

} // namespace

TEST(ValidationManager, RegistersOneItemPerInputValidatingButtonAndSelectionGroup)
{
    OSTLogging::setLoggingLevel(OSTLoggingLevelWarning);
    OSTValidationManager manager;
    const QString log = captureStandardError([&] {
        manager.addScreen(u"profile"_s, *screenDocument(R"({
            "inputs": {"broken": 5, "email": {"isUnique": "true"}, "password": {"textType": "password"},
                       "phone": {"textType": "phoneNumberValidated"}, "phone2": {"textType": "phoneNumberValidated"},
                       "picker": {"picker": {"pickerData": ["a"]}, "isOptional": "true", "secureTextEntry": "yes"},
                       "pin": {"textType": "phoneNumberPin", "secureTextEntry": "true"},
                       "secret": {"secureTextEntry": "yes"}},
            "buttons": {"agree": {"buttonType": "toggleSwitch"}, "next": {"title": "Next"}, "oddType": {"buttonType": 3},
                        "optionA": {"buttonType": "toggle"}, "optionB": {"buttonType": "toggle"},
                        "optionC": {"buttonType": "toggle"}},
            "selectionGroups": {"choice": {"elements": {"optionA": "a", "optionB": "b", "optionC": []}},
                                "loose": {"elements": "optionA"}}})"));
    });
    EXPECT_TRUE(log.contains(u"Ostrel Warning: Ignoring \"broken\" in \"inputs\""_s)) << log.toStdString();

    ASSERT_EQ(manager.groups().size(), 1u);
    const auto group = manager.groupModelForKey(u"profile"_s);
    ASSERT_TRUE(group);
    EXPECT_EQ(itemKeys(*group), (QStringList{u"email"_s, u"password"_s, u"phone"_s, u"phone2"_s, u"picker"_s, u"pin"_s,
                                             u"secret"_s, u"agree"_s, u"choice"_s, u"loose"_s}))
        << "plain buttons and the buttons a selection group lists, whatever their value, have no item";
    EXPECT_EQ(group->itemModelForKey(u"password"_s)->visibilityLevel(), OSTVisibilityLevel::Secret);
    EXPECT_EQ(group->itemModelForKey(u"secret"_s)->visibilityLevel(), OSTVisibilityLevel::Secret);
    EXPECT_EQ(group->itemModelForKey(u"pin"_s)->visibilityLevel(), OSTVisibilityLevel::Transient);
    EXPECT_EQ(group->itemModelForKey(u"email"_s)->visibilityLevel(), OSTVisibilityLevel::Savable);
    EXPECT_TRUE(group->itemModelForKey(u"picker"_s)->isOptional()) << "pickers take their settings too";
    EXPECT_EQ(group->itemModelForKey(u"picker"_s)->visibilityLevel(), OSTVisibilityLevel::Secret);
    EXPECT_EQ(manager.phoneNumberItemOfGroupWithKey(u"profile"_s), group->itemModelForKey(u"phone2"_s))
        << "the last validated phone field wins";

    EXPECT_EQ(manager.groupModelForKey(u"unknown"_s), nullptr);
    EXPECT_EQ(manager.phoneNumberItemOfGroupWithKey(u"unknown"_s), nullptr);
    EXPECT_TRUE(manager.uniqueFieldsOfGroupWithKey(u"unknown"_s).isEmpty());
    EXPECT_TRUE(manager.allSavableFieldsOfGroupWithKey(u"unknown"_s).isEmpty());

    manager.addScreen(u"blank"_s, *screenDocument(R"({"inputs": [1, 2], "buttons": "none"})"));
    EXPECT_TRUE(manager.groupModelForKey(u"blank"_s)->items().empty());
    EXPECT_TRUE(manager.groupModelForKey(u"blank"_s)->isValid());
}

TEST_F(ValidationManagerWithSignUp, RegisteringAScreenAgainKeepsTheFirstGroupAndItsValues)
{
    {
        ScreenViews screen = attachScreen(manager, u"signup"_s, {u"email"_s});
        screen.input(u"email"_s).type(u"ada@example.com"_s);
    }

    manager.addScreen(u"signup"_s, *screenDocument(R"({"inputs": {"other": {}}})"));
    ASSERT_EQ(manager.groups().size(), 1u);
    EXPECT_EQ(manager.groupModelForKey(u"signup"_s), group);
    EXPECT_EQ(itemKeys(*group), (QStringList{u"email"_s, u"password"_s, u"pin"_s}));
    EXPECT_EQ(group->itemModelForKey(u"email"_s)->value(), QVariant(u"ada@example.com"_s));
    EXPECT_TRUE(group->itemModelForKey(u"email"_s)->isValid());
}

TEST_F(ValidationManagerWithSignUp, AttachingBindsViewsAndRestoresValuesIntoRebuiltInputs)
{
    const auto email = group->itemModelForKey(u"email"_s);

    ScreenViews first = attachScreen(manager, u"signup"_s, {u"email"_s, u"password"_s});
    EXPECT_EQ(first.view->model(), group);
    EXPECT_EQ(group->group(), first.view.get());
    EXPECT_EQ(first.input(u"email"_s).model(), email);
    EXPECT_EQ(email->item(), &first.input(u"email"_s));
    EXPECT_EQ(first.input(u"email"_s).validityChangedCount, 1) << "each input is told once on attach";
    EXPECT_EQ(first.view->validityChangedCount, 1);
    EXPECT_EQ(group->itemModelForKey(u"pin"_s)->item(), nullptr) << "an input missing from the view is skipped";
    EXPECT_FALSE(first.input(u"email"_s).showsErrorMessage) << "nothing to restore yet";

    first.input(u"email"_s).type(u"ada@example.com"_s);
    first.input(u"password"_s).type(u"secret"_s);
    first.view.reset();
    EXPECT_EQ(email->item(), nullptr);
    EXPECT_EQ(group->group(), nullptr);

    ScreenViews second = attachScreen(manager, u"signup"_s, {u"email"_s, u"password"_s});
    EXPECT_EQ(second.input(u"email"_s).text(), u"ada@example.com"_s);
    EXPECT_EQ(second.input(u"password"_s).text(), u"secret"_s);
    EXPECT_TRUE(second.input(u"email"_s).showsErrorMessage) << "a restored value shows its errors at once";
    EXPECT_EQ(second.input(u"email"_s).model(), email);
    EXPECT_TRUE(email->isValid()) << "restoring keeps the validity the item had";
    EXPECT_EQ(manager.allFields(),
              (QVariantMap{{u"email"_s, u"ada@example.com"_s}, {u"password"_s, u"secret"_s}}));

    FakeAlwaysValidInput pinInput;
    FakeScreenView pinView;
    manager.attachGroup(pinView, u"signup"_s, {{u"pin"_s, &pinInput}, {u"email"_s, nullptr}});
    EXPECT_TRUE(group->itemModelForKey(u"pin"_s)->isValid()) << "an input may judge itself when it gets its model";
    EXPECT_EQ(group->group(), &pinView);

    FakeScreenView strayView;
    manager.attachGroup(strayView, u"unknown"_s, {});
    EXPECT_EQ(strayView.model(), nullptr);
    EXPECT_EQ(strayView.validityChangedCount, 0);
}

TEST_F(ValidationManagerWithSignUp, DestroyedScreenViewsAndInputsAreNeverTouched)
{
    ScreenViews screen = attachScreen(manager, u"signup"_s, {u"email"_s, u"password"_s});
    screen.input(u"email"_s).type(u"ada@example.com"_s);

    // The view goes first while its inputs live on (the screen controller dropped it).
    FakeTextInput &password = screen.input(u"password"_s);
    password.setParent(nullptr);
    const std::unique_ptr<FakeTextInput> orphanedPassword(&password);
    screen.view.reset();
    orphanedPassword->type(u"secret"_s);
    EXPECT_EQ(manager.allFields(),
              (QVariantMap{{u"email"_s, u"ada@example.com"_s}, {u"password"_s, u"secret"_s}}));

    OSTValidationResult result;
    result.invalidateField(u"email"_s, u"Already registered."_s);
    result.invalidateField(u"password"_s);
    manager.handleValidationResult(result, u"signup"_s);
    EXPECT_EQ(group->itemModelForKey(u"email"_s)->errorMessage(), u"Already registered."_s);
    EXPECT_EQ(orphanedPassword->validityChangedCount, 3) << "on attach, valid on typing, invalid from the result";

    OSTValidationResult flowResult;
    flowResult.invalidateWithErrorMessage(u"Sign-up failed."_s);
    manager.handleValidationResult(flowResult);
    EXPECT_EQ(group->errorMessage(), u"Sign-up failed."_s);
    EXPECT_EQ(group->stateSensitiveErrorMessage(), u"Sign-up failed."_s);
    EXPECT_EQ(manager.allFields(),
              (QVariantMap{{u"email"_s, u"ada@example.com"_s}, {u"password"_s, u"secret"_s}}))
        << "the models keep their values";
}

TEST_F(ValidationManagerWithSignUp, FieldCollectionsAcrossScreens)
{
    manager.addScreen(u"about"_s, *screenDocument(R"({"inputs": {
        "nickname": {"userPropertyName": "email", "isUnique": "true"}, "city": {}}})"));
    ScreenViews signUp = attachScreen(manager, u"signup"_s, {u"email"_s, u"password"_s, u"pin"_s});
    signUp.input(u"email"_s).type(u"ada@example.com"_s);
    signUp.input(u"password"_s).type(u"secret"_s);
    signUp.input(u"pin"_s).type(u"1234"_s);
    ScreenViews about = attachScreen(manager, u"about"_s, {u"nickname"_s, u"city"_s});
    about.input(u"nickname"_s).type(u"ada@later.example"_s);

    EXPECT_EQ(manager.uniqueFieldsOfGroupWithKey(u"signup"_s), (QVariantMap{{u"email"_s, u"ada@example.com"_s}}));
    EXPECT_EQ(manager.allSavableFieldsOfGroupWithKey(u"signup"_s), (QVariantMap{{u"email"_s, u"ada@example.com"_s}}))
        << "neither the password nor the PIN is saved";
    EXPECT_EQ(manager.allFields(), (QVariantMap{{u"email"_s, u"ada@later.example"_s}, {u"password"_s, u"secret"_s}}))
        << "the later screen wins a shared name; the PIN never leaves its screen; empty fields are left out";
    EXPECT_EQ(manager.allSavableFields(), (QVariantMap{{u"email"_s, u"ada@later.example"_s}}));
    EXPECT_EQ(manager.allFieldsUpToGroupWithKey(u"signup"_s),
              (QVariantMap{{u"email"_s, u"ada@example.com"_s}, {u"password"_s, u"secret"_s}}));
    EXPECT_EQ(manager.allFieldsUpToGroupWithKey(u"unknown"_s), manager.allFields());
    EXPECT_TRUE(OSTValidationManager().allFields().isEmpty());
}

TEST(ValidationManager, ResultForOneScreenAppliesMessagePrecedencePerInput)
{
    OSTValidationManager manager;
    manager.addScreen(u"profile"_s, *screenDocument(R"({"inputs": {"a": {"errorMessage": "Own message of a."}, "b": {}, "c": {}}})"));
    ScreenViews screen = attachScreen(manager, u"profile"_s, {u"a"_s, u"b"_s, u"c"_s});
    for (FakeTextInput *input : screen.inputs) {
        input->type(u"text"_s);
        input->showsErrorMessage = true;
    }
    const auto group = manager.groupModelForKey(u"profile"_s);
    const auto itemA = group->itemModelForKey(u"a"_s);
    const auto itemB = group->itemModelForKey(u"b"_s);

    OSTValidationResult withMessages;
    withMessages.invalidateField(u"a"_s, u"a is taken."_s);
    withMessages.invalidateField(u"b"_s);
    withMessages.invalidateField(u"nowhere"_s);
    withMessages.invalidateWithErrorMessage(u"Check the marked fields."_s);
    manager.handleValidationResult(withMessages, u"profile"_s);
    EXPECT_EQ(itemA->errorMessage(), u"a is taken."_s) << "a per-field message comes first";
    EXPECT_EQ(itemB->errorMessage(), u"Check the marked fields."_s) << "then the result's default";
    EXPECT_FALSE(itemA->isValid());
    EXPECT_TRUE(group->itemModelForKey(u"c"_s)->isValid()) << "fields not named are left alone";
    EXPECT_EQ(screen.view->shownMessage, u"a is taken."_s);

    OSTValidationResult bare;
    bare.invalidateField(u"a"_s);
    bare.invalidateField(u"b"_s);
    manager.handleValidationResult(bare, u"profile"_s);
    EXPECT_EQ(itemA->errorMessage(), u"Own message of a."_s) << "then the input's own message";
    EXPECT_EQ(itemB->errorMessage(), u"Invalid input."_s) << "then the fixed default";

    OSTValidationResult other;
    other.invalidateField(u"c"_s);
    manager.handleValidationResult(other, u"unknown"_s);
    manager.handleValidationResult(std::nullopt, u"profile"_s);
    EXPECT_TRUE(group->itemModelForKey(u"c"_s)->isValid()) << "an unknown screen or no result changes nothing";
}

TEST_F(ValidationManagerWithSignUp, FlowResultWithoutFieldsGoesToTheLastScreenUntilAnyValidityIsSet)
{
    manager.addScreen(u"about"_s, *screenDocument(R"({"inputs": {"city": {}, "street": {}}})"));
    ScreenViews about = attachScreen(manager, u"about"_s, {u"city"_s, u"street"_s});
    ScreenViews signUp = attachScreen(manager, u"signup"_s, {u"email"_s});
    manager.addScreen(u"signup"_s, *screenDocument(signUpLayout));
    about.input(u"city"_s).type(u"Paris"_s);
    about.input(u"street"_s).type(u"Rue de Rivoli"_s);
    const int signUpNotifications = signUp.view->validityChangedCount;
    const int aboutNotifications = about.view->validityChangedCount;
    const auto aboutGroup = manager.groupModelForKey(u"about"_s);
    ASSERT_TRUE(aboutGroup->isValid());

    manager.handleValidationResult(std::nullopt);
    manager.handleValidationResult(OSTValidationResult());
    EXPECT_EQ(about.view->validityChangedCount, aboutNotifications) << "no result or a valid one does nothing";

    OSTValidationResult result;
    result.invalidateWithErrorMessage(u"Sign-up failed."_s);
    manager.handleValidationResult(result);
    EXPECT_EQ(about.view->shownMessage, u"Sign-up failed."_s)
        << "on the last registered screen (registering again does not move a screen), although every item is valid";
    EXPECT_EQ(aboutGroup->stateSensitiveErrorMessage(), u"Sign-up failed."_s);
    EXPECT_NE(group->errorMessage(), u"Sign-up failed."_s);
    EXPECT_EQ(signUp.view->validityChangedCount, signUpNotifications) << "earlier screens hear nothing";

    const auto street = aboutGroup->itemModelForKey(u"street"_s);
    street->setValid(true);
    EXPECT_FALSE(about.view->shownMessage) << "setting any item's validity clears it, even unchanged";
    EXPECT_TRUE(aboutGroup->isValid());
}

TEST_F(ValidationManagerWithSignUp, FlowResultWithFieldsReachesEveryScreenAndFieldsRecoverTheirDefaults)
{
    manager.addScreen(u"confirm"_s, *screenDocument(R"({"inputs": {
        "again": {"userPropertyName": "email", "errorMessage": "Repeat your e-mail address."}}})"));
    ScreenViews signUp = attachScreen(manager, u"signup"_s, {u"email"_s});
    ScreenViews confirm = attachScreen(manager, u"confirm"_s, {u"again"_s});
    signUp.input(u"email"_s).type(u"ada@example.com"_s);
    confirm.input(u"again"_s).type(u"ada@example.com"_s);
    confirm.input(u"again"_s).showsErrorMessage = true;
    const auto again = manager.groupModelForKey(u"confirm"_s)->itemModelForKey(u"again"_s);
    const auto email = group->itemModelForKey(u"email"_s);

    OSTValidationResult result;
    result.invalidateField(u"email"_s, u"Already registered."_s);
    manager.handleValidationResult(result);
    EXPECT_FALSE(email->isValid());
    EXPECT_FALSE(again->isValid());
    EXPECT_EQ(email->errorMessage(), u"Already registered."_s);
    EXPECT_EQ(confirm.view->shownMessage, u"Already registered."_s);

    confirm.input(u"again"_s).type(u"ada@elsewhere.example"_s);
    EXPECT_TRUE(again->isValid());
    EXPECT_FALSE(confirm.view->shownMessage);
    confirm.input(u"again"_s).type(QString());
    EXPECT_EQ(confirm.view->shownMessage, u"Repeat your e-mail address."_s)
        << "once valid again the result's message is dropped for the field's own";
    EXPECT_EQ(email->errorMessage(), u"Already registered."_s) << "the other screen's field still carries it";
}
