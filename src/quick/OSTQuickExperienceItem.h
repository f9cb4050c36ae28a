#pragma once

#include "model/OSTExperienceView.h"
#include "model/OSTScreenModel.h"

#include <QList>
#include <QAbstractAnimation>
#include <QPointer>
#include <QQuickItem>
#include <QSizeF>

#include <functional>
#include <memory>

namespace ostrel {

class OSTExperienceModel;
class OSTQuickLoadingOverlay;
class OSTQuickScreen;

// An experience drawn by Qt Quick: the stack of its screens (OSTQuickScreen items), the top one
// filling this item; a pushed screen slides in from the right over the one it covers, a popped one
// slides out. While a check awaits its answer a loading overlay covers everything, and Escape still
// closes the experience. The experience model decides; this item only draws what it is told
// (OSTExperienceView).
//
// Lives on the GUI thread; owned by its parent item (the cover over the host's window, or the QML
// OstrelExperience item). Owns its screens as child items, on the stack or made and not yet pushed.
class OSTQuickExperienceItem final : public QQuickItem, private OSTExperienceView {
    Q_OBJECT

public:
    using Completion = std::function<void(OSTQuickExperienceItem *experience)>;
    static constexpr int slideMilliseconds = 350;
    // How far the covered screen moves left while the new one slides over it.
    static constexpr double coveredShift = 1.0 / 3.0;

    // Builds the experience of `type` for an area of `area` points and calls `completion` with it
    // once its first screen is ready (its required images in, or their wait over), or with null
    // when the type names no experience or its first screen cannot be built.
    static void itemWithType(int type, QSizeF area, Completion completion);
    ~OSTQuickExperienceItem() override;

    OSTExperienceModel &model() const { return *m_model; }
    // The screens on the stack, bottom first.
    QList<OSTQuickScreen *> stack() const;
    // The slide between two screens in progress, or null.
    QAbstractAnimation *runningSlide() const { return m_slide.data(); }

    // The experience came on display: its flow starts and its first screen is displayed.
    void experienceDidAppear();
    // It left the display.
    void experienceDidDisappear();

Q_SIGNALS:
    // The user closed the experience, or its flow ended: whoever placed it takes it away.
    void closeRequested();

protected:
    void geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    enum class Direction { Forward, Backward };

    OSTQuickExperienceItem(const OSTScreenModel::Environment &environment, OSTQuickScreen *first,
                           const QString &experienceKey);

    // OSTExperienceView
    OSTScreenModel *makeScreen(const std::shared_ptr<const OSTScreen> &screen) override;
    void pushScreen(OSTScreenModel &screen) override;
    void popScreen() override;
    void popToScreen(OSTScreenModel &screen) override;
    void showLoadingOverlay() override;
    void hideLoadingOverlay() override;
    void dismiss() override;

    OSTQuickScreen *top() const;
    void placeOnStage(OSTQuickScreen &screen);
    // Shows `to` in place of `from`, sliding when the item is visible; the screens in `leaving`
    // are deleted once the slide ends.
    void transition(OSTQuickScreen *from, OSTQuickScreen *to, Direction direction,
                    QList<QPointer<OSTQuickScreen>> leaving);
    void finishRunningSlide();

    const OSTScreenModel::Environment m_environment;
    QList<QPointer<OSTQuickScreen>> m_stack;    // child items, bottom first
    QList<QPointer<OSTQuickScreen>> m_offStage; // child items made by makeScreen, hidden
    const std::unique_ptr<OSTExperienceModel> m_model;
    QPointer<OSTQuickLoadingOverlay> m_loadingOverlay; // child item, made on first use
    QPointer<QAbstractAnimation> m_slide;
    bool m_waitsForCheck = false;
};

} // namespace ostrel
