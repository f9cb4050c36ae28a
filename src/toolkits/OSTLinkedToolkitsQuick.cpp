// The Qt Quick flavour. The QML type is offered as soon as the application object exists, so a
// host may load its QML before it starts the SDK.
#include "experience/OSTExperienceToolkits.h"
#include "experience/OSTLinkedToolkits.h"
#include "quick/OSTQuickExperience.h"
#include "quick/OSTQuickPresenter.h"

#include <QCoreApplication>

namespace ostrel {

void OSTLinkedToolkits::install()
{
    OSTExperienceToolkits::shared()->add(OSTQuickPresenter::shared());
}

} // namespace ostrel

namespace {

void registerOstrelQmlTypes()
{
    ostrel::OSTQuickExperience::registerQmlType();
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(registerOstrelQmlTypes)
