#include "quick/OSTQuickCover.h"

#include "core/OSTLogging.h"
#include "platform/OSTApplication.h"
#include "quick/OSTQuickExperienceItem.h"
#include "quick/OSTQuickLaunchScreen.h"

#include <ostrel/Ostrel.h>

#include <QPropertyAnimation>
#include <QQuickWindow>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

// Above anything a host places in its window's content.
constexpr qreal coverZ = 1e6;

void callCompletion(const OSTQuickCover::Completion &completion, bool success)
{
    if (completion)
        completion(success);
}

} // namespace

OSTQuickCover::OSTQuickCover(const OSTExperienceSettings &settings)
    : m_settings(settings), m_launchWaiter(&Ostrel::executeAfterLaunch)
{
    setFlag(ItemIsFocusScope);
    setAcceptedMouseButtons(Qt::AllButtons);
    setAcceptTouchEvents(true);
    setZ(coverZ);
}

OSTQuickCover::~OSTQuickCover()
{
    delete m_fade.data();
}

OSTQuickExperienceItem *OSTQuickCover::experience() const
{
    return m_experience.data();
}

OSTQuickLaunchScreen *OSTQuickCover::launchScreen() const
{
    return m_launchScreen.data();
}

void OSTQuickCover::setLaunchWaiter(LaunchWaiter waiter)
{
    if (waiter)
        m_launchWaiter = std::move(waiter);
}

// --- Presenting --------------------------------------------------------------------------------

void OSTQuickCover::present(QQuickWindow *window, Completion completion)
{
    if (m_state != State::Idle) {
        OSTLogging::logWarning(u"The experience is already presented"_s);
        callCompletion(completion, false);
        return;
    }
    if (!window) {
        OSTLogging::logWarning(u"The Qt Quick window to present the experience over is gone"_s);
        callCompletion(completion, false);
        return;
    }
    m_state = State::Presenting;
    coverWindow(*window);
    if (!OSTApplication::hasBecomeActiveOnce())
        showLaunchScreen();
    presentExperience(std::move(completion));
}

void OSTQuickCover::coverWindow(QQuickWindow &window)
{
    m_window = &window;
    m_focusBeforePresenting = window.activeFocusItem();
    // A second presentation replaces the first, and gives the focus back where the first would have.
    for (QQuickItem *child : window.contentItem()->childItems()) {
        auto *earlier = qobject_cast<OSTQuickCover *>(child);
        if (!earlier || earlier == this)
            continue;
        m_focusBeforePresenting = earlier->m_focusBeforePresenting;
        earlier->m_focusBeforePresenting.clear();
        earlier->leaveAtOnce();
    }
    // Owned by the scene: a window that goes away takes the experience with it.
    setParent(window.contentItem());
    setParentItem(window.contentItem());
    followContentSize();
    connect(window.contentItem(), &QQuickItem::widthChanged, this, &OSTQuickCover::followContentSize);
    connect(window.contentItem(), &QQuickItem::heightChanged, this, &OSTQuickCover::followContentSize);
    setVisible(true);
    forceActiveFocus();
}

void OSTQuickCover::followContentSize()
{
    if (const QQuickItem *content = parentItem())
        setSize(content->size());
}

void OSTQuickCover::showLaunchScreen()
{
    const qreal ratio = m_window ? m_window->effectiveDevicePixelRatio() : 1.0;
    m_launchScreen = new OSTQuickLaunchScreen(size(), ratio, this);
}

void OSTQuickCover::presentExperience(Completion completion)
{
    // The launch may end after this cover was dismissed or deleted; then nothing happens.
    m_launchWaiter([self = QPointer<OSTQuickCover>(this), completion = std::move(completion)](bool started) {
        if (!self)
            return;
        if (!started || self->m_state == State::Dismissed) {
            self->fail(completion);
            return;
        }
        OSTQuickExperienceItem::itemWithType(
            self->m_settings.experienceType, self->size(),
            [self, completion](OSTQuickExperienceItem *experience) {
                if (!self || self->m_state == State::Dismissed) {
                    delete experience;
                    if (self)
                        callCompletion(completion, false);
                    return;
                }
                if (!experience) {
                    self->fail(completion);
                    return;
                }
                self->showExperience(experience, completion);
            });
    });
}

void OSTQuickCover::showExperience(OSTQuickExperienceItem *experience, Completion completion)
{
    m_experience = experience;
    experience->setParent(this);
    experience->setParentItem(this);
    experience->setSize(size());
    experience->forceActiveFocus();
    const auto shown = [this, completion = std::move(completion)] {
        delete m_launchScreen.data();
        if (m_state == State::Presenting)
            m_state = State::Presented;
        if (m_experience)
            m_experience->experienceDidAppear();
        callCompletion(completion, m_state == State::Presented);
    };
    if (m_launchScreen)
        fadeOpacity(experience, 0, 1, crossFadeMilliseconds, shown);
    else if (m_settings.shouldPresentAnimated)
        fadeOpacity(this, 0, 1, fadeMilliseconds, shown);
    else
        shown();
}

void OSTQuickCover::fail(const Completion &completion)
{
    if (m_state != State::Dismissed) {
        m_state = State::Dismissed;
        fadeOpacity(this, opacity(), 0, m_launchScreen ? crossFadeMilliseconds : 0, [this] { leaveWindow(); });
    }
    callCompletion(completion, false);
}

// --- Dismissing --------------------------------------------------------------------------------

void OSTQuickCover::dismiss(Completion completion)
{
    if (m_state == State::Idle || m_state == State::Dismissed) {
        callCompletion(completion, false);
        return;
    }
    m_state = State::Dismissed;
    finishRunningFade();
    if (m_experience)
        m_experience->experienceDidDisappear();
    const int milliseconds = m_settings.shouldDismissAnimated ? fadeMilliseconds : 0;
    fadeOpacity(this, opacity(), 0, milliseconds, [this, completion = std::move(completion)] {
        leaveWindow();
        callCompletion(completion, true);
    });
}

void OSTQuickCover::leaveAtOnce()
{
    m_state = State::Dismissed;
    finishRunningFade();
    if (m_experience)
        m_experience->experienceDidDisappear();
    leaveWindow();
}

void OSTQuickCover::leaveWindow()
{
    setVisible(false);
    if (QQuickItem *focus = m_focusBeforePresenting.data())
        focus->forceActiveFocus();
    setParentItem(nullptr);
    deleteLater();
}

// --- Fades -------------------------------------------------------------------------------------

void OSTQuickCover::fadeOpacity(QQuickItem *item, qreal from, qreal to, int milliseconds, std::function<void()> then)
{
    item->setOpacity(from);
    if (milliseconds <= 0 || !isVisible()) {
        item->setOpacity(to);
        then();
        return;
    }
    auto *fade = new QPropertyAnimation(item, "opacity", this);
    fade->setStartValue(from);
    fade->setEndValue(to);
    fade->setDuration(milliseconds);
    m_fade = fade;
    connect(fade, &QAbstractAnimation::finished, this, std::move(then));
    fade->start(QAbstractAnimation::DeleteWhenStopped);
}

void OSTQuickCover::finishRunningFade()
{
    if (QAbstractAnimation *fade = m_fade.data())
        fade->setCurrentTime(fade->totalDuration());
}

// --- Covering ----------------------------------------------------------------------------------

void OSTQuickCover::geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry)
{
    QQuickItem::geometryChange(newGeometry, oldGeometry);
    if (m_launchScreen)
        m_launchScreen->setSize(newGeometry.size());
    if (m_experience)
        m_experience->setSize(newGeometry.size());
}

// Clicks, wheels and touches that no screen took stop here instead of reaching the host's items.
void OSTQuickCover::mousePressEvent(QMouseEvent *event)
{
    event->accept();
}

void OSTQuickCover::wheelEvent(QWheelEvent *event)
{
    event->accept();
}

void OSTQuickCover::touchEvent(QTouchEvent *event)
{
    event->accept();
}

} // namespace ostrel
