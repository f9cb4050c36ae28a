#pragma once

#include "model/OSTPickerRowModel.h"
#include "model/OSTPickerDelegate.h"
#include "model/OSTValidationItem.h"
#include "screen/OSTPickerDescription.h"
#include "widgets/OSTInput.h"
#include "widgets/OSTView.h"

#include <ostrel/OSTPropertyConversions.h>

#include <QDateTime>
#include <QMargins>
#include <QPointer>
#include <QStringList>

#include <memory>
#include <optional>

class QDateTimeEdit;
class QFrame;
class QListWidget;

namespace ostrel {

class OSTImageView;
class OSTLabel;
class OSTToolbar;

// A picker input: shows its current choice in a label over the element's background and, when
// opened, a wheel below it instead of a keyboard (a list, or a date editor) with the optional
// toolbar above the wheel. From its description (OSTPickerDescription) it takes
//
//   the background   an image view, whose drop shadow the picker casts itself
//   the text         the label showing the choice
//   the insets       the label's; default 0, 10, 0, 16
//   the toolbar      cancel closes the wheel, done moves to the next input
//   the input order  the position in the screen's input chain
//   the accessibility label  the name assistive technology reads; the element key otherwise
//   the wheel        a country list, a date editor or the custom list (no entries leave the
//                    picker disabled, reporting "")
//
// Keyboard: Space, Alt+Down or F4 open the wheel; in it, the arrow keys choose (live, as a
// wheel does), Return or Enter choose and move to the next input, Escape closes it. Return on
// the closed picker moves to the next input. A click opens the wheel; a click on a row chooses
// it and closes the wheel.
//
// Wiring a country picker to a phone field on the same screen: picker->setDelegate(field)
// (an OSTTextField of a phone type); the field at once formats under the picker's current code
// and again after each choice. The picker keeps the delegate weakly (QPointer): it lives with
// the screen like the picker.
//
// A required background image reports through backgroundView()'s requiredImageFinished().
// A picker always holds a valid choice: attaching a model marks it valid.
//
// Lives on the GUI thread; owned by its parent widget; the wheel's popup is its child.
class OSTPicker final : public OSTView, public OSTValidationItem, public OSTInput {
    Q_OBJECT

public:
    OSTPicker(const QRect &frame, std::shared_ptr<const OSTPickerDescription> description, QWidget *parent = nullptr);
    ~OSTPicker() override;

    const QString &name() const { return m_name; }
    OSTPickerType type() const { return m_rows.type(); }
    OSTImageView *backgroundView() const { return m_backgroundView; }
    OSTLabel *textLabel() const { return m_textLabel; }
    QMargins contentInsets() const { return m_contentInsets; }
    // The toolbar above the wheel; null without "toolbar".
    OSTToolbar *inputAccessoryView() const { return m_toolbar; }
    // The list wheel of the custom and country kinds, the date editor of the date kind; null when
    // the picker has no wheel.
    QListWidget *listWheel() const { return m_listWheel; }
    QDateTimeEdit *dateWheel() const { return m_dateWheel; }
    // The list wheel's rows and the chosen country (OSTPickerRowModel).
    const OSTPickerRowModel &rows() const { return m_rows; }
    const QStringList &customData() const { return m_rows.customData(); }
    const QString &country() const { return m_rows.country(); }
    const QString &countryCode() const { return m_rows.countryCode(); }

    // Keeps the delegate (a QObject adopting OSTPickerDelegate; anything else clears it) and, for
    // a country picker with a choice, tells it that choice at once.
    void setDelegate(QObject *delegate);

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
    void resizeEvent(QResizeEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void buildWheel(const OSTPickerWheel &wheel);
    void buildListWheel(const QStringList &titles, Qt::Alignment alignment);
    void buildDateWheel(const OSTPickerWheel &wheel);
    void buildToolbar(const std::optional<OSTToolbarSettings> &toolbar);
    void deletePopup();
    void chooseRow(qsizetype row);
    void dateChanged();
    void finishWithDone();
    void showChoice(const QString &text);
    void tellDelegateOfCountry();
    void reportValueChanged();
    void layOutLabel();

    const QString m_name;
    OSTImageView *const m_backgroundView; // children of the container
    OSTLabel *const m_textLabel;
    OSTPickerRowModel m_rows;
    QMargins m_contentInsets;
    QFrame *m_popup = nullptr; // child popup window holding the toolbar and the wheel
    OSTToolbar *m_toolbar = nullptr; // children of the popup
    QListWidget *m_listWheel = nullptr;
    QDateTimeEdit *m_dateWheel = nullptr;
    QPointer<QObject> m_delegate;
};

} // namespace ostrel
