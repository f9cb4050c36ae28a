#pragma once

#include "input/OSTInput.h"
#include "input/OSTPicker.h"
#include "input/OSTValidationItem.h"

#include <ostrel/OSTPropertyConversions.h>

#include <QFont>
#include <QLineEdit>
#include <QPalette>
#include <QMargins>
#include <QVariantMap>

#include <functional>

namespace ostrel {

class OSTLabel;
class OSTToolbar;
class OSTView;

// The single-line text input of a screen. It reads
//
//   the box keys of OSTView  the field's look, drawn behind the text
//   "states": {"invalid": {...}}  keys laid over the element's own for the invalid look, shown
//                   once the user has left the field (or a value was restored) while it is invalid
//   "text"          {"text": the initial text, "textColor", "font", "size", "style": "underlined",
//                    "contentInsets": [top, left, bottom, right], "alignment"...}
//   "contentAlignment", "textAlignment", "alignment"  the text's alignment word; without one,
//                   "horizontalAlignment" ("left", "right", centre otherwise); "verticalAlignment"
//                   ("top", "bottom", centre otherwise) on its own
//   "adjustsFontSizeToFitWidth", "minimumFontSize"  shrink the font, no further than the
//                   minimum, while the text is wider than the field
//   "placeholder"   an OSTLabel dictionary shown while the field is empty
//   "textType"      "password", "phoneNumber", "phoneNumberValidated", "phoneNumberPin" (see
//                   OSTTextFieldType); phone types take at most 14 characters, a PIN 4
//   "maxLength", "minLength", "validationPattern" (ICU; exactly one match makes a valid text)
//   "keyboardType", "autocapitalizationType", "autocorrectionType", "spellCheckingType",
//   "secureTextEntry"  turned into Qt input-method hints for virtual keyboards
//   "clearButtonMode", "clearsOnBeginEditing", "enablesReturnKeyAutomatically", "autoSubmit"
//   "toolbar"       OSTToolbar keys; Escape is its cancel (the field gives up the focus), Return
//                   its done
//   "inputOrder"    the position in the screen's input chain
//   "accessibilityLabel"  the name read when there is no placeholder text; else the element key
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
    enum class FormattingMode { Formatted, Raw };
    // Turns any text into what the field shows (Formatted) or into the bare digits (Raw).
    using FormattingBlock = std::function<QString(const QString &text, FormattingMode mode)>;

    OSTTextField(const QRect &frame, const QVariantMap &properties, const QString &name, QWidget *parent = nullptr);
    ~OSTTextField() override;

    const QString &name() const { return m_name; }
    OSTTextFieldType type() const { return m_type; }
    bool isAutoSubmit() const { return m_autoSubmit; }
    bool shouldShowInvalidState() const { return m_shouldShowInvalidState; }
    // Whether the invalid look is on now.
    bool showsInvalidLook() const;
    int minLength() const { return m_minLength; }
    // 0 and -1 mean no limit.
    int maxLength() const { return m_maxLength; }
    QMargins contentInsets() const { return m_contentInsets; }
    const QString &validationPattern() const { return m_validationPattern; }
    int beginningCaretOffset() const { return m_beginningCaretOffset; }
    OSTLabel *placeholderLabel() const { return m_placeholderLabel; }
    OSTToolbar *inputAccessoryView() const { return m_toolbar; }
    // The view that carries the element's look of the current state.
    OSTView *backgroundView() const { return m_backgroundView; }

    // Sets the text as a program does: through the formatter (or cut to the maximum length),
    // then reacting as to a user's edit. A null string clears the field.
    void replaceText(const QString &text);
    QString finalizedTextFromText(const QString &text) const;
    // Reformats the current text under the new formatter (or none).
    void setFormattingBlock(FormattingBlock block);
    void validate();
    void updateView();

    QVariant value() const override;
    void setValue(const QVariant &value) override;
    bool shouldShowErrorMessage() const override { return m_shouldShowInvalidState; }
    void validityChanged() override;

    void pickerDidChangeCountry(OSTPicker &picker, const QString &country, const QString &code) override;

protected:
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void readBehaviour(const QVariantMap &properties);
    void applyInputMethodHints(const QVariantMap &properties);
    void buildToolbar(const QVariantMap &properties);
    void userEdited(const QString &proposed);
    void placeCaretAfterFormatting(qsizetype start, qsizetype replacedLength, const QString &replacement);
    void keepCaretOutOfPrefix(int newPosition);
    // Shrinks the font, no further than "minimumFontSize", while the text is wider than the field.
    void fitTextToWidth();
    void textFieldDidChange();
    void textFieldShouldReturn();
    void updateAccessibility();
    void layOutOverlays();

    const QString m_name;
    const QVariantMap m_normalStateProperties;
    const QVariantMap m_invalidStateProperties;
    OSTTextFieldType m_type = OSTTextFieldTypePlain;
    bool m_autoSubmit = false;
    bool m_shouldShowInvalidState = false;
    bool m_clearsOnBeginEditing = false;
    bool m_enablesReturnKeyAutomatically = false;
    UITextFieldViewMode m_clearButtonMode = UITextFieldViewModeNever;
    int m_minLength = 0;
    int m_maxLength = 0;
    QMargins m_contentInsets;
    QString m_validationPattern;
    int m_beginningCaretOffset = 0;
    FormattingBlock m_formattingBlock;
    QString m_lastText; // the text before the user's latest edit
    OSTView *m_backgroundView = nullptr; // hidden child, painted behind the text
    qreal m_opacity = 1;
    bool m_adjustsFontSizeToFitWidth = false;
    qreal m_minimumFontSize = 0;
    QFont m_textFont; // the state's font, before any shrinking to fit
    const QFont m_defaultFont;       // what a state without "font" or "textColor" shows
    const QPalette m_defaultPalette;
    OSTLabel *m_placeholderLabel = nullptr; // child; null without "placeholder"
    OSTToolbar *m_toolbar = nullptr; // hidden child; null without "toolbar"
};

} // namespace ostrel
