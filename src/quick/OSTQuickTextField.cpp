#include "quick/OSTQuickTextField.h"

#include "model/OSTValidationItemModel.h"
#include "paint/OSTBoxPainter.h"
#include "paint/OSTTextFieldLayout.h"
#include "quick/OSTQuickAccessibility.h"
#include "quick/OSTQuickLabel.h"
#include "quick/OSTQuickShadow.h"
#include "quick/OSTQuickToolbar.h"

#include <QClipboard>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QInputMethod>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QPalette>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

constexpr qreal defaultLeftInset = 10;
constexpr qreal clearButtonRightInset = 16;
constexpr qreal caretWidth = 1;
// The widget field's line edit keeps this much free on either side of its text.
constexpr qreal textSideMargin = 2;
// What a secure field shows for each character.
constexpr QChar maskCharacter(0x25CF);

bool isTypedText(const QKeyEvent &event)
{
    if (event.text().isEmpty() || event.modifiers().testAnyFlags(Qt::ControlModifier | Qt::MetaModifier))
        return false;
    return std::all_of(event.text().cbegin(), event.text().cend(), [](QChar character) { return character.isPrint(); });
}

} // namespace

OSTQuickTextField::OSTQuickTextField(const QRectF &frame, std::shared_ptr<const OSTTextFieldDescription> description,
                                     QQuickItem *parent)
    : QQuickPaintedItem(parent),
      OSTQuickInput(*this, description->inputOrder()),
      m_description(std::move(description)),
      m_rules(m_description),
      m_alignment(OSTTextFieldLayout::fieldAlignment(*m_description))
{
    setPosition(frame.topLeft());
    setSize(frame.size());
    setAcceptedMouseButtons(Qt::LeftButton);
    setFlag(ItemAcceptsInputMethod);
    setAntialiasing(true);
    setActiveFocusOnTab(true);
    setOpacity(m_description->fieldAlpha());
    buildPlaceholder();
    buildToolbar();
    describeForAccessibility();
    updateView();
    replaceText(m_description->initialText());
}

OSTQuickTextField::~OSTQuickTextField() = default;

void OSTQuickTextField::buildToolbar()
{
    const std::optional<OSTToolbarSettings> &toolbar = m_description->toolbar();
    if (!toolbar)
        return;
    m_toolbar = new OSTQuickToolbar(*toolbar, this);
    m_toolbar->setVisible(false);
    m_toolbar->setCancelBlock([this] { setFocus(false); });
    m_toolbar->setDoneBlock([this] { textFieldShouldReturn(); });
}

void OSTQuickTextField::buildPlaceholder()
{
    if (const std::shared_ptr<const OSTLabelDescription> &placeholder = m_description->placeholder())
        m_placeholderLabel = new OSTQuickLabel(QRect(QPoint(), size().toSize()), *placeholder, this);
}

void OSTQuickTextField::describeForAccessibility()
{
    // Named by its placeholder, else by its accessibility label, else by its key.
    const QString placeholderText = m_placeholderLabel ? m_placeholderLabel->text() : QString();
    OSTQuickAccessibility::describe(*this, QAccessible::EditableText,
                                    !placeholderText.isEmpty() ? placeholderText
                                                               : m_description->accessibilityLabel().value_or(name()));
}

void OSTQuickTextField::layOutPlaceholder()
{
    if (!m_placeholderLabel)
        return;
    m_placeholderLabel->setFrame(boundingRect().marginsRemoved(m_contentInsets).toRect());
    m_placeholderLabel->setVisible(isPlaceholderShown());
}

bool OSTQuickTextField::showsInvalidLook() const
{
    const std::shared_ptr<OSTValidationItemModel> itemModel = model();
    return m_shouldShowInvalidState && itemModel && !itemModel->isValid();
}

bool OSTQuickTextField::isPlaceholderShown() const
{
    return m_placeholderLabel && m_text.isEmpty() && m_preedit.isEmpty();
}

QColor OSTQuickTextField::textColor() const
{
    const OSTTextLook &look = (showsInvalidLook() ? m_description->invalidLook() : m_description->normalLook()).textLook;
    return look.hasTextColor ? look.textColor : QGuiApplication::palette().color(QPalette::Text);
}

void OSTQuickTextField::updateView()
{
    const OSTTextFieldDescription::StateLook &state =
        showsInvalidLook() ? m_description->invalidLook() : m_description->normalLook();
    const bool hasClearButton = m_description->clearButtonMode() != UITextFieldViewModeNever;
    const QMarginsF defaultInsets(defaultLeftInset, 0, hasClearButton ? clearButtonRightInset : 0, 0);
    m_contentInsets = state.contentInsets ? QMarginsF(*state.contentInsets) : defaultInsets;
    // Built fresh from the state each time: a font of the invalid look must not stay once the
    // field is valid again.
    m_textFont = state.textLook.font.value_or(QGuiApplication::font());
    m_textFont.setUnderline(state.textLook.underlined);
    // A state's alignment word holds until another state's replaces it, as in the widget field.
    if (state.alignmentWord)
        m_alignment = OSTTextFieldLayout::horizontalAlignmentOfWord(*state.alignmentWord) | (m_alignment & Qt::AlignVertical_Mask);
    castShadow(state);
    fitTextToWidth();
    layOutPlaceholder();
    update();
}

void OSTQuickTextField::castShadow(const OSTTextFieldDescription::StateLook &state)
{
    if (m_shadow && (!state.shadow || m_shadow->shadow() != *state.shadow))
        delete m_shadow;
    if (state.shadow && !m_shadow)
        m_shadow = new OSTQuickShadow(*state.shadow, this);
    if (m_shadow)
        m_shadow->setCornerRadius(OSTBoxPainter(state.box).cornerRadius(size()));
}

void OSTQuickTextField::fitTextToWidth()
{
    m_fittedFont = OSTTextFieldLayout::fittedFont(*m_description, m_textFont, displayText(), textRect().width());
    scrollCaretIntoView();
}

QString OSTQuickTextField::displayText() const
{
    return isSecure() ? QString(m_text.size(), maskCharacter) : m_text;
}

void OSTQuickTextField::setCursorPosition(qsizetype position, CaretMove move)
{
    m_cursor = m_rules.allowedCursor(m_text, std::clamp<qsizetype>(position, 0, m_text.size()));
    if (move == CaretMove::Move)
        m_anchor = m_cursor;
    scrollCaretIntoView();
    updateInputMethod(Qt::ImCursorPosition | Qt::ImAnchorPosition | Qt::ImCursorRectangle | Qt::ImCurrentSelection);
    update();
}

QString OSTQuickTextField::selectedText() const
{
    const qsizetype start = std::min(m_anchor, m_cursor);
    return m_text.mid(start, std::abs(m_cursor - m_anchor));
}

void OSTQuickTextField::selectAll()
{
    m_anchor = 0;
    setCursorPosition(m_text.size(), CaretMove::Select);
}

void OSTQuickTextField::replaceText(const QString &text)
{
    const QString old = m_text;
    m_text = text.isNull() ? QString() : m_rules.finalizedText(text);
    m_cursor = m_anchor = m_text.size();
    if (m_text != old)
        textFieldDidChange();
    updateInputMethod(Qt::ImQueryAll);
    update();
}

void OSTQuickTextField::insert(const QString &text)
{
    const qsizetype start = std::min(m_anchor, m_cursor);
    userEdited(start, std::abs(m_cursor - m_anchor), text);
}

void OSTQuickTextField::userEdited(qsizetype start, qsizetype length, const QString &replacement)
{
    const QString proposed = QString(m_text).replace(start, length, replacement);
    const OSTTextInputRules::Edit result = m_rules.editResult(m_text, proposed, start + replacement.size());
    m_text = result.text;
    setCursorPosition(result.cursor);
    textFieldDidChange();
    updateInputMethod(Qt::ImSurroundingText);
}

void OSTQuickTextField::removeSelection()
{
    insert(QString());
}

void OSTQuickTextField::removeBackward()
{
    if (hasSelection())
        removeSelection();
    else if (m_cursor > 0)
        userEdited(m_cursor - 1, 1, QString());
}

void OSTQuickTextField::removeForward()
{
    if (hasSelection())
        removeSelection();
    else if (m_cursor < m_text.size())
        userEdited(m_cursor, 1, QString());
}

void OSTQuickTextField::copy() const
{
    // A secure text never leaves the field.
    if (!isSecure() && hasSelection())
        QGuiApplication::clipboard()->setText(selectedText());
}

void OSTQuickTextField::cut()
{
    if (isSecure() || !hasSelection())
        return;
    copy();
    removeSelection();
}

void OSTQuickTextField::paste()
{
    // One line: a pasted line break would end the text where the user cannot see it.
    QString pasted = QGuiApplication::clipboard()->text();
    pasted.replace(u"\r\n"_s, u" "_s).replace(u'\n', u' ').replace(u'\r', u' ');
    if (!pasted.isEmpty())
        insert(pasted);
}

void OSTQuickTextField::textFieldDidChange()
{
    fitTextToWidth();
    layOutPlaceholder();
    validate();
    if (const std::shared_ptr<OSTValidationItemModel> itemModel = model())
        itemModel->valueChanged();
    update();
}

void OSTQuickTextField::validate()
{
    const std::shared_ptr<OSTValidationItemModel> itemModel = model();
    if (!itemModel)
        return;
    const auto requirement = itemModel->isOptional() ? OSTTextInputRules::Requirement::Optional
                                                     : OSTTextInputRules::Requirement::Required;
    itemModel->setValid(m_rules.isValid(m_text, requirement));
}

QVariant OSTQuickTextField::value() const
{
    return m_rules.valueOf(m_text);
}

void OSTQuickTextField::setValue(const QVariant &value)
{
    if (value.metaType() != QMetaType::fromType<QString>())
        return;
    m_text = m_rules.finalizedText(value.toString());
    m_cursor = m_anchor = m_text.size();
    m_shouldShowInvalidState = true;
    updateView();
    updateInputMethod(Qt::ImQueryAll);
}

void OSTQuickTextField::validityChanged()
{
    updateView();
    const std::shared_ptr<OSTValidationItemModel> itemModel = model();
    if (isAutoSubmit() && itemModel && itemModel->isValid())
        textFieldShouldReturn();
}

void OSTQuickTextField::pickerDidChangeCountry(OSTPickerType pickerType, const QString &country, const QString &code)
{
    if (pickerType != OSTPickerTypeCountryCode || !m_rules.isPhoneType())
        return;
    // The current text formatted again under the new calling code.
    const QString raw = m_rules.rawText(m_text);
    m_rules.formatForCountry(country, code);
    replaceText(raw);
}

void OSTQuickTextField::textFieldShouldReturn()
{
    handOnFocus();
}

QRectF OSTQuickTextField::textRect() const
{
    return boundingRect().marginsRemoved(m_contentInsets).adjusted(textSideMargin, 0, -textSideMargin, 0);
}

qreal OSTQuickTextField::textOriginX() const
{
    const QRectF box = textRect();
    const qreal textWidth = QFontMetricsF(m_fittedFont).horizontalAdvance(displayText() + m_preedit);
    if (textWidth > box.width())
        return box.left() - m_scroll;
    if (m_alignment & Qt::AlignRight)
        return box.right() - textWidth;
    if (m_alignment & Qt::AlignHCenter)
        return box.left() + (box.width() - textWidth) / 2;
    return box.left();
}

qreal OSTQuickTextField::baselineY() const
{
    const QRectF box = textRect();
    const QFontMetricsF metrics(m_fittedFont);
    if (m_alignment & Qt::AlignTop)
        return box.top() + metrics.ascent();
    if (m_alignment & Qt::AlignBottom)
        return box.bottom() - metrics.descent();
    return box.top() + (box.height() - metrics.height()) / 2 + metrics.ascent();
}

qreal OSTQuickTextField::caretX(qsizetype position) const
{
    return textOriginX() + QFontMetricsF(m_fittedFont).horizontalAdvance(displayText().left(position));
}

qsizetype OSTQuickTextField::positionAt(qreal x) const
{
    const QString shown = displayText();
    const QFontMetricsF metrics(m_fittedFont);
    const qreal origin = textOriginX();
    for (qsizetype position = 0; position < shown.size(); ++position) {
        const qreal middle = origin + (metrics.horizontalAdvance(shown.left(position))
                                       + metrics.horizontalAdvance(shown.left(position + 1))) / 2;
        if (x < middle)
            return position;
    }
    return shown.size();
}

void OSTQuickTextField::scrollCaretIntoView()
{
    const QRectF box = textRect();
    const QFontMetricsF metrics(m_fittedFont);
    const qreal textWidth = metrics.horizontalAdvance(displayText() + m_preedit);
    if (textWidth <= box.width()) {
        m_scroll = 0;
        return;
    }
    const qreal caretOffset = metrics.horizontalAdvance(displayText().left(m_cursor) + m_preedit);
    if (caretOffset - m_scroll > box.width())
        m_scroll = caretOffset - box.width();
    else if (caretOffset < m_scroll)
        m_scroll = caretOffset;
    m_scroll = std::clamp<qreal>(m_scroll, 0, textWidth - box.width());
}

void OSTQuickTextField::updateInputMethod(Qt::InputMethodQueries queries) const
{
    if (hasActiveFocus())
        QGuiApplication::inputMethod()->update(queries);
}

QVariant OSTQuickTextField::inputMethodQuery(Qt::InputMethodQuery query) const
{
    switch (query) {
    case Qt::ImEnabled:
        return isEnabled();
    case Qt::ImHints:
        return int(m_rules.inputMethodHints());
    case Qt::ImFont:
        return m_fittedFont;
    case Qt::ImCursorRectangle: {
        const QRectF box = textRect();
        return QRectF(caretX(m_cursor), box.top(), caretWidth, box.height());
    }
    case Qt::ImAnchorRectangle: {
        const QRectF box = textRect();
        return QRectF(caretX(m_anchor), box.top(), caretWidth, box.height());
    }
    case Qt::ImCursorPosition:
        return int(m_cursor);
    case Qt::ImAnchorPosition:
        return int(m_anchor);
    case Qt::ImSurroundingText:
        return isSecure() ? QString() : m_text;
    case Qt::ImCurrentSelection:
        return isSecure() ? QString() : selectedText();
    case Qt::ImMaximumTextLength:
        return maxLength() >= 1 && !m_rules.hasFormatter() ? QVariant(maxLength()) : QVariant();
    case Qt::ImEnterKeyType:
        return nextInput() ? Qt::EnterKeyNext : Qt::EnterKeyDone;
    default:
        break;
    }
    return QQuickPaintedItem::inputMethodQuery(query);
}

void OSTQuickTextField::inputMethodEvent(QInputMethodEvent *event)
{
    if (event->replacementLength() > 0 || !event->commitString().isEmpty()) {
        if (event->replacementLength() > 0) {
            const qsizetype start = std::clamp<qsizetype>(m_cursor + event->replacementStart(), 0, m_text.size());
            m_anchor = start;
            m_cursor = std::min(start + event->replacementLength(), m_text.size());
        }
        insert(event->commitString());
    }
    m_preedit = event->preeditString();
    scrollCaretIntoView();
    layOutPlaceholder();
    update();
    event->accept();
}

bool OSTQuickTextField::handleEditingKey(const QKeyEvent &event)
{
    const CaretMove select = event.modifiers().testFlag(Qt::ShiftModifier) ? CaretMove::Select : CaretMove::Move;
    if (event.matches(QKeySequence::Copy))
        copy();
    else if (event.matches(QKeySequence::Cut))
        cut();
    else if (event.matches(QKeySequence::Paste))
        paste();
    else if (event.matches(QKeySequence::SelectAll))
        selectAll();
    else if (event.key() == Qt::Key_Backspace)
        removeBackward();
    else if (event.key() == Qt::Key_Delete)
        removeForward();
    else if (event.key() == Qt::Key_Left)
        setCursorPosition(!hasSelection() || select == CaretMove::Select ? m_cursor - 1 : std::min(m_cursor, m_anchor), select);
    else if (event.key() == Qt::Key_Right)
        setCursorPosition(!hasSelection() || select == CaretMove::Select ? m_cursor + 1 : std::max(m_cursor, m_anchor), select);
    else if (event.key() == Qt::Key_Home)
        setCursorPosition(0, select);
    else if (event.key() == Qt::Key_End)
        setCursorPosition(m_text.size(), select);
    else if (isTypedText(event))
        insert(event.text());
    else
        return false;
    return true;
}

void OSTQuickTextField::keyPressEvent(QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (!(m_description->enablesReturnKeyAutomatically() && m_text.isEmpty()))
            m_toolbar ? m_toolbar->doneTapped() : textFieldShouldReturn();
        return;
    case Qt::Key_Escape:
        if (m_toolbar) {
            m_toolbar->cancelTapped();
            return;
        }
        break;
    default:
        break;
    }
    if (handleChainKey(*event) || handleEditingKey(*event))
        return;
    QQuickPaintedItem::keyPressEvent(event);
}

void OSTQuickTextField::focusInEvent(QFocusEvent *event)
{
    m_shouldShowInvalidState = false;
    if (m_description->clearsOnBeginEditing())
        replaceText(QString());
    updateView();
    QQuickPaintedItem::focusInEvent(event);
}

void OSTQuickTextField::focusOutEvent(QFocusEvent *event)
{
    QQuickPaintedItem::focusOutEvent(event);
    m_preedit.clear();
    m_anchor = m_cursor;
    m_shouldShowInvalidState = true;
    updateView();
    validate();
    if (const std::shared_ptr<OSTValidationItemModel> itemModel = model())
        itemModel->valueChanged();
}

void OSTQuickTextField::mousePressEvent(QMouseEvent *event)
{
    forceActiveFocus(Qt::MouseFocusReason);
    const bool extend = event->modifiers().testFlag(Qt::ShiftModifier);
    setCursorPosition(positionAt(event->position().x()), extend ? CaretMove::Select : CaretMove::Move);
    event->accept();
}

void OSTQuickTextField::mouseMoveEvent(QMouseEvent *event)
{
    setCursorPosition(positionAt(event->position().x()), CaretMove::Select);
}

void OSTQuickTextField::geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry)
{
    QQuickPaintedItem::geometryChange(newGeometry, oldGeometry);
    castShadow(showsInvalidLook() ? m_description->invalidLook() : m_description->normalLook());
    fitTextToWidth();
    layOutPlaceholder();
}

void OSTQuickTextField::paint(QPainter *painter)
{
    const OSTTextFieldDescription::StateLook &state =
        showsInvalidLook() ? m_description->invalidLook() : m_description->normalLook();
    OSTBoxPainter(state.box).paint(*painter, size());

    const QRectF box = textRect();
    const QFontMetricsF metrics(m_fittedFont);
    const qreal baseline = baselineY();
    const QRectF lineRect(box.left(), baseline - metrics.ascent(), box.width(), metrics.height());
    painter->save();
    painter->setClipRect(boundingRect().marginsRemoved(m_contentInsets));
    if (hasSelection()) {
        const qreal left = caretX(std::min(m_anchor, m_cursor));
        const qreal right = caretX(std::max(m_anchor, m_cursor));
        painter->fillRect(QRectF(left, lineRect.top(), right - left, lineRect.height()),
                          QGuiApplication::palette().color(QPalette::Highlight));
    }
    const QString shown = displayText();
    painter->setFont(m_fittedFont);
    painter->setPen(textColor());
    painter->drawText(QPointF(textOriginX(), baseline), shown.left(m_cursor) + m_preedit + shown.mid(m_cursor));
    if (hasActiveFocus()) {
        const qreal x = caretX(m_cursor) + metrics.horizontalAdvance(m_preedit);
        painter->fillRect(QRectF(x, lineRect.top(), caretWidth, lineRect.height()), textColor());
    }
    painter->restore();
}

} // namespace ostrel
