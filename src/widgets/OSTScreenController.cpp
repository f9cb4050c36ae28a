#include "widgets/OSTScreenController.h"

#include "experience/OSTAction.h"
#include "network/OSTImageManager.h"
#include "screen/OSTScreenDocument.h"
#include "widgets/OSTButton.h"
#include "widgets/OSTImagePickerButton.h"
#include "widgets/OSTLoadingOverlay.h"

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
    : OSTViewController(parent), m_model(std::make_unique<OSTScreenModel>(screen, environment)),
      m_completion(std::move(completion))
{
}

OSTScreenController::~OSTScreenController()
{
    QObject::disconnect(m_keyboardVisibility);
    QObject::disconnect(m_keyboardGeometry);
}

bool OSTScreenController::loadScreen()
{
    m_model->beginLoading();
    const Environment &environment = m_model->environment();
    m_screenView = OSTScreenView::create(m_model->screen(), environment.area, environment.substitution);
    if (!m_screenView) {
        m_model->failLoading();
        fireCompletion(false);
        return false;
    }
    m_model->setView(*this);
    m_screenView->setDelegate(this);
    readStatusBarStyle();
    view();
    m_model->waitForRequiredImages(m_completion ? OSTScreenModel::Ready([this] { fireCompletion(true); })
                                                : OSTScreenModel::Ready());
    return true;
}

QWidget *OSTScreenController::loadView()
{
    return m_screenView ? static_cast<QWidget *>(m_screenView) : OSTViewController::loadView();
}

void OSTScreenController::readStatusBarStyle()
{
    const OSTScreenDocument::StatusBarStyle style = m_screenView->document()->statusBarStyle();
    m_statusBarHidden = style == OSTScreenDocument::StatusBarStyle::Hidden;
    m_statusBarStyle = style == OSTScreenDocument::StatusBarStyle::Light ? OSTStatusBarStyle::LightContent
                                                                         : OSTStatusBarStyle::Default;
}

void OSTScreenController::fireCompletion(bool success)
{
    if (!m_completion)
        return;
    const Completion completion = std::exchange(m_completion, nullptr);
    if (success) {
        completion(this);
        return;
    }
    OSTImageManager::sharedManager().muteAllDownloads();
    completion(nullptr);
    // Nobody took the controller: it goes once the current event is handled.
    deleteLater();
}

// --- The screen model's view ------------------------------------------------------------------

const OSTScreenDocument &OSTScreenController::screenDocument() const
{
    return *m_screenView->document();
}

OSTScreenModelView::ValidationItems OSTScreenController::validationItems() const
{
    return m_screenView ? m_screenView->validationItems() : ValidationItems();
}

bool OSTScreenController::isFullyLoaded() const
{
    return m_screenView && m_screenView->isFullyLoaded();
}

void OSTScreenController::setNextButtonsEnabled(bool enabled)
{
    if (!m_screenView)
        return;
    for (QWidget *view : m_screenView->views()) {
        auto *button = qobject_cast<OSTButton *>(view);
        if (!button || !button->action() || button->action()->type() != OSTActionTypeNext)
            continue;
        // Qt hands the focus of a disabled button to the next input, whose editing would hide the
        // error the user must see; the screen keeps it instead.
        if (!enabled && button->hasFocus())
            m_screenView->setFocus(Qt::OtherFocusReason);
        button->setEnabled(enabled);
    }
}

void OSTScreenController::showErrorMessage(const QString &message)
{
    if (m_screenView)
        m_screenView->showErrorMessage(message, OSTAnimation::Animated);
}

void OSTScreenController::showLoadingOverlay()
{
    if (!m_loadingOverlay)
        m_loadingOverlay = new OSTLoadingOverlay(view());
    m_loadingOverlay->presentOnView(view());
}

void OSTScreenController::hideLoadingOverlay()
{
    if (m_loadingOverlay)
        m_loadingOverlay->dismiss();
}

// --- What happens on the screen ---------------------------------------------------------------

void OSTScreenController::screenViewDidFinishLoadingRequiredImages(OSTScreenView &)
{
    m_model->requiredImagesDidFinishLoading();
}

void OSTScreenController::screenViewDidPressButton(OSTScreenView &, OSTButton &button)
{
    // A picture button already opened its menu when pressed.
    if (qobject_cast<OSTImagePickerButton *>(&button))
        return;
    m_model->handleAction(button.action());
}

void OSTScreenController::screenViewShouldHandleAction(OSTScreenView &, const std::shared_ptr<const OSTAction> &action)
{
    m_model->handleAction(action);
}

void OSTScreenController::screenViewShouldGoToNextScreen(OSTScreenView &)
{
    m_model->goToNextScreen();
}

void OSTScreenController::screenViewDidTapScreen(OSTScreenView &)
{
    m_model->screenTapped();
}

void OSTScreenController::viewDidAppear(OSTAnimation)
{
    QInputMethod *inputMethod = QGuiApplication::inputMethod();
    if (inputMethod && !m_keyboardVisibility) {
        m_keyboardVisibility = connect(inputMethod, &QInputMethod::visibleChanged, this, &OSTScreenController::updateKeyboard);
        m_keyboardGeometry = connect(inputMethod, &QInputMethod::keyboardRectangleChanged, this,
                                     &OSTScreenController::updateKeyboard);
    }
    m_model->screenDidAppear();
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
