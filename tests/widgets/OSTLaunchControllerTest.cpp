#include "widgets/OSTLaunchController.h"

#include "core/OSTLogging.h"
#include "platform/OSTBundle.h"
#include "support/OSTTestSupport.h"

#include "OSTPixelTestSupport.h"

#include <QDialog>
#include <QImage>
#include <QLabel>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace ostrel;
using namespace Qt::StringLiterals;

namespace {

const QByteArray launchForm = R"(<ui version="4.0"><class>Launch</class><widget class="QDialog" name="Launch">
  <layout class="QVBoxLayout"><item><widget class="QLabel" name="brand"><property name="text"><string>Brand</string>
  </property></widget></item></layout></widget></ui>)";

// A PNG of `size` pixels filled with `color`, so a test can tell which file was chosen.
QByteArray png(QSize size, QColor color)
{
    return test::pngOf(test::imageOfColor(color, size));
}

struct Bundle {
    QTemporaryDir folder;

    explicit Bundle(const QVariantMap &info = {})
    {
        test::writeBundle(folder.path(), info);
        OSTBundle::setMainBundlePath(folder.path());
    }
    void add(const QString &name, const QByteArray &bytes) const { test::writeFile(folder.filePath(name), bytes); }
    OSTBundle bundle() const { return OSTBundle(folder.path()); }
};

QColor colorOf(const QImage &image)
{
    return image.isNull() ? QColor() : image.pixelColor(0, 0);
}

QWidget *onlyChild(QWidget *view)
{
    const QList<QWidget *> children = view->findChildren<QWidget *>(Qt::FindDirectChildrenOnly);
    return children.size() == 1 ? children.first() : nullptr;
}

} // namespace

TEST(LaunchController, LaunchImagesMatchTheAreaAndScaleExactly)
{
    Bundle bundle;
    bundle.add(u"LaunchImage.png"_s, png({375, 667}, Qt::red));
    bundle.add(u"LaunchImage@2x.png"_s, png({750, 1334}, Qt::green));
    bundle.add(u"LaunchImage@3x.png"_s, png({1125, 2001}, Qt::blue));
    bundle.add(u"LaunchImage-Landscape@2x.png"_s, png({1334, 750}, Qt::yellow));
    bundle.add(u"Alaunchimage@2x.png"_s, png({750, 1334}, Qt::magenta));
    bundle.add(u"Background@2x.png"_s, png({750, 1334}, Qt::cyan));
    bundle.add(u"ABrokenLaunchImage@2x.png"_s, "not an image at all");

    struct Case {
        QSizeF area;
        double ratio;
        QColor expected;
    };
    const Case cases[] = {
        {{375, 667}, 2.0, Qt::green},  {{375, 667}, 1.0, Qt::red},   {{375, 667}, 3.0, Qt::blue},
        {{667, 375}, 2.0, Qt::yellow}, {{375, 667}, 1.5, QColor()},  {{375, 668}, 2.0, QColor()},
        {{376, 667}, 1.0, QColor()},
    };
    for (const Case &c : cases) {
        const QImage image = bundle.bundle().launchImage(c.area, c.ratio);
        EXPECT_EQ(colorOf(image), c.expected) << c.area.width() << "x" << c.area.height() << " @" << c.ratio;
        if (!image.isNull()) {
            EXPECT_EQ(image.devicePixelRatio(), c.ratio);
        }
    }
}

TEST(LaunchController, TheFormWinsOverImagesWhichWinOverABlackCover)
{
    OSTLogging::setLoggingLevel(2);
    {
        Bundle bundle({{u"UILaunchStoryboardName"_s, u"Launch"_s}});
        bundle.add(u"Launch.ui"_s, launchForm);
        bundle.add(u"LaunchImage.png"_s, png({320, 480}, Qt::red));
        EXPECT_EQ(OSTLaunchController::getLaunchStoryboardName(), u"Launch"_s);
        OSTLaunchController controller({320, 480}, 1.0);
        QWidget *form = onlyChild(controller.view());
        ASSERT_NE(form, nullptr);
        EXPECT_FALSE(form->isWindow()) << "a dialog form is shown inside the cover, not as a window";
        auto *brand = form->findChild<QLabel *>(u"brand"_s);
        ASSERT_NE(brand, nullptr);
        EXPECT_EQ(brand->text(), u"Brand"_s);
    }
    for (const QVariant &name : {QVariant(u""_s), QVariant(42), QVariant(u"Missing"_s), QVariant(u"Broken"_s)}) {
        Bundle bundle({{u"UILaunchStoryboardName"_s, name}});
        bundle.add(u"Broken.ui"_s, "<ui><widget class=");
        bundle.add(u"LaunchImage.png"_s, png({320, 480}, Qt::red));
        EXPECT_EQ(OSTLaunchController::getLaunchStoryboardName().has_value(), name == QVariant(u"Missing"_s) || name == QVariant(u"Broken"_s));
        OSTLaunchController controller({320, 480}, 1.0);
        const QString log = test::captureStandardError([&] { controller.view(); });
        auto *image = qobject_cast<QLabel *>(onlyChild(controller.view()));
        ASSERT_NE(image, nullptr) << name.toString().toStdString();
        EXPECT_EQ(colorOf(image->pixmap().toImage()), QColor(Qt::red));
        EXPECT_EQ(log.contains(u"Cannot load the launch screen"_s), name == QVariant(u"Broken"_s)) << log.toStdString();
    }
    {
        Bundle bundle;
        bundle.add(u"LaunchImage.png"_s, png({320, 480}, Qt::red));
        OSTLaunchController controller({1024, 768}, 1.0);
        QWidget *cover = controller.view();
        EXPECT_EQ(onlyChild(cover), nullptr);
        cover->resize(50, 50);
        EXPECT_EQ(cover->grab().toImage().pixelColor(25, 25), QColor(Qt::black));
    }
}
