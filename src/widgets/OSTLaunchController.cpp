#include "widgets/OSTLaunchController.h"

#include "core/OSTLogging.h"
#include "platform/OSTBundle.h"

#include <QDir>
#include <QFile>
#include <QLabel>
#include <QPalette>
#include <QPixmap>
#include <QUiLoader>
#include <QVBoxLayout>

namespace ostrel {

namespace {

void pinToAllEdges(QWidget *container, QWidget *view)
{
    auto *layout = new QVBoxLayout(container);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(view);
}

} // namespace

OSTLaunchController::OSTLaunchController(QSizeF areaSize, double devicePixelRatio, QObject *parent)
    : OSTViewController(parent)
    , m_areaSize(areaSize)
    , m_devicePixelRatio(devicePixelRatio)
{
}

std::optional<QString> OSTLaunchController::getLaunchStoryboardName()
{
    return OSTBundle::mainBundle()->launchStoryboardName();
}

QWidget *OSTLaunchController::loadView()
{
    auto *container = new QWidget;
    container->resize(m_areaSize.toSize());
    QPalette black = container->palette();
    black.setColor(QPalette::Window, Qt::black);
    container->setPalette(black);
    container->setAutoFillBackground(true);

    QWidget *launchView = nullptr;
    if (const std::optional<QString> name = getLaunchStoryboardName())
        launchView = loadLaunchForm(*name, container);
    if (!launchView)
        launchView = makeLaunchImageView();
    if (launchView)
        pinToAllEdges(container, launchView);
    return container;
}

QWidget *OSTLaunchController::loadLaunchForm(const QString &name, QWidget *container) const
{
    const QString path = OSTBundle::mainBundle()->pathForResource(name, QStringLiteral("ui"));
    if (path.isEmpty())
        return nullptr;
    QFile form(path);
    if (!form.open(QIODevice::ReadOnly)) {
        OSTLogging::logWarning(QStringLiteral("Cannot open the launch screen %1: %2"), path, form.errorString());
        return nullptr;
    }
    QUiLoader loader;
    QWidget *view = loader.load(&form, container);
    if (!view) {
        OSTLogging::logWarning(QStringLiteral("Cannot load the launch screen %1: %2"), path, loader.errorString());
        return nullptr;
    }
    // A form whose top level is a dialog or main window would otherwise open as a window.
    view->setWindowFlags(Qt::Widget);
    return view;
}

QWidget *OSTLaunchController::makeLaunchImageView() const
{
    const QImage image = OSTBundle::mainBundle()->launchImage(m_areaSize, m_devicePixelRatio);
    if (image.isNull())
        return nullptr;
    auto *imageView = new QLabel;
    imageView->setPixmap(QPixmap::fromImage(image));
    imageView->setScaledContents(true);
    return imageView;
}

} // namespace ostrel
