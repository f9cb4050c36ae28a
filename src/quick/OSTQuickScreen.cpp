#include "quick/OSTQuickScreen.h"

#include "core/OSTLogging.h"
#include "experience/OSTAction.h"
#include "experience/OSTScreen.h"
#include "model/OSTTapEvents.h"
#include "network/OSTImageManager.h"
#include "quick/OSTQuickButton.h"
#include "quick/OSTQuickElement.h"
#include "quick/OSTQuickImage.h"
#include "quick/OSTQuickImagePickerButton.h"
#include "quick/OSTQuickLabel.h"
#include "quick/OSTQuickLoadingOverlay.h"
#include "quick/OSTQuickPicker.h"
#include "quick/OSTQuickSwitch.h"
#include "quick/OSTQuickTextField.h"
#include "screen/OSTButtonDescription.h"
#include "screen/OSTImageDescription.h"
#include "screen/OSTLabelDescription.h"
#include "screen/OSTPickerDescription.h"
#include "screen/OSTScreenDocument.h"
#include "screen/OSTScreenVocabulary.h"
#include "screen/OSTSwitchDescription.h"
#include "screen/OSTTextFieldDescription.h"

#include <QGuiApplication>
#include <QInputMethod>
#include <QMouseEvent>
#include <QQuickWindow>
#include <QStyleHints>
#include <QVariantAnimation>
#include <QWheelEvent>

#include <algorithm>
#include <limits>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

const QString &errorMessageKey = OSTScreenVocabulary::errorMessageKey;
const QString inputsCategory = u"inputs"_s;
constexpr int errorAnimationMilliseconds = 250;
const QString errorAnimationName = u"errorLayoutMove"_s;
// Points a wheel notch scrolls: three lines of twenty.
constexpr int wheelNotchPoints = 60;

void place(QQuickItem &item, const QRect &frame)
{
    item.setPosition(frame.topLeft());
    item.setSize(frame.size());
}

QRect frameOf(const QQuickItem &item)
{
    return QRectF(item.position(), item.size()).toAlignedRect();
}

void stopMoving(QQuickItem &item)
{
    const auto moves = item.findChildren<QVariantAnimation *>(errorAnimationName, Qt::FindDirectChildrenOnly);
    for (QVariantAnimation *move : moves)
        move->stop(); // deletes itself when stopped
}

} // namespace

OSTQuickScreen *OSTQuickScreen::screenWithScreen(const std::shared_ptr<const OSTScreen> &screen,
                                                 const Environment &environment, UnresolvedLayout unresolved,
                                                 QQuickItem *parent)
{
    auto *item = new OSTQuickScreen(screen, environment, {}, parent);
    if (item->loadScreen(unresolved))
        return item;
    delete item;
    return nullptr;
}

void OSTQuickScreen::screenWithScreen(const std::shared_ptr<const OSTScreen> &screen, const Environment &environment,
                                      Completion completion)
{
    auto *item = new OSTQuickScreen(screen, environment, std::move(completion), nullptr);
    item->loadScreen(UnresolvedLayout::Fail);
}

OSTQuickScreen::OSTQuickScreen(const std::shared_ptr<const OSTScreen> &screen, const Environment &environment,
                               Completion completion, QQuickItem *parent)
    : QQuickItem(parent), m_model(std::make_unique<OSTScreenModel>(screen, environment)),
      m_completion(std::move(completion))
{
    setClip(true);
    setAcceptedMouseButtons(Qt::LeftButton);
    setFlag(ItemIsFocusScope);
    setFiltersChildMouseEvents(true);
}

OSTQuickScreen::~OSTQuickScreen() = default;

bool OSTQuickScreen::loadScreen(UnresolvedLayout unresolved)
{
    m_model->beginLoading();
    const Environment &environment = m_model->environment();
    m_page = OSTScreenPage::create(m_model->screen(), environment.area, environment.substitution, unresolved);
    if (!m_page) {
        m_model->failLoading();
        fireCompletion(false);
        return false;
    }
    m_page->setRelayoutHandler(this, [this] { reframeItems(Move::Immediate); });
    setSize(m_page->layoutSize());
    buildPage();
    m_page->build([this] { loadSelectionGroups(); },
                  [this](const std::shared_ptr<const OSTElementDescription> &element) { loadElement(element); });
    connectInputs();
    stackPage();
    fillGroups();
    m_page->finishBuilding();
    resizeContent();
    m_model->setView(*this);
    m_model->waitForRequiredImages(m_completion ? OSTScreenModel::Ready([this] { fireCompletion(true); })
                                                : OSTScreenModel::Ready());
    return true;
}

void OSTQuickScreen::fireCompletion(bool success)
{
    if (!m_completion)
        return;
    const Completion completion = std::exchange(m_completion, nullptr);
    if (success) {
        completion(this);
        return;
    }
    OSTImageManager::sharedManager().muteAllDownloads();
    completion(nullptr);
    // Nobody took the screen: it goes once the current event is handled.
    deleteLater();
}

// --- Building -----------------------------------------------------------------------------------

void OSTQuickScreen::buildPage()
{
    const QRect frame(QPoint(), m_page->layoutSize());
    m_backdrop = new OSTQuickElement(frame, *screenDocument().backdrop(), this);
    m_content = new QQuickItem(this);
    place(*m_content, frame);
}

void OSTQuickScreen::loadElement(const std::shared_ptr<const OSTElementDescription> &element)
{
    const QString &key = element->key();
    if (QQuickItem *item = buildItem(element, geometryForKey(key))) {
        item->setObjectName(key);
        hideReplacedItem(key);
        m_items.insert(key, item);
    }
}

QQuickItem *OSTQuickScreen::buildItem(const std::shared_ptr<const OSTElementDescription> &element, const QRect &frame)
{
    switch (element->kind()) {
    case OSTElementKind::Image:
        return buildImage(element, frame);
    case OSTElementKind::Label:
        return buildLabel(element, frame);
    case OSTElementKind::Button:
    case OSTElementKind::PictureButton:
        return buildButton(element, frame);
    case OSTElementKind::Switch:
        return buildSwitch(element, frame);
    case OSTElementKind::TextField:
        return buildTextField(element, frame);
    case OSTElementKind::Picker:
        return buildPicker(element, frame);
    case OSTElementKind::Shape:
    case OSTElementKind::Group:
        break;
    }
    return new OSTQuickElement(frame, *element, m_content);
}

void OSTQuickScreen::hideReplacedItem(const QString &key)
{
    // A key in two categories names one element; the item built first is not shown. It stays
    // alive: its required images still count.
    if (QQuickItem *replaced = m_items.value(key)) {
        OSTLogging::logWarning(u"Element %1 appears in two categories; only the later one is shown"_s, key);
        replaced->setVisible(false);
    }
}

QQuickItem *OSTQuickScreen::buildImage(const std::shared_ptr<const OSTElementDescription> &element, const QRect &frame)
{
    auto *image = new OSTQuickImage(frame, static_cast<const OSTImageDescription &>(*element), m_content);
    watchRequiredImages(image);
    return image;
}

QQuickItem *OSTQuickScreen::buildLabel(const std::shared_ptr<const OSTElementDescription> &element, const QRect &frame)
{
    auto *label = new OSTQuickLabel(frame, static_cast<const OSTLabelDescription &>(*element), m_content);
    if (element->key() == errorMessageKey)
        m_errorLabel = label;
    return label;
}

QQuickItem *OSTQuickScreen::buildButton(const std::shared_ptr<const OSTElementDescription> &element, const QRect &frame)
{
    auto description = std::static_pointer_cast<const OSTButtonDescription>(element);
    if (!description->states()) {
        OSTLogging::logWarning(u"Button %1 has no \"states\" object and is left out"_s, description->key());
        return nullptr;
    }
    OSTQuickButton *button = description->kind() == OSTElementKind::PictureButton
        ? OSTQuickImagePickerButton::create(frame, description, m_content)
        : new OSTQuickButton(frame, description, m_content);
    for (OSTQuickImage *background :
         {button->normalBackground(), button->highlightedBackground(), button->disabledBackground()}) {
        if (background)
            watchRequiredImages(background);
    }
    connect(button, &OSTQuickButton::tapped, this, &OSTQuickScreen::buttonTapped);
    m_validationItems.insert(description->key(), button);
    return button;
}

QQuickItem *OSTQuickScreen::buildSwitch(const std::shared_ptr<const OSTElementDescription> &element, const QRect &frame)
{
    auto *toggle = new OSTQuickSwitch(frame, static_cast<const OSTSwitchDescription &>(*element), m_content);
    connect(toggle, &OSTQuickSwitch::tapped, this, &OSTQuickScreen::switchTapped);
    m_validationItems.insert(element->key(), toggle);
    return toggle;
}

QQuickItem *OSTQuickScreen::buildTextField(const std::shared_ptr<const OSTElementDescription> &element,
                                           const QRect &frame)
{
    auto *field = new OSTQuickTextField(QRectF(frame), std::static_pointer_cast<const OSTTextFieldDescription>(element),
                                        m_content);
    m_validationItems.insert(element->key(), field);
    return field;
}

QQuickItem *OSTQuickScreen::buildPicker(const std::shared_ptr<const OSTElementDescription> &element, const QRect &frame)
{
    auto *picker = new OSTQuickPicker(QRectF(frame), std::static_pointer_cast<const OSTPickerDescription>(element),
                                      m_content);
    watchRequiredImages(picker->backgroundItem());
    m_validationItems.insert(element->key(), picker);
    return picker;
}

void OSTQuickScreen::loadSelectionGroups()
{
    for (const auto &description : screenDocument().selectionGroups()) {
        auto *group = new OSTSelectionGroup(description, this);
        group->setDelegate(this);
        // Member buttons answer to their group, not on their own.
        QList<OSTSelectionGroupMember *> members;
        for (const QString &memberKey : group->elementKeys()) {
            if (auto *button = qobject_cast<OSTQuickButton *>(m_items.value(memberKey))) {
                members.append(button);
                m_validationItems.remove(memberKey);
            }
        }
        group->setElements(members);
        m_validationItems.insert(description->key(), group);
    }
}

// The inputs in input order: each returns to the screen and hands on to the next; the last
// country picker fills in the calling code of the last phone-number field.
void OSTQuickScreen::connectInputs()
{
    QList<OSTQuickInput *> inputs;
    OSTQuickPicker *countryPicker = nullptr;
    OSTQuickTextField *phoneField = nullptr;
    for (const auto &element : screenDocument().elements(inputsCategory)) {
        QQuickItem *item = m_items.value(element->key());
        OSTQuickInput *input = nullptr;
        if (auto *picker = qobject_cast<OSTQuickPicker *>(item)) {
            if (picker->type() == OSTPickerTypeCountryCode)
                countryPicker = picker;
            input = picker;
        } else if (auto *field = qobject_cast<OSTQuickTextField *>(item)) {
            if (field->type() == OSTTextFieldTypePhoneNumber || field->type() == OSTTextFieldTypePhoneNumberValidated)
                phoneField = field;
            input = field;
        }
        if (!input)
            continue;
        input->setReturnHandler([this](OSTQuickInput &returned) { inputDidTapReturn(returned); });
        inputs.append(input);
    }
    OSTQuickInput::chainInputs(inputs);
    if (countryPicker && phoneField)
        countryPicker->setDelegate(phoneField);
}

void OSTQuickScreen::stackPage()
{
    // Items are drawn in the order of their z values, so the page's order becomes theirs.
    int z = 0;
    for (const QString &key : m_page->pageStackingOrder()) {
        if (QQuickItem *item = m_items.value(key))
            item->setZ(++z);
    }
}

void OSTQuickScreen::fillGroups()
{
    for (const OSTScreenPage::GroupMembers &group : m_page->groupStackingOrder()) {
        auto *groupItem = qobject_cast<OSTQuickElement *>(m_items.value(group.group));
        if (!groupItem)
            continue;
        for (const QString &member : group.members)
            placeInGroup(member, *groupItem);
    }
    // A member that could not be placed (its group contains it in turn) would otherwise lie
    // loose on the page; it is not shown.
    for (const QString &key : m_page->groupedKeys()) {
        if (QQuickItem *item = m_items.value(key); item && item->parentItem() == m_content)
            item->setVisible(false);
    }
}

void OSTQuickScreen::placeInGroup(const QString &key, OSTQuickElement &group)
{
    QQuickItem *item = m_items.value(key);
    if (!item)
        return;
    QQuickItem *container = group.container();
    if (item == &group || item->isAncestorOf(container)) {
        OSTLogging::logWarning(u"Group %1 cannot hold %2, which contains it"_s, group.objectName(), key);
        return;
    }
    // Members are placed lowest first; each goes on top of the ones before.
    item->setParentItem(container);
    item->setZ(container->childItems().size());
    item->setVisible(true);
}

// --- Images -----------------------------------------------------------------------------------

void OSTQuickScreen::watchRequiredImages(OSTQuickImage *image)
{
    if (!image->isLoadingRequiredImage())
        return;
    m_page->requiredImageStarted();
    connect(image, &OSTQuickImage::requiredImageFinished, this, &OSTQuickScreen::requiredImageFinished,
            Qt::SingleShotConnection);
}

void OSTQuickScreen::requiredImageFinished()
{
    if (m_page->requiredImageFinished())
        m_model->requiredImagesDidFinishLoading();
}

// --- What happens on the screen ---------------------------------------------------------------

void OSTQuickScreen::buttonTapped(OSTQuickButton *button)
{
    OSTTapEvents::buttonTapped(*screen(), button->name(), button->action());
    // A picture button opens its own chooser instead of carrying out an action.
    if (button->description()->kind() != OSTElementKind::PictureButton)
        m_model->handleAction(button->action());
}

void OSTQuickScreen::switchTapped()
{
    OSTTapEvents::switchTapped(*screen());
}

void OSTQuickScreen::selectionGroupDidTapButton(OSTSelectionGroup &group, const QString &buttonName,
                                                const std::shared_ptr<const OSTAction> &action)
{
    OSTTapEvents::selectionGroupTapped(*screen(), group, buttonName, action);
}

bool OSTQuickScreen::selectionGroupShouldHandleAction(OSTSelectionGroup &, const std::shared_ptr<const OSTAction> &action)
{
    m_model->handleAction(action);
    return true;
}

void OSTQuickScreen::inputDidTapReturn(OSTQuickInput &input)
{
    const auto *field = qobject_cast<const OSTQuickTextField *>(&input.inputItem());
    OSTTapEvents::inputReturned(*screen(), field ? &field->description() : nullptr);
    m_model->goToNextScreen();
}

void OSTQuickScreen::tapRecognized()
{
    giveUpFocus();
    m_model->screenTapped();
}

void OSTQuickScreen::mousePressEvent(QMouseEvent *event)
{
    beginPress(event->position());
    event->accept();
}

void OSTQuickScreen::mouseMoveEvent(QMouseEvent *event)
{
    dragTo(event->position());
}

void OSTQuickScreen::beginPress(QPointF position)
{
    m_pressPosition = position;
    m_pressOffset = scrollOffset();
    m_dragging = false;
}

bool OSTQuickScreen::dragTo(QPointF position)
{
    if (!m_pressPosition)
        return false;
    const qreal distance = m_pressPosition->y() - position.y();
    if (!m_dragging && std::abs(distance) < QGuiApplication::styleHints()->startDragDistance())
        return false;
    m_dragging = true;
    scrollTo(m_pressOffset + OSTScreenPage::roundedEdge(distance));
    return true;
}

bool OSTQuickScreen::childMouseEventFilter(QQuickItem *item, QEvent *event)
{
    // A drag that begins on a button scrolls the page too: past the drag distance the screen takes
    // the mouse from the button, which then does not click. Inputs keep their own drags.
    if (!qobject_cast<OSTQuickButton *>(item)
        || (event->type() != QEvent::MouseButtonPress && event->type() != QEvent::MouseMove))
        return false;
    auto *mouse = static_cast<QMouseEvent *>(event);
    const QPointF position = mapFromScene(mouse->scenePosition());
    if (event->type() == QEvent::MouseButtonPress) {
        beginPress(position);
        return false;
    }
    if (!dragTo(position))
        return false;
    mouse->setExclusiveGrabber(mouse->point(0), this);
    return true;
}

void OSTQuickScreen::mouseReleaseEvent(QMouseEvent *)
{
    const bool tapped = m_pressPosition && !m_dragging;
    m_pressPosition.reset();
    m_dragging = false;
    if (tapped)
        tapRecognized();
}

void OSTQuickScreen::mouseUngrabEvent()
{
    m_pressPosition.reset();
    m_dragging = false;
}

void OSTQuickScreen::wheelEvent(QWheelEvent *event)
{
    const int delta = event->pixelDelta().isNull() ? event->angleDelta().y() * wheelNotchPoints / 120
                                                   : event->pixelDelta().y();
    scrollTo(scrollOffset() - delta);
    event->accept();
}

// --- Geometry -----------------------------------------------------------------------------------

int OSTQuickScreen::lowestScrollingEdge() const
{
    int lowestEdge = 0;
    for (auto item = m_items.cbegin(); item != m_items.cend(); ++item) {
        if (m_page->isScrolling(item.key()) && item.value()->isVisible())
            lowestEdge = std::max(lowestEdge, frameOf(*item.value()).bottom() + 1);
    }
    return lowestEdge;
}

int OSTQuickScreen::contentHeight() const
{
    return std::max(OSTScreenPage::roundedEdge(height()) + m_keyboardInset, lowestScrollingEdge());
}

void OSTQuickScreen::keyboardWillShow(double keyboardHeight)
{
    const int inset = OSTScreenPage::roundedEdge(keyboardHeight);
    if (lowestScrollingEdge() <= OSTScreenPage::roundedEdge(height()) - inset)
        return;
    m_keyboardInset = inset;
    resizeContent();
}

void OSTQuickScreen::keyboardWillHide()
{
    m_keyboardInset = 0;
    resizeContent();
}

void OSTQuickScreen::updateKeyboard()
{
    QInputMethod *inputMethod = QGuiApplication::inputMethod();
    if (inputMethod->isVisible() && inputMethod->keyboardRectangle().height() > 0)
        keyboardWillShow(inputMethod->keyboardRectangle().height());
    else
        keyboardWillHide();
}

void OSTQuickScreen::scrollTo(int offset)
{
    const int limit = std::max(0, contentHeight() - OSTScreenPage::roundedEdge(height()));
    const int clamped = std::clamp(offset, 0, limit);
    if (clamped == scrollOffset())
        return;
    m_page->setScrollOffset(clamped);
    m_content->setY(-clamped);
    for (const QString &key : m_page->anchoredPageKeys()) {
        if (QQuickItem *item = m_items.value(key))
            place(*item, geometryForKey(key));
    }
}

QRect OSTQuickScreen::geometryForKey(const QString &key) const
{
    std::optional<QRect> geometry = m_page->layoutGeometry(key);
    if (!geometry)
        return QRect();
    if (qobject_cast<const OSTQuickSwitch *>(m_items.value(key)))
        geometry = OSTQuickSwitch::frameInBox(*geometry);
    return geometry->translated(0, m_page->scrollShift(key));
}

void OSTQuickScreen::reframeItems(Move move)
{
    for (auto item = m_items.cbegin(); item != m_items.cend(); ++item) {
        // A move still running towards an older layout would otherwise finish after this one.
        stopMoving(*item.value());
        const QRect geometry = geometryForKey(item.key());
        if (move == Move::Immediate || frameOf(*item.value()) == geometry) {
            place(*item.value(), geometry);
            continue;
        }
        QQuickItem *target = item.value();
        auto *animation = new QVariantAnimation(target);
        animation->setObjectName(errorAnimationName);
        animation->setDuration(errorAnimationMilliseconds);
        animation->setEasingCurve(QEasingCurve::OutCubic);
        animation->setStartValue(frameOf(*target));
        animation->setEndValue(geometry);
        connect(animation, &QVariantAnimation::valueChanged, target,
                [target](const QVariant &frame) { place(*target, frame.toRect()); });
        animation->start(QAbstractAnimation::DeleteWhenStopped);
    }
    resizeContent();
}

void OSTQuickScreen::resizeContent()
{
    m_content->setSize(QSizeF(width(), contentHeight()));
    scrollTo(scrollOffset());
}

void OSTQuickScreen::geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry)
{
    QQuickItem::geometryChange(newGeometry, oldGeometry);
    if (!m_page || !m_backdrop)
        return;
    place(*m_backdrop, QRect(QPoint(), newGeometry.size().toSize()));
    resizeContent();
    m_page->resize(OSTScreenPage::roundedSize(newGeometry.size()));
}

// --- The screen model's view ------------------------------------------------------------------

const OSTScreenDocument &OSTQuickScreen::screenDocument() const
{
    return *m_page->document();
}

OSTScreenModelView::ValidationItems OSTQuickScreen::validationItems() const
{
    return m_validationItems;
}

bool OSTQuickScreen::isFullyLoaded() const
{
    return m_page && m_page->isFullyLoaded();
}

void OSTQuickScreen::setNextButtonsEnabled(bool enabled)
{
    for (QQuickItem *item : std::as_const(m_items)) {
        auto *button = qobject_cast<OSTQuickButton *>(item);
        if (!button || !button->action() || button->action()->type() != OSTActionTypeNext)
            continue;
        // The focus of a disabled button would move on to an input, whose editing would hide the
        // error the user must see; the screen keeps it instead.
        if (!enabled && button->hasActiveFocus())
            button->setFocus(false);
        button->setEnabled(enabled);
    }
}

void OSTQuickScreen::showErrorMessage(const QString &message)
{
    if (!m_errorLabel || m_errorLabel->text() == message)
        return;
    m_page->setShowsError(!message.isNull());
    const OSTScreenDocument &document = screenDocument();
    m_errorLabel->customize(m_page->showsError() ? *document.errorMessageWhileShowing() : *document.errorMessage());
    m_errorLabel->setText(message);
    reframeItems(Move::Animated);
}

void OSTQuickScreen::showLoadingOverlay()
{
    if (!m_loadingOverlay)
        m_loadingOverlay = new OSTQuickLoadingOverlay(this);
    m_loadingOverlay->present();
}

void OSTQuickScreen::hideLoadingOverlay()
{
    if (m_loadingOverlay)
        m_loadingOverlay->dismiss();
}

void OSTQuickScreen::screenDidAppear()
{
    QInputMethod *inputMethod = QGuiApplication::inputMethod();
    if (!m_keyboardVisibility) {
        m_keyboardVisibility = connect(inputMethod, &QInputMethod::visibleChanged, this,
                                       &OSTQuickScreen::updateKeyboard);
        m_keyboardGeometry = connect(inputMethod, &QInputMethod::keyboardRectangleChanged, this,
                                     &OSTQuickScreen::updateKeyboard);
    }
    m_model->screenDidAppear();
}

void OSTQuickScreen::screenDidDisappear()
{
    QObject::disconnect(m_keyboardVisibility);
    QObject::disconnect(m_keyboardGeometry);
    m_keyboardVisibility = {};
    m_keyboardGeometry = {};
    giveUpFocus();
}

void OSTQuickScreen::giveUpFocus()
{
    // The screen is a focus scope: the focus leaves the element and stays with the screen.
    if (QQuickItem *focused = window() ? window()->activeFocusItem() : nullptr; focused && isAncestorOf(focused))
        focused->setFocus(false);
}

} // namespace ostrel
