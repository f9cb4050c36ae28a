#include "widgets/OSTTextField.h"

#include "core/OSTRegularExpression.h"
#include "model/OSTPhoneNumberFormatter.h"
#include "model/OSTPhoneNumberManager.h"
#include "model/OSTValidationItemModel.h"
#include "widgets/OSTBackgroundView.h"
#include "widgets/OSTLabel.h"
#include "paint/OSTTextAttributes.h"
#include "widgets/OSTToolbar.h"
#include "widgets/OSTView.h"
#include "widgets/OSTViewEffect.h"

#include <QFontMetricsF>
#include <QKeyEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

constexpr int defaultLeftInset = 10;
constexpr int clearButtonRightInset = 16;

Qt::Alignment verticalAlignmentOf(UIControlContentVerticalAlignment alignment)
{
    switch (alignment) {
    case UIControlContentVerticalAlignmentTop:
        return Qt::AlignTop;
    case UIControlContentVerticalAlignmentBottom:
        return Qt::AlignBottom;
    case UIControlContentVerticalAlignmentCenter:
    case UIControlContentVerticalAlignmentFill:
        break;
    }
    return Qt::AlignVCenter;
}

Qt::Alignment horizontalAlignmentOfWord(const QString &word)
{
    OSTTextLook look;
    look.alignment = NSTextAlignmentFromString(word);
    return OSTTextAttributes(look).horizontalAlignment();
}

// "horizontalAlignment" places the text when no alignment word does; the text field's default
// is the left edge. A single line has nothing to fill, so "fill" starts at the left too.
Qt::Alignment horizontalAlignmentOf(const OSTTextFieldDescription &description)
{
    if (const std::optional<QString> &word = description.alignmentWord())
        return horizontalAlignmentOfWord(*word);
    if (!description.contentHorizontalAlignment())
        return Qt::AlignLeft;
    switch (*description.contentHorizontalAlignment()) {
    case UIControlContentHorizontalAlignmentCenter:
        return Qt::AlignHCenter;
    case UIControlContentHorizontalAlignmentRight:
        return Qt::AlignRight;
    case UIControlContentHorizontalAlignmentLeft:
    case UIControlContentHorizontalAlignmentFill:
        break;
    }
    return Qt::AlignLeft;
}

// `font` scaled by `factor`, in the unit it was sized in.
QFont scaledFont(QFont font, qreal factor, qreal minimumPixelSize)
{
    if (font.pixelSize() > 0)
        font.setPixelSize(int(std::max(minimumPixelSize, std::floor(font.pixelSize() * factor))));
    else
        font.setPointSizeF(std::max(minimumPixelSize, font.pointSizeF() * factor));
    return font;
}

Qt::InputMethodHints keyboardHintsOf(UIKeyboardType keyboard)
{
    switch (keyboard) {
    case UIKeyboardTypeNumberPad:
        return Qt::ImhDigitsOnly;
    case UIKeyboardTypePhonePad:
    case UIKeyboardTypeNamePhonePad:
        return Qt::ImhDialableCharactersOnly;
    case UIKeyboardTypeDecimalPad:
        return Qt::ImhFormattedNumbersOnly;
    case UIKeyboardTypeEmailAddress:
        return Qt::ImhEmailCharactersOnly;
    case UIKeyboardTypeURL:
    case UIKeyboardTypeWebSearch:
        return Qt::ImhUrlCharactersOnly;
    case UIKeyboardTypeASCIICapable:
        return Qt::ImhLatinOnly;
    default:
        break;
    }
    return Qt::ImhNone;
}

bool isPhoneType(OSTTextFieldType type)
{
    return type == OSTTextFieldTypePhoneNumber || type == OSTTextFieldTypePhoneNumberValidated;
}

// The length of the common start of two texts, at most `limit`.
qsizetype commonPrefixLength(const QString &a, const QString &b, qsizetype limit)
{
    qsizetype length = 0;
    while (length < limit && length < a.size() && length < b.size() && a.at(length) == b.at(length))
        ++length;
    return length;
}

} // namespace

OSTTextField::OSTTextField(const QRect &frame, std::shared_ptr<const OSTTextFieldDescription> description,
                           QWidget *parent)
    : QLineEdit(parent),
      OSTInput(*this, description->inputOrder()),
      m_description(std::move(description)),
      m_backgroundView(new OSTView(QRect(QPoint(), frame.size()), *m_description, this)),
      m_defaultFont(font()), m_defaultPalette(palette())
{
    setGeometry(frame);
    setFrame(false);
    m_backgroundView->hide();

    if (const std::shared_ptr<const OSTLabelDescription> &placeholder = m_description->placeholder()) {
        m_placeholderLabel = new OSTLabel(QRect(QPoint(), frame.size()), *placeholder, this);
        m_placeholderLabel->setAttribute(Qt::WA_TransparentForMouseEvents);
    }
    const QString placeholderText = m_placeholderLabel ? m_placeholderLabel->text() : QString();
    setAccessibleName(!placeholderText.isEmpty() ? placeholderText
                                                 : m_description->accessibilityLabel().value_or(name()));

    applyBehaviour();
    applyInputMethodHints();
    buildToolbar();

    connect(this, &QLineEdit::textEdited, this, &OSTTextField::userEdited);
    connect(this, &QLineEdit::cursorPositionChanged, this,
            [this](int, int newPosition) { keepCaretOutOfPrefix(newPosition); });
    updateView();
    replaceText(m_description->initialText());
}

OSTTextField::~OSTTextField() = default;

void OSTTextField::applyBehaviour()
{
    const OSTTextFieldDescription &description = *m_description;
    const bool secure = description.isSecureTextEntry() || type() == OSTTextFieldTypePassword;
    setEchoMode(secure ? Password : Normal);
    setAlignment(horizontalAlignmentOf(description) | verticalAlignmentOf(description.verticalAlignment()));
    setClearButtonEnabled(description.clearButtonMode() != UITextFieldViewModeNever);
}

void OSTTextField::applyInputMethodHints()
{
    const OSTTextFieldType fieldType = type();
    UIKeyboardType keyboard = m_description->keyboardType();
    if (isPhoneType(fieldType) || fieldType == OSTTextFieldTypePhoneNumberPin)
        keyboard = UIKeyboardTypePhonePad;
    Qt::InputMethodHints hints = keyboardHintsOf(keyboard);
    if (fieldType == OSTTextFieldTypePhoneNumberPin)
        hints = Qt::ImhDigitsOnly;
    if (m_description->autocapitalizationType() == UITextAutocapitalizationTypeNone)
        hints |= Qt::ImhNoAutoUppercase;
    if (m_description->autocorrectionType() == UITextAutocorrectionTypeNo)
        hints |= Qt::ImhNoPredictiveText;
    if (echoMode() == Password)
        hints |= Qt::ImhHiddenText | Qt::ImhSensitiveData | Qt::ImhNoPredictiveText;
    setInputMethodHints(hints);
}

void OSTTextField::buildToolbar()
{
    const std::optional<OSTToolbarSettings> &toolbar = m_description->toolbar();
    if (!toolbar)
        return;
    // Desktops have no on-screen keyboard to carry the bar: it stays hidden and Escape and
    // Return run its buttons; a virtual-keyboard host may show it.
    m_toolbar = new OSTToolbar(*toolbar, this);
    m_toolbar->hide();
    m_toolbar->setCancelBlock([this] { clearFocus(); });
    m_toolbar->setDoneBlock([this] { textFieldShouldReturn(); });
}

bool OSTTextField::showsInvalidLook() const
{
    const std::shared_ptr<OSTValidationItemModel> itemModel = model();
    return m_shouldShowInvalidState && itemModel && !itemModel->isValid();
}

void OSTTextField::updateView()
{
    const OSTTextFieldDescription::StateLook &state =
        showsInvalidLook() ? m_description->invalidLook() : m_description->normalLook();
    // The box is painted inside the field's own painting, so the field casts the box's shadow.
    m_backgroundView->container()->setLook(state.box);
    OSTViewEffect::applyTo(*this, m_backgroundView->container(), m_description->fieldAlpha(), state.shadow);

    const bool hasClearButton = m_description->clearButtonMode() != UITextFieldViewModeNever;
    const QMargins defaultInsets(defaultLeftInset, 0, hasClearButton ? clearButtonRightInset : 0, 0);
    m_contentInsets = state.contentInsets.value_or(defaultInsets);
    setTextMargins(m_contentInsets);

    // Built fresh from the state each time: a colour or font of the invalid look must not stay
    // once the field is valid again.
    m_textFont = state.textLook.font.value_or(m_defaultFont);
    m_textFont.setUnderline(state.textLook.underlined);
    fitTextToWidth();
    QPalette textPalette = m_defaultPalette;
    textPalette.setColor(QPalette::Base, Qt::transparent);
    if (state.textLook.hasTextColor)
        textPalette.setColor(QPalette::Text, state.textLook.textColor);
    setPalette(textPalette);
    if (state.alignmentWord)
        setAlignment(horizontalAlignmentOfWord(*state.alignmentWord) | (this->alignment() & Qt::AlignVertical_Mask));

    layOutOverlays();
    updateAccessibility();
    update();
}

void OSTTextField::updateAccessibility()
{
    const std::shared_ptr<OSTValidationItemModel> itemModel = model();
    setAccessibleDescription(showsInvalidLook() ? itemModel->errorMessage() : QString());
}

void OSTTextField::replaceText(const QString &text)
{
    const QString old = QLineEdit::text();
    const QString next = text.isNull() ? QString() : finalizedTextFromText(text);
    QLineEdit::setText(next);
    m_lastText = next;
    if (next != old)
        textFieldDidChange();
}

QString OSTTextField::finalizedTextFromText(const QString &text) const
{
    if (m_formattingBlock)
        return m_formattingBlock(text, FormattingMode::Formatted);
    return maxLength() >= 1 ? text.left(maxLength()) : text;
}

void OSTTextField::setFormattingBlock(FormattingBlock block)
{
    QString raw = text();
    if (m_formattingBlock && !raw.isEmpty())
        raw = m_formattingBlock(raw, FormattingMode::Raw);
    m_formattingBlock = std::move(block);
    replaceText(raw);
}

void OSTTextField::userEdited(const QString &proposed)
{
    const QString old = m_lastText;
    // Qt has applied the edit already; the caret ends the inserted text and what follows it was
    // not touched, which locates the replaced range.
    const qsizetype caret = cursorPosition();
    qsizetype unchangedTail = proposed.size() - caret;
    if (unchangedTail < 0 || unchangedTail > old.size() || old.right(unchangedTail) != proposed.right(unchangedTail))
        unchangedTail = 0;
    const qsizetype start = commonPrefixLength(old, proposed, std::min(caret, old.size() - unchangedTail));
    const qsizetype replacedLength = old.size() - unchangedTail - start;
    const QString replacement = proposed.mid(start, proposed.size() - unchangedTail - start);

    if (m_formattingBlock) {
        const bool caretWasAtEnd = unchangedTail == 0;
        QLineEdit::setText(finalizedTextFromText(proposed));
        if (!caretWasAtEnd)
            placeCaretAfterFormatting(start, replacedLength, replacement);
    } else if (maxLength() >= 1 && proposed.size() > maxLength()) {
        QLineEdit::setText(proposed.left(maxLength()));
        setCursorPosition(int(std::min<qsizetype>(start + replacement.size(), maxLength())));
    }
    m_lastText = text();
    textFieldDidChange();
}

void OSTTextField::placeCaretAfterFormatting(qsizetype start, qsizetype replacedLength, const QString &replacement)
{
    const QString formatted = text();
    const qsizetype base = replacement.size() >= replacedLength ? start + replacement.size() : start;
    qsizetype skip = 0;
    for (qsizetype index = 0; index < replacement.size(); ++index) {
        while (start + index + skip < formatted.size() && formatted.at(start + index + skip) != replacement.at(index))
            ++skip;
    }
    const qsizetype position = base + skip;
    setCursorPosition(int(position <= formatted.size() ? position : formatted.size()));
}

void OSTTextField::keepCaretOutOfPrefix(int newPosition)
{
    if (m_beginningCaretOffset > 0 && newPosition < m_beginningCaretOffset && text().size() >= m_beginningCaretOffset)
        setCursorPosition(m_beginningCaretOffset);
}

void OSTTextField::fitTextToWidth()
{
    QFont fitted = m_textFont;
    if (m_description->adjustsFontSizeToFitWidth()) {
        // QLineEdit keeps two pixels free on either side of the text.
        const qreal available = contentsRect().marginsRemoved(textMargins()).width() - 4;
        const qreal natural = QFontMetricsF(m_textFont).horizontalAdvance(displayText());
        if (natural > available && available > 0)
            fitted = scaledFont(m_textFont, available / natural, std::max<qreal>(m_description->minimumFontSize(), 1));
    }
    if (fitted != font())
        setFont(fitted);
}

void OSTTextField::textFieldDidChange()
{
    fitTextToWidth();
    if (m_placeholderLabel)
        m_placeholderLabel->setVisible(text().isEmpty());
    validate();
    if (const std::shared_ptr<OSTValidationItemModel> itemModel = model())
        itemModel->valueChanged();
}

void OSTTextField::validate()
{
    const std::shared_ptr<OSTValidationItemModel> itemModel = model();
    if (!itemModel)
        return;
    const QString current = text();
    if (type() == OSTTextFieldTypePhoneNumberPin) {
        itemModel->setValid(OSTPhoneNumberManager::sharedManager().validatePIN(current));
        return;
    }
    const bool hasContent = itemModel->isOptional() || !current.isEmpty();
    // Compared as unsigned: a negative minimum can never be reached.
    const bool lengthOK = !hasContent || quint64(current.size()) >= quint64(qint64(minLength()));
    bool valid = false;
    if (hasContent && lengthOK)
        valid = validationPattern().isEmpty()
            || OSTRegularExpression(validationPattern()).numberOfMatches(current) == 1;
    itemModel->setValid(valid);
}

QVariant OSTTextField::value() const
{
    const QString current = text();
    if (current.isEmpty())
        return {};
    return isPhoneType(type()) ? OSTPhoneNumberFormatter::normalizedPhoneNumber(current) : current;
}

void OSTTextField::setValue(const QVariant &value)
{
    if (value.metaType() != QMetaType::fromType<QString>())
        return;
    QLineEdit::setText(finalizedTextFromText(value.toString()));
    m_lastText = text();
    if (m_placeholderLabel)
        m_placeholderLabel->setVisible(text().isEmpty());
    m_shouldShowInvalidState = true;
    updateView();
}

void OSTTextField::validityChanged()
{
    updateView();
    const std::shared_ptr<OSTValidationItemModel> itemModel = model();
    if (isAutoSubmit() && itemModel && itemModel->isValid())
        textFieldShouldReturn();
}

void OSTTextField::pickerDidChangeCountry(OSTPicker &picker, const QString &country, const QString &code)
{
    if (picker.type() != OSTPickerTypeCountryCode || !isPhoneType(type()))
        return;
    m_beginningCaretOffset = int(code.size()) + 1;
    setFormattingBlock([code, country](const QString &text, FormattingMode mode) {
        return OSTPhoneNumberFormatter::liveFormattedPhoneNumber(
            text, code, country, mode == FormattingMode::Raw ? OSTPhoneNumberFormatter::Mode::Raw
                                                             : OSTPhoneNumberFormatter::Mode::Formatted);
    });
}

void OSTTextField::textFieldShouldReturn()
{
    handOnFocus();
}

void OSTTextField::focusInEvent(QFocusEvent *event)
{
    m_shouldShowInvalidState = false;
    if (m_description->clearsOnBeginEditing())
        replaceText(QString());
    updateView();
    QLineEdit::focusInEvent(event);
}

void OSTTextField::focusOutEvent(QFocusEvent *event)
{
    QLineEdit::focusOutEvent(event);
    m_shouldShowInvalidState = true;
    updateView();
    validate();
    if (const std::shared_ptr<OSTValidationItemModel> itemModel = model())
        itemModel->valueChanged();
}

void OSTTextField::keyPressEvent(QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (!(m_description->enablesReturnKeyAutomatically() && text().isEmpty()))
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
    QLineEdit::keyPressEvent(event);
}

void OSTTextField::paintEvent(QPaintEvent *event)
{
    {
        // The box view stays hidden so that it does not paint over the text; its box is drawn
        // here, under the text.
        QPainter painter(this);
        m_backgroundView->container()->paintBox(painter);
    }
    QLineEdit::paintEvent(event);
}

void OSTTextField::resizeEvent(QResizeEvent *event)
{
    QLineEdit::resizeEvent(event);
    layOutOverlays();
    fitTextToWidth();
}

void OSTTextField::layOutOverlays()
{
    m_backgroundView->setGeometry(rect());
    if (m_placeholderLabel)
        m_placeholderLabel->setGeometry(rect().marginsRemoved(m_contentInsets));
}

} // namespace ostrel
