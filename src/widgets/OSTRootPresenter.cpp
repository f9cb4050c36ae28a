#include "widgets/OSTRootPresenter.h"

#include "widgets/OSTRootPresentation.h"

#include <QApplication>
#include <QWidget>
#include <QWindow>

namespace ostrel {

namespace {

// Widgets abort a process without a QApplication.
bool isWidgetApplication()
{
    return qobject_cast<QApplication *>(QCoreApplication::instance()) != nullptr;
}

} // namespace

const std::shared_ptr<OSTRootPresenter> &OSTRootPresenter::shared()
{
    static const std::shared_ptr<OSTRootPresenter> presenter = std::make_shared<OSTRootPresenter>();
    return presenter;
}

bool OSTRootPresenter::drawsOver(const OSTExperienceSettings &settings, const QWindow *window) const
{
    if (!isWidgetApplication())
        return false;
    if (settings.presentingViewController)
        return true;
    // A widget window over a Qt Quick window would be a second window beside the host's.
    return !window || !window->inherits("QQuickWindow");
}

std::shared_ptr<OSTExperiencePresenter::Presentation>
OSTRootPresenter::presentationWithSettings(const OSTExperienceSettings &settings)
{
    return std::make_shared<OSTRootPresentation>(settings);
}

std::shared_ptr<OSTExperiencePresenter::Presentation> OSTRootPresenter::presentationWithType(int type)
{
    if (!isWidgetApplication())
        return nullptr;
    return std::make_shared<OSTRootPresentation>(type);
}

} // namespace ostrel
