#include "quick/OSTQuickPicker.h"

#include "core/OSTDateFormatter.h"
#include "model/OSTValidationItemModel.h"
#include "paint/OSTBoxPainter.h"
#include "paint/OSTTextAttributes.h"
#include "platform/OSTClock.h"
#include "quick/OSTQuickAccessibility.h"
#include "quick/OSTQuickImage.h"
#include "quick/OSTQuickLabel.h"
#include "quick/OSTQuickPickerWheel.h"
#include "quick/OSTQuickShadow.h"
#include "quick/OSTQuickToolbar.h"

#include <QKeyEvent>
#include <QLocale>
#include <QMouseEvent>
#include <QQuickWindow>

#include <algorithm>
#include <limits>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

constexpr QMarginsF defaultContentInsets(10, 0, 16, 0);
constexpr qsizetype minutesPerDay = 24 * 60;
// A date wheel without bounds spans what a date editor offers.
const QDate earliestDate(1752, 9, 14);
const QDate latestDate(9999, 12, 31);

bool rowsAreMinutes(UIDatePickerMode mode)
{
    return mode == UIDatePickerModeTime || mode == UIDatePickerModeCountDownTimer;
}

} // namespace

OSTQuickPicker::OSTQuickPicker(const QRectF &frame, std::shared_ptr<const OSTPickerDescription> description,
                               QQuickItem *parent)
    : QQuickItem(parent),
      OSTQuickInput(*this, description->inputOrder()),
      m_description(std::move(description)),
      m_contentInsets(m_description->contentInsets() ? QMarginsF(*m_description->contentInsets())
                                                     : defaultContentInsets),
      m_background(new OSTQuickImage(QRect(QPoint(), frame.size().toSize()), *m_description->background(), this)),
      m_textLabel(new OSTQuickLabel(QRect(QPoint(), frame.size().toSize()), *m_description->text(), this)),
      m_rows(m_description->wheel())
{
    setObjectName(name());
    setPosition(frame.topLeft());
    setSize(frame.size());
    layOutLabel();
    castShadow();
    setAcceptedMouseButtons(Qt::LeftButton);
    setActiveFocusOnTab(true);
    OSTQuickAccessibility::describe(*this, QAccessible::ComboBox, m_description->accessibilityLabel().value_or(name()));
    buildRows();
    buildToolbar();
    buildWheel();
}

OSTQuickPicker::~OSTQuickPicker()
{
    // The wheel and the toolbar may sit in another item; they must not outlive their picker
    // there, nor report a row to a picker being destroyed.
    if (m_wheel)
        disconnect(m_wheel, nullptr, this, nullptr);
    delete m_wheel;
    delete m_toolbar;
}

void OSTQuickPicker::buildRows()
{
    if (type() == OSTPickerTypeDate) {
        readDateBounds();
        return;
    }
    if (m_rows.rowCount() == 0)
        setEnabled(false);
    showChoice(m_rows.titleAtRow(0, Formatting::Plain));
}

void OSTQuickPicker::readDateBounds()
{
    const OSTPickerWheel &wheel = m_description->wheel();
    m_dateRowsAreMinutes = rowsAreMinutes(wheel.dateMode);
    m_minimumDate = wheel.minimumDate.isValid() ? wheel.minimumDate : QDateTime(earliestDate, QTime(0, 0));
    m_maximumDate = wheel.maximumDate.isValid() ? wheel.maximumDate : QDateTime(latestDate, QTime(23, 59, 59, 999));
    // A maximum before the minimum moves the minimum down to it, as a date editor does.
    m_minimumDate = std::min(m_minimumDate, m_maximumDate);
    // Untouched, the wheel holds the start date or else now (within the bounds); only a start
    // date is shown as a choice.
    if (wheel.startDate.isValid()) {
        showDate(wheel.startDate);
        return;
    }
    m_date = std::clamp(OSTClock::current().dateTimeNow().toLocalTime(), m_minimumDate, m_maximumDate);
}

void OSTQuickPicker::buildToolbar()
{
    const std::optional<OSTToolbarSettings> &settings = m_description->toolbar();
    if (!settings)
        return;
    m_toolbar = new OSTQuickToolbar(*settings);
    m_toolbar->setParent(this);
    m_toolbar->setVisible(false);
    m_toolbar->setCancelBlock([this] {
        hideWheel();
        setFocus(false);
    });
    m_toolbar->setDoneBlock([this] { finishWithDone(); });
}

void OSTQuickPicker::buildWheel()
{
    if (rowCount() == 0)
        return;
    // Custom rows line up as the picker's own text does.
    const Qt::Alignment alignment = type() == OSTPickerTypeCustomData
        ? OSTTextAttributes(m_description->text()->textLook()).horizontalAlignment() | Qt::AlignVCenter
        : Qt::AlignLeft | Qt::AlignVCenter;
    m_wheel = new OSTQuickPickerWheel(
        rowCount(), [this](qsizetype row) { return titleAtRow(row, Formatting::Formatted); }, alignment);
    m_wheel->setParent(this);
    m_wheel->setVisible(false);
    if (type() == OSTPickerTypeDate)
        m_wheel->setCurrentRow(rowOfDate(m_date));
    connect(m_wheel, &OSTQuickPickerWheel::currentRowChanged, this, [this](qsizetype row) { chooseRow(row); });
    connect(m_wheel, &OSTQuickPickerWheel::rowClicked, this, [this](qsizetype row) {
        chooseRow(row);
        hideWheel();
    });
}

qsizetype OSTQuickPicker::rowCount() const
{
    if (type() != OSTPickerTypeDate)
        return m_rows.rowCount();
    return m_dateRowsAreMinutes ? minutesPerDay : m_minimumDate.date().daysTo(m_maximumDate.date()) + 1;
}

qsizetype OSTQuickPicker::rowOfDate(const QDateTime &date) const
{
    if (m_dateRowsAreMinutes)
        return QTime(0, 0).secsTo(date.time()) / 60;
    return m_minimumDate.date().daysTo(date.date());
}

QDateTime OSTQuickPicker::dateAtRow(qsizetype row) const
{
    // A day row keeps the time of day the wheel stands at; a minute row its day.
    const QDateTime date = m_dateRowsAreMinutes ? QDateTime(m_date.date(), QTime(0, 0).addSecs(int(row * 60)))
                                                : QDateTime(m_minimumDate.date().addDays(row), m_date.time());
    return std::clamp(date, m_minimumDate, m_maximumDate);
}

QString OSTQuickPicker::titleAtRow(qsizetype row, Formatting formatting) const
{
    if (type() != OSTPickerTypeDate)
        return m_rows.titleAtRow(row, formatting);
    if (row < 0 || row >= rowCount())
        return {};
    const QDateTime date = dateAtRow(row);
    switch (m_description->wheel().dateMode) {
    case UIDatePickerModeTime:
    case UIDatePickerModeCountDownTimer:
        return QLocale().toString(date.time(), QLocale::ShortFormat);
    case UIDatePickerModeDateAndTime:
        return QLocale().toString(date, QLocale::ShortFormat);
    case UIDatePickerModeDate:
        break;
    }
    return QLocale().toString(date.date(), QLocale::ShortFormat);
}

void OSTQuickPicker::setDelegate(QObject *delegate)
{
    m_delegate = qobject_cast<OSTPickerDelegate *>(delegate) ? delegate : nullptr;
    if (type() == OSTPickerTypeCountryCode)
        tellDelegateOfCountry();
}

void OSTQuickPicker::selectRow(qsizetype row)
{
    if (m_wheel)
        m_wheel->setCurrentRow(row);
    chooseRow(row);
}

void OSTQuickPicker::chooseRow(qsizetype row)
{
    if (type() == OSTPickerTypeDate) {
        if (row >= 0 && row < rowCount())
            showDate(dateAtRow(row));
        return;
    }
    showChoice(titleAtRow(row, Formatting::Plain));
    if (type() == OSTPickerTypeCountryCode && row >= 0 && row < m_rows.rowCount()) {
        m_rows.chooseRow(row);
        tellDelegateOfCountry();
    }
    reportValueChanged();
}

void OSTQuickPicker::showDate(const QDateTime &date)
{
    m_date = std::clamp(date, m_minimumDate, m_maximumDate);
    const bool american = QLocale().territory() == QLocale::UnitedStates;
    const OSTDateFormatter &formatter = american ? ost_mdyDateFormatter() : ost_dmyDateFormatter();
    showChoice(formatter.stringFromDate(m_date));
    reportValueChanged();
}

void OSTQuickPicker::tellDelegateOfCountry()
{
    if (auto *delegate = qobject_cast<OSTPickerDelegate *>(m_delegate.data()))
        delegate->pickerDidChangeCountry(type(), country(), countryCode());
}

QString OSTQuickPicker::choiceText() const
{
    return m_textLabel->text();
}

void OSTQuickPicker::showChoice(const QString &text)
{
    m_textLabel->setText(text);
}

void OSTQuickPicker::layOutLabel()
{
    m_textLabel->setFrame(QRectF(QPointF(), size()).marginsRemoved(m_contentInsets).toRect());
}

void OSTQuickPicker::castShadow()
{
    if (!m_shadow && m_description->objectShadow())
        m_shadow = new OSTQuickShadow(*m_description->objectShadow(), this);
    if (m_shadow)
        m_shadow->setCornerRadius(OSTBoxPainter(m_description->background()->box()).cornerRadius(size()));
}

void OSTQuickPicker::geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry)
{
    QQuickItem::geometryChange(newGeometry, oldGeometry);
    m_background->setFrame(QRect(QPoint(), newGeometry.size().toSize()));
    layOutLabel();
    castShadow();
}

void OSTQuickPicker::reportValueChanged()
{
    if (const std::shared_ptr<OSTValidationItemModel> itemModel = model())
        itemModel->valueChanged();
}

bool OSTQuickPicker::isWheelShown() const
{
    return m_wheel && m_wheel->isVisible();
}

void OSTQuickPicker::showWheel()
{
    if (!m_wheel || !isEnabled())
        return;
    forceActiveFocus(Qt::PopupFocusReason);
    placePopup();
    m_wheel->setVisible(true);
    if (m_toolbar)
        m_toolbar->setVisible(true);
}

void OSTQuickPicker::placePopup()
{
    // Above the rest of the screen: in the window's content item when there is one.
    QQuickItem *host = window() ? window()->contentItem() : this;
    const QPointF below = mapToItem(host, QPointF(0, height()));
    qreal top = below.y();
    if (m_toolbar) {
        m_toolbar->setParentItem(host);
        m_toolbar->setZ(std::numeric_limits<qreal>::max());
        m_toolbar->setPosition({below.x(), top});
        m_toolbar->setWidth(width());
        top += m_toolbar->height();
    }
    m_wheel->setParentItem(host);
    m_wheel->setZ(std::numeric_limits<qreal>::max());
    m_wheel->setPosition({below.x(), top});
    m_wheel->setWidth(width());
}

void OSTQuickPicker::hideWheel()
{
    if (m_wheel)
        m_wheel->setVisible(false);
    if (m_toolbar)
        m_toolbar->setVisible(false);
}

void OSTQuickPicker::finishWithDone()
{
    hideWheel();
    handOnFocus();
}

QVariant OSTQuickPicker::value() const
{
    switch (type()) {
    case OSTPickerTypeCountryCode:
        return country();
    case OSTPickerTypeDate:
        return m_date;
    case OSTPickerTypeCustomData:
        break;
    }
    return choiceText();
}

void OSTQuickPicker::setValue(const QVariant &value)
{
    if (type() == OSTPickerTypeDate) {
        if (value.canConvert<QDateTime>() && value.toDateTime().isValid()
            && value.metaType() != QMetaType::fromType<QString>()) {
            showDate(value.toDateTime());
            if (m_wheel)
                m_wheel->setCurrentRow(rowOfDate(m_date));
        }
        return;
    }
    if (!m_wheel || value.metaType() != QMetaType::fromType<QString>())
        return;
    if (const qsizetype row = m_rows.rowOfValue(value.toString()); row >= 0)
        selectRow(row);
}

void OSTQuickPicker::modelDidChange()
{
    if (const std::shared_ptr<OSTValidationItemModel> itemModel = model()) {
        itemModel->setValid(true);
        itemModel->valueChanged();
    }
}

void OSTQuickPicker::mousePressEvent(QMouseEvent *event)
{
    event->accept();
    if (isWheelShown())
        hideWheel();
    else
        showWheel();
}

void OSTQuickPicker::keyPressEvent(QKeyEvent *event)
{
    const int key = event->key();
    if (handleChainKey(*event))
        return;
    if (isWheelShown()) {
        switch (key) {
        case Qt::Key_Up:
        case Qt::Key_Down:
            m_wheel->stepCurrentRow(key == Qt::Key_Up ? -1 : 1);
            return;
        case Qt::Key_Return:
        case Qt::Key_Enter:
            finishWithDone();
            return;
        case Qt::Key_Escape:
            hideWheel();
            return;
        default:
            break;
        }
    }
    const bool altDown = key == Qt::Key_Down && event->modifiers().testFlag(Qt::AltModifier);
    if (key == Qt::Key_Space || key == Qt::Key_F4 || altDown) {
        showWheel();
        return;
    }
    if (key == Qt::Key_Return || key == Qt::Key_Enter) {
        handOnFocus();
        return;
    }
    QQuickItem::keyPressEvent(event);
}

void OSTQuickPicker::focusOutEvent(QFocusEvent *event)
{
    // Like a popup, the open wheel closes when the focus goes elsewhere.
    hideWheel();
    QQuickItem::focusOutEvent(event);
}

} // namespace ostrel
