#include "screen/OSTButtonDescription.h"
#include "screen/OSTImageDescription.h"
#include "screen/OSTLabelDescription.h"
#include "screen/OSTPickerDescription.h"
#include "screen/OSTScreenDocument.h"
#include "screen/OSTScreenVocabulary.h"
#include "screen/OSTSelectionGroupDescription.h"
#include "screen/OSTSwitchDescription.h"
#include "screen/OSTTextFieldDescription.h"
#include "screen/OSTValidationSettings.h"
#include "support/OSTTestSupport.h"

#include "OSTScreenDocumentLayoutCheck.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

using namespace ostrel;
using ostrel::test::jsonObject;
using namespace Qt::StringLiterals;

namespace {

std::shared_ptr<const OSTScreenDocument> documentOf(const char *json)
{
    auto document = OSTScreenDocument::read(QString::fromUtf8(json));
    EXPECT_TRUE(document) << json;
    return document;
}

template <typename Description>
std::shared_ptr<const Description> only(const std::shared_ptr<const OSTScreenDocument> &document, const QString &category)
{
    const auto elements = document->elements(category);
    EXPECT_EQ(elements.size(), 1);
    return elements.isEmpty() ? nullptr : std::dynamic_pointer_cast<const Description>(elements.first());
}

QStringList keysOf(const QList<std::shared_ptr<const OSTElementDescription>> &elements)
{
    QStringList keys;
    for (const auto &element : elements)
        keys.append(element->key());
    return keys;
}

} // namespace

TEST(ScreenDocument, TextThatIsNoJsonObjectIsRefusedWithItsReason)
{
    const struct {
        const char *text;
        const char *reason;
    } cases[] = {
        {"", "does not parse"}, {"{\"labels\": ", "does not parse"}, {"[1, 2]", "is not an object"},
        {"\"screen\"", "does not parse"}, {"42", "does not parse"},
    };
    for (const auto &each : cases) {
        QString error;
        EXPECT_FALSE(OSTScreenDocument::read(QString::fromUtf8(each.text), &error)) << each.text;
        EXPECT_TRUE(error.contains(QString::fromUtf8(each.reason))) << each.text << ": " << error.toStdString();
    }
    QString error = u"untouched"_s;
    EXPECT_TRUE(OSTScreenDocument::read(u"{}"_s, &error));
    EXPECT_TRUE(error.isEmpty());
}

TEST(ScreenDocument, ElementsComeByCategoryInKeyOrderAndEntriesThatAreNoObjectAreNoElements)
{
    const auto document = documentOf(R"({"labels": {"b": {}, "a": {}, "c": "text", "d": 5},
        "shapes": {"background": {}}, "buttons": [], "images": {"i": {"image": 7}}})");
    EXPECT_EQ(keysOf(document->elements(u"labels"_s)), (QStringList{u"a"_s, u"b"_s}));
    EXPECT_EQ(keysOf(document->elements(u"shapes"_s)), QStringList{u"background"_s});
    EXPECT_TRUE(document->elements(u"buttons"_s).isEmpty());
    EXPECT_TRUE(document->elements(u"unknown"_s).isEmpty());
    EXPECT_EQ(document->elements(u"images"_s).first()->kind(), OSTElementKind::Image);
}

TEST(ScreenDocument, FramesTakeStringFormulasOnlyAndLayersTruncatedNumbers)
{
    const auto document = documentOf(R"({"shapes": {
        "plain": {},
        "set": {"x": "10", "y": "a.y + 2", "width": "50%", "height": "h", "anchored": "NO", "zLayer": "12.9"},
        "wrong": {"x": 10, "y": true, "width": null, "height": [], "anchored": false, "zLayer": -3},
        "huge": {"zLayer": 1e300, "anchored": "yes"}}})");
    QHash<QString, OSTElementFrame> frames;
    for (const auto &shape : document->elements(u"shapes"_s))
        frames.insert(shape->key(), shape->frame());
    const OSTElementFrame defaults;
    EXPECT_EQ(frames.value(u"plain"_s), defaults);
    EXPECT_EQ(frames.value(u"wrong"_s), defaults) << "other types read as absent";
    const OSTElementFrame set = frames.value(u"set"_s);
    EXPECT_EQ(QStringList({set.x, set.y, set.width, set.height}),
              QStringList({u"10"_s, u"a.y + 2"_s, u"50%"_s, u"h"_s}));
    EXPECT_FALSE(set.anchored);
    EXPECT_EQ(set.zLayer, 12);
    EXPECT_EQ(frames.value(u"huge"_s).zLayer, std::nullopt);
    EXPECT_TRUE(frames.value(u"huge"_s).anchored);

    const auto &entries = document->layoutEntries();
    EXPECT_EQ(entries.value(u"plain"_s).zLayer, 200) << "a shape's default layer";
    EXPECT_EQ(entries.value(u"set"_s).zLayer, 12);

    const struct {
        const char *json;
        std::optional<qint64> zLayer;
        bool anchored;
    } readings[] = {
        {R"({"zLayer": "1,250"})", 1250, true}, // the "en_US" decimal reading
        {R"({"zLayer": "12abc"})", std::nullopt, true},
        {R"({"zLayer": -0.5})", 0, true},
        {R"({"zLayer": true})", 1, true}, // a JSON boolean is a number
        {R"({"anchored": "  -0001"})", std::nullopt, true},
        {R"({"anchored": "00"})", std::nullopt, false},
        {R"({"anchored": true})", std::nullopt, true}, // not a string: the default
    };
    for (const auto &reading : readings) {
        const OSTElementFrame frame = OSTElementFrame::fromProperties(jsonObject(reading.json));
        EXPECT_EQ(frame.zLayer, reading.zLayer) << reading.json;
        EXPECT_EQ(frame.anchored, reading.anchored) << reading.json;
    }
}

TEST(ScreenDocument, BoxesAlphaAndShadowsReadVisualValuesFromStringsOnly)
{
    const auto document = documentOf(R"({"backgroundColor": "#FF0000", "shapes": {
        "a": {"alpha": "0.5", "borderSize": "2", "borderColor": "#00F", "cornerRadius": "circle",
              "objectShadow": ["#000", "4", 1, "2"]},
        "b": {"alpha": 0.5, "borderSize": 2, "borderColor": "#00F", "cornerRadius": 8, "backgroundColor": 5,
              "objectShadow": ["#000", 0, 1, 2]},
        "c": {"alpha": "7", "borderSize": "3", "cornerRadius": "4.5",
              "backgroundGradient": {"baseColor": "#FFF", "colors": ["#000", 1], "style": "horizontal"}},
        "d": {"alpha": "-2", "backgroundGradient": {"colors": [], "radius": "20", "style": "horizontal"}}}})");
    EXPECT_EQ(document->backdrop()->box().fillColor, QColor(255, 0, 0));
    QHash<QString, std::shared_ptr<const OSTElementDescription>> shapes;
    for (const auto &shape : document->elements(u"shapes"_s))
        shapes.insert(shape->key(), shape);

    const auto &a = *shapes.value(u"a"_s);
    EXPECT_EQ(a.alpha(), 0.5);
    EXPECT_EQ(a.box().borderWidth, 2);
    EXPECT_EQ(a.box().borderColor, QColor(0, 0, 255));
    EXPECT_EQ(a.box().cornerStyle, OSTBoxLook::CornerStyle::Circle);
    EXPECT_EQ(a.objectShadow(), (OSTShadow{QColor(0, 0, 0), 4, QPointF(1, 2)}));

    EXPECT_EQ(shapes.value(u"b"_s)->alpha(), 1) << "a JSON number is no visual value";
    EXPECT_EQ(shapes.value(u"b"_s)->box(), OSTBoxLook()) << "numbers read as absent";
    EXPECT_EQ(shapes.value(u"b"_s)->objectShadow(), std::nullopt) << "no blur, no drop shadow";

    const auto &c = *shapes.value(u"c"_s);
    EXPECT_EQ(c.alpha(), 1) << "clamped";
    EXPECT_EQ(c.box().borderWidth, 0) << "no border without a colour";
    EXPECT_EQ(c.box().cornerRadius, 4.5);
    EXPECT_EQ(c.box().fillColor, QColor(255, 255, 255));
    ASSERT_TRUE(c.box().gradient);
    EXPECT_EQ(c.box().gradient->colors, (QList<QColor>{QColor(0, 0, 0), QColor(Qt::transparent)}));
    EXPECT_EQ(c.box().gradient->direction, OSTBoxLook::GradientDirection::Horizontal);

    const auto &d = *shapes.value(u"d"_s);
    EXPECT_EQ(d.alpha(), 0);
    EXPECT_EQ(d.box().gradient->radius, 20);
    EXPECT_EQ(d.box().gradient->direction, OSTBoxLook::GradientDirection::Vertical) << "a radial one has none";
}

TEST(ScreenDocument, ObjectShadowsNeedAPositiveRadiusButNotAVisibleColour)
{
    const auto shadowFor = [](const char *json) {
        return OSTElementDescription(OSTElementKind::Shape, u"s"_s, jsonObject(json)).objectShadow();
    };
    // Too short, a colour that is no string, not an array.
    for (const char *json : {R"({"objectShadow": ["#000000", "4", "0"]})", R"({"objectShadow": [0, "4", "0", "2"]})",
                             R"({"objectShadow": ["#000000", "-3", "0", "2"]})", R"({"objectShadow": {"color": "#000"}})"})
        EXPECT_FALSE(shadowFor(json)) << json;
    const auto clear = shadowFor(R"({"objectShadow": ["#0000", 4, "0", "2"]})");
    ASSERT_TRUE(clear) << "a clear colour does not cancel the shadow";
    EXPECT_EQ(clear->color.alpha(), 0);
    EXPECT_EQ(clear->blurRadius, 4) << "numbers are accepted inside the array";
}

TEST(ScreenDocument, LabelsAndImagesReadTheirTextsAndSources)
{
    const auto document = documentOf(R"({
        "labels": {"l": {"text": "Hi", "textColor": "#0F0", "alignment": "left", "style": "underlined",
                         "lineSpacing": "5000", "minimumScaleFactor": "0.5", "shadow": ["#000", "2", "1", "1"]}},
        "images": {"i": {"image": "{avatar}", "tempImage": "https://x.test/a b.png", "backupImage": "https://x.test/b.png",
                         "required": "YES", "contentMode": "aspectFit", "insets": ["1", 2, 3, "x"]}}})");
    const auto label = only<OSTLabelDescription>(document, u"labels"_s);
    EXPECT_EQ(label->text(), u"Hi"_s);
    EXPECT_EQ(label->textLook().textColor, QColor(0, 255, 0));
    EXPECT_TRUE(label->textLook().hasTextColor);
    EXPECT_EQ(label->textLook().alignment, NSTextAlignmentLeft);
    EXPECT_TRUE(label->textLook().underlined);
    EXPECT_EQ(label->textLook().lineSpacing, 1000) << "held to 1000";
    EXPECT_EQ(label->minimumScaleFactor(), 0.5);
    EXPECT_TRUE(label->textLook().shadow);

    const auto image = only<OSTImageDescription>(document, u"images"_s);
    EXPECT_EQ(image->source().referencedUserProperty(), u"avatar"_s);
    EXPECT_TRUE(image->source().required);
    EXPECT_EQ(image->source().contentMode, UIViewContentModeScaleAspectFit);
    EXPECT_EQ(image->source().capInsets, std::nullopt) << "one inset does not read";
    EXPECT_EQ(image->source().candidateURLs({{u"avatar"_s, u"https://x.test/me.png"_s}}),
              (QList<QUrl>{QUrl(u"https://x.test/me.png"_s), QUrl(u"https://x.test/a%20b.png"_s),
                           QUrl(u"https://x.test/b.png"_s)}));
    EXPECT_EQ(image->source().candidateURLs({{u"avatar"_s, 5}}).size(), 2) << "only a text is an address";
}

TEST(ScreenDocument, ButtonStatesAreLaidOverTheNormalLookWhichIsLaidOverTheButton)
{
    const auto document = documentOf(R"({"buttons": {"b": {
        "textColor": "#111", "alignment": "left", "alpha": 0.25, "objectShadow": ["#000", "3", "0", "0"],
        "onClick": {"action": "next"}, "buttonType": "toggle", "userPropertyName": "choice",
        "states": {"normal": {"text": "Go", "backgroundColor": "#222"},
                   "pressed": {"text": "Going", "alignment": "right", "image": "https://x.test/p.png"},
                   "disabled": "grey"}}}})");
    const auto button = only<OSTButtonDescription>(document, u"buttons"_s);
    ASSERT_TRUE(button && button->states());
    EXPECT_EQ(button->kind(), OSTElementKind::Button);
    EXPECT_TRUE(button->isToggle());
    EXPECT_EQ(button->buttonAlpha(), 0.25) << "a button's alpha may be a number";
    EXPECT_TRUE(button->buttonShadow());
    EXPECT_TRUE(button->action());
    ASSERT_TRUE(button->validation());
    EXPECT_EQ(button->validation()->userPropertyName, u"choice"_s);

    const auto &states = *button->states();
    EXPECT_EQ(states.normal.title, u"Go"_s);
    EXPECT_EQ(states.normal.textLook.textColor, QColor(0x11, 0x11, 0x11));
    EXPECT_EQ(states.normal.background->box().fillColor, QColor(0x22, 0x22, 0x22));
    EXPECT_EQ(states.normal.background->objectShadow(), std::nullopt) << "the button casts it";
    ASSERT_TRUE(states.pressed);
    EXPECT_EQ(states.pressed->title, u"Going"_s);
    EXPECT_EQ(states.pressed->textLook.alignment, NSTextAlignmentLeft) << "always the normal alignment";
    EXPECT_EQ(states.pressed->background->box().fillColor, QColor(0x22, 0x22, 0x22)) << "inherited";
    EXPECT_EQ(states.pressed->background->source().candidateURLs({}).size(), 1);
    EXPECT_FALSE(states.disabled) << "a state that is no object is absent";

    const auto unaligned = only<OSTButtonDescription>(
        documentOf(R"({"buttons": {"b": {"states": {"normal": {"text": "Go"}, "pressed": {"alignment": "right"}}}}})"),
        u"buttons"_s);
    ASSERT_TRUE(unaligned && unaligned->states() && unaligned->states()->pressed);
    EXPECT_EQ(unaligned->states()->pressed->textLook.alignment, NSTextAlignmentCenter)
        << "a pressed alignment is dropped even when the normal state names none";
}

TEST(ScreenDocument, ButtonTypesChooseTheDescription)
{
    const auto document = documentOf(R"({"buttons": {
        "plain": {"states": {}},
        "none": {"text": "no states"},
        "picture": {"buttonType": "imageUpload", "states": {}, "imageSelector": {"photosText": "Library", "cancelText": 3}},
        "switch": {"buttonType": "toggleSwitch", "defaultState": "pressed", "onTintColor": "#0F0", "tintColor": 4}}})");
    QHash<QString, std::shared_ptr<const OSTElementDescription>> buttons;
    for (const auto &button : document->elements(u"buttons"_s))
        buttons.insert(button->key(), button);
    const auto plain = std::dynamic_pointer_cast<const OSTButtonDescription>(buttons.value(u"plain"_s));
    EXPECT_TRUE(plain->states());
    EXPECT_FALSE(plain->validation()) << "plain buttons are no inputs";
    EXPECT_FALSE(std::dynamic_pointer_cast<const OSTButtonDescription>(buttons.value(u"none"_s))->states());

    const auto picture = std::dynamic_pointer_cast<const OSTButtonDescription>(buttons.value(u"picture"_s));
    EXPECT_EQ(picture->kind(), OSTElementKind::PictureButton);
    EXPECT_EQ(picture->imageSelector()->photosText, u"Library"_s);
    EXPECT_EQ(picture->imageSelector()->cancelText, u"Cancel"_s);

    const auto toggle = std::dynamic_pointer_cast<const OSTSwitchDescription>(buttons.value(u"switch"_s));
    ASSERT_TRUE(toggle);
    EXPECT_TRUE(toggle->isInitiallyOn());
    EXPECT_EQ(toggle->onTintColor(), QColor(0, 255, 0));
    EXPECT_FALSE(toggle->tintColor().isValid()) << "the control's own";
}

TEST(ScreenDocument, TextFieldsReadFlagsFromBooleansOrStringsAndNumbersFromNumbersOrStrings)
{
    const auto document = documentOf(R"({"inputs": {
        "a": {"secureTextEntry": true, "adjustsFontSizeToFitWidth": "YES", "maxLength": "3", "minLength": 9,
              "inputOrder": 1e12, "keyboardType": "emailAddress", "text": {"text": "start", "textColor": "#F00",
              "textAlignment": "right", "contentInsets": [1, 2, 3, 4]},
              "states": {"invalid": {"text": {"textColor": "#00F"}, "backgroundColor": "#FFF"}},
              "placeholder": {"text": "Name"}, "toolbar": {"barStyle": "translucent"}},
        "pin": {"textType": "phoneNumberPin", "autoSubmit": "no", "maxLength": "x", "secureTextEntry": "YES"},
        "phone": {"textType": "phoneNumberValidated", "maxLength": 99, "minLength": -5}}})");
    QHash<QString, std::shared_ptr<const OSTTextFieldDescription>> fields;
    for (const auto &field : document->elements(u"inputs"_s))
        fields.insert(field->key(), std::dynamic_pointer_cast<const OSTTextFieldDescription>(field));

    const auto &a = *fields.value(u"a"_s);
    EXPECT_TRUE(a.isSecureTextEntry());
    EXPECT_TRUE(a.adjustsFontSizeToFitWidth());
    EXPECT_EQ(a.maxLength(), 3);
    EXPECT_EQ(a.minLength(), 3) << "held to the maximum";
    EXPECT_EQ(a.inputOrder(), std::numeric_limits<int>::max());
    EXPECT_EQ(a.keyboardType(), UIKeyboardTypeEmailAddress);
    EXPECT_EQ(a.initialText(), u"start"_s);
    EXPECT_EQ(a.normalLook().textLook.textColor, QColor(255, 0, 0));
    EXPECT_EQ(a.normalLook().alignmentWord, u"right"_s);
    EXPECT_EQ(a.normalLook().contentInsets, QMargins(2, 1, 4, 3));
    EXPECT_EQ(a.invalidLook().textLook.textColor, QColor(0, 0, 255)) << "the invalid state wins";
    EXPECT_EQ(a.invalidLook().contentInsets, QMargins(2, 1, 4, 3)) << "merged to any depth";
    EXPECT_EQ(a.invalidLook().box.fillColor, QColor(255, 255, 255));
    EXPECT_EQ(a.placeholder()->text(), u"Name"_s);
    EXPECT_TRUE(a.toolbar()->translucent);
    EXPECT_EQ(a.valueVisibility(), OSTTextFieldDescription::ValueVisibility::Plain)
        << "the validation reads only a string as secret";

    const auto &pin = *fields.value(u"pin"_s);
    EXPECT_EQ(pin.maxLength(), 4);
    EXPECT_FALSE(pin.autoSubmits());
    EXPECT_EQ(pin.valueVisibility(), OSTTextFieldDescription::ValueVisibility::Transient);

    const auto &phone = *fields.value(u"phone"_s);
    EXPECT_EQ(phone.maxLength(), 14);
    EXPECT_EQ(phone.minLength(), -5);
    EXPECT_EQ(phone.valueVisibility(), OSTTextFieldDescription::ValueVisibility::PhoneNumberToVerify);
    EXPECT_EQ(phone.validation().errorMessage, u"Invalid input."_s);
    EXPECT_EQ(phone.validation().userPropertyName, u"phone"_s);
}

TEST(ScreenDocument, PickersReadTheirWheelAndSelectionGroupsTheirMembers)
{
    const auto document = documentOf(R"({"inputs": {"p": {"picker": {"pickerData": ["a", 1, "b"], "startDate": "02/03/2020"},
            "text": {"text": "Choose"}, "objectShadow": ["#000", "2", "0", "0"], "isOptional": "true"}},
        "selectionGroups": {"g": {"elements": {"x": "1", "y": 2, "z": {"k": 1}, "w": true, "v": []},
            "minimumSelection": "2", "maximumSelection": -4}, "bad": 3}})");
    const auto picker = only<OSTPickerDescription>(document, u"inputs"_s);
    ASSERT_TRUE(picker);
    EXPECT_EQ(picker->wheel().type, OSTPickerTypeCustomData);
    EXPECT_EQ(picker->wheel().customData, (QStringList{u"a"_s, u"b"_s}));
    EXPECT_TRUE(picker->wheel().startDate.isValid());
    EXPECT_FALSE(picker->wheel().minimumDate.isValid());
    EXPECT_EQ(picker->text()->text(), u"Choose"_s);
    EXPECT_TRUE(picker->objectShadow());
    EXPECT_FALSE(picker->background()->objectShadow());
    EXPECT_TRUE(picker->validation().optional);

    ASSERT_EQ(document->selectionGroups().size(), 1);
    const auto &group = *document->selectionGroups().first();
    EXPECT_EQ(group.memberKeys(), (QStringList{u"w"_s, u"x"_s, u"y"_s, u"z"_s})) << "an array is no value";
    EXPECT_EQ(group.memberValues().at(1), u"1"_s) << "a string stays a string";
    EXPECT_EQ(group.minimumSelection(), 2);
    EXPECT_EQ(group.maximumSelection(), 0);
}

TEST(ScreenDocument, LayoutEntriesKeepTheLaterCategoryAndTheLastGroupListingAMember)
{
    const auto document = documentOf(R"({
        "labels": {"same": {"x": "1"}, "member": {}},
        "buttons": {"same": {"x": "2"}},
        "shapes": {"background": {}},
        "groups": {"g1": {"elements": ["member", "g2", 5, "missing", "g1"]},
                   "g2": {"elements": ["member"], "zLayer": 9},
                   "g3": "no object"}})");
    const auto &entries = document->layoutEntries();
    EXPECT_EQ(entries.keys(), (QStringList{u"background"_s, u"g1"_s, u"g2"_s, u"member"_s, u"same"_s}));
    EXPECT_EQ(entries.value(u"same"_s).element->kind(), OSTElementKind::Label) << "labels come after buttons";
    EXPECT_EQ(entries.value(u"same"_s).zLayer, 500);
    EXPECT_EQ(entries.value(u"member"_s).group, u"g2"_s) << "the later group wins";
    EXPECT_EQ(entries.value(u"g1"_s).group, u"g1"_s) << "a group listing itself is kept as written";
    EXPECT_EQ(entries.value(u"g2"_s).group, std::nullopt) << "g2 was not laid out when g1 listed it";
    EXPECT_EQ(entries.value(u"g2"_s).zLayer, 9);
    EXPECT_EQ(document->groupMembers(u"g1"_s), (QStringList{u"member"_s, u"g2"_s, u"missing"_s, u"g1"_s}));
    EXPECT_EQ(document->groupedKeys(), (QStringList{u"member"_s, u"g2"_s, u"missing"_s, u"g1"_s, u"member"_s}));
    EXPECT_EQ(document->groupViewKeys(u"g1"_s), (QStringList{u"member"_s, u"g2"_s, u"5"_s, u"missing"_s, u"g1"_s}))
        << "a number names a view too";
    EXPECT_TRUE(document->groupViewKeys(u"g3"_s).isEmpty());
}

TEST(ScreenDocument, TheLayoutEngineTakesTheLayoutTableOnSamplesAndTangledGroups)
{
    QStringList texts = {
        uR"({"labels": {"same": {"x": "1", "zLayer": "3"}, "member": {"anchored": "no"}}, "buttons": {"same": {"x": "2"}},
            "groups": {"a": {"elements": ["b", "member", "a", "same"]}, "b": {"elements": ["a", "member"], "zLayer": -1},
                       "c": {"elements": "member"}, "member": {"elements": ["same"]}}})"_s,
        uR"({"shapes": {"x": {"width": 5, "zLayer": 1e19}}, "images": {"x": {"height": "7"}}, "groups": {"g": []}})"_s,
    };
    const QDir samples(QStringLiteral(QT_TESTCASE_SOURCEDIR "/widgets/samples"));
    for (const QString &name : samples.entryList({u"*.json"_s}, QDir::Files)) {
        QFile file(samples.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        texts.append(QString::fromUtf8(file.readAll()));
    }
    ASSERT_GE(texts.size(), 4);
    for (const QString &text : texts) {
        const auto document = OSTScreenDocument::read(text);
        ASSERT_TRUE(document);
        const OSTLayoutManager layout(*document, QRectF(0, 0, 375, 667), 20);
        EXPECT_EQ(ost_layoutTableDifference(*document, layout), QString()) << text.left(200).toStdString();
    }
}

TEST(ScreenDocument, TheErrorMessageShowsWithItsAlternativeLaidOver)
{
    const auto plain = documentOf(R"({"labels": {"errorMessage": {"text": "", "y": "10", "textColor": "#F00"}}})");
    EXPECT_EQ(plain->errorMessage(), plain->errorMessageWhileShowing());
    EXPECT_EQ(documentOf(R"({"labels": {"errorMessage": 1}})")->errorMessage(), nullptr);

    const auto moved = documentOf(R"({"labels": {"errorMessage": {"y": "10", "textColor": "#F00"}},
        "animations": {"error": {"targets": {"errorMessage": {"y": "40", "alpha": "0.5"}}}},
        "statusBarStyle": "white"})");
    EXPECT_EQ(moved->errorMessage()->frame().y, u"10"_s);
    EXPECT_EQ(moved->errorMessageWhileShowing()->frame().y, u"40"_s);
    EXPECT_EQ(moved->errorMessageWhileShowing()->alpha(), 0.5);
    EXPECT_EQ(moved->errorMessageWhileShowing()->textLook().textColor, QColor(255, 0, 0));
    EXPECT_EQ(moved->statusBarStyle(), OSTScreenDocument::StatusBarStyle::Light);
    EXPECT_EQ(documentOf(R"({"statusBarStyle": "disabled"})")->statusBarStyle(),
              OSTScreenDocument::StatusBarStyle::Hidden);
    EXPECT_EQ(documentOf(R"({"statusBarStyle": 1})")->statusBarStyle(), OSTScreenDocument::StatusBarStyle::Default);
}

TEST(ValidationSettings, ReadStringBooleansAndTextsWithDefaults)
{
    const struct {
        const char *json;
        OSTValidationSettings expected;
    } cases[] = {
        {"{}", {false, false, u"field"_s, u"Invalid input."_s}},
        {R"({"isOptional": "  yes", "isUnique": "1", "userPropertyName": "email", "errorMessage": "Enter it."})",
         {true, true, u"email"_s, u"Enter it."_s}},
        {R"({"isOptional": true, "isUnique": "no", "userPropertyName": 7, "errorMessage": ["x"]})",
         {false, false, u"field"_s, u"Invalid input."_s}},
    };
    for (const auto &each : cases)
        EXPECT_EQ(OSTValidationSettings::fromProperties(u"field"_s, jsonObject(each.json)), each.expected) << each.json;
}

TEST(ScreenVocabulary, TheCommittedSchemaIsTheVocabularys)
{
    QFile file(QStringLiteral(OSTREL_SCREEN_SCHEMA_PATH));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QJsonObject schema = QJsonDocument::fromJson(file.readAll()).object();
    ASSERT_FALSE(schema.isEmpty());
    EXPECT_EQ(schema, OSTScreenVocabulary::schema())
        << QJsonDocument(OSTScreenVocabulary::schema()).toJson().toStdString();
}

TEST(ScreenVocabulary, EachFamilyListsItsSharedAndOwnKeysWithTheirTypes)
{
    const auto find = [](OSTElementFamily family, const QString &name) -> std::optional<OSTPropertyKey> {
        for (const OSTPropertyKey &key : OSTScreenVocabulary::elementKeys(family)) {
            if (key.name == name)
                return key;
        }
        return std::nullopt;
    };
    for (const OSTElementCategory &category : OSTScreenVocabulary::categories()) {
        const bool laidOut = category.defaultZLayer.has_value();
        EXPECT_EQ(find(category.family, u"width"_s).has_value(), laidOut) << category.name.toStdString();
        EXPECT_EQ(find(category.family, u"alpha"_s).has_value(), laidOut) << category.name.toStdString();
    }
    EXPECT_EQ(find(OSTElementFamily::Input, u"maxLength"_s)->types, OSTValueType::String | OSTValueType::Number);
    EXPECT_EQ(find(OSTElementFamily::Input, u"toolbar"_s)->definition, u"toolbar"_s);
    EXPECT_FALSE(find(OSTElementFamily::Label, u"maxLength"_s));
    EXPECT_EQ(find(OSTElementFamily::Button, u"buttonType"_s)->choices,
              (QStringList{u"toggle"_s, u"toggleSwitch"_s, u"imageUpload"_s}));
}
