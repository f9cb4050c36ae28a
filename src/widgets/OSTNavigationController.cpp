#include "widgets/OSTNavigationController.h"

#include <QEasingCurve>
#include <QEvent>
#include <QLoggingCategory>
#include <QParallelAnimationGroup>
#include <QPropertyAnimation>

namespace ostrel {

namespace {

Q_LOGGING_CATEGORY(navigationLog, "ostrel.navigation")

// The covered controller moves a third of the way, as on a phone, so the slide reads as depth.
constexpr double coveredShiftFraction = 1.0 / 3.0;

void addSlide(QParallelAnimationGroup *group, QWidget *view, QPoint from, QPoint to, int milliseconds)
{
    auto *slide = new QPropertyAnimation(view, "pos", group);
    slide->setStartValue(from);
    slide->setEndValue(to);
    slide->setDuration(milliseconds);
    slide->setEasingCurve(QEasingCurve::OutCubic);
    view->move(from);
}

} // namespace

OSTNavigationController::OSTNavigationController(QObject *parent)
    : OSTViewController(parent)
{
}

OSTNavigationController::OSTNavigationController(OSTViewController *rootController, QObject *parent)
    : OSTViewController(parent)
{
    if (rootController)
        pushViewController(rootController, OSTAnimation::Immediate);
}

OSTNavigationController::~OSTNavigationController()
{
    // Stopped without finishing: nothing may be called back into a controller being torn down.
    delete m_slide.data();
}

OSTViewController *OSTNavigationController::topViewController() const
{
    return m_stack.isEmpty() ? nullptr : m_stack.constLast();
}

void OSTNavigationController::pushViewController(OSTViewController *controller, OSTAnimation animation)
{
    if (!controller || m_stack.contains(controller)) {
        qCWarning(navigationLog) << "Ignoring a push of a controller that is null or already shown";
        return;
    }
    finishRunningTransition();
    OSTViewController *from = topViewController();
    addChildController(controller);
    m_stack.append(controller);
    transition(from, {}, Direction::Forward, animation);
}

bool OSTNavigationController::popViewController(OSTAnimation animation)
{
    if (m_stack.size() < 2)
        return false;
    return popToViewController(m_stack.at(m_stack.size() - 2), animation) == 1;
}

int OSTNavigationController::popToViewController(OSTViewController *controller, OSTAnimation animation)
{
    const qsizetype index = m_stack.indexOf(controller);
    if (index < 0 || index == m_stack.size() - 1)
        return 0;
    finishRunningTransition();
    OSTViewController *from = topViewController();
    const QList<OSTViewController *> leaving = m_stack.mid(index + 1);
    m_stack.resize(index + 1);
    transition(from, leaving, Direction::Backward, animation);
    return int(leaving.size());
}

QAbstractAnimation *OSTNavigationController::runningTransition() const
{
    return m_slide.data();
}

bool OSTNavigationController::prefersStatusBarHidden() const
{
    const OSTViewController *top = topViewController();
    return top ? top->prefersStatusBarHidden() : OSTViewController::prefersStatusBarHidden();
}

OSTStatusBarStyle OSTNavigationController::preferredStatusBarStyle() const
{
    const OSTViewController *top = topViewController();
    return top ? top->preferredStatusBarStyle() : OSTViewController::preferredStatusBarStyle();
}

QWidget *OSTNavigationController::loadView()
{
    auto *container = new QWidget;
    container->installEventFilter(this);
    return container;
}

void OSTNavigationController::viewWillAppear(OSTAnimation animation)
{
    if (OSTViewController *top = topViewController()) {
        placeTopView();
        top->beginAppearanceTransition(Transition::Appear, animation);
    }
}

void OSTNavigationController::viewDidAppear(OSTAnimation)
{
    if (OSTViewController *top = topViewController())
        top->endAppearanceTransition();
}

void OSTNavigationController::viewWillDisappear(OSTAnimation animation)
{
    finishRunningTransition();
    if (OSTViewController *top = topViewController())
        top->beginAppearanceTransition(Transition::Disappear, animation);
}

void OSTNavigationController::viewDidDisappear(OSTAnimation)
{
    if (OSTViewController *top = topViewController())
        top->endAppearanceTransition();
}

bool OSTNavigationController::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Resize && isViewLoaded() && watched == view()) {
        finishRunningTransition();
        placeTopView();
    }
    return OSTViewController::eventFilter(watched, event);
}

void OSTNavigationController::transition(OSTViewController *from, const QList<OSTViewController *> &leaving,
                                         Direction direction, OSTAnimation animation)
{
    OSTViewController *to = topViewController();
    ++m_transitionCount;
    followTopStatusBar();
    m_outgoing = from;
    m_discarded.clear();
    for (OSTViewController *controller : leaving)
        m_discarded.append(controller);
    m_forwardsAppearance = isOnScreen();
    if (m_forwardsAppearance) {
        if (from)
            from->beginAppearanceTransition(Transition::Disappear, animation);
        to->beginAppearanceTransition(Transition::Appear, animation);
    }
    if (!isViewLoaded()) {
        finishTransition();
        return;
    }
    placeTopView();
    QWidget *fromView = from && from->isViewLoaded() ? from->view() : nullptr;
    QWidget *toView = to->view();
    if (direction == Direction::Backward && fromView)
        toView->stackUnder(fromView);
    const bool slides = animation == OSTAnimation::Animated && m_transitionMilliseconds > 0 && fromView
        && view()->isVisible();
    if (slides) {
        // A view on its way out takes no more clicks: a second click on "next" while the first
        // slides must not act on a screen that is being left.
        fromView->setAttribute(Qt::WA_TransparentForMouseEvents);
        startSlide(fromView, toView, direction);
    }
    else
        finishTransition();
}

void OSTNavigationController::startSlide(QWidget *from, QWidget *to, Direction direction)
{
    const int width = view()->width();
    const QPoint origin(0, 0);
    const QPoint covered(-int(width * coveredShiftFraction), 0);
    const QPoint offScreen(width, 0);
    auto *group = new QParallelAnimationGroup(this);
    if (direction == Direction::Forward) {
        addSlide(group, from, origin, covered, m_transitionMilliseconds);
        addSlide(group, to, offScreen, origin, m_transitionMilliseconds);
    } else {
        addSlide(group, from, origin, offScreen, m_transitionMilliseconds);
        addSlide(group, to, covered, origin, m_transitionMilliseconds);
    }
    m_slide = group;
    connect(group, &QAbstractAnimation::finished, this, &OSTNavigationController::finishTransition);
    group->start(QAbstractAnimation::DeleteWhenStopped);
}

void OSTNavigationController::finishTransition()
{
    m_slide.clear();
    const quint64 finishing = m_transitionCount;
    OSTViewController *top = topViewController();
    if (m_outgoing && m_outgoing->isViewLoaded()) {
        m_outgoing->view()->setAttribute(Qt::WA_TransparentForMouseEvents, false);
        if (m_outgoing != top)
            m_outgoing->view()->hide();
    }
    if (m_forwardsAppearance) {
        if (m_outgoing && m_outgoing != top)
            m_outgoing->endAppearanceTransition();
        if (top)
            top->endAppearanceTransition();
    }
    m_outgoing.clear();
    m_forwardsAppearance = false;
    const QList<QPointer<OSTViewController>> discarded = std::exchange(m_discarded, {});
    for (const QPointer<OSTViewController> &controller : discarded) {
        if (!controller)
            continue;
        controller->removeFromParentController();
        // Later, because the pop may have been asked for from inside the leaving controller.
        controller->deleteLater();
    }
    placeTopView();
    // An appearance callback above may have started another change, which reports for itself.
    if (top && finishing == m_transitionCount)
        Q_EMIT didShowViewController(top);
}

void OSTNavigationController::finishRunningTransition()
{
    if (QParallelAnimationGroup *slide = m_slide.data())
        slide->setCurrentTime(slide->totalDuration());
    if (m_slide)
        finishTransition();
}

bool OSTNavigationController::isOnScreen() const
{
    const AppearanceState state = appearanceState();
    return state == AppearanceState::Appeared || state == AppearanceState::Appearing;
}

void OSTNavigationController::placeTopView()
{
    OSTViewController *top = topViewController();
    if (!top || !isViewLoaded())
        return;
    QWidget *container = view();
    QWidget *topView = top->view();
    if (topView->parentWidget() != container)
        topView->setParent(container);
    if (!m_slide)
        topView->setGeometry(container->rect());
    else
        topView->resize(container->size());
    topView->show();
}

void OSTNavigationController::followTopStatusBar()
{
    disconnect(m_topStatusBarConnection);
    if (OSTViewController *top = topViewController())
        m_topStatusBarConnection = connect(top, &OSTViewController::statusBarAppearanceChanged, this,
                &OSTViewController::setNeedsStatusBarAppearanceUpdate);
    setNeedsStatusBarAppearanceUpdate();
}

} // namespace ostrel
