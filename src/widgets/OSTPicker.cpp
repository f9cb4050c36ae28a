#include "widgets/OSTPicker.h"

#include "core/OSTDateFormatter.h"
#include "core/OSTLogging.h"
#include "model/OSTValidationItemModel.h"
#include "platform/OSTClock.h"
#include "widgets/OSTBackgroundView.h"
#include "widgets/OSTImageView.h"
#include "widgets/OSTLabel.h"
#include "widgets/OSTToolbar.h"
#include "widgets/OSTViewEffect.h"

#include <ostrel/OSTPropertyConversions.h>

#include <QDateTimeEdit>
#include <QFrame>
#include <QKeyEvent>
#include <QListWidget>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

constexpr QMargins defaultContentInsets(10, 0, 16, 0);
constexpr int wheelVisibleRows = 6;

QString displayFormatFor(UIDatePickerMode mode, const QLocale &locale)
{
    switch (mode) {
    case UIDatePickerModeTime:
    case UIDatePickerModeCountDownTimer:
        return locale.timeFormat(QLocale::ShortFormat);
    case UIDatePickerModeDateAndTime:
        return locale.dateTimeFormat(QLocale::ShortFormat);
    case UIDatePickerModeDate:
        break;
    }
    return locale.dateFormat(QLocale::ShortFormat);
}

} // namespace

OSTPicker::OSTPicker(const QRect &frame, std::shared_ptr<const OSTPickerDescription> description, QWidget *parent)
    // The picker's own view has no look: its box is the background's.
    : OSTView(frame, OSTElementDescription(OSTElementKind::Picker, description->key(), {}),
              Styling::InSubclassConstructor, parent),
      OSTInput(*this, description->inputOrder()),
      m_name(description->key()),
      m_backgroundView(new OSTImageView(QRect(QPoint(), frame.size()), *description->background(), container())),
      m_textLabel(new OSTLabel(QRect(QPoint(), frame.size()), *description->text(), container())),
      m_rows(description->wheel())
{
    setFocusPolicy(Qt::StrongFocus);
    setAccessibleName(description->accessibilityLabel().value_or(m_name));
    // The picker casts its box's shadow itself: the box's own would be clipped to the picker.
    OSTViewEffect::applyTo(*this, m_backgroundView->container(), 1, description->objectShadow());
    m_contentInsets = description->contentInsets().value_or(defaultContentInsets);
    layOutLabel();
    buildToolbar(description->toolbar());
    buildWheel(description->wheel());
}

OSTPicker::~OSTPicker()
{
    deletePopup();
}

void OSTPicker::deletePopup()
{
    // A wheel being destroyed may still report a change of row; nobody must hear it, or the
    // item model would store an empty choice while the screen is torn down.
    for (QWidget *wheel : {static_cast<QWidget *>(m_listWheel), static_cast<QWidget *>(m_dateWheel)})
        if (wheel)
            disconnect(wheel, nullptr, this, nullptr);
    delete m_popup;
    m_popup = nullptr;
    m_toolbar = nullptr;
    m_listWheel = nullptr;
    m_dateWheel = nullptr;
}

void OSTPicker::buildToolbar(const std::optional<OSTToolbarSettings> &toolbar)
{
    m_popup = new QFrame(this, Qt::Popup);
    m_popup->setFrameShape(QFrame::StyledPanel);
    auto *layout = new QVBoxLayout(m_popup);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    if (!toolbar)
        return;
    m_toolbar = new OSTToolbar(*toolbar, m_popup);
    m_toolbar->setCancelBlock([this] {
        hideWheel();
        clearFocus();
    });
    m_toolbar->setDoneBlock([this] { finishWithDone(); });
    layout->addWidget(m_toolbar);
}

void OSTPicker::buildWheel(const OSTPickerWheel &wheel)
{
    using Formatting = OSTPickerRowModel::Formatting;
    switch (m_rows.type()) {
    case OSTPickerTypeCountryCode:
        showChoice(m_rows.titleAtRow(0, Formatting::Plain));
        buildListWheel(m_rows.titles(Formatting::Formatted), Qt::AlignLeft | Qt::AlignVCenter);
        break;
    case OSTPickerTypeCustomData:
        if (m_rows.rowCount() == 0) {
            setEnabled(false);
            showChoice(QString());
            break;
        }
        showChoice(m_rows.titleAtRow(0, Formatting::Plain));
        buildListWheel(m_rows.titles(Formatting::Plain), m_textLabel->textAlignment());
        break;
    case OSTPickerTypeDate:
        buildDateWheel(wheel);
        break;
    }
}

void OSTPicker::buildListWheel(const QStringList &titles, Qt::Alignment alignment)
{
    m_listWheel = new QListWidget(m_popup);
    m_listWheel->addItems(titles);
    for (int row = 0; row < m_listWheel->count(); ++row)
        m_listWheel->item(row)->setTextAlignment(alignment);
    m_listWheel->setCurrentRow(0);
    m_listWheel->setAccessibleName(accessibleName());
    m_listWheel->installEventFilter(this);
    connect(m_listWheel, &QListWidget::currentRowChanged, this, [this](int row) { chooseRow(row); });
    connect(m_listWheel, &QListWidget::itemClicked, this, &OSTPicker::hideWheel);
    m_popup->layout()->addWidget(m_listWheel);
}

void OSTPicker::buildDateWheel(const OSTPickerWheel &wheel)
{
    m_dateWheel = new QDateTimeEdit(m_popup);
    m_dateWheel->setDisplayFormat(displayFormatFor(wheel.dateMode, m_dateWheel->locale()));
    m_dateWheel->setAccessibleName(accessibleName());
    m_dateWheel->installEventFilter(this);
    if (wheel.minimumDate.isValid())
        m_dateWheel->setMinimumDateTime(wheel.minimumDate);
    if (wheel.maximumDate.isValid())
        m_dateWheel->setMaximumDateTime(wheel.maximumDate);
    // Untouched, the wheel holds the start date or else now (within the bounds), as it shows.
    if (wheel.startDate.isValid()) {
        m_dateWheel->setDateTime(wheel.startDate);
        dateChanged();
    } else {
        m_dateWheel->setDateTime(OSTClock::current().dateTimeNow().toLocalTime());
    }
    connect(m_dateWheel, &QDateTimeEdit::dateTimeChanged, this, &OSTPicker::dateChanged);
    m_popup->layout()->addWidget(m_dateWheel);
}

void OSTPicker::setDelegate(QObject *delegate)
{
    m_delegate = qobject_cast<OSTPickerDelegate *>(delegate) ? delegate : nullptr;
    if (type() == OSTPickerTypeCountryCode && !country().isEmpty() && !countryCode().isEmpty())
        tellDelegateOfCountry();
}

void OSTPicker::selectRow(qsizetype row)
{
    if (m_listWheel && row >= 0 && row < m_listWheel->count()) {
        const QSignalBlocker blocker(m_listWheel);
        m_listWheel->setCurrentRow(int(row));
    }
    chooseRow(row);
}

void OSTPicker::chooseRow(qsizetype row)
{
    showChoice(m_rows.titleAtRow(row, OSTPickerRowModel::Formatting::Plain));
    if (type() == OSTPickerTypeCountryCode && row >= 0 && row < m_rows.rowCount()) {
        m_rows.chooseRow(row);
        tellDelegateOfCountry();
    }
    reportValueChanged();
}

void OSTPicker::dateChanged()
{
    if (!m_dateWheel)
        return;
    const bool american = m_dateWheel->locale().territory() == QLocale::UnitedStates;
    const OSTDateFormatter &formatter = american ? ost_mdyDateFormatter() : ost_dmyDateFormatter();
    showChoice(formatter.stringFromDate(m_dateWheel->dateTime()));
    reportValueChanged();
}

void OSTPicker::tellDelegateOfCountry()
{
    if (auto *delegate = qobject_cast<OSTPickerDelegate *>(m_delegate.data()))
        delegate->pickerDidChangeCountry(type(), country(), countryCode());
}

void OSTPicker::showChoice(const QString &text)
{
    m_textLabel->setText(text);
    setAccessibleDescription(text);
}

void OSTPicker::reportValueChanged()
{
    if (const std::shared_ptr<OSTValidationItemModel> itemModel = model())
        itemModel->valueChanged();
}

bool OSTPicker::isWheelShown() const
{
    return m_popup && m_popup->isVisible();
}

void OSTPicker::showWheel()
{
    QWidget *wheel = m_listWheel ? static_cast<QWidget *>(m_listWheel) : m_dateWheel;
    if (!wheel || !isEnabled())
        return;
    setFocus(Qt::PopupFocusReason);
    if (m_listWheel)
        m_listWheel->setMinimumHeight(m_listWheel->sizeHintForRow(0) * wheelVisibleRows);
    m_popup->adjustSize();
    m_popup->resize(std::max(width(), m_popup->width()), m_popup->height());
    m_popup->move(mapToGlobal(QPoint(0, height())));
    m_popup->show();
    wheel->setFocus(Qt::PopupFocusReason);
}

void OSTPicker::hideWheel()
{
    if (m_popup)
        m_popup->hide();
}

void OSTPicker::finishWithDone()
{
    hideWheel();
    handOnFocus();
}

QVariant OSTPicker::value() const
{
    switch (type()) {
    case OSTPickerTypeCountryCode:
        return country();
    case OSTPickerTypeDate:
        if (m_dateWheel)
            return m_dateWheel->dateTime();
        break;
    case OSTPickerTypeCustomData:
        break;
    }
    return m_textLabel->text();
}

void OSTPicker::setValue(const QVariant &value)
{
    if (type() == OSTPickerTypeDate) {
        if (m_dateWheel && value.canConvert<QDateTime>() && value.toDateTime().isValid()
            && value.metaType() != QMetaType::fromType<QString>()) {
            const QSignalBlocker blocker(m_dateWheel);
            m_dateWheel->setDateTime(value.toDateTime());
            dateChanged();
        }
        return;
    }
    if (!m_listWheel || value.metaType() != QMetaType::fromType<QString>())
        return;
    if (const qsizetype row = m_rows.rowOfValue(value.toString()); row >= 0)
        selectRow(row);
}

void OSTPicker::modelDidChange()
{
    if (const std::shared_ptr<OSTValidationItemModel> itemModel = model()) {
        itemModel->setValid(true);
        itemModel->valueChanged();
    }
}

void OSTPicker::mousePressEvent(QMouseEvent *event)
{
    event->accept();
    if (isWheelShown())
        hideWheel();
    else
        showWheel();
}

void OSTPicker::keyPressEvent(QKeyEvent *event)
{
    const bool altDown = event->key() == Qt::Key_Down && event->modifiers().testFlag(Qt::AltModifier);
    if (event->key() == Qt::Key_Space || event->key() == Qt::Key_F4 || altDown) {
        showWheel();
        return;
    }
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        handOnFocus();
        return;
    }
    OSTView::keyPressEvent(event);
}

bool OSTPicker::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent *>(event)->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter) {
            finishWithDone();
            return true;
        }
        if (key == Qt::Key_Escape) {
            hideWheel();
            setFocus(Qt::PopupFocusReason);
            return true;
        }
    }
    return OSTView::eventFilter(watched, event);
}

void OSTPicker::resizeEvent(QResizeEvent *event)
{
    OSTView::resizeEvent(event);
    m_backgroundView->setGeometry(container()->rect());
    layOutLabel();
}

void OSTPicker::layOutLabel()
{
    m_textLabel->setGeometry(container()->rect().marginsRemoved(m_contentInsets));
}

} // namespace ostrel
