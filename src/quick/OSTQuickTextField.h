#pragma once

#include "model/OSTPickerDelegate.h"
#include "model/OSTTextInputRules.h"
#include "model/OSTValidationItem.h"
#include "quick/OSTQuickInput.h"
#include "screen/OSTTextFieldDescription.h"

#include <QFont>
#include <QMarginsF>
#include <QPointer>
#include <QQuickPaintedItem>

#include <memory>

namespace ostrel {

class OSTQuickLabel;
class OSTQuickShadow;
class OSTQuickToolbar;

// The single-line text input of a screen drawn by Qt Quick, behaving as the widget text field
// does, from the same description (OSTTextFieldDescription) and the same rules
// (OSTTextInputRules): the normal and the invalid look (the invalid one once the user has left
// the field, or a value was restored, while it is invalid; each with its box and its shadow
// beneath the field), the placeholder while empty, the lengths and validation pattern, the
// formatting as the user types (a phone field under its country picker's code), secure entry
// shown masked, the keyboard's toolbar (Escape is its cancel, Return its done) and the input
// order. The widget field's clear button is not drawn: its look is the widget style's.
//
// It edits on its own, without Qt Quick's private text input: typed keys and input-method
// commits are inserted at the caret (replacing the selection), Backspace and Delete remove,
// Left, Right, Home and End move the caret (with Shift they select), a click places it and a
// drag selects, and copy, cut and paste go through the clipboard (never from a secure field).
// An on-screen keyboard reads the field through inputMethodQuery: the hints of the description's
// keyboard, the caret's rectangle, the text around the caret (none when secure).
//
// Return (and Tab, Shift+Tab) moves the focus along the input chain (OSTQuickInput). A PIN field
// becomes valid when the text is the PIN of the verified phone number and then submits itself,
// as if return was tapped, unless "autoSubmit" is false.
//
// Assistive technology reads it as editable text named by its placeholder, else its
// accessibility label, else its key.
//
// Live phone formatting: a phone field adopts OSTPickerDelegate; wire it with
// picker->setDelegate(field).
//
// Lives on the GUI thread; owned by its parent item. The placeholder label and the toolbar are
// its children; the toolbar stays hidden (a host with an on-screen keyboard may show it).
class OSTQuickTextField final : public QQuickPaintedItem,
                                public OSTValidationItem,
                                public OSTQuickInput,
                                public OSTPickerDelegate {
    Q_OBJECT
    Q_INTERFACES(ostrel::OSTPickerDelegate)

public:
    enum class CaretMove { Move, Select };

    OSTQuickTextField(const QRectF &frame, std::shared_ptr<const OSTTextFieldDescription> description,
                      QQuickItem *parent = nullptr);
    ~OSTQuickTextField() override;

    const QString &name() const { return m_description->key(); }
    OSTTextFieldType type() const { return m_description->textType(); }
    const OSTTextFieldDescription &description() const { return *m_description; }
    bool isAutoSubmit() const { return m_description->autoSubmits(); }
    bool isSecure() const { return m_rules.isSecure(); }
    // 0 and -1 mean no limit.
    int maxLength() const { return m_description->maxLength(); }
    bool shouldShowInvalidState() const { return m_shouldShowInvalidState; }
    // Whether the invalid look is on now.
    bool showsInvalidLook() const;
    bool isPlaceholderShown() const;
    // The label shown while the field is empty; null without "placeholder".
    OSTQuickLabel *placeholderLabel() const { return m_placeholderLabel; }
    QMarginsF contentInsets() const { return m_contentInsets; }
    // The font the text is drawn with now (shrunk to fit when the description asks).
    const QFont &textFont() const { return m_fittedFont; }
    // Where the text lies in the field: horizontally and vertically.
    Qt::Alignment alignment() const { return m_alignment; }
    QColor textColor() const;
    OSTQuickToolbar *toolbar() const { return m_toolbar; }

    const QString &text() const { return m_text; }
    // The text as drawn: one bullet per character when secure.
    QString displayText() const;
    qsizetype cursorPosition() const { return m_cursor; }
    // Moves the caret (kept out of a phone field's calling code); Select keeps the selection's
    // other end where it is.
    void setCursorPosition(qsizetype position, CaretMove move = CaretMove::Move);
    bool hasSelection() const { return m_anchor != m_cursor; }
    QString selectedText() const;
    void selectAll();

    // Sets the text as a program does: through the formatter (or cut to the maximum length),
    // then reacting as to a user's edit. A null string clears the field.
    void replaceText(const QString &text);
    // Inserts as the user types or pastes: replaces the selection, then formats and limits.
    void insert(const QString &text);
    void copy() const;
    void cut();
    void paste();
    void validate();

    QVariant value() const override;
    void setValue(const QVariant &value) override;
    bool shouldShowErrorMessage() const override { return m_shouldShowInvalidState; }
    void validityChanged() override;

    void pickerDidChangeCountry(OSTPickerType pickerType, const QString &country, const QString &code) override;

    QVariant inputMethodQuery(Qt::InputMethodQuery query) const override;
    void paint(QPainter *painter) override;

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void inputMethodEvent(QInputMethodEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry) override;

private:
    void buildToolbar();
    void buildPlaceholder();
    void describeForAccessibility();
    bool handleEditingKey(const QKeyEvent &event);
    void removeBackward();
    void removeForward();
    void removeSelection();
    // The user's edit of `length` characters at `start`, then formatting and limits.
    void userEdited(qsizetype start, qsizetype length, const QString &replacement);
    void textFieldDidChange();
    void textFieldShouldReturn();
    void updateView();
    void castShadow(const OSTTextFieldDescription::StateLook &state);
    void layOutPlaceholder();
    void fitTextToWidth();
    QRectF textRect() const;
    qreal textOriginX() const;
    qreal baselineY() const;
    qreal caretX(qsizetype position) const;
    qsizetype positionAt(qreal x) const;
    void scrollCaretIntoView();
    void updateInputMethod(Qt::InputMethodQueries queries) const;

    const std::shared_ptr<const OSTTextFieldDescription> m_description;
    OSTTextInputRules m_rules;
    QString m_text;
    QString m_preedit; // an input method's composition, shown at the caret, not yet text
    qsizetype m_cursor = 0;
    qsizetype m_anchor = 0;
    qreal m_scroll = 0; // how far a long text is moved left to keep the caret in view
    bool m_shouldShowInvalidState = false;
    QMarginsF m_contentInsets;
    Qt::Alignment m_alignment;
    QFont m_textFont;   // the state's font, before any shrinking to fit
    QFont m_fittedFont;
    OSTQuickLabel *m_placeholderLabel = nullptr; // child; null without "placeholder"
    QPointer<OSTQuickShadow> m_shadow; // child, while the shown state casts a shadow
    OSTQuickToolbar *m_toolbar = nullptr; // child; null without "toolbar"
};

} // namespace ostrel
