#pragma once

#include "model/OSTPickerDelegate.h"
#include "model/OSTPickerRowModel.h"
#include "model/OSTValidationItem.h"
#include "quick/OSTQuickInput.h"
#include "screen/OSTPickerDescription.h"

#include <ostrel/OSTPropertyConversions.h>

#include <QDateTime>
#include <QMarginsF>
#include <QPointer>
#include <QQuickItem>
#include <QStringList>

#include <memory>

namespace ostrel {

class OSTQuickImage;
class OSTQuickLabel;
class OSTQuickPickerWheel;
class OSTQuickShadow;
class OSTQuickToolbar;

// The picker input of a screen drawn by Qt Quick, behaving as the widget picker does: its choice
// in a label item over the background image item; opened, a painted wheel (OSTQuickPickerWheel)
// below it under the optional toolbar (cancel closes, done moves on). The wheel lists the
// country table, the custom entries (none disable the picker, which then reports "") or, for
// a date picker, one row per day between the bounds (per minute of the day for the time modes),
// standing at the start date, else now within the bounds.
//
// Space, Alt+Down or F4 open the wheel; there Up and Down choose live, Return or Enter choose and
// move on, Escape closes. Return on the closed picker moves on; Tab and Shift+Tab follow the
// input chain. A click opens the wheel; a click on a row chooses it and closes the wheel.
//
// picker->setDelegate(field) wires a country picker to a phone field, which formats under the
// current code at once and after each choice; the delegate is kept weakly. Attaching a model
// marks the picker valid: it always holds a choice. Assistive technology reads it as a combo box
// named by its accessibility label, else its key.
//
// The picker casts the element's object shadow itself, beneath its background's box.
//
// Lives on the GUI thread; owned by its parent item. The background, the label and the shadow
// are its child items; the toolbar and wheel are its QObject children, shown in the window's content item
// (above the screen) while open.
class OSTQuickPicker final : public QQuickItem, public OSTValidationItem, public OSTQuickInput {
    Q_OBJECT

public:
    using Formatting = OSTPickerRowModel::Formatting;

    OSTQuickPicker(const QRectF &frame, std::shared_ptr<const OSTPickerDescription> description,
                   QQuickItem *parent = nullptr);
    ~OSTQuickPicker() override;

    const QString &name() const { return m_description->key(); }
    OSTPickerType type() const { return m_description->wheel().type; }
    QMarginsF contentInsets() const { return m_contentInsets; }
    OSTQuickImage *backgroundItem() const { return m_background; }
    // The label showing the current choice.
    OSTQuickLabel *textLabel() const { return m_textLabel; }
    // The text the picker shows: its current choice.
    QString choiceText() const;
    // The toolbar above the wheel; null without "toolbar".
    OSTQuickToolbar *toolbar() const { return m_toolbar; }
    // Null when the picker has no rows.
    OSTQuickPickerWheel *wheel() const { return m_wheel; }
    const QString &country() const { return m_rows.country(); }
    const QString &countryCode() const { return m_rows.countryCode(); }

    // Keeps the delegate (a QObject adopting OSTPickerDelegate; anything else clears it)
    // and, for a country picker, tells it the current choice at once.
    void setDelegate(QObject *delegate);

    qsizetype rowCount() const;
    // A row's title: formatted for the wheel, plain for the picker's own text ("+44 United
    // Kingdom"); "" for a row out of range.
    QString titleAtRow(qsizetype row, Formatting formatting) const;
    // Chooses a row as the user does on the wheel.
    void selectRow(qsizetype row);

    bool isWheelShown() const;
    void showWheel();
    void hideWheel();

    QVariant value() const override;
    // A date for the date kind; a string from the list for the others (unknown ones are ignored).
    void setValue(const QVariant &value) override;
    bool shouldShowErrorMessage() const override { return false; }

protected:
    void modelDidChange() override;
    void mousePressEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry) override;

private:
    void buildRows();
    void buildWheel();
    void buildToolbar();
    void readDateBounds();
    qsizetype rowOfDate(const QDateTime &date) const;
    QDateTime dateAtRow(qsizetype row) const;
    void chooseRow(qsizetype row);
    void showDate(const QDateTime &date);
    void finishWithDone();
    void showChoice(const QString &text);
    void tellDelegateOfCountry();
    void reportValueChanged();
    void placePopup();
    void layOutLabel();
    void castShadow();

    const std::shared_ptr<const OSTPickerDescription> m_description;
    QMarginsF m_contentInsets;
    OSTQuickImage *const m_background; // child items
    OSTQuickLabel *const m_textLabel;
    OSTQuickShadow *m_shadow = nullptr; // child item; null without "objectShadow"
    OSTPickerRowModel m_rows; // the country and custom rows
    // The date kind: the bounds, whether a row is a day or a minute of the current day, and the
    // date the wheel stands at.
    QDateTime m_minimumDate;
    QDateTime m_maximumDate;
    bool m_dateRowsAreMinutes = false;
    QDateTime m_date;
    OSTQuickToolbar *m_toolbar = nullptr; // QObject children, null when absent
    OSTQuickPickerWheel *m_wheel = nullptr;
    QPointer<QObject> m_delegate;
};

} // namespace ostrel
