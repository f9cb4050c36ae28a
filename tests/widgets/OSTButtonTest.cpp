// Buttons, toggle buttons and the picture picker as a user presses them, and the image views they
// use as backgrounds, loaded from the development service.

#include "experience/OSTAction.h"
#include "model/OSTValidationItemModel.h"
#include "platform/OSTBundle.h"
#include "support/OSTDevServerProcess.h"
#include "users/OSTUserManager.h"
#include "widgets/OSTButton.h"
#include "widgets/OSTImageDisplay.h"
#include "widgets/OSTImagePickerButton.h"
#include "widgets/OSTImageView.h"
#include "widgets/OSTPicker.h"
#include "widgets/OSTTextField.h"

#include "../model/OSTValidationTestFakes.h"
#include "OSTInputTestSupport.h"
#include "OSTPixelTestSupport.h"

#include <QAccessible>
#include <QMenu>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace ostrel {
namespace {

using test::bindModel;
using test::capture;
using test::colorNear;
using test::countPixels;
using test::imageOfColor;
using test::jsonObject;
using test::pixelAt;
using test::pngOf;

TEST(Button, NeedsStatesShowsEachStatesTitleAndReportsItsAction)
{
    EXPECT_EQ(OSTButton::create(QRect(0, 0, 100, 40), test::buttonOf(R"({"onClick": {"func": "next"}})", u"b"_s)), nullptr);

    std::unique_ptr<OSTButton> button(OSTButton::create(QRect(0, 0, 120, 40), test::buttonOf(R"({
        "states": {"normal": {"text": "Go & see", "size": "16", "textColor": "#000000"},
                   "pressed": {"textColor": "#FF0000"}, "disabled": {"text": "Wait"}},
        "onClick": {"func": "startFlow", "params": {"flowName": "LOGIN"}}})", u"go"_s)));
    ASSERT_TRUE(button);
    ASSERT_TRUE(button->action());
    EXPECT_EQ(button->action()->flowKey(), u"login"_s);

    QSignalSpy taps(button.get(), &OSTButton::tapped);
    QTest::mouseClick(button.get(), Qt::LeftButton);
    ASSERT_EQ(taps.count(), 1);
    EXPECT_EQ(taps.at(0).at(0).value<OSTButton *>(), button.get());
    button->show();
    button->setFocus();
    QTest::keyClick(button.get(), Qt::Key_Return);
    QTest::keyClick(button.get(), Qt::Key_Space);
    EXPECT_EQ(taps.count(), 3) << "Return and Space press it too";

    // A pressed state that changes only the colour keeps the normal title.
    QTest::mousePress(button.get(), Qt::LeftButton);
    EXPECT_EQ(button->currentTitle(), u"Go & see"_s);
    QTest::mouseRelease(button.get(), Qt::LeftButton);
    button->setEnabled(false);
    EXPECT_EQ(button->currentTitle(), u"Wait"_s);

    QAccessibleInterface *accessible = QAccessible::queryAccessibleInterface(button.get());
    EXPECT_EQ(accessible->role(), QAccessible::Button);
    EXPECT_EQ(accessible->text(QAccessible::Name), u"Go & see"_s) << "no keyboard shortcut made of the ampersand";
    std::unique_ptr<OSTButton> untitled(OSTButton::create(QRect(0, 0, 40, 40),
            test::buttonOf(R"({"states": {}})", u"close"_s)));
    EXPECT_EQ(QAccessible::queryAccessibleInterface(untitled.get())->text(QAccessible::Name), u"close"_s);
}

TEST(Button, ToggleTakesPartInValidationAndDisabledShowsOnlyItsBackground)
{
    std::unique_ptr<OSTButton> toggle(OSTButton::create(QRect(0, 0, 40, 40),
            test::buttonOf(R"({"buttonType": "toggle", "states": {"normal": {}, "pressed": {}}})", u"agree"_s)));
    auto required = bindModel(*toggle, "false");
    EXPECT_FALSE(required->isValid());
    QTest::mouseClick(toggle.get(), Qt::LeftButton);
    EXPECT_TRUE(required->isValid());
    EXPECT_EQ(required->value(), QVariant(true));
    EXPECT_TRUE(toggle->highlightedBackground()->isVisibleTo(toggle.get())) << "a selected toggle shows pressed";
    QTest::mouseClick(toggle.get(), Qt::LeftButton);
    EXPECT_FALSE(required->isValid());

    std::unique_ptr<OSTButton> optionalToggle(OSTButton::create(QRect(0, 0, 40, 40),
            test::buttonOf(R"({"buttonType": "toggle", "states": {}})", u"news"_s)));
    EXPECT_TRUE(bindModel(*optionalToggle, "true")->isValid());

    std::unique_ptr<OSTButton> plain(OSTButton::create(QRect(0, 0, 40, 40),
            test::buttonOf(R"({"states": {"normal": {}, "disabled": {}}})", u"b"_s)));
    EXPECT_FALSE(plain->value().isValid()) << "a plain button has no value";
    plain->setEnabled(false);
    EXPECT_FALSE(plain->normalBackground()->isVisibleTo(plain.get()));
    EXPECT_TRUE(plain->disabledBackground()->isVisibleTo(plain.get()));
}

class ButtonPixels : public ::testing::TestWithParam<qreal> {};

TEST_P(ButtonPixels, EachStateShowsItsOwnBackgroundImageAndTitleInsideRoundedCorners)
{
    // The host's own pictures, found by file name as images of the cache would be.
    QTemporaryDir bundle;
    const struct {
        const char *name;
        QColor color;
    } pictures[] = {{"red.png", Qt::red}, {"green.png", Qt::green}, {"blue.png", Qt::blue}};
    for (const auto &picture : pictures)
        ASSERT_TRUE(imageOfColor(picture.color, {30, 12}).save(bundle.filePath(QString::fromLatin1(picture.name))));
    OSTBundle::setMainBundlePath(bundle.path());

    std::unique_ptr<OSTButton> button(OSTButton::create(QRect(0, 0, 120, 40), test::buttonOf(R"({"cornerRadius": "10",
        "states": {"normal": {"text": "Go", "size": "18", "textColor": "#FFFFFF", "image": "https://img.test/red.png"},
                   "pressed": {"image": "https://img.test/green.png"},
                   "disabled": {"textColor": "#000000", "image": "https://img.test/blue.png"}}})", u"go"_s)));
    ASSERT_TRUE(button);
    button->setFocus(); // the focus frame follows the rounded corners
    button->show();
    ASSERT_TRUE(QTest::qWaitFor([&] {
        return !button->normalBackground()->image().isNull() && !button->highlightedBackground()->image().isNull()
            && !button->disabledBackground()->image().isNull();
    }));

    const qreal ratio = GetParam();
    const auto whitish = [](QColor color) { return color.red() > 200 && color.green() > 200 && color.blue() > 200; };
    const auto blackish = [](QColor color) { return color.alpha() > 200 && color.value() < 60; };
    const auto expectState = [&](const QColor &background, const std::function<bool(QColor)> &title,
                                 const char *state) {
        const QImage image = capture(*button, ratio);
        EXPECT_EQ(image.size(), QSize(120, 40) * ratio) << state;
        EXPECT_TRUE(colorNear(pixelAt(image, {10, 20}), background)) << state << ": left of the title";
        EXPECT_TRUE(colorNear(pixelAt(image, {110, 20}), background)) << state << ": right of the title";
        EXPECT_LT(pixelAt(image, {0.5, 0.5}).alpha(), 40) << state << ": the corner is cut round";
        const QImage titleArea = image.copy(QRect(QPoint(40, 8) * ratio, QSize(40, 24) * ratio));
        EXPECT_GT(countPixels(titleArea, title), 10 * ratio * ratio) << state << ": the title is drawn over the picture";
    };

    expectState(Qt::red, whitish, "normal");
    QTest::mousePress(button.get(), Qt::LeftButton, {}, QPoint(60, 20));
    expectState(Qt::green, whitish, "highlighted");
    QTest::mouseRelease(button.get(), Qt::LeftButton, {}, QPoint(60, 20));
    expectState(Qt::red, whitish, "normal again after the release");
    button->setEnabled(false);
    expectState(Qt::blue, blackish, "disabled");
}

INSTANTIATE_TEST_SUITE_P(Ratios, ButtonPixels, ::testing::Values(1.0, 2.0), test::ratioTestName);

TEST(InputShadows, ButtonsPickersAndTextFieldsCastTheirShadowOutsideTheirBox)
{
    // White boxes with a hard black shadow 12 points lower: the band just below each box is the
    // shadow's alone, and a shadow clipped to the box would leave it white.
    test::InputWindow window;
    window.setAutoFillBackground(true);
    window.setPalette(QPalette(Qt::white));
    const char *box = R"({"backgroundColor": "#FFFFFF", "cornerRadius": "10", "objectShadow": ["#000000", "1", "0", "12"],
                          "states": {"normal": {"text": "Go"}}, "picker": {"pickerData": ["Red"]}})";
    QWidget *const elements[] = {
        OSTButton::create(QRect(20, 20, 100, 40), test::buttonOf(box, u"go"_s), &window),
        new OSTPicker(QRect(20, 100, 100, 40), test::pickerOf(box, u"colour"_s), &window),
        new OSTTextField(QRect(20, 180, 100, 40), test::textFieldOf(box, u"name"_s), &window),
    };
    for (QWidget *element : elements)
        test::shown(element);
    const QImage image = capture(window, 1);
    for (QWidget *element : elements) {
        const QPoint belowTheBox(element->geometry().center().x(), element->geometry().bottom() + 6);
        EXPECT_LT(pixelAt(image, belowTheBox).value(), 60) << element->metaObject()->className()
                                                          << ": the shadow below the box";
        EXPECT_TRUE(colorNear(pixelAt(image, element->geometry().center() + QPoint(30, 0)), Qt::white))
            << element->metaObject()->className() << ": the box over its shadow";
    }
}

TEST(ImagePickerButton, ItsMenuComesFromTheSelectorAndTheChosenPictureBecomesValueAndBackground)
{
    QTemporaryDir folder;
    const QString picture = folder.filePath(u"me.png"_s);
    ASSERT_TRUE(imageOfColor(Qt::blue, {30, 30}).save(picture));
    QString answer;
    int chooserOpened = 0;
    OSTImagePickerButton::setFileChooser([&](QWidget *) {
        ++chooserOpened;
        return answer;
    });

    // No selector, no menu: a press does nothing.
    test::InputWindow window;
    auto *plain = test::shown(OSTImagePickerButton::create(QRect(100, 0, 60, 60),
            test::buttonOf(R"({"states": {"normal": {}}})", u"plain"_s), &window));
    QTest::mouseClick(plain, Qt::LeftButton);
    EXPECT_EQ(plain->menu(), nullptr);
    EXPECT_EQ(chooserOpened, 0);
    EXPECT_FALSE(plain->shouldShowErrorMessage());

    auto *picker = test::shown(OSTImagePickerButton::create(QRect(0, 0, 60, 60),
            test::buttonOf(R"({"states": {"normal": {"backgroundColor": "#FFFFFF"}, "pressed": {}},
                       "imageSelector": {"cameraText": "Take one", "photosText": "Pick a file", "cancelText": "Not now"}})", u"avatar"_s), &window));
    auto model = bindModel(*picker, "false");
    ASSERT_TRUE(picker->menu());
    const QList<QAction *> entries = picker->menu()->actions();
    ASSERT_EQ(entries.size(), 2) << "no camera entry on a desktop";
    EXPECT_EQ(entries.at(0)->text(), u"Pick a file"_s);
    EXPECT_EQ(entries.at(1)->text(), u"Not now"_s);
    // As a person picks an entry: a press on the button, a click on the entry.
    const auto choose = [&](QAction *entry) {
        QTest::mouseClick(picker, Qt::LeftButton);
        ASSERT_TRUE(picker->menu()->isVisible());
        QTest::mouseClick(picker->menu(), Qt::LeftButton, {}, picker->menu()->actionGeometry(entry).center());
        QCoreApplication::processEvents();
    };

    choose(entries.at(1));
    EXPECT_EQ(chooserOpened, 0);
    EXPECT_TRUE(picker->shouldShowErrorMessage());
    EXPECT_FALSE(model->isValid());

    answer = folder.filePath(u"not-a-picture.png"_s);
    choose(entries.at(0));
    EXPECT_EQ(chooserOpened, 1);
    EXPECT_FALSE(model->isValid()) << "an unreadable file is no picture";

    answer = picture;
    choose(entries.at(0));
    EXPECT_TRUE(model->isValid());
    EXPECT_EQ(model->value().value<QImage>().size(), QSize(30, 30));
    EXPECT_TRUE(colorNear(pixelAt(capture(*picker, 2), {30, 30}), QColor(Qt::blue)));
    OSTImagePickerButton::setFileChooser({});
}

class ImageViewAgainstService : public ::testing::Test {
protected:
    void SetUp() override
    {
        if (!test::OSTDevServerProcess::isAvailable())
            GTEST_SKIP() << "ostrel-devserver is not built";
        ASSERT_TRUE(server.start());
    }
    QString imageURL(const QString &name) const { return server.serviceURL().toString() + u"/images/"_s + name; }

    // Waits (on the event loop, bounded) until the required image view reports it finished.
    static bool finishes(OSTImageView &view)
    {
        QSignalSpy finished(&view, &OSTImageView::requiredImageFinished);
        return finished.count() > 0 || finished.wait(10'000);
    }

    test::OSTDevServerProcess server;
};

TEST_F(ImageViewAgainstService, FallsThroughFailingCandidatesAndReportsRequiredImagesEitherWay)
{
    server.writeImage(u"backup.png"_s, pngOf(imageOfColor(Qt::green)));
    QVariantMap properties{{u"image"_s, imageURL(u"missing.png"_s)}, {u"backupImage"_s, imageURL(u"backup.png"_s)},
                           {u"required"_s, u"true"_s}, {u"contentMode"_s, u"scaleToFill"_s}};
    OSTImageView view(QRect(0, 0, 40, 40), OSTImageDescription(u"image"_s, properties));
    EXPECT_TRUE(view.isLoadingRequiredImage());
    ASSERT_TRUE(finishes(view));
    EXPECT_FALSE(view.isLoadingRequiredImage());
    EXPECT_TRUE(colorNear(pixelAt(capture(view, 2), {20, 20}), QColor(Qt::green))) << "the 404 fell through to the backup";

    OSTImageView nothing(QRect(0, 0, 40, 40),
                         OSTImageDescription(u"image"_s, {{u"image"_s, imageURL(u"gone.png"_s)}, {u"required"_s, u"true"_s}}));
    ASSERT_TRUE(finishes(nothing));
    EXPECT_TRUE(nothing.image().isNull()) << "every candidate failed: the box stays empty";
}

TEST_F(ImageViewAgainstService, LoadsTheAddressTheCurrentUsersPropertyHoldsBeforeThePlaceholder)
{
    server.writeImage(u"avatar.png"_s, pngOf(imageOfColor(Qt::green)));
    server.writeImage(u"placeholder.png"_s, pngOf(imageOfColor(Qt::blue)));
    const QVariantMap properties{{u"image"_s, u"{avatar}"_s}, {u"tempImage"_s, imageURL(u"placeholder.png"_s)},
                                 {u"required"_s, u"true"_s}, {u"contentMode"_s, u"scaleToFill"_s}};

    OSTImageView withoutProperty(QRect(0, 0, 40, 40), OSTImageDescription(u"image"_s, properties));
    ASSERT_TRUE(finishes(withoutProperty));
    EXPECT_TRUE(colorNear(pixelAt(capture(withoutProperty, 1), {20, 20}), QColor(Qt::blue)))
        << "no such property: the placeholder shows";

    OSTUserManager::sharedManager().appendUserProperties({{u"avatar"_s, imageURL(u"avatar.png"_s)}},
                                                         OSTUserManager::Delivery::KeepLocal);
    OSTImageView withProperty(QRect(0, 0, 40, 40), OSTImageDescription(u"image"_s, properties));
    ASSERT_EQ(withProperty.candidateURLs().size(), 2);
    ASSERT_TRUE(finishes(withProperty));
    EXPECT_TRUE(colorNear(pixelAt(capture(withProperty, 2), {20, 20}), QColor(Qt::green)));
}

} // namespace
} // namespace ostrel
