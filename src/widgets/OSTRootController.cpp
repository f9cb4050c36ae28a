#include "widgets/OSTRootController.h"

#include "core/OSTLogging.h"
#include "experience/OSTExperienceManager.h"
#include "platform/OSTApplication.h"
#include "platform/OSTDeviceScreen.h"
#include "widgets/OSTFadingPicture.h"
#include "widgets/OSTLaunchController.h"
#include "widgets/OSTModalPresenter.h"

#include <ostrel/Ostrel.h>

#include <QGuiApplication>
#include <QGraphicsOpacityEffect>
#include <QGridLayout>
#include <QLabel>
#include <QParallelAnimationGroup>
#include <QPropertyAnimation>
#include <QScreen>
#include <QTimer>

namespace ostrel {

namespace {

QGraphicsOpacityEffect *fadeEffect(QWidget *view, double opacity)
{
    auto *effect = new QGraphicsOpacityEffect(view);
    effect->setOpacity(opacity);
    view->setGraphicsEffect(effect);
    return effect;
}

QPropertyAnimation *opacityAnimation(QGraphicsOpacityEffect *effect, double to, int milliseconds, QObject *parent)
{
    auto *animation = new QPropertyAnimation(effect, "opacity", parent);
    animation->setStartValue(effect->opacity());
    animation->setEndValue(to);
    animation->setDuration(milliseconds);
    return animation;
}

void callCompletion(const OSTRootController::Completion &completion, bool success)
{
    if (completion)
        completion(success);
}

} // namespace

OSTRootController::OSTRootController(ChildFactory childFactory, QObject *parent)
    : OSTViewController(parent)
    , m_childFactory(std::move(childFactory))
    , m_launchWaiter(&Ostrel::executeAfterLaunch)
    , m_presenter(new OSTModalPresenter(this))
{
    connect(this, &OSTViewController::statusBarAppearanceChanged, this,
            &OSTRootController::applyStatusBarPreferences);
}

OSTRootController::OSTRootController(ChildFactory childFactory, PresentationOptions options, QObject *parent)
    : OSTRootController(std::move(childFactory), parent)
{
    m_options = std::move(options);
}

OSTRootController::~OSTRootController()
{
    delete m_crossFade.data();
    delete m_launchSnapshot.data();
}

void OSTRootController::setLaunchWaiter(LaunchWaiter waiter)
{
    if (waiter)
        m_launchWaiter = std::move(waiter);
}

OSTViewController *OSTRootController::childViewController() const
{
    if (m_child)
        return m_child.data();
    return m_launchController.data();
}

QWidget *OSTRootController::launchSnapshot() const
{
    return m_launchSnapshot.data();
}

QAbstractAnimation *OSTRootController::runningCrossFade() const
{
    return m_crossFade.data();
}

bool OSTRootController::prefersStatusBarHidden() const
{
    const OSTViewController *child = childViewController();
    return child ? child->prefersStatusBarHidden() : OSTViewController::prefersStatusBarHidden();
}

OSTStatusBarStyle OSTRootController::preferredStatusBarStyle() const
{
    const OSTViewController *child = childViewController();
    return child ? child->preferredStatusBarStyle() : OSTViewController::preferredStatusBarStyle();
}

// --- Loading -------------------------------------------------------------------------------

void OSTRootController::load(Completion completion)
{
    waitForLaunch([this, completion = std::move(completion)](bool started) {
        if (!started) {
            callCompletion(completion, false);
            return;
        }
        makeChild([this, completion](OSTViewController *child) {
            if (!child) {
                callCompletion(completion, false);
                return;
            }
            m_child = child;
            embedAppearing(child);
            callCompletion(completion, true);
        });
    });
}

void OSTRootController::waitForLaunch(std::function<void(bool success)> then)
{
    // The launch may end after this controller was dismissed or deleted; then nothing happens.
    m_launchWaiter([self = QPointer<OSTRootController>(this), then = std::move(then)](bool started) {
        if (!self)
            return;
        then(started && self->m_state != State::Dismissed);
    });
}

void OSTRootController::makeChild(Delivery then)
{
    if (!m_childFactory) {
        then(nullptr);
        return;
    }
    m_childFactory(coveredAreaSize(), [self = QPointer<OSTRootController>(this), then = std::move(then)](
                                          OSTViewController *child) {
        if (self && self->m_state != State::Dismissed) {
            then(child);
            return;
        }
        // Built for a presentation that ended meanwhile.
        delete child;
        if (self)
            then(nullptr);
    });
}

void OSTRootController::embed(OSTViewController *child)
{
    addChildController(child);
    connect(child, &OSTViewController::statusBarAppearanceChanged, this,
            &OSTViewController::setNeedsStatusBarAppearanceUpdate);
    auto *grid = static_cast<QGridLayout *>(view()->layout());
    // One cell for every child, so the cover and the experience overlap during the cross-fade.
    grid->addWidget(child->view(), 0, 0);
    child->view()->show();
}

void OSTRootController::embedAppearing(OSTViewController *child)
{
    child->beginAppearanceTransition(Transition::Appear, OSTAnimation::Immediate);
    embed(child);
    child->endAppearanceTransition();
}

QWidget *OSTRootController::loadView()
{
    auto *container = new QWidget;
    auto *grid = new QGridLayout(container);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setSpacing(0);
    return container;
}

// --- Presenting ----------------------------------------------------------------------------

void OSTRootController::present(Completion completion)
{
    if (!m_options) {
        OSTLogging::logWarning(QStringLiteral("An experience controller without settings cannot be presented"));
        callCompletion(completion, false);
        return;
    }
    if (m_state != State::Idle) {
        OSTLogging::logWarning(QStringLiteral("The experience is already presented"));
        callCompletion(completion, false);
        return;
    }
    m_state = State::Presenting;
    if (OSTApplication::hasBecomeActiveOnce())
        presentExperience(std::move(completion));
    else
        presentLaunch(std::move(completion));
}

void OSTRootController::presentLaunch(Completion completion)
{
    m_launchController = new OSTLaunchController(coveredAreaSize(), coveredDevicePixelRatio(), this);
    QWidget *window = hostWindow();
    if (window) {
        // The user keeps seeing the launch screen while the cover is being presented.
        QLabel *snapshot = new QLabel(window);
        QWidget *launchView = m_launchController->view();
        launchView->resize(window->size());
        snapshot->setPixmap(launchView->grab());
        snapshot->setGeometry(window->rect());
        snapshot->show();
        snapshot->raise();
        m_launchSnapshot = snapshot;
    }
    QTimer::singleShot(0, this, [this, completion = std::move(completion)] { presentLaunchCover(completion); });
}

void OSTRootController::presentLaunchCover(Completion completion)
{
    if (m_state == State::Dismissed) {
        removeLaunchSnapshot();
        callCompletion(completion, false);
        return;
    }
    embedAppearing(m_launchController);
    presentModally(OSTAnimation::Immediate, [this, completion = std::move(completion)](bool presented) {
        if (!presented) {
            fadeOutLaunchSnapshot();
            callCompletion(completion, false);
            return;
        }
        removeLaunchSnapshot();
        presentExperience(completion);
    });
}

void OSTRootController::presentExperience(Completion completion)
{
    waitForLaunch([this, completion = std::move(completion)](bool started) {
        if (!started) {
            failPresentation(completion);
            return;
        }
        makeChild([this, completion](OSTViewController *child) {
            if (!child) {
                failPresentation(completion);
                return;
            }
            m_child = child;
            if (m_launchController) {
                crossFadeFromLaunch(completion);
                return;
            }
            embed(child);
            presentModally(m_options->presentAnimation, completion);
        });
    });
}

void OSTRootController::failPresentation(const Completion &completion)
{
    if (m_launchController && m_state != State::Dismissed)
        dismissModally(OSTAnimation::Animated, nullptr);
    callCompletion(completion, false);
}

void OSTRootController::crossFadeFromLaunch(Completion completion)
{
    OSTViewController *child = m_child.data();
    embed(child);
    QWidget *launchView = m_launchController->view();
    QWidget *experienceView = child->view();
    m_launchController->beginAppearanceTransition(Transition::Disappear, OSTAnimation::Animated);
    child->beginAppearanceTransition(Transition::Appear, OSTAnimation::Animated);
    // Clicks fall through to this view (which ignores them) until the experience is fully up.
    experienceView->setAttribute(Qt::WA_TransparentForMouseEvents, true);
    launchView->setAttribute(Qt::WA_TransparentForMouseEvents, true);

    // The experience fades in as a picture: its screens' own effects cannot be drawn through an
    // opacity effect.
    view()->layout()->activate();
    auto *picture = new OSTFadingPicture(experienceView, 0.0);
    experienceView->hide();
    auto *fade = new QParallelAnimationGroup(this);
    fade->addAnimation(opacityAnimation(fadeEffect(launchView, 1.0), 0.0, crossFadeMilliseconds, fade));
    auto *fadeIn = new QPropertyAnimation(picture, "opacity", fade);
    fadeIn->setStartValue(0.0);
    fadeIn->setEndValue(1.0);
    fadeIn->setDuration(crossFadeMilliseconds);
    fade->addAnimation(fadeIn);
    m_crossFade = fade;
    connect(fade, &QAbstractAnimation::finished, this, [this, picture, completion = std::move(completion)] {
        delete picture;
        finishCrossFade(completion);
    });
    setNeedsStatusBarAppearanceUpdate();
    fade->start(QAbstractAnimation::DeleteWhenStopped);
}

void OSTRootController::finishCrossFade(const Completion &completion)
{
    m_crossFade.clear();
    if (OSTViewController *child = m_child.data()) {
        child->view()->setAttribute(Qt::WA_TransparentForMouseEvents, false);
        child->view()->show();
        child->endAppearanceTransition();
    }
    if (OSTLaunchController *launch = m_launchController.data()) {
        launch->view()->hide();
        launch->endAppearanceTransition();
        launch->removeFromParentController();
        launch->deleteLater();
    }
    m_launchController.clear();
    setNeedsStatusBarAppearanceUpdate();
    callCompletion(completion, m_state != State::Dismissed);
}

void OSTRootController::removeLaunchSnapshot()
{
    delete m_launchSnapshot.data();
}

void OSTRootController::fadeOutLaunchSnapshot()
{
    QLabel *snapshot = m_launchSnapshot.data();
    if (!snapshot)
        return;
    auto *fade = opacityAnimation(fadeEffect(snapshot, 1.0), 0.0, crossFadeMilliseconds, snapshot);
    connect(fade, &QAbstractAnimation::finished, snapshot, &QObject::deleteLater);
    fade->start(QAbstractAnimation::DeleteWhenStopped);
}

// --- Modal presentation and dismissal ------------------------------------------------------

void OSTRootController::presentModally(OSTAnimation animation, Completion completion)
{
    recordStatusBar();
    m_presenter->present(hostWindow(), animation, [this, completion = std::move(completion)](bool presented) {
        if (presented && m_state == State::Presenting)
            m_state = State::Presented;
        applyStatusBarPreferences();
        callCompletion(completion, presented);
    });
}

void OSTRootController::dismiss(Completion completion)
{
    if (!m_child)
        callCompletion(completion, false);
    const OSTAnimation animation = m_options ? m_options->dismissAnimation : OSTAnimation::Immediate;
    dismissModally(animation, std::move(completion));
}

void OSTRootController::dismissModally(OSTAnimation animation, Completion completion)
{
    m_state = State::Dismissed;
    if (QAbstractAnimation *fade = m_crossFade.data())
        fade->setCurrentTime(fade->totalDuration());
    removeLaunchSnapshot();
    restoreStatusBar(animation);
    m_presenter->dismiss(animation, [completion = std::move(completion)](bool) { callCompletion(completion, true); });
}

QWidget *OSTRootController::hostWindow()
{
    if (m_options && m_options->presentingWindow)
        return m_options->presentingWindow->window();
    return OSTModalPresenter::frontMostWindow(view());
}

QSizeF OSTRootController::coveredAreaSize()
{
    // Without a window to cover, the experience gets a phone-sized window of its own.
    if (const QWidget *window = hostWindow())
        return window->size();
    return OSTDeviceScreen::fallbackBounds().size();
}

double OSTRootController::coveredDevicePixelRatio()
{
    if (const QWidget *window = hostWindow())
        return window->devicePixelRatioF();
    const QScreen *screen = QGuiApplication::primaryScreen();
    return screen ? screen->devicePixelRatio() : 1.0;
}

// --- Appearance and the status bar ---------------------------------------------------------

void OSTRootController::viewWillAppear(OSTAnimation animation)
{
    warnWhenLandscape();
    if (OSTViewController *child = childViewController())
        child->beginAppearanceTransition(Transition::Appear, animation);
}

void OSTRootController::viewDidAppear(OSTAnimation)
{
    if (OSTViewController *child = childViewController())
        child->endAppearanceTransition();
}

void OSTRootController::viewWillDisappear(OSTAnimation animation)
{
    if (OSTViewController *child = childViewController())
        child->beginAppearanceTransition(Transition::Disappear, animation);
}

void OSTRootController::viewDidDisappear(OSTAnimation)
{
    if (OSTViewController *child = childViewController())
        child->endAppearanceTransition();
}

void OSTRootController::recordStatusBar()
{
    const OSTApplicationStatusBar &statusBar = OSTApplicationStatusBar::sharedStatusBar();
    m_originalStatusBarVisibility = statusBar.visibility();
    m_originalStatusBarStyle = statusBar.style();
}

void OSTRootController::restoreStatusBar(OSTAnimation animation)
{
    OSTApplicationStatusBar &statusBar = OSTApplicationStatusBar::sharedStatusBar();
    if (m_originalStatusBarVisibility)
        statusBar.setVisibility(*std::exchange(m_originalStatusBarVisibility, std::nullopt), animation);
    if (m_originalStatusBarStyle)
        statusBar.setStyle(*std::exchange(m_originalStatusBarStyle, std::nullopt), animation);
}

void OSTRootController::applyStatusBarPreferences()
{
    // Only a controller-based status bar follows what is on screen; otherwise the host owns it.
    if (m_state != State::Presented || !OSTExperienceManager::readViewControllerBasedStatusBarAppearance())
        return;
    OSTApplicationStatusBar &statusBar = OSTApplicationStatusBar::sharedStatusBar();
    const auto visibility = prefersStatusBarHidden() ? OSTApplicationStatusBar::Visibility::Hidden
                                                     : OSTApplicationStatusBar::Visibility::Shown;
    statusBar.setVisibility(visibility, OSTAnimation::Animated);
    statusBar.setStyle(preferredStatusBarStyle(), OSTAnimation::Animated);
}

void OSTRootController::warnWhenLandscape()
{
    // Called once the view has been placed over the host, so its size is the covered area.
    // A desktop window wider than tall is common and not a rotated phone: said once per process.
    static std::atomic<bool> warned{false};
    const QSize area = view()->size();
    if (area.width() > area.height() && !warned.exchange(true))
        OSTLogging::logWarning(
            QStringLiteral("Presenting experience in landscape orientation, which is currently not supported by the SDK."));
}

} // namespace ostrel
