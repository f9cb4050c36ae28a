#include "widgets/OSTScreenView.h"

#include "core/OSTLogging.h"
#include "experience/OSTAction.h"
#include "experience/OSTScreen.h"
#include "model/OSTTapEvents.h"
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

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

const QString &errorMessageKey = OSTScreenVocabulary::errorMessageKey;
const QString inputsCategory = u"inputs"_s;
constexpr int errorAnimationMilliseconds = 250;
const QString errorAnimationName = u"errorLayoutMove"_s;

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
    std::unique_ptr<OSTScreenPage> page = OSTScreenPage::create(screen, area, substitution, unresolved);
    return page ? new OSTScreenView(std::move(page), parent) : nullptr;
}

OSTScreenView::OSTScreenView(std::unique_ptr<OSTScreenPage> page, QWidget *parent)
    : QWidget(parent), m_page(std::move(page))
{
    m_page->setRelayoutHandler(this, [this] { reframeViews(OSTAnimation::Immediate); });
    resize(m_page->layoutSize());
    buildPage();
    loadElements();
    connectInputs();
    fillContentView();
    fillGroups();
    m_page->finishBuilding();
}

OSTScreenView::~OSTScreenView() = default;

void OSTScreenView::buildPage()
{
    const QRect frame(QPoint(), size());
    m_backdrop = new OSTView(frame, *document()->backdrop(), this);
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

void OSTScreenView::loadElements()
{
    m_page->build([this] { loadSelectionGroups(); },
                  [this](const std::shared_ptr<const OSTElementDescription> &element) { loadElement(element); });
}

void OSTScreenView::loadElement(const std::shared_ptr<const OSTElementDescription> &element)
{
    const QString &key = element->key();
    if (QWidget *view = buildView(element, geometryForKey(key))) {
        view->setObjectName(key);
        hideReplacedView(key);
        m_views.insert(key, view);
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
    for (const auto &description : document()->selectionGroups()) {
        const QString &key = description->key();
        auto *group = new OSTSelectionGroup(description, this);
        group->setDelegate(this);
        // Member buttons answer to their group, not on their own.
        QList<OSTSelectionGroupMember *> members;
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
    for (const auto &element : document()->elements(inputsCategory)) {
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
    // Raising in order stacks later views on top.
    for (const QString &key : m_page->pageStackingOrder()) {
        if (QWidget *view = m_views.value(key))
            view->raise();
    }
}

void OSTScreenView::fillGroups()
{
    for (const OSTScreenPage::GroupMembers &group : m_page->groupStackingOrder()) {
        auto *groupView = qobject_cast<OSTView *>(m_views.value(group.group));
        if (!groupView)
            continue;
        for (const QString &member : group.members)
            placeInGroup(member, *groupView);
    }
    // A member that could not be placed (its group contains it in turn) would otherwise lie
    // loose in the content view; it is not shown.
    for (const QString &key : m_page->groupedKeys()) {
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
    m_page->requiredImageStarted();
    connect(imageView, &OSTImageView::requiredImageFinished, this, &OSTScreenView::requiredImageFinished,
            Qt::SingleShotConnection);
}

void OSTScreenView::requiredImageFinished()
{
    if (!m_page->requiredImageFinished())
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
    OSTTapEvents::buttonTapped(*screen(), button->name(), button->action());
    if (const auto delegate = lockedDelegate())
        delegate->screenViewDidPressButton(*this, *button);
}

void OSTScreenView::switchTapped()
{
    OSTTapEvents::switchTapped(*screen());
}

void OSTScreenView::inputDidTapReturn(OSTInput &input)
{
    const auto *field = qobject_cast<const OSTTextField *>(&input.inputWidget());
    OSTTapEvents::inputReturned(*screen(), field ? &field->description() : nullptr);
    if (const auto delegate = lockedDelegate())
        delegate->screenViewShouldGoToNextScreen(*this);
}

void OSTScreenView::selectionGroupDidTapButton(OSTSelectionGroup &group, const QString &buttonName,
                                               const std::shared_ptr<const OSTAction> &action)
{
    OSTTapEvents::selectionGroupTapped(*screen(), group, buttonName, action);
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

void OSTScreenView::contentScrolled(int offset)
{
    m_page->setScrollOffset(offset);
    for (const QString &key : m_page->anchoredPageKeys()) {
        if (QWidget *view = m_views.value(key))
            view->setGeometry(geometryForKey(key));
    }
}

void OSTScreenView::keyboardWillShow(double keyboardHeight)
{
    int lowestEdge = 0;
    for (auto view = m_views.cbegin(); view != m_views.cend(); ++view) {
        if (m_page->isScrolling(view.key()))
            lowestEdge = std::max(lowestEdge, view.value()->geometry().bottom() + 1);
    }
    const int inset = OSTScreenPage::roundedEdge(keyboardHeight);
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

QRect OSTScreenView::geometryForKey(const QString &key) const
{
    std::optional<QRect> geometry = m_page->layoutGeometry(key);
    if (!geometry)
        return QRect();
    if (qobject_cast<const OSTSwitch *>(m_views.value(key)))
        geometry = OSTSwitch::frameInBox(*geometry);
    return geometry->translated(0, m_page->scrollShift(key));
}

void OSTScreenView::showErrorMessage(const QString &message, OSTAnimation animation)
{
    if (!m_errorLabel || m_errorLabel->text() == message)
        return;
    m_page->setShowsError(!message.isNull());
    m_errorLabel->customize(m_page->showsError() ? *document()->errorMessageWhileShowing() : *document()->errorMessage());
    m_errorLabel->setText(message);
    reframeViews(animation);
}

void OSTScreenView::reframeViews(OSTAnimation animation)
{
    for (auto view = m_views.cbegin(); view != m_views.cend(); ++view) {
        // A move still running towards an older layout would otherwise finish after this one.
        stopMoving(*view.value());
        const QRect geometry = geometryForKey(view.key());
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
    m_page->resize(size());
}

void OSTScreenView::resizePage()
{
    const QRect frame(QPoint(), size());
    m_backdrop->setGeometry(frame);
    m_scrollView->setGeometry(frame);
    m_contentView->resize(width(), height() + m_keyboardInset);
}

} // namespace ostrel
