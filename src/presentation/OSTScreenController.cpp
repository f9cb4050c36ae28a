#include "presentation/OSTScreenController.h"

#include "core/OSTDictionaryHelpers.h"
#include "core/OSTLogging.h"
#include "events/OSTEventHook.h"
#include "events/OSTInternalEvent.h"
#include "events/OSTStatisticalEvent.h"
#include "experience/OSTAction.h"
#include "experience/OSTFlow.h"
#include "experience/OSTScreen.h"
#include "input/OSTButton.h"
#include "input/OSTImagePickerButton.h"
#include "input/OSTValidationGroupModel.h"
#include "input/OSTValidationManager.h"
#include "network/OSTImageManager.h"
#include "presentation/OSTScreenControllerDelegate.h"
#include "render/OSTLoadingOverlay.h"

#include <QGuiApplication>
#include <QInputMethod>

using namespace Qt::StringLiterals;

namespace ostrel {

OSTScreenController *OSTScreenController::controllerWithScreen(const std::shared_ptr<const OSTScreen> &screen,
                                                               const Environment &environment, QObject *parent)
{
    auto *controller = new OSTScreenController(screen, environment, {}, parent);
    if (controller->loadScreen())
        return controller;
    delete controller;
    return nullptr;
}

void OSTScreenController::controllerWithScreen(const std::shared_ptr<const OSTScreen> &screen,
                                               const Environment &environment, Completion completion)
{
    auto *controller = new OSTScreenController(screen, environment, std::move(completion), nullptr);
    controller->loadScreen();
}

OSTScreenController::OSTScreenController(const std::shared_ptr<const OSTScreen> &screen,
                                         const Environment &environment, Completion completion, QObject *parent)
    : OSTViewController(parent), m_screen(screen), m_environment(environment), m_completion(std::move(completion))
{
}

OSTScreenController::~OSTScreenController()
{
    if (m_imageWait)
        OSTClock::current().cancel(*m_imageWait);
    QObject::disconnect(m_keyboardVisibility);
    QObject::disconnect(m_keyboardGeometry);
}

bool OSTScreenController::loadScreen()
{
    m_loadStart = OSTClock::current().monotonicNow();
    m_screenView = OSTScreenView::create(m_screen, m_environment.area, m_environment.substitution);
    if (!m_screenView) {
        fireLoadEvent(OSTStatisticalEvent::Failure);
        fireCompletion(false);
        return false;
    }
    m_screenView->setDelegate(this);
    validityChanged();
    readStatusBarStyle();
    view();
    if (m_completion && !m_screenView->isFullyLoaded()) {
        m_imageWait = OSTClock::current().schedule(requiredImageWait, this, [this] {
            m_imageWait.reset();
            requiredImagesTimedOut();
        });
        return true;
    }
    fireLoadEvent(OSTStatisticalEvent::Success);
    fireCompletion(true);
    return true;
}

QWidget *OSTScreenController::loadView()
{
    return m_screenView ? static_cast<QWidget *>(m_screenView) : OSTViewController::loadView();
}

void OSTScreenController::readStatusBarStyle()
{
    const QString style = ost_stringForKey(m_screenView->layout(), u"statusBarStyle"_s).value_or(QString());
    m_statusBarHidden = style == "disabled"_L1;
    m_statusBarStyle = style == "white"_L1 ? OSTStatusBarStyle::LightContent : OSTStatusBarStyle::Default;
}

void OSTScreenController::screenViewDidFinishLoadingRequiredImages(OSTScreenView &)
{
    if (m_imageWait) {
        OSTClock::current().cancel(*m_imageWait);
        m_imageWait.reset();
    }
    fireLoadEvent(OSTStatisticalEvent::Success);
    fireCompletion(true);
}

void OSTScreenController::requiredImagesTimedOut()
{
    if (m_screenView && m_screenView->isFullyLoaded())
        return;
    // The screen shows without the images still on their way: an empty image box is better than
    // no experience at all. The load event tells the service the wait ran out.
    fireLoadEvent(OSTStatisticalEvent::Timeout);
    fireCompletion(true);
}

void OSTScreenController::fireLoadEvent(int type)
{
    if (!m_loadStart)
        return;
    const double elapsed = OSTClock::current().monotonicNow() - *m_loadStart;
    m_loadStart.reset();
    const bool fullyLoaded = m_screenView && m_screenView->isFullyLoaded();
    OSTEventHook::sendEvent(OSTStatisticalEvent::screenLoadEvent(
        elapsed, type, fullyLoaded ? OSTStatisticalEvent::Loading::Full : OSTStatisticalEvent::Loading::Partial));
}

void OSTScreenController::fireCompletion(bool success)
{
    if (!m_completion)
        return;
    const Completion completion = std::move(m_completion);
    m_completion = nullptr;
    if (success) {
        completion(this);
        return;
    }
    OSTImageManager::sharedManager().muteAllDownloads();
    completion(nullptr);
    // Nobody took the controller: it goes once the current event is handled.
    deleteLater();
}

void OSTScreenController::setDelegate(OSTScreenControllerDelegate *delegate)
{
    m_delegate = delegate ? delegate->weakReference() : std::weak_ptr<OSTScreenControllerDelegate>();
}

std::shared_ptr<OSTScreenControllerDelegate> OSTScreenController::lockedDelegate() const
{
    return m_delegate.lock();
}

void OSTScreenController::setValidationManager(const std::shared_ptr<OSTValidationManager> &manager)
{
    m_validationManager = manager;
    if (!manager || !m_screenView)
        return;
    manager->addScreenWithKey(m_screen->key(), m_screenView->layout());
    manager->attachGroup(*this, m_screen->key(), m_screenView->validationItems());
}

void OSTScreenController::validityChanged()
{
    if (!m_screenView)
        return;
    const std::shared_ptr<OSTValidationGroupModel> groupModel = model();
    // A screen outside any flow's validation has nothing to check.
    const bool valid = !groupModel || groupModel->isValid();
    for (QWidget *view : m_screenView->views()) {
        auto *button = qobject_cast<OSTButton *>(view);
        if (!button || !button->action() || button->action()->type() != OSTActionTypeNext)
            continue;
        // Qt hands the focus of a disabled button to the next input, whose editing would hide the
        // error the user must see; the screen keeps it instead.
        if (!valid && button->hasFocus())
            m_screenView->setFocus(Qt::OtherFocusReason);
        button->setEnabled(valid);
    }
    const std::optional<QString> message = groupModel ? groupModel->stateSensitiveErrorMessage() : std::nullopt;
    m_screenView->showErrorMessage(message.value_or(QString()), OSTAnimation::Animated);
}

void OSTScreenController::handleAction(const std::shared_ptr<const OSTAction> &action)
{
    if (!action)
        return;
    const auto delegate = lockedDelegate();
    switch (action->type()) {
    case OSTActionTypeNone:
        return;
    case OSTActionTypeNext:
        if (delegate)
            delegate->screenControllerShouldGoToNextScreen(*this);
        return;
    case OSTActionTypePrevious:
        if (delegate)
            delegate->screenControllerShouldGoToPreviousScreen(*this);
        return;
    case OSTActionTypeClose:
        if (delegate)
            delegate->screenControllerShouldClose(*this);
        return;
    case OSTActionTypeStartFlow:
        if (delegate && action->flowKey())
            delegate->screenControllerShouldStartFlow(*this, *action->flowKey());
        return;
    case OSTActionTypeLoginFacebook:
        logInWithSocialAccount(action);
        return;
    case OSTActionTypeOpenURL: {
        const bool opened = m_environment.openURL && m_environment.openURL(action->urlString().value_or(QString()));
        if (opened && action->shouldCloseSelf() && delegate)
            delegate->screenControllerShouldClose(*this);
        return;
    }
    }
}

void OSTScreenController::logInWithSocialAccount(const std::shared_ptr<const OSTAction> &action)
{
    if (!m_environment.socialLogIn) {
        OSTLogging::logWarning(u"Social log-in is not available; the action of screen %1 does nothing"_s,
                               m_screen->key());
        return;
    }
    const std::shared_ptr<const OSTFlow> flow = m_screen->flow();
    const QVariantMap info = flow ? flow->facebookLoginProperties() : QVariantMap();
    QPointer<OSTScreenController> self(this);
    m_environment.socialLogIn(info, [self, action](bool success, const QVariantMap &fields) {
        if (!self || !success || fields.isEmpty())
            return;
        if (!self->m_environment.authenticate) {
            self->finishSocialLogIn(action, fields, QString());
            return;
        }
        OSTLoadingOverlay *overlay = self->loadingOverlay();
        auto pending = std::make_shared<bool>(true);
        self->m_environment.authenticate(
            fields, [self, action, fields, overlay = QPointer<OSTLoadingOverlay>(overlay),
                     pending](const std::optional<OSTValidationResult> &result, const QString &userId) {
                *pending = false;
                if (overlay)
                    overlay->dismiss();
                if (!self)
                    return;
                if (result && !result->isValid()) {
                    if (const auto manager = self->m_validationManager.lock())
                        manager->handleValidationResult(result, self->m_screen->key());
                    return;
                }
                self->finishSocialLogIn(action, fields, userId);
            });
        if (*pending && self)
            overlay->presentOnView(self->view());
    });
}

OSTLoadingOverlay *OSTScreenController::loadingOverlay()
{
    if (!m_loadingOverlay)
        m_loadingOverlay = new OSTLoadingOverlay(view());
    return m_loadingOverlay;
}

void OSTScreenController::finishSocialLogIn(const std::shared_ptr<const OSTAction> &action, const QVariantMap &fields,
                                            const QString &userId)
{
    if (m_environment.logInUser)
        m_environment.logInUser(fields, userId);
    handleAction(action->successAction());
}

void OSTScreenController::screenViewDidPressButton(OSTScreenView &, OSTButton &button)
{
    // A picture button already opened its menu when pressed.
    if (qobject_cast<OSTImagePickerButton *>(&button))
        return;
    handleAction(button.action());
}

void OSTScreenController::screenViewShouldHandleAction(OSTScreenView &, const std::shared_ptr<const OSTAction> &action)
{
    handleAction(action);
}

void OSTScreenController::screenViewShouldGoToNextScreen(OSTScreenView &)
{
    if (const auto delegate = lockedDelegate())
        delegate->screenControllerShouldGoToNextScreen(*this);
}

void OSTScreenController::screenViewDidTapScreen(OSTScreenView &view)
{
    const std::shared_ptr<OSTValidationGroupModel> groupModel = model();
    const std::optional<QString> message = groupModel ? groupModel->errorMessage() : std::nullopt;
    view.showErrorMessage(message.value_or(QString()), OSTAnimation::Animated);
}

void OSTScreenController::viewDidAppear(OSTAnimation)
{
    QInputMethod *inputMethod = QGuiApplication::inputMethod();
    if (inputMethod && !m_keyboardVisibility) {
        m_keyboardVisibility = connect(inputMethod, &QInputMethod::visibleChanged, this, &OSTScreenController::updateKeyboard);
        m_keyboardGeometry = connect(inputMethod, &QInputMethod::keyboardRectangleChanged, this,
                                     &OSTScreenController::updateKeyboard);
    }
    if (m_didAppear)
        return;
    m_didAppear = true;
    OSTEventHook::sendEvent(OSTInternalEvent::screenDisplayedEvent(*m_screen));
}

void OSTScreenController::viewDidDisappear(OSTAnimation)
{
    QObject::disconnect(m_keyboardVisibility);
    QObject::disconnect(m_keyboardGeometry);
    m_keyboardVisibility = {};
    m_keyboardGeometry = {};
}

void OSTScreenController::updateKeyboard()
{
    QInputMethod *inputMethod = QGuiApplication::inputMethod();
    if (!m_screenView || !inputMethod)
        return;
    if (inputMethod->isVisible() && inputMethod->keyboardRectangle().height() > 0)
        m_screenView->keyboardWillShow(inputMethod->keyboardRectangle().height());
    else
        m_screenView->keyboardWillHide();
}

} // namespace ostrel
