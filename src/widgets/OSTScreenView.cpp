#include "widgets/OSTScreenView.h"

#include "core/OSTLogging.h"
#include "events/OSTEventHook.h"
#include "events/OSTInternalEvent.h"
#include "experience/OSTAction.h"
#include "experience/OSTScreen.h"
#include "layout/OSTLayoutManager.h"
#include "platform/OSTDeviceScreen.h"
#include "screen/OSTButtonDescription.h"
#include "screen/OSTImageDescription.h"
#include "screen/OSTLabelDescription.h"
#include "screen/OSTPickerDescription.h"
#include "screen/OSTScreenDocument.h"
#include "screen/OSTScreenVocabulary.h"
#include "screen/OSTSwitchDescription.h"
#include "screen/OSTTextFieldDescription.h"
#include "widgets/OSTBackgroundView.h"
#include "widgets/OSTButton.h"
#include "widgets/OSTImagePickerButton.h"
#include "widgets/OSTImageView.h"
#include "widgets/OSTInput.h"
#include "widgets/OSTLabel.h"
#include "widgets/OSTPicker.h"
#include "widgets/OSTScreenViewDelegate.h"
#include "widgets/OSTSwitch.h"
#include "widgets/OSTTextField.h"
#include "widgets/OSTView.h"

#include <QMouseEvent>
#include <QPropertyAnimation>
#include <QScrollArea>
#include <QScrollBar>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

const QString &backgroundKey = OSTScreenVocabulary::backgroundKey;
const QString &errorMessageKey = OSTScreenVocabulary::errorMessageKey;
const QString inputsCategory = u"inputs"_s;
constexpr int errorAnimationMilliseconds = 250;
const QString errorAnimationName = u"errorLayoutMove"_s;

int roundedEdge(double edge)
{
    // A hostile layout can produce values far beyond any widget; they are held to the largest
    // widget size so that the arithmetic on edges stays within int.
    if (!std::isfinite(edge))
        return 0;
    const double limit = QWIDGETSIZE_MAX;
    return int(std::floor(std::clamp(edge, -limit, limit) + 0.5));
}

// Whether the widget under a press is one that handles presses itself, so the page does not
// count the press as a tap on the screen.
bool isControl(const QWidget *widget, const QWidget *page)
{
    for (; widget && widget != page; widget = widget->parentWidget()) {
        if (qobject_cast<const OSTButton *>(widget) || qobject_cast<const OSTSwitch *>(widget)
            || qobject_cast<const OSTTextField *>(widget) || qobject_cast<const OSTPicker *>(widget))
            return true;
    }
    return false;
}

} // namespace

OSTScreenView *OSTScreenView::create(const std::shared_ptr<const OSTScreen> &screen, const QSizeF &area,
                                     const Substitution &substitution, UnresolvedLayout unresolved,
                                     QWidget *parent)
{
    if (!screen)
        return nullptr;
    const QString text = substitution ? substitution(screen->json()) : screen->json();
    std::shared_ptr<const OSTScreenDocument> document = OSTScreenDocument::read(text);
    if (!document)
        return nullptr;
    auto layoutManager = std::make_unique<OSTLayoutManager>(*document, QRectF(QPointF(), area),
                                                            OSTDeviceScreen::statusBarHeight());
    if (!layoutManager->resolveLayout() && unresolved == UnresolvedLayout::Fail) {
        OSTLogging::logError(u"The layout of screen %1 cannot be resolved"_s, screen->key());
        return nullptr;
    }
    return new OSTScreenView(screen, std::move(document), std::move(layoutManager), unresolved, parent);
}

OSTScreenView::OSTScreenView(const std::shared_ptr<const OSTScreen> &screen,
                             std::shared_ptr<const OSTScreenDocument> document,
                             std::unique_ptr<OSTLayoutManager> layoutManager, UnresolvedLayout unresolved,
                             QWidget *parent)
    : QWidget(parent), m_screen(screen), m_document(std::move(document)), m_unresolved(unresolved),
      m_layoutManager(std::move(layoutManager))
{
    const QSizeF area = m_layoutManager->baseElement()->frame().size();
    resize(QSize(roundedEdge(area.width()), roundedEdge(area.height())));
    m_layoutArea = size();
    rememberKeySets();
    buildPage();
    prepareGroups();
    loadElements();
    connectInputs();
    fillContentView();
    fillGroups();
    m_loaded = true;
}

OSTScreenView::~OSTScreenView()
{
    if (m_pendingRelayout)
        OSTClock::current().cancel(*m_pendingRelayout);
}

void OSTScreenView::buildPage()
{
    const QRect frame(QPoint(), size());
    m_backdrop = new OSTView(frame, *m_document->backdrop(), this);
    m_scrollView = new QScrollArea(this);
    m_scrollView->setGeometry(frame);
    m_scrollView->setFrameShape(QFrame::NoFrame);
    m_scrollView->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_scrollView->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_scrollView->setWidgetResizable(false);
    m_scrollView->viewport()->setAutoFillBackground(false);
    m_contentView = new QWidget;
    m_contentView->setGeometry(frame);
    m_contentView->installEventFilter(this);
    m_scrollView->setWidget(m_contentView); // the scroll view owns it from here on
    m_contentView->setAutoFillBackground(false);
    connect(m_scrollView->verticalScrollBar(), &QScrollBar::valueChanged, this,
            &OSTScreenView::contentScrolled);
}

void OSTScreenView::prepareGroups()
{
    m_groupedViewKeys = m_document->groupedKeys();
    m_groupedKeySet = QSet<QString>(m_groupedViewKeys.cbegin(), m_groupedViewKeys.cend());
}

void OSTScreenView::rememberKeySets()
{
    const QStringList &anchored = m_layoutManager->anchoredElementKeys();
    m_anchoredKeySet = QSet<QString>(anchored.cbegin(), anchored.cend());
}

void OSTScreenView::loadElements()
{
    for (const QString &category : OSTScreenVocabulary::buildOrder()) {
        // Selection groups take the buttons built before them; an input sharing a key with a
        // group or a member replaces it.
        if (category == inputsCategory)
            loadSelectionGroups();
        for (const auto &element : m_document->elements(category)) {
            const QString &key = element->key();
            if (QWidget *view = buildView(element, geometryForKey(*m_layoutManager, key))) {
                view->setObjectName(key);
                hideReplacedView(key);
                m_views.insert(key, view);
            }
        }
    }
}

QWidget *OSTScreenView::buildView(const std::shared_ptr<const OSTElementDescription> &element, const QRect &frame)
{
    switch (element->kind()) {
    case OSTElementKind::Image:
        return buildImage(static_cast<const OSTImageDescription &>(*element), frame);
    case OSTElementKind::Label:
        return buildLabel(static_cast<const OSTLabelDescription &>(*element), frame);
    case OSTElementKind::Button:
    case OSTElementKind::PictureButton:
        return buildButton(std::static_pointer_cast<const OSTButtonDescription>(element), frame);
    case OSTElementKind::Switch:
        return buildSwitch(static_cast<const OSTSwitchDescription &>(*element), frame);
    case OSTElementKind::TextField:
        return buildTextField(std::static_pointer_cast<const OSTTextFieldDescription>(element), frame);
    case OSTElementKind::Picker:
        return buildPicker(std::static_pointer_cast<const OSTPickerDescription>(element), frame);
    case OSTElementKind::Shape:
    case OSTElementKind::Group:
        break;
    }
    return new OSTView(frame, *element, m_contentView);
}

void OSTScreenView::hideReplacedView(const QString &key)
{
    // A key in two categories names one element; the view built first is not stacked and so not
    // shown. It stays alive: its required images still count.
    if (QWidget *replaced = m_views.value(key)) {
        OSTLogging::logWarning(u"Element %1 appears in two categories; only the later one is shown"_s, key);
        replaced->hide();
    }
}

QWidget *OSTScreenView::buildImage(const OSTImageDescription &image, const QRect &frame)
{
    auto *imageView = new OSTImageView(frame, image, m_contentView);
    watchRequiredImages(imageView);
    return imageView;
}

QWidget *OSTScreenView::buildLabel(const OSTLabelDescription &label, const QRect &frame)
{
    auto *view = new OSTLabel(frame, label, m_contentView);
    if (label.key() == errorMessageKey)
        m_errorLabel = view;
    return view;
}

QWidget *OSTScreenView::buildSwitch(const OSTSwitchDescription &description, const QRect &frame)
{
    auto *toggle = new OSTSwitch(frame, description, m_contentView);
    connect(toggle, &OSTSwitch::tapped, this, &OSTScreenView::switchTapped);
    m_validationItems.insert(description.key(), toggle);
    return toggle;
}

QWidget *OSTScreenView::buildButton(const std::shared_ptr<const OSTButtonDescription> &description,
                                    const QRect &frame)
{
    const QString &key = description->key();
    OSTButton *button = description->kind() == OSTElementKind::PictureButton
        ? OSTImagePickerButton::create(frame, description, m_contentView)
        : OSTButton::create(frame, description, m_contentView);
    if (!button) {
        OSTLogging::logWarning(u"Button %1 has no \"states\" object and is left out"_s, key);
        return nullptr;
    }
    for (OSTImageView *background :
         {button->normalBackground(), button->highlightedBackground(), button->disabledBackground()}) {
        if (background)
            watchRequiredImages(background);
    }
    connect(button, &OSTButton::tapped, this, &OSTScreenView::buttonTapped);
    m_validationItems.insert(key, button);
    return button;
}

void OSTScreenView::loadSelectionGroups()
{
    for (const auto &description : m_document->selectionGroups()) {
        const QString &key = description->key();
        auto *group = new OSTSelectionGroup(description, this);
        group->setDelegate(this);
        // Member buttons answer to their group, not on their own.
        QList<OSTButton *> members;
        for (const QString &memberKey : group->elementKeys()) {
            if (auto *button = qobject_cast<OSTButton *>(m_views.value(memberKey))) {
                members.append(button);
                m_validationItems.remove(memberKey);
            }
        }
        group->setElements(members);
        m_validationItems.insert(key, group);
    }
}

QWidget *OSTScreenView::buildPicker(const std::shared_ptr<const OSTPickerDescription> &description,
                                    const QRect &frame)
{
    auto *picker = new OSTPicker(frame, description, m_contentView);
    if (picker->backgroundView())
        watchRequiredImages(picker->backgroundView());
    m_validationItems.insert(description->key(), picker);
    return picker;
}

QWidget *OSTScreenView::buildTextField(const std::shared_ptr<const OSTTextFieldDescription> &description,
                                       const QRect &frame)
{
    auto *field = new OSTTextField(frame, description, m_contentView);
    m_validationItems.insert(description->key(), field);
    return field;
}

// The inputs in key order: each returns to the screen and hands on to the next; the last country
// picker fills in the calling code of the last phone-number field.
void OSTScreenView::connectInputs()
{
    QList<OSTInput *> inputs;
    OSTPicker *countryPicker = nullptr;
    OSTTextField *phoneField = nullptr;
    for (const auto &element : m_document->elements(inputsCategory)) {
        QWidget *view = m_views.value(element->key());
        OSTInput *input = nullptr;
        if (auto *picker = qobject_cast<OSTPicker *>(view)) {
            if (picker->type() == OSTPickerTypeCountryCode)
                countryPicker = picker;
            input = picker;
        } else if (auto *field = qobject_cast<OSTTextField *>(view)) {
            if (field->type() == OSTTextFieldTypePhoneNumber || field->type() == OSTTextFieldTypePhoneNumberValidated)
                phoneField = field;
            input = field;
        }
        if (!input)
            continue;
        input->setInputProtocolDelegate([this](OSTInput &returned) { inputDidTapReturn(returned); });
        inputs.append(input);
    }
    OSTInput::chainInputs(inputs);
    if (countryPicker && phoneField)
        countryPicker->setDelegate(phoneField);
}

void OSTScreenView::fillContentView()
{
    // Raising in order stacks later views on top; the background goes first so it lies lowest.
    if (QWidget *background = m_views.value(backgroundKey))
        background->raise();
    for (const QString &key : m_layoutManager->elementKeysSortedByZLayer()) {
        QWidget *view = m_views.value(key);
        if (!view || m_groupedKeySet.contains(key) || key == backgroundKey)
            continue;
        view->raise();
    }
}

void OSTScreenView::fillGroups()
{
    const QStringList &order = m_layoutManager->elementKeysSortedByZLayer();
    QHash<QString, qsizetype> positions;
    positions.reserve(order.size());
    for (qsizetype index = 0; index < order.size(); ++index)
        positions.insert(order.at(index), index);
    const auto position = [&positions](const QString &key) {
        return positions.value(key, std::numeric_limits<qsizetype>::max());
    };
    for (const auto &group : m_document->elements(u"groups"_s)) {
        auto *groupView = qobject_cast<OSTView *>(m_views.value(group->key()));
        if (!groupView)
            continue;
        QStringList members = m_document->groupViewKeys(group->key());
        std::stable_sort(members.begin(), members.end(),
                         [&](const QString &a, const QString &b) { return position(a) < position(b); });
        for (const QString &member : members)
            placeInGroup(member, *groupView);
    }
    // A member that could not be placed (its group contains it in turn) would otherwise lie
    // loose in the content view; it is not shown.
    for (const QString &key : m_groupedViewKeys) {
        if (QWidget *view = m_views.value(key); view && view->parentWidget() == m_contentView)
            view->hide();
    }
}

void OSTScreenView::placeInGroup(const QString &key, OSTView &group)
{
    QWidget *view = m_views.value(key);
    if (!view)
        return;
    QWidget *container = group.container();
    if (view == &group || view->isAncestorOf(container)) {
        OSTLogging::logWarning(u"Group %1 cannot hold %2, which contains it"_s, group.objectName(), key);
        return;
    }
    view->setParent(container);
    view->raise();
    view->show();
}

void OSTScreenView::watchRequiredImages(OSTImageView *imageView)
{
    if (!imageView->isLoadingRequiredImage())
        return;
    ++m_requiredImageCount;
    connect(imageView, &OSTImageView::requiredImageFinished, this, &OSTScreenView::requiredImageFinished,
            Qt::SingleShotConnection);
}

void OSTScreenView::requiredImageFinished()
{
    if (m_requiredImageCount > 0)
        --m_requiredImageCount;
    if (!isFullyLoaded())
        return;
    if (const auto delegate = lockedDelegate())
        delegate->screenViewDidFinishLoadingRequiredImages(*this);
    else
        m_shouldNotifyDelegateOfFinishedImageLoading = true;
}

void OSTScreenView::setDelegate(OSTScreenViewDelegate *delegate)
{
    m_delegate = delegate ? delegate->weakReference() : std::weak_ptr<OSTScreenViewDelegate>();
    if (delegate && m_shouldNotifyDelegateOfFinishedImageLoading) {
        m_shouldNotifyDelegateOfFinishedImageLoading = false;
        delegate->screenViewDidFinishLoadingRequiredImages(*this);
    }
}

std::shared_ptr<OSTScreenViewDelegate> OSTScreenView::lockedDelegate() const
{
    return m_delegate.lock();
}

void OSTScreenView::buttonTapped(OSTButton *button)
{
    const QString actionName = button->action() ? button->action()->name() : QString();
    OSTEventHook::sendEvent(OSTInternalEvent::actionTappedEventForButton(button->name(), actionName, *m_screen));
    if (const auto delegate = lockedDelegate())
        delegate->screenViewDidPressButton(*this, *button);
}

void OSTScreenView::switchTapped()
{
    OSTEventHook::sendEvent(OSTInternalEvent::actionTappedEventForSwitch(*m_screen));
}

void OSTScreenView::inputDidTapReturn(OSTInput &input)
{
    const auto *field = qobject_cast<const OSTTextField *>(&input.inputWidget());
    if (!field)
        OSTEventHook::sendEvent(OSTInternalEvent::actionTappedEventForPickerReturn(*m_screen));
    else if (field->type() == OSTTextFieldTypePhoneNumberPin && field->isAutoSubmit())
        OSTEventHook::sendEvent(OSTInternalEvent::actionTappedEventForTextFieldPINMatch(*m_screen));
    else
        OSTEventHook::sendEvent(OSTInternalEvent::actionTappedEventForTextFieldReturn(*m_screen));
    if (const auto delegate = lockedDelegate())
        delegate->screenViewShouldGoToNextScreen(*this);
}

void OSTScreenView::selectionGroupDidTapButton(OSTSelectionGroup &group, const QString &buttonName,
                                               const std::shared_ptr<const OSTAction> &action)
{
    const OSTInternalEvent::SelectionGroupTap tap{group.name(), buttonName,
                                                  group.valueForElementWithKey(buttonName).toString(),
                                                  action ? action->name() : QString()};
    OSTEventHook::sendEvent(OSTInternalEvent::actionTappedEventForSelectionGroup(tap, *m_screen));
}

bool OSTScreenView::selectionGroupShouldHandleAction(OSTSelectionGroup &, const std::shared_ptr<const OSTAction> &action)
{
    if (const auto delegate = lockedDelegate())
        delegate->screenViewShouldHandleAction(*this, action);
    return true;
}

void OSTScreenView::tapRecognized()
{
    if (QWidget *focused = focusWidget(); focused && isAncestorOf(focused))
        focused->clearFocus();
    if (const auto delegate = lockedDelegate())
        delegate->screenViewDidTapScreen(*this);
}

bool OSTScreenView::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != m_contentView)
        return QWidget::eventFilter(watched, event);
    if (event->type() != QEvent::MouseButtonPress && event->type() != QEvent::MouseButtonRelease)
        return false;
    const auto *mouse = static_cast<QMouseEvent *>(event);
    if (isControl(m_contentView->childAt(mouse->position().toPoint()), m_contentView))
        return false;
    if (event->type() == QEvent::MouseButtonRelease)
        tapRecognized();
    return true; // taking the press makes the page receive its release
}

bool OSTScreenView::isScrolling(const QString &key) const
{
    return !m_anchoredKeySet.contains(key) && !m_groupedKeySet.contains(key);
}

void OSTScreenView::contentScrolled(int offset)
{
    m_scrollOffset = offset;
    for (const QString &key : m_layoutManager->anchoredElementKeys()) {
        if (QWidget *view = m_views.value(key); view && !m_groupedKeySet.contains(key))
            view->setGeometry(geometryForKey(currentLayout(), key));
    }
}

void OSTScreenView::keyboardWillShow(double keyboardHeight)
{
    int lowestEdge = 0;
    for (auto view = m_views.cbegin(); view != m_views.cend(); ++view) {
        if (isScrolling(view.key()))
            lowestEdge = std::max(lowestEdge, view.value()->geometry().bottom() + 1);
    }
    const int inset = roundedEdge(keyboardHeight);
    if (lowestEdge <= height() - inset)
        return;
    m_keyboardInset = inset;
    m_contentView->resize(width(), height() + m_keyboardInset);
}

void OSTScreenView::keyboardWillHide()
{
    m_keyboardInset = 0;
    m_contentView->resize(width(), height());
}

QImage OSTScreenView::renderImage(qreal ratio)
{
    QImage image((QSizeF(size()) * ratio).toSize(), QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(ratio);
    image.fill(Qt::transparent);
    render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
    return image;
}

QRect OSTScreenView::pixelGeometry(const QRectF &frame, QPointF parentOrigin)
{
    const QPointF topLeft = parentOrigin + frame.topLeft();
    const int left = roundedEdge(topLeft.x());
    const int top = roundedEdge(topLeft.y());
    const int right = roundedEdge(topLeft.x() + frame.width());
    const int bottom = roundedEdge(topLeft.y() + frame.height());
    const QPoint roundedParentOrigin(roundedEdge(parentOrigin.x()), roundedEdge(parentOrigin.y()));
    return QRect(QPoint(left, top) - roundedParentOrigin, QSize(right - left, bottom - top));
}

QRect OSTScreenView::geometryForKey(const OSTLayoutManager &layout, const QString &key) const
{
    const std::shared_ptr<OSTLayoutElement> element = layout.elements().value(key);
    if (!element)
        return QRect();
    // The parent chain is short and acyclic in a resolved layout; the bound protects against a
    // hostile one all the same.
    QPointF parentOrigin;
    qsizetype steps = layout.elements().size();
    for (auto parent = element->parent(); parent && parent != layout.baseElement() && steps-- > 0;
         parent = parent->parent())
        parentOrigin += parent->frame().topLeft();
    QRect geometry = pixelGeometry(layout.frameForKey(key), parentOrigin);
    if (qobject_cast<const OSTSwitch *>(m_views.value(key)))
        geometry = OSTSwitch::frameInBox(geometry);
    if (m_anchoredKeySet.contains(key) && !m_groupedKeySet.contains(key))
        geometry.translate(0, m_scrollOffset);
    return geometry;
}

void OSTScreenView::showErrorMessage(const QString &message, OSTAnimation animation)
{
    if (!m_errorLabel || m_errorLabel->text() == message)
        return;
    buildErrorLayoutOnce();
    m_showsError = !message.isNull();
    m_errorLabel->customize(m_showsError ? *m_document->errorMessageWhileShowing() : *m_document->errorMessage());
    m_errorLabel->setText(message);
    reframeViews(currentLayout(), animation);
}

void OSTScreenView::buildErrorLayoutOnce()
{
    if (m_errorLayoutBuilt)
        return;
    m_errorLayoutBuilt = true;
    auto errorLayout = std::make_unique<OSTLayoutManager>(*m_document, QRectF(QPointF(), QSizeF(size())),
                                                          m_layoutManager->statusBarHeight());
    errorLayout->updateLayout(m_document->errorMessageWhileShowing()->frame(), errorMessageKey);
    if (errorLayout->resolveLayout())
        m_errorLayoutManager = std::move(errorLayout);
}

const OSTLayoutManager &OSTScreenView::currentLayout() const
{
    return m_showsError && m_errorLayoutManager ? *m_errorLayoutManager : *m_layoutManager;
}

void OSTScreenView::reframeViews(const OSTLayoutManager &layout, OSTAnimation animation)
{
    for (auto view = m_views.cbegin(); view != m_views.cend(); ++view) {
        // A move still running towards an older layout would otherwise finish after this one.
        stopMoving(*view.value());
        const QRect geometry = geometryForKey(layout, view.key());
        if (animation == OSTAnimation::Immediate || view.value()->geometry() == geometry) {
            view.value()->setGeometry(geometry);
            continue;
        }
        auto *move = new QPropertyAnimation(view.value(), "geometry", view.value());
        move->setObjectName(errorAnimationName);
        move->setDuration(errorAnimationMilliseconds);
        move->setEasingCurve(QEasingCurve::OutCubic);
        move->setEndValue(geometry);
        move->start(QAbstractAnimation::DeleteWhenStopped);
    }
}

void OSTScreenView::stopMoving(QWidget &view)
{
    const auto moves = view.findChildren<QPropertyAnimation *>(errorAnimationName, Qt::FindDirectChildrenOnly);
    for (QPropertyAnimation *move : moves)
        move->stop(); // deletes itself when stopped
}

void OSTScreenView::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    resizePage();
    if (size() != m_layoutArea)
        scheduleRelayout();
}

void OSTScreenView::resizePage()
{
    const QRect frame(QPoint(), size());
    m_backdrop->setGeometry(frame);
    m_scrollView->setGeometry(frame);
    m_contentView->resize(width(), height() + m_keyboardInset);
}

void OSTScreenView::scheduleRelayout()
{
    if (m_pendingRelayout)
        return;
    m_pendingRelayout = OSTClock::current().schedule(relayoutInterval, this, [this] {
        m_pendingRelayout.reset();
        relayout();
    });
}

void OSTScreenView::relayout()
{
    if (size() == m_layoutArea)
        return;
    auto layoutManager = std::make_unique<OSTLayoutManager>(*m_document, QRectF(QPointF(), QSizeF(size())),
                                                            m_layoutManager->statusBarHeight());
    const bool resolved = layoutManager->resolveLayout();
    if (!resolved && m_unresolved == UnresolvedLayout::Fail) {
        OSTLogging::logWarning(u"The layout of screen %1 cannot be resolved at %2 by %3; keeping the last one"_s,
                               m_screen->key(), width(), height());
        m_layoutArea = size();
        return;
    }
    m_layoutManager = std::move(layoutManager);
    m_layoutArea = size();
    rememberKeySets();
    m_errorLayoutManager.reset();
    m_errorLayoutBuilt = false;
    if (m_showsError)
        buildErrorLayoutOnce();
    reframeViews(currentLayout(), OSTAnimation::Immediate);
}

} // namespace ostrel
