#include "quick/OSTQuickPresenter.h"

#include "quick/OSTQuickExperience.h"
#include "quick/OSTQuickPresentation.h"

#include <QCoreApplication>
#include <QQuickWindow>

namespace ostrel {

const std::shared_ptr<OSTQuickPresenter> &OSTQuickPresenter::shared()
{
    static const std::shared_ptr<OSTQuickPresenter> presenter = std::make_shared<OSTQuickPresenter>();
    return presenter;
}

bool OSTQuickPresenter::drawsOver(const OSTExperienceSettings &settings, const QWindow *window) const
{
    // A widget the host names is the widget toolkit's to cover.
    return settings.presentingViewController.isNull() && qobject_cast<const QQuickWindow *>(window);
}

std::shared_ptr<OSTExperiencePresenter::Presentation>
OSTQuickPresenter::presentationWithSettings(const OSTExperienceSettings &settings)
{
    return std::make_shared<OSTQuickPresentation>(settings);
}

std::shared_ptr<OSTExperiencePresenter::Presentation> OSTQuickPresenter::presentationWithType(int)
{
    return nullptr;
}

} // namespace ostrel

namespace {

// The QML type comes with the presenter: a library that carries the Qt Quick toolkit offers
// `import Ostrel` as soon as the application object exists, so a host may load its QML before it
// starts the SDK.
void registerOstrelQmlTypes()
{
    ostrel::OSTQuickExperience::registerQmlType();
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(registerOstrelQmlTypes)
