#pragma once

#include "model/OSTScreenModel.h"
#include "model/OSTScreenModelView.h"
#include "model/OSTScreenPage.h"
#include "model/OSTSelectionGroup.h"

#include <QMap>
#include <QPointF>
#include <QPointer>
#include <QQuickItem>

#include <functional>
#include <memory>
#include <optional>

namespace ostrel {

class OSTAction;
class OSTElementDescription;
class OSTQuickButton;
class OSTQuickElement;
class OSTQuickImage;
class OSTQuickInput;
class OSTQuickLabel;
class OSTQuickLoadingOverlay;
class OSTQuickTextField;

// One screen of a flow drawn by Qt Quick, the counterpart of the widget screen controller and
// screen view: an item per element of its page (OSTScreenPage: the document, the layout and where
// each element goes), stacked by layer on a content item that scrolls when the screen is taller
// than the item (the mouse wheel, or a drag that begins anywhere but on an input); anchored
// elements stay put. Its inputs are chained in input order and its selection groups take their
// buttons. What happens on it goes to the event queue and to its screen model, which decides (the
// image wait, the load and display events, the actions) and drives it back through
// OSTScreenModelView. The item is a focus scope: a tap on the page takes the focus from the
// element that has it.
//
// Whoever shows the item sizes it; a change of size lays the screen out again (see
// OSTScreenPage::resize).
//
// Lives on the GUI thread; owns its screen model and page. A screen made with a completion
// belongs to the completion's receiver once it succeeded; on failure it deletes itself after
// calling the completion with null. Element items are its descendants.
class OSTQuickScreen final : public QQuickItem, public OSTSelectionGroupDelegate, private OSTScreenModelView {
    Q_OBJECT
    Q_INTERFACES(ostrel::OSTSelectionGroupDelegate)

public:
    using Environment = OSTScreenModel::Environment;
    using Completion = std::function<void(OSTQuickScreen *screen)>;
    using UnresolvedLayout = OSTScreenPage::UnresolvedLayout;

    // Built at once, laid out in environment.area; null when the screen cannot be built.
    static OSTQuickScreen *screenWithScreen(const std::shared_ptr<const OSTScreen> &screen,
                                            const Environment &environment,
                                            UnresolvedLayout unresolved = UnresolvedLayout::Fail,
                                            QQuickItem *parent = nullptr);
    // Calls `completion` with the screen once its required images are in or the bounded wait ran
    // out (the screen then shows without them), or with null when it could not be built.
    static void screenWithScreen(const std::shared_ptr<const OSTScreen> &screen, const Environment &environment,
                                 Completion completion);
    ~OSTQuickScreen() override;

    OSTScreenModel &screenModel() { return *m_model; }
    const std::shared_ptr<const OSTScreen> &screen() const { return m_model->screen(); }
    const OSTScreenPage &page() const { return *m_page; }
    // Element key to element item, every category in one map.
    const QMap<QString, QQuickItem *> &items() const { return m_items; }
    // The item the page's elements lie on; it moves up as the screen scrolls.
    QQuickItem *contentItem() const { return m_content; }

    // The experience shows the screen (after its slide) or took it away. While shown, the screen
    // follows the on-screen keyboard of the input method.
    void screenDidAppear();
    void screenDidDisappear();

    // An on-screen keyboard of `height` points covers the bottom of the item: when an element that
    // scrolls ends below the keyboard's top, the page can scroll by the keyboard's height.
    void keyboardWillShow(double keyboardHeight);
    void keyboardWillHide();

    // How far the content is scrolled up, between 0 and the content's height beyond the item's:
    // the lowest scrolling element's bottom, or the item's height with the keyboard's below it.
    int scrollOffset() const { return m_page->scrollOffset(); }
    void scrollTo(int offset);
    int contentHeight() const;

    // OSTSelectionGroupDelegate
    void selectionGroupDidTapButton(OSTSelectionGroup &group, const QString &buttonName,
                                    const std::shared_ptr<const OSTAction> &action) override;
    bool selectionGroupShouldHandleAction(OSTSelectionGroup &group,
                                          const std::shared_ptr<const OSTAction> &action) override;

protected:
    void geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseUngrabEvent() override;
    bool childMouseEventFilter(QQuickItem *item, QEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;

private:
    OSTQuickScreen(const std::shared_ptr<const OSTScreen> &screen, const Environment &environment,
                   Completion completion, QQuickItem *parent);

    bool loadScreen(UnresolvedLayout unresolved);
    void fireCompletion(bool success);
    void buildPage();
    void loadElement(const std::shared_ptr<const OSTElementDescription> &element);
    QQuickItem *buildItem(const std::shared_ptr<const OSTElementDescription> &element, const QRect &frame);
    QQuickItem *buildImage(const std::shared_ptr<const OSTElementDescription> &element, const QRect &frame);
    QQuickItem *buildLabel(const std::shared_ptr<const OSTElementDescription> &element, const QRect &frame);
    QQuickItem *buildButton(const std::shared_ptr<const OSTElementDescription> &element, const QRect &frame);
    QQuickItem *buildSwitch(const std::shared_ptr<const OSTElementDescription> &element, const QRect &frame);
    QQuickItem *buildTextField(const std::shared_ptr<const OSTElementDescription> &element, const QRect &frame);
    QQuickItem *buildPicker(const std::shared_ptr<const OSTElementDescription> &element, const QRect &frame);
    void connectInputs();
    void loadSelectionGroups();
    void hideReplacedItem(const QString &key);
    void stackPage();
    void fillGroups();
    void placeInGroup(const QString &key, OSTQuickElement &group);

    void watchRequiredImages(OSTQuickImage *image);
    void requiredImageFinished();
    void buttonTapped(OSTQuickButton *button);
    void switchTapped();
    void inputDidTapReturn(OSTQuickInput &input);
    // Whether a PIN field sends a complete PIN on its own.
    void tapRecognized();
    void beginPress(QPointF position);
    // Scrolls by how far the press moved once it moved past the drag distance; true then.
    bool dragTo(QPointF position);
    void giveUpFocus();

    enum class Move { Immediate, Animated };
    QRect geometryForKey(const QString &key) const;
    void reframeItems(Move move);
    void resizeContent();
    int lowestScrollingEdge() const;
    void updateKeyboard();

    // OSTScreenModelView
    const OSTScreenDocument &screenDocument() const override;
    ValidationItems validationItems() const override;
    bool isFullyLoaded() const override;
    void setNextButtonsEnabled(bool enabled) override;
    void showErrorMessage(const QString &message) override;
    void showLoadingOverlay() override;
    void hideLoadingOverlay() override;

    const std::unique_ptr<OSTScreenModel> m_model;
    std::unique_ptr<OSTScreenPage> m_page; // set once loaded
    Completion m_completion;
    OSTQuickElement *m_backdrop = nullptr;               // child item
    QQuickItem *m_content = nullptr;                     // child item
    QMap<QString, QQuickItem *> m_items;                 // descendants of the content item
    QMap<QString, OSTValidationItem *> m_validationItems;
    OSTQuickLabel *m_errorLabel = nullptr;
    QPointer<OSTQuickLoadingOverlay> m_loadingOverlay; // child item, made on first use
    std::optional<QPointF> m_pressPosition;            // a press on the page, in the screen's coordinates
    int m_pressOffset = 0;                             // the scroll offset when it began
    bool m_dragging = false;
    int m_keyboardInset = 0;
    QMetaObject::Connection m_keyboardVisibility;
    QMetaObject::Connection m_keyboardGeometry;
};

} // namespace ostrel
