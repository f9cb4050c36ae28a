#include "model/OSTScreenModel.h"

#include "core/OSTLogging.h"
#include "events/OSTEventHook.h"
#include "events/OSTInternalEvent.h"
#include "experience/OSTAction.h"
#include "experience/OSTFlow.h"
#include "experience/OSTScreen.h"
#include "model/OSTScreenModelDelegate.h"
#include "model/OSTScreenModelView.h"
#include "model/OSTValidationGroupModel.h"
#include "model/OSTValidationManager.h"

#include <QPointer>

using namespace Qt::StringLiterals;

namespace ostrel {

OSTScreenModel::OSTScreenModel(const std::shared_ptr<const OSTScreen> &screen, const Environment &environment,
                               QObject *parent)
    : QObject(parent), m_screen(screen), m_environment(environment)
{
}

OSTScreenModel::~OSTScreenModel()
{
    if (m_imageWait)
        OSTClock::current().cancel(*m_imageWait);
}

// --- Loading ----------------------------------------------------------------------------------

void OSTScreenModel::beginLoading()
{
    m_loadStart = OSTClock::current().monotonicNow();
}

void OSTScreenModel::failLoading()
{
    reportLoad(OSTStatisticalEvent::Failure);
}

void OSTScreenModel::setView(OSTScreenModelView &view)
{
    m_view = &view;
    validityChanged();
}

void OSTScreenModel::waitForRequiredImages(Ready ready)
{
    if (ready && !(m_view && m_view->isFullyLoaded())) {
        m_ready = std::move(ready);
        m_imageWait = OSTClock::current().schedule(requiredImageWait, this, [this] {
            m_imageWait.reset();
            requiredImagesTimedOut();
        });
        return;
    }
    reportLoad(OSTStatisticalEvent::Success);
    if (ready)
        ready();
}

void OSTScreenModel::requiredImagesDidFinishLoading()
{
    if (m_imageWait) {
        OSTClock::current().cancel(*m_imageWait);
        m_imageWait.reset();
    }
    reportLoad(OSTStatisticalEvent::Success);
    fireReady();
}

void OSTScreenModel::requiredImagesTimedOut()
{
    if (m_view && m_view->isFullyLoaded())
        return;
    // The screen shows without the images still on their way: an empty image box is better than
    // no experience at all. The load event tells the service the wait ran out.
    reportLoad(OSTStatisticalEvent::Timeout);
    fireReady();
}

void OSTScreenModel::reportLoad(OSTStatisticalEvent::TimingType type)
{
    if (!m_loadStart)
        return;
    const double elapsed = OSTClock::current().monotonicNow() - *m_loadStart;
    m_loadStart.reset();
    const bool fullyLoaded = m_view && m_view->isFullyLoaded();
    OSTEventHook::sendEvent(OSTStatisticalEvent::screenLoadEvent(
        elapsed, type, fullyLoaded ? OSTStatisticalEvent::Loading::Full : OSTStatisticalEvent::Loading::Partial));
}

void OSTScreenModel::fireReady()
{
    if (const Ready ready = std::exchange(m_ready, nullptr))
        ready();
}

void OSTScreenModel::screenDidAppear()
{
    if (m_didAppear)
        return;
    m_didAppear = true;
    OSTEventHook::sendEvent(OSTInternalEvent::screenDisplayedEvent(*m_screen));
}

// --- Validation -------------------------------------------------------------------------------

void OSTScreenModel::setDelegate(OSTScreenModelDelegate *delegate)
{
    m_delegate = delegate ? delegate->weakReference() : std::weak_ptr<OSTScreenModelDelegate>();
}

void OSTScreenModel::setValidationManager(const std::shared_ptr<OSTValidationManager> &manager)
{
    m_validationManager = manager;
    if (!manager || !m_view)
        return;
    manager->addScreen(m_screen->key(), m_view->screenDocument());
    manager->attachGroup(*this, m_screen->key(), m_view->validationItems());
}

bool OSTScreenModel::isValid() const
{
    const std::shared_ptr<OSTValidationGroupModel> groupModel = model();
    return !groupModel || groupModel->isValid();
}

void OSTScreenModel::validityChanged()
{
    if (!m_view)
        return;
    m_view->setNextButtonsEnabled(isValid());
    const std::shared_ptr<OSTValidationGroupModel> groupModel = model();
    const std::optional<QString> message = groupModel ? groupModel->stateSensitiveErrorMessage() : std::nullopt;
    m_view->showErrorMessage(message.value_or(QString()));
}

void OSTScreenModel::screenTapped()
{
    if (!m_view)
        return;
    const std::shared_ptr<OSTValidationGroupModel> groupModel = model();
    const std::optional<QString> message = groupModel ? groupModel->errorMessage() : std::nullopt;
    m_view->showErrorMessage(message.value_or(QString()));
}

// --- Actions ----------------------------------------------------------------------------------

void OSTScreenModel::goToNextScreen()
{
    if (const auto delegate = m_delegate.lock())
        delegate->screenModelShouldGoToNextScreen(*this);
}

void OSTScreenModel::handleAction(const std::shared_ptr<const OSTAction> &action)
{
    if (!action)
        return;
    const auto delegate = m_delegate.lock();
    switch (action->type()) {
    case OSTActionTypeNone:
        return;
    case OSTActionTypeNext:
        if (delegate)
            delegate->screenModelShouldGoToNextScreen(*this);
        return;
    case OSTActionTypePrevious:
        if (delegate)
            delegate->screenModelShouldGoToPreviousScreen(*this);
        return;
    case OSTActionTypeClose:
        if (delegate)
            delegate->screenModelShouldClose(*this);
        return;
    case OSTActionTypeStartFlow:
        if (delegate && action->flowKey())
            delegate->screenModelShouldStartFlow(*this, *action->flowKey());
        return;
    case OSTActionTypeLoginFacebook:
        logInWithSocialAccount(action);
        return;
    case OSTActionTypeOpenURL: {
        const bool opened = m_environment.openURL && m_environment.openURL(action->urlString().value_or(QString()));
        if (opened && action->shouldCloseSelf() && delegate)
            delegate->screenModelShouldClose(*this);
        return;
    }
    }
}

void OSTScreenModel::logInWithSocialAccount(const std::shared_ptr<const OSTAction> &action)
{
    if (!m_environment.socialLogIn) {
        OSTLogging::logWarning(u"Social log-in is not available; the action of screen %1 does nothing"_s,
                               m_screen->key());
        return;
    }
    const std::shared_ptr<const OSTFlow> flow = m_screen->flow();
    const QVariantMap info = flow ? flow->facebookLoginProperties() : QVariantMap();
    QPointer<OSTScreenModel> self(this);
    m_environment.socialLogIn(info, [self, action](bool success, const QVariantMap &fields) {
        if (!self || !success || fields.isEmpty())
            return;
        if (self->m_environment.authenticate)
            self->authenticateSocialAccount(action, fields);
        else
            self->finishSocialLogIn(action, fields, QString());
    });
}

void OSTScreenModel::authenticateSocialAccount(const std::shared_ptr<const OSTAction> &action,
                                               const QVariantMap &fields)
{
    // The overlay shows only when the host did not answer at once.
    auto pending = std::make_shared<bool>(true);
    QPointer<OSTScreenModel> self(this);
    m_environment.authenticate(fields, [self, action, fields, pending](const std::optional<OSTValidationResult> &result,
                                                                       const QString &userId) {
        *pending = false;
        if (!self)
            return;
        if (self->m_view)
            self->m_view->hideLoadingOverlay();
        if (result && !result->isValid()) {
            if (const auto manager = self->m_validationManager.lock())
                manager->handleValidationResult(result, self->m_screen->key());
            return;
        }
        self->finishSocialLogIn(action, fields, userId);
    });
    if (*pending && self && m_view)
        m_view->showLoadingOverlay();
}

void OSTScreenModel::finishSocialLogIn(const std::shared_ptr<const OSTAction> &action, const QVariantMap &fields,
                                       const QString &userId)
{
    if (m_environment.logInUser)
        m_environment.logInUser(fields, userId);
    handleAction(action->successAction());
}

} // namespace ostrel
