#pragma once

#include "platform/OSTClock.h"
#include "widgets/OSTSelectionGroup.h"
#include "widgets/OSTViewController.h"

#include <QImage>
#include <QMap>
#include <QPointer>
#include <QRect>
#include <QSet>
#include <QSizeF>
#include <QStringList>
#include <QWidget>

#include <functional>
#include <memory>
#include <optional>

class QScrollArea;

namespace ostrel {

class OSTAction;
class OSTButton;
class OSTImageView;
class OSTInput;
class OSTLabel;
class OSTLayoutManager;
class OSTButtonDescription;
class OSTElementDescription;
class OSTImageDescription;
class OSTLabelDescription;
class OSTPickerDescription;
class OSTSwitchDescription;
class OSTTextFieldDescription;
class OSTScreen;
class OSTScreenDocument;
class OSTScreenViewDelegate;
class OSTValidationItem;
class OSTView;

// One screen of an experience: the screen JSON (after dynamic-variable substitution) read once
// into a screen document and laid out by the layout engine, one view per element, stacked by layer inside a scrolling content view.
// Anchored elements stay put while the page scrolls; the page is lifted above an on-screen
// keyboard; the "errorMessage" label opens and closes with its own alternative layout; required
// images are counted; taps, returns and presses go to the event queue and to the delegate.
//
// The area the layout resolves against is the view's own size (on a desktop, the widget the
// screen is shown in, which follows the host window). A change of size lays the screen out again,
// at most once per relayoutInterval however many resize events arrive in between.
//
// Fractional frames become widget geometry by one rule: each edge is rounded to the nearest whole
// point (halves up) in screen coordinates, and the size is the distance between the rounded edges.
// Elements that touch in the layout (one ends at 12.75 where the next begins) touch on screen,
// with neither gap nor overlap, and no size is off by more than one point. A grouped element's
// geometry is its rounded rectangle taken relative to its group's rounded origin, so it lines up
// with ungrouped elements.
//
// Lives on the GUI thread; owned by its parent widget (the screen controller's view). Element
// views are its descendants.
class OSTScreenView final : public QWidget, public OSTSelectionGroupDelegate {
    Q_OBJECT
    Q_INTERFACES(ostrel::OSTSelectionGroupDelegate)

public:
    // Replaces the dynamic variables in the screen JSON text; identity when none is given.
    using Substitution = std::function<QString(const QString &text)>;
    // What to do when some frame formula never resolves.
    enum class UnresolvedLayout {
        Fail,         // no screen view (what an experience does)
        ShowResolved, // build it anyway; unresolved elements get the zero rectangle (previews)
    };
    static constexpr double relayoutInterval = 0.1;

    // The screen view of `screen` laid out in `area` points; null when the JSON does not parse to
    // an object or (with Fail) the layout cannot be resolved.
    static OSTScreenView *create(const std::shared_ptr<const OSTScreen> &screen, const QSizeF &area,
                                 const Substitution &substitution,
                                 UnresolvedLayout unresolved = UnresolvedLayout::Fail,
                                 QWidget *parent = nullptr);
    ~OSTScreenView() override;

    const std::shared_ptr<const OSTScreen> &screen() const { return m_screen; }
    // The screen document the views are built from.
    const std::shared_ptr<const OSTScreenDocument> &document() const { return m_document; }
    const OSTLayoutManager &layoutManager() const { return *m_layoutManager; }
    // Element key to element view, every category in one map.
    const QMap<QString, QWidget *> &views() const { return m_views; }
    // Element key to each view that takes part in validation and submission.
    const QMap<QString, OSTValidationItem *> &validationItems() const { return m_validationItems; }
    // Keys listed in any group's "elements", duplicates kept.
    const QStringList &groupedViewKeys() const { return m_groupedViewKeys; }
    QScrollArea *scrollView() const { return m_scrollView; }
    QWidget *contentView() const { return m_contentView; }
    OSTView *backdrop() const { return m_backdrop; }

    unsigned requiredImageCount() const { return m_requiredImageCount; }
    bool isLoaded() const { return m_loaded; }
    bool isFullyLoaded() const { return m_loaded && m_requiredImageCount == 0; }

    // Kept weakly. Required images that finished before a delegate was set are reported to it now.
    void setDelegate(OSTScreenViewDelegate *delegate);

    // Shows `message` in the "errorMessage" label with the label's error look and layout; a null
    // message hides it and restores the screen's own layout.
    void showErrorMessage(const QString &message, OSTAnimation animation);

    // An on-screen keyboard of `height` points covers the bottom of the view: when an element that
    // scrolls ends below the keyboard's top, the page can scroll by the keyboard's height.
    void keyboardWillShow(double keyboardHeight);
    void keyboardWillHide();

    // The screen as painted at `ratio` device pixels per point, over a transparent ground; what
    // previews and pixel tests compare.
    QImage renderImage(qreal ratio);

    // The widget geometry of a layout rectangle whose parent's top-left corner lies at
    // `parentOrigin` in screen coordinates (see the rounding rule above).
    static QRect pixelGeometry(const QRectF &frame, QPointF parentOrigin);

    // OSTSelectionGroupDelegate
    void selectionGroupDidTapButton(OSTSelectionGroup &group, const QString &buttonName,
                                    const std::shared_ptr<const OSTAction> &action) override;
    bool selectionGroupShouldHandleAction(OSTSelectionGroup &group,
                                          const std::shared_ptr<const OSTAction> &action) override;

protected:
    void resizeEvent(QResizeEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    OSTScreenView(const std::shared_ptr<const OSTScreen> &screen, std::shared_ptr<const OSTScreenDocument> document,
                  std::unique_ptr<OSTLayoutManager> layoutManager, UnresolvedLayout unresolved,
                  QWidget *parent);

    void buildPage();
    void rememberKeySets();
    void prepareGroups();
    // Builds a view for every element, category by category in the vocabulary's build order.
    void loadElements();
    QWidget *buildView(const std::shared_ptr<const OSTElementDescription> &element, const QRect &frame);
    QWidget *buildImage(const OSTImageDescription &image, const QRect &frame);
    QWidget *buildLabel(const OSTLabelDescription &label, const QRect &frame);
    QWidget *buildButton(const std::shared_ptr<const OSTButtonDescription> &description, const QRect &frame);
    QWidget *buildSwitch(const OSTSwitchDescription &description, const QRect &frame);
    QWidget *buildPicker(const std::shared_ptr<const OSTPickerDescription> &description, const QRect &frame);
    QWidget *buildTextField(const std::shared_ptr<const OSTTextFieldDescription> &description,
                            const QRect &frame);
    void hideReplacedView(const QString &key);
    void loadSelectionGroups();
    void connectInputs();
    void fillContentView();
    void fillGroups();
    void placeInGroup(const QString &key, OSTView &group);

    void watchRequiredImages(OSTImageView *imageView);
    void requiredImageFinished();
    void buttonTapped(OSTButton *button);
    void switchTapped();
    void inputDidTapReturn(OSTInput &input);
    void tapRecognized();
    void contentScrolled(int offset);

    void scheduleRelayout();
    void relayout();
    void resizePage();
    void buildErrorLayoutOnce();
    const OSTLayoutManager &currentLayout() const;
    void reframeViews(const OSTLayoutManager &layout, OSTAnimation animation);
    static void stopMoving(QWidget &view);
    QRect geometryForKey(const OSTLayoutManager &layout, const QString &key) const;
    bool isScrolling(const QString &key) const;
    std::shared_ptr<OSTScreenViewDelegate> lockedDelegate() const;

    const std::shared_ptr<const OSTScreen> m_screen;
    const std::shared_ptr<const OSTScreenDocument> m_document;
    const UnresolvedLayout m_unresolved;
    std::unique_ptr<OSTLayoutManager> m_layoutManager;
    QSize m_layoutArea; // the size m_layoutManager was resolved at
    std::unique_ptr<OSTLayoutManager> m_errorLayoutManager; // built on first use of the error layout
    bool m_errorLayoutBuilt = false;
    bool m_showsError = false;

    OSTView *m_backdrop = nullptr;       // child
    QScrollArea *m_scrollView = nullptr; // child
    QWidget *m_contentView = nullptr;    // owned by the scroll view
    QMap<QString, QWidget *> m_views;    // descendants of the content view
    QMap<QString, OSTValidationItem *> m_validationItems;
    QStringList m_groupedViewKeys;
    QSet<QString> m_groupedKeySet;
    QSet<QString> m_anchoredKeySet;
    OSTLabel *m_errorLabel = nullptr;

    unsigned m_requiredImageCount = 0;
    bool m_loaded = false;
    bool m_shouldNotifyDelegateOfFinishedImageLoading = false;
    std::weak_ptr<OSTScreenViewDelegate> m_delegate;

    int m_scrollOffset = 0;
    int m_keyboardInset = 0;
    std::optional<OSTTimerId> m_pendingRelayout;
};

} // namespace ostrel
