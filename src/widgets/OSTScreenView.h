#pragma once

#include "model/OSTScreenPage.h"
#include "model/OSTSelectionGroup.h"
#include "widgets/OSTViewController.h"

#include <QImage>
#include <QMap>
#include <QPointer>
#include <QRect>
#include <QSizeF>
#include <QStringList>
#include <QWidget>

#include <functional>
#include <memory>

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

// One screen of an experience drawn with Qt Widgets: one view per element of its page
// (OSTScreenPage: the document, the layout and where each element goes), stacked by layer inside
// a scrolling content view. Anchored elements stay put while the page scrolls; the page is lifted
// above an on-screen keyboard; the "errorMessage" label opens and closes with its own alternative
// layout; required images are counted; taps, returns and presses go to the event queue and to
// the delegate.
//
// The area the layout resolves against is the view's own size (on a desktop, the widget the
// screen is shown in, which follows the host window). A change of size lays the screen out again
// (see OSTScreenPage::resize).
//
// Lives on the GUI thread; owned by its parent widget (the screen controller's view). Element
// views are its descendants.
class OSTScreenView final : public QWidget, public OSTSelectionGroupDelegate {
    Q_OBJECT
    Q_INTERFACES(ostrel::OSTSelectionGroupDelegate)

public:
    using Substitution = OSTScreenPage::Substitution;
    using UnresolvedLayout = OSTScreenPage::UnresolvedLayout;
    static constexpr double relayoutInterval = OSTScreenPage::relayoutInterval;

    // The screen view of `screen` laid out in `area` points; null when the JSON does not parse to
    // an object or (with Fail) the layout cannot be resolved.
    static OSTScreenView *create(const std::shared_ptr<const OSTScreen> &screen, const QSizeF &area,
                                 const Substitution &substitution,
                                 UnresolvedLayout unresolved = UnresolvedLayout::Fail,
                                 QWidget *parent = nullptr);
    ~OSTScreenView() override;

    const std::shared_ptr<const OSTScreen> &screen() const { return m_page->screen(); }
    // The screen document the views are built from.
    const std::shared_ptr<const OSTScreenDocument> &document() const { return m_page->document(); }
    const OSTLayoutManager &layoutManager() const { return m_page->layoutManager(); }
    const OSTScreenPage &page() const { return *m_page; }
    // Element key to element view, every category in one map.
    const QMap<QString, QWidget *> &views() const { return m_views; }
    // Element key to each view that takes part in validation and submission.
    const QMap<QString, OSTValidationItem *> &validationItems() const { return m_validationItems; }
    // Keys listed in any group's "elements", duplicates kept.
    const QStringList &groupedViewKeys() const { return m_page->groupedKeys(); }
    QScrollArea *scrollView() const { return m_scrollView; }
    QWidget *contentView() const { return m_contentView; }
    OSTView *backdrop() const { return m_backdrop; }

    unsigned requiredImageCount() const { return m_page->requiredImageCount(); }
    bool isLoaded() const { return m_page->isLoaded(); }
    bool isFullyLoaded() const { return m_page->isFullyLoaded(); }

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

    // OSTSelectionGroupDelegate
    void selectionGroupDidTapButton(OSTSelectionGroup &group, const QString &buttonName,
                                    const std::shared_ptr<const OSTAction> &action) override;
    bool selectionGroupShouldHandleAction(OSTSelectionGroup &group,
                                          const std::shared_ptr<const OSTAction> &action) override;

protected:
    void resizeEvent(QResizeEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    OSTScreenView(std::unique_ptr<OSTScreenPage> page, QWidget *parent);

    void buildPage();
    // Builds a view for every element in the page's build order.
    void loadElements();
    void loadElement(const std::shared_ptr<const OSTElementDescription> &element);
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

    void resizePage();
    void reframeViews(OSTAnimation animation);
    static void stopMoving(QWidget &view);
    QRect geometryForKey(const QString &key) const;
    std::shared_ptr<OSTScreenViewDelegate> lockedDelegate() const;

    const std::unique_ptr<OSTScreenPage> m_page;

    OSTView *m_backdrop = nullptr;       // child
    QScrollArea *m_scrollView = nullptr; // child
    QWidget *m_contentView = nullptr;    // owned by the scroll view
    QMap<QString, QWidget *> m_views;    // descendants of the content view
    QMap<QString, OSTValidationItem *> m_validationItems;
    OSTLabel *m_errorLabel = nullptr;

    bool m_shouldNotifyDelegateOfFinishedImageLoading = false;
    std::weak_ptr<OSTScreenViewDelegate> m_delegate;

    int m_keyboardInset = 0;
};

} // namespace ostrel
