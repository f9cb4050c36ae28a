// The Qt Quick picture button: a click opens QtQuick.Dialogs' file dialog, and the picture the
// user chooses there becomes the button's value and background.

#include "model/OSTValidationItemModel.h"
#include "quick/OSTQuickImage.h"
#include "quick/OSTQuickImagePickerButton.h"
#include "quick/OSTQuickPictureDialog.h"

#include "../model/OSTValidationTestFakes.h"
#include "../widgets/OSTInputTestSupport.h"
#include "OSTQuickTestWindow.h"

#include <QFile>
#include <QTemporaryDir>
#include <QUrl>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace ostrel {
namespace {

using test::bindModel;

// Answers the open dialog as a person does in the dialog shown in the window: chooses `path` and
// opens it, or cancels.
void answer(const QQuickWindow &window, const QString &path)
{
    QObject *shown = nullptr;
    for (QObject *object : window.findChildren<QObject *>())
        if (object->inherits("QQuickFileDialogImpl") && object->property("visible").toBool())
            shown = object;
    ASSERT_TRUE(shown) << "no file dialog is open";
    if (path.isEmpty()) {
        QMetaObject::invokeMethod(shown, "reject");
        return;
    }
    shown->setProperty("selectedFile", QUrl::fromLocalFile(path));
    QMetaObject::invokeMethod(shown, "accept");
}

TEST(QuickImagePickerButton, AClickOpensTheFileDialogAndTheChosenPictureBecomesTheValue)
{
    QTemporaryDir folder;
    const QString picture = folder.filePath(u"me.png"_s);
    const QString notAPicture = folder.filePath(u"not-a-picture.png"_s);
    QFile notAPictureFile(notAPicture);
    ASSERT_TRUE(notAPictureFile.open(QIODevice::WriteOnly) && notAPictureFile.write("no image") > 0);
    notAPictureFile.close();
    QImage blue(30, 30, QImage::Format_ARGB32);
    blue.fill(Qt::blue);
    ASSERT_TRUE(blue.save(picture));

    test::QuickTestWindow window;
    OSTQuickImagePickerButton *plain = OSTQuickImagePickerButton::create(
        QRect(100, 0, 60, 60), test::buttonOf(R"({"states": {"normal": {}}})", u"plain"_s), window.root());
    window.click(*plain, {30, 30});
    EXPECT_EQ(plain->pictureDialog(), nullptr) << "no selector, no dialog";
    EXPECT_FALSE(plain->shouldShowErrorMessage());
    EXPECT_EQ(OSTQuickImagePickerButton::create(QRect(), test::buttonOf("{}", u"none"_s), window.root()), nullptr);

    OSTQuickImagePickerButton *button = OSTQuickImagePickerButton::create(
        QRect(0, 0, 60, 60), test::buttonOf(R"({"states": {"normal": {"backgroundColor": "#FFFFFF"}, "pressed": {}},
            "imageSelector": {"photosText": "Pick a file", "cancelText": "Not now"}})", u"avatar"_s), window.root());
    const auto model = bindModel(*button, "false");
    EXPECT_FALSE(model->isValid());

    window.click(*button, {30, 30});
    answer(window, QString());
    EXPECT_TRUE(button->shouldShowErrorMessage()) << "cancelled";
    EXPECT_FALSE(model->isValid());

    window.click(*button, {30, 30});
    answer(window, notAPicture);
    EXPECT_FALSE(model->isValid()) << "an unreadable file is no picture";

    window.click(*button, {30, 30});
    answer(window, picture);
    EXPECT_TRUE(model->isValid());
    EXPECT_EQ(model->value().value<QImage>().size(), QSize(30, 30));
    EXPECT_EQ(button->normalBackground()->image().pixelColor(15, 15), QColor(Qt::blue));
    EXPECT_TRUE(button->normalBackground()->isVisible());

    // A restored picture shows the same way; anything else is ignored.
    OSTQuickImagePickerButton *restored = OSTQuickImagePickerButton::create(
        QRect(0, 100, 60, 60), test::buttonOf(R"({"states": {"normal": {}}, "imageSelector": {}})", u"again"_s), window.root());
    const auto restoredModel = bindModel(*restored, "false");
    restored->setValue(u"me.png"_s);
    EXPECT_FALSE(restoredModel->isValid());
    restored->setValue(blue);
    EXPECT_TRUE(restoredModel->isValid());
    EXPECT_EQ(restored->value().value<QImage>(), blue);
}

} // namespace
} // namespace ostrel
