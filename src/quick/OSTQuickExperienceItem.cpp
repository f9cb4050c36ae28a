#include "quick/OSTQuickExperienceItem.h"

#include "experience/OSTExperienceManager.h"
#include "experience/OSTFlow.h"
#include "model/OSTExperienceModel.h"
#include "model/OSTScreenEnvironment.h"
#include "quick/OSTQuickLoadingOverlay.h"
#include "quick/OSTQuickScreen.h"

#include <QEasingCurve>
#include <QParallelAnimationGroup>
#include <QPropertyAnimation>

#include <algorithm>

namespace ostrel {

namespace {

void addSlide(QParallelAnimationGroup &group, QQuickItem *item, qreal from, qreal to)
{
    auto *slide = new QPropertyAnimation(item, "x", &group);
    slide->setStartValue(from);
    slide->setEndValue(to);
    slide->setDuration(OSTQuickExperienceItem::slideMilliseconds);
    slide->setEasingCurve(QEasingCurve::OutCubic);
    group.addAnimation(slide);
}

} // namespace

void OSTQuickExperienceItem::itemWithType(int type, QSizeF area, Completion completion)
{
    const std::optional<OSTExperienceModel::Start> start = OSTExperienceModel::startOfType(type);
    if (!start) {
        completion(nullptr);
        return;
    }
    const OSTScreenModel::Environment environment = OSTScreenEnvironment::forExperience(area);
    OSTQuickScreen::screenWithScreen(
        start->flow->screens().front(), environment,
        [environment, key = start->experienceKey, completion = std::move(completion)](OSTQuickScreen *first) {
            completion(first ? new OSTQuickExperienceItem(environment, first, key) : nullptr);
        });
}

OSTQuickExperienceItem::OSTQuickExperienceItem(const OSTScreenModel::Environment &environment, OSTQuickScreen *first,
                                               const QString &experienceKey)
    : m_environment(environment), m_stack{first},
      m_model(std::make_unique<OSTExperienceModel>(static_cast<OSTExperienceView &>(*this), first->screenModel(),
                                                   experienceKey))
{
    setSize(environment.area);
    setClip(true);
    setFlag(ItemIsFocusScope);
    placeOnStage(*first);
}

OSTQuickExperienceItem::~OSTQuickExperienceItem()
{
    delete m_slide.data();
}

QList<OSTQuickScreen *> OSTQuickExperienceItem::stack() const
{
    QList<OSTQuickScreen *> screens;
    for (const QPointer<OSTQuickScreen> &screen : m_stack) {
        if (screen)
            screens.append(screen.data());
    }
    return screens;
}

void OSTQuickExperienceItem::experienceDidAppear()
{
    // The flow starts before its first screen is reported displayed.
    m_model->experienceDidAppear();
    if (OSTQuickScreen *screen = top())
        screen->screenDidAppear();
}

void OSTQuickExperienceItem::experienceDidDisappear()
{
    if (OSTQuickScreen *screen = top())
        screen->screenDidDisappear();
}

void OSTQuickExperienceItem::geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry)
{
    QQuickItem::geometryChange(newGeometry, oldGeometry);
    if (newGeometry.size() == oldGeometry.size())
        return;
    finishRunningSlide();
    for (const QPointer<OSTQuickScreen> &screen : m_stack) {
        if (screen)
            screen->setSize(newGeometry.size());
    }
}

void OSTQuickExperienceItem::keyPressEvent(QKeyEvent *event)
{
    // The overlay takes every click, the close button's too: while a check waits for an answer
    // that may never come, Escape still closes the experience.
    if (m_waitsForCheck && event->key() == Qt::Key_Escape) {
        m_model->close();
        return;
    }
    QQuickItem::keyPressEvent(event);
}

// --- The experience model's view --------------------------------------------------------------

OSTScreenModel *OSTQuickExperienceItem::makeScreen(const std::shared_ptr<const OSTScreen> &screen)
{
    OSTScreenModel::Environment environment = m_environment;
    environment.area = size();
    OSTQuickScreen *made = OSTQuickScreen::screenWithScreen(screen, environment);
    if (!made)
        return nullptr;
    made->setParent(this);
    made->setParentItem(this);
    made->setVisible(false);
    m_offStage.append(made);
    return &made->screenModel();
}

void OSTQuickExperienceItem::pushScreen(OSTScreenModel &screen)
{
    const auto made = std::find_if(m_offStage.begin(), m_offStage.end(), [&screen](const QPointer<OSTQuickScreen> &item) {
        return item && &item->screenModel() == &screen;
    });
    if (made == m_offStage.end())
        return;
    OSTQuickScreen *to = made->data();
    m_offStage.erase(made);
    finishRunningSlide();
    OSTQuickScreen *from = top();
    m_stack.append(to);
    placeOnStage(*to);
    transition(from, to, Direction::Forward, {});
}

void OSTQuickExperienceItem::popScreen()
{
    if (m_stack.size() < 2)
        return;
    finishRunningSlide();
    OSTQuickScreen *from = m_stack.takeLast().data();
    transition(from, top(), Direction::Backward, {from});
}

void OSTQuickExperienceItem::popToScreen(OSTScreenModel &screen)
{
    const auto target = std::find_if(m_stack.begin(), m_stack.end(), [&screen](const QPointer<OSTQuickScreen> &item) {
        return item && &item->screenModel() == &screen;
    });
    if (target == m_stack.end() || target + 1 == m_stack.end())
        return;
    finishRunningSlide();
    OSTQuickScreen *from = top();
    QList<QPointer<OSTQuickScreen>> leaving;
    for (auto each = target + 1; each != m_stack.end(); ++each)
        leaving.append(*each);
    m_stack.erase(target + 1, m_stack.end());
    transition(from, top(), Direction::Backward, leaving);
}

void OSTQuickExperienceItem::showLoadingOverlay()
{
    if (!m_loadingOverlay)
        m_loadingOverlay = new OSTQuickLoadingOverlay(this);
    m_loadingOverlay->present();
    m_waitsForCheck = true;
    forceActiveFocus();
}

void OSTQuickExperienceItem::hideLoadingOverlay()
{
    if (m_loadingOverlay)
        m_loadingOverlay->dismiss();
    m_waitsForCheck = false;
}

void OSTQuickExperienceItem::dismiss()
{
    Q_EMIT closeRequested();
    OSTExperienceManager::sharedManager().dismissExperienceWithCompletion(nullptr);
}

// --- Sliding ----------------------------------------------------------------------------------

OSTQuickScreen *OSTQuickExperienceItem::top() const
{
    return m_stack.isEmpty() ? nullptr : m_stack.last().data();
}

void OSTQuickExperienceItem::placeOnStage(OSTQuickScreen &screen)
{
    screen.setParent(this);
    screen.setParentItem(this);
    screen.setPosition({0, 0});
    screen.setSize(size());
    screen.setVisible(true);
}

void OSTQuickExperienceItem::transition(OSTQuickScreen *from, OSTQuickScreen *to, Direction direction,
                                        QList<QPointer<OSTQuickScreen>> leaving)
{
    if (!to)
        return;
    to->setVisible(true);
    // The screen that goes back lies above the one it uncovers; a new screen lies above all.
    if (from)
        (direction == Direction::Forward ? to->stackAfter(from) : from->stackAfter(to));
    const auto finish = [this, from = QPointer<OSTQuickScreen>(from), to = QPointer<OSTQuickScreen>(to), leaving] {
        m_slide.clear();
        if (from && from != to) {
            from->setVisible(false);
            from->setEnabled(true);
            from->screenDidDisappear();
        }
        for (const QPointer<OSTQuickScreen> &screen : leaving) {
            if (screen)
                screen->deleteLater();
        }
        if (to) {
            to->setX(0);
            to->forceActiveFocus();
            to->screenDidAppear();
        }
    };
    if (!from || !isVisible() || width() <= 0) {
        finish();
        return;
    }
    // A screen on its way out takes no more clicks: a second click on "next" while the first
    // slides must not act on a screen that is being left.
    from->setEnabled(false);
    const qreal covered = -width() * coveredShift;
    auto *group = new QParallelAnimationGroup(this);
    if (direction == Direction::Forward) {
        addSlide(*group, from, 0, covered);
        addSlide(*group, to, width(), 0);
    } else {
        addSlide(*group, from, 0, width());
        addSlide(*group, to, covered, 0);
    }
    m_slide = group;
    connect(group, &QAbstractAnimation::finished, this, finish);
    group->start(QAbstractAnimation::DeleteWhenStopped);
}

void OSTQuickExperienceItem::finishRunningSlide()
{
    if (QAbstractAnimation *slide = m_slide.data())
        slide->setCurrentTime(slide->totalDuration());
}

} // namespace ostrel
