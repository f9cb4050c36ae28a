#include "widgets/OSTModalPresenter.h"

#include "platform/OSTDeviceScreen.h"
#include "widgets/OSTFadingPicture.h"

#include <QApplication>
#include <QChildEvent>
#include <QEvent>
#include <QLoggingCategory>
#include <QPropertyAnimation>

namespace ostrel {

namespace {

Q_LOGGING_CATEGORY(presenterLog, "ostrel.presentation")

bool canBeCovered(const QWidget *window, const QWidget *excluded)
{
    return window && window != excluded && window->isWindow() && window->isVisible()
        && !(window->windowState() & Qt::WindowMinimized) && window->windowType() != Qt::Popup
        && window->windowType() != Qt::ToolTip && window->windowType() != Qt::Desktop;
}

void callCompletion(const OSTModalPresenter::Completion &completion, bool finished)
{
    if (completion)
        completion(finished);
}

} // namespace

OSTModalPresenter::OSTModalPresenter(OSTViewController *controller)
    : QObject(controller)
    , m_controller(controller)
{
}

OSTModalPresenter::~OSTModalPresenter()
{
    delete m_fade.data();
    if (m_window)
        m_window->removeEventFilter(this);
}

QWidget *OSTModalPresenter::frontMostWindow(const QWidget *excluded)
{
    QWidget *active = QApplication::activeWindow();
    if (canBeCovered(active, excluded))
        return active;
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (auto window = windows.crbegin(); window != windows.crend(); ++window) {
        if (canBeCovered(*window, excluded))
            return *window;
    }
    return nullptr;
}

void OSTModalPresenter::present(QWidget *host, OSTAnimation animation, Completion completion)
{
    if (!m_controller || m_placement != Placement::NotPresented) {
        qCWarning(presenterLog) << "Ignoring a presentation of a controller that is already presented";
        callCompletion(completion, false);
        return;
    }
    QWidget *view = m_controller->view();
    QWidget *window = host ? host->window() : frontMostWindow(view);
    if (window && window != view)
        cover(window);
    else
        showAsOwnWindow();
    m_controller->beginAppearanceTransition(OSTViewController::Transition::Appear, animation);
    fade(0.0, 1.0, animation, [this, completion = std::move(completion)] {
        if (m_controller)
            m_controller->endAppearanceTransition();
        callCompletion(completion, true);
    });
}

void OSTModalPresenter::dismiss(OSTAnimation animation, Completion completion)
{
    finishRunningTransition();
    if (!m_controller || m_placement == Placement::NotPresented) {
        callCompletion(completion, true);
        return;
    }
    m_controller->beginAppearanceTransition(OSTViewController::Transition::Disappear, animation);
    fade(1.0, 0.0, animation, [this, completion = std::move(completion)] {
        restoreHost();
        if (m_controller)
            m_controller->endAppearanceTransition();
        callCompletion(completion, true);
    });
}

QAbstractAnimation *OSTModalPresenter::runningTransition() const
{
    return m_fade.data();
}

bool OSTModalPresenter::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != m_window || !m_controller || !m_controller->isViewLoaded())
        return QObject::eventFilter(watched, event);
    QWidget *view = m_controller->view();
    if (event->type() == QEvent::Resize)
        view->setGeometry(m_window->rect());
    else if (event->type() == QEvent::ChildAdded && static_cast<QChildEvent *>(event)->child() != view)
        view->raise(); // the host's later children must not end up above the cover
    return QObject::eventFilter(watched, event);
}

void OSTModalPresenter::cover(QWidget *window)
{
    QWidget *view = m_controller->view();
    m_window = window;
    m_placement = Placement::CoveringWindow;
    m_previousFocus = window->focusWidget();
    view->setParent(window);
    view->setGeometry(window->rect());
    view->raise();
    view->show();
    view->setFocus(Qt::OtherFocusReason);
    window->installEventFilter(this);
    m_windowDestroyedConnection =
        connect(window, &QObject::destroyed, this, &OSTModalPresenter::hostWindowDestroyed);
}

void OSTModalPresenter::showAsOwnWindow()
{
    QWidget *view = m_controller->view();
    m_placement = Placement::OwnWindow;
    view->setParent(nullptr);
    // A phone-sized window: the experience's screens are designed for one.
    view->resize(OSTDeviceScreen::fallbackBounds().size().toSize());
    view->show();
}

void OSTModalPresenter::fade(double from, double to, OSTAnimation animation, std::function<void()> done)
{
    if (animation == OSTAnimation::Immediate || m_transitionMilliseconds <= 0) {
        done();
        return;
    }
    // The picture stands in for the view while it fades; the view comes back at the end when
    // it fades in.
    QWidget *view = m_controller->view();
    auto *picture = new OSTFadingPicture(view, from);
    view->hide();
    auto *animationOfOpacity = new QPropertyAnimation(picture, "opacity", this);
    animationOfOpacity->setStartValue(from);
    animationOfOpacity->setEndValue(to);
    animationOfOpacity->setDuration(m_transitionMilliseconds);
    m_fade = animationOfOpacity;
    connect(animationOfOpacity, &QAbstractAnimation::finished, this,
            [this, view = QPointer<QWidget>(view), picture, fadesIn = to > from, done = std::move(done)] {
                m_fade.clear();
                delete picture;
                if (view && fadesIn) {
                    view->show();
                    view->raise();
                    view->setFocus(Qt::OtherFocusReason);
                }
                done();
            });
    animationOfOpacity->start(QAbstractAnimation::DeleteWhenStopped);
}

void OSTModalPresenter::finishRunningTransition()
{
    if (QPropertyAnimation *running = m_fade.data())
        running->setCurrentTime(running->totalDuration());
}

void OSTModalPresenter::restoreHost()
{
    disconnect(m_windowDestroyedConnection);
    if (m_window)
        m_window->removeEventFilter(this);
    if (m_controller && m_controller->isViewLoaded()) {
        QWidget *view = m_controller->view();
        view->hide();
        view->setParent(nullptr);
    }
    if (m_previousFocus)
        m_previousFocus->setFocus(Qt::OtherFocusReason);
    m_window.clear();
    m_previousFocus.clear();
    m_placement = Placement::NotPresented;
}

void OSTModalPresenter::hostWindowDestroyed()
{
    // The window's children go with it; the controller's view must not.
    qCWarning(presenterLog) << "The window under a presented controller was destroyed";
    m_window.clear();
    if (m_controller && m_controller->isViewLoaded()) {
        QWidget *view = m_controller->view();
        view->hide();
        view->setParent(nullptr);
    }
    m_placement = Placement::NotPresented;
}

} // namespace ostrel
