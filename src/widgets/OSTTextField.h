#pragma once

#include "model/OSTPickerDelegate.h"
#include "model/OSTTextInputRules.h"
#include "model/OSTValidationItem.h"
#include "screen/OSTTextFieldDescription.h"
#include "widgets/OSTInput.h"

#include <ostrel/OSTPropertyConversions.h>

#include <QFont>
#include <QLineEdit>
#include <QPalette>
#include <QMargins>

#include <memory>

namespace ostrel {

class OSTLabel;
class OSTToolbar;
class OSTView;

// The single-line text input of a screen, as its description (OSTTextFieldDescription) has it:
//
//   the normal look, drawn behind the text, and the invalid look, shown once the user has left
//   the field (or a value was restored) while it is invalid; each with its text look, insets
//   (the field's default otherwise) and alignment word
//   without an alignment word, the horizontal content alignment (left otherwise; "fill" starts
//   at the left too); the vertical alignment on its own
//   the font shrinks, no further than the minimum font size, while the text is wider than the
//   field, when asked to
//   a placeholder label shown while the field is empty
//   the text type, lengths (0 and -1: no maximum) and validation pattern (ICU; exactly one match
//   makes a valid text); keyboard, capitalization, correction and secure entry turned into Qt
//   input-method hints for virtual keyboards
//   the keyboard's toolbar: Escape is its cancel (the field gives up the focus), Return its done
//   the input order: the position in the screen's input chain
//   the accessibility label: the name read when there is no placeholder text; else the key
//
// What the field does with its text as the user types (formatting, length, keyboard hints,
// secure entry, validity, value) follows OSTTextInputRules.
//
// Return (and Tab, through the Tab order that OSTInput::chainInputs sets) moves the focus to the
// next input. A PIN field becomes valid when the text is the PIN of the verified phone number
// and then submits itself, as if return was tapped, unless "autoSubmit" is false. Assistive
// technology reads the field's name and, while the invalid look shows, the error message as
// its description.
//
// Live phone formatting: a phone field adopts OSTPickerDelegate. A screen wires its country
// picker to its phone field with picker->setDelegate(field); from then on the field shows
// "<code> <digits formatted for the country>" and keeps the caret out of the code.
//
// Lives on the GUI thread; owned by its parent widget.
class OSTTextField final : public QLineEdit, public OSTValidationItem, public OSTInput, public OSTPickerDelegate {
    Q_OBJECT
    Q_INTERFACES(ostrel::OSTPickerDelegate)

public:
    OSTTextField(const QRect &frame, std::shared_ptr<const OSTTextFieldDescription> description,
                 QWidget *parent = nullptr);
    ~OSTTextField() override;

    const QString &name() const { return m_description->key(); }
    OSTTextFieldType type() const { return m_description->textType(); }
    const OSTTextFieldDescription &description() const { return *m_description; }
    bool isAutoSubmit() const { return m_description->autoSubmits(); }
    bool shouldShowInvalidState() const { return m_shouldShowInvalidState; }
    // Whether the invalid look is on now.
    bool showsInvalidLook() const;
    int minLength() const { return m_description->minLength(); }
    // 0 and -1 mean no limit.
    int maxLength() const { return m_description->maxLength(); }
    QMargins contentInsets() const { return m_contentInsets; }
    const QString &validationPattern() const { return m_description->validationPattern(); }
    int beginningCaretOffset() const { return m_rules.prefixLength(); }
    OSTLabel *placeholderLabel() const { return m_placeholderLabel; }
    OSTToolbar *inputAccessoryView() const { return m_toolbar; }
    // The view that carries the element's look of the current state.
    OSTView *backgroundView() const { return m_backgroundView; }

    // Sets the text as a program does: through the formatter (or cut to the maximum length),
    // then reacting as to a user's edit. A null string clears the field.
    void replaceText(const QString &text);
    void validate();
    void updateView();

    QVariant value() const override;
    void setValue(const QVariant &value) override;
    bool shouldShowErrorMessage() const override { return m_shouldShowInvalidState; }
    void validityChanged() override;

    void pickerDidChangeCountry(OSTPickerType pickerType, const QString &country, const QString &code) override;

protected:
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void applyBehaviour();
    void applyInputMethodHints();
    void buildToolbar();
    void userEdited(const QString &proposed);
    void keepCaretOutOfPrefix(int newPosition);
    // Shrinks the font, no further than "minimumFontSize", while the text is wider than the field.
    void fitTextToWidth();
    void textFieldDidChange();
    void textFieldShouldReturn();
    void updateAccessibility();
    void layOutOverlays();

    const std::shared_ptr<const OSTTextFieldDescription> m_description;
    bool m_shouldShowInvalidState = false;
    QMargins m_contentInsets;
    OSTTextInputRules m_rules;
    QString m_lastText; // the text before the user's latest edit
    OSTView *m_backgroundView = nullptr; // hidden child, painted behind the text
    QFont m_textFont; // the state's font, before any shrinking to fit
    const QFont m_defaultFont;       // what a state without "font" or "textColor" shows
    const QPalette m_defaultPalette;
    OSTLabel *m_placeholderLabel = nullptr; // child; null without "placeholder"
    OSTToolbar *m_toolbar = nullptr; // hidden child; null without "toolbar"
};

} // namespace ostrel
