#include "widgets/OSTTextField.h"

#include "model/OSTValidationItemModel.h"
#include "paint/OSTTextFieldLayout.h"
#include "widgets/OSTBackgroundView.h"
#include "widgets/OSTLabel.h"
#include "widgets/OSTToolbar.h"
#include "widgets/OSTView.h"
#include "widgets/OSTViewEffect.h"

#include <QKeyEvent>
#include <QPainter>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

constexpr int defaultLeftInset = 10;
constexpr int clearButtonRightInset = 16;

} // namespace

OSTTextField::OSTTextField(const QRect &frame, std::shared_ptr<const OSTTextFieldDescription> description,
                           QWidget *parent)
    : QLineEdit(parent),
      OSTInput(*this, description->inputOrder()),
      m_description(std::move(description)),
      m_rules(m_description),
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
    setEchoMode(m_rules.isSecure() ? Password : Normal);
    setAlignment(OSTTextFieldLayout::fieldAlignment(description));
    setClearButtonEnabled(description.clearButtonMode() != UITextFieldViewModeNever);
}

void OSTTextField::applyInputMethodHints()
{
    setInputMethodHints(m_rules.inputMethodHints());
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
        setAlignment(OSTTextFieldLayout::horizontalAlignmentOfWord(*state.alignmentWord)
                     | (this->alignment() & Qt::AlignVertical_Mask));

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
    const QString next = text.isNull() ? QString() : m_rules.finalizedText(text);
    QLineEdit::setText(next);
    m_lastText = next;
    if (next != old)
        textFieldDidChange();
}

void OSTTextField::userEdited(const QString &proposed)
{
    // Qt has applied the edit already, the caret after the inserted text.
    const OSTTextInputRules::Edit result = m_rules.editResult(m_lastText, proposed, cursorPosition());
    if (m_rules.hasFormatter() || result.text != proposed) {
        QLineEdit::setText(result.text);
        setCursorPosition(int(result.cursor));
    }
    m_lastText = text();
    textFieldDidChange();
}

void OSTTextField::keepCaretOutOfPrefix(int newPosition)
{
    if (const qsizetype allowed = m_rules.allowedCursor(text(), newPosition); allowed != newPosition)
        setCursorPosition(int(allowed));
}

void OSTTextField::fitTextToWidth()
{
    // QLineEdit keeps two pixels free on either side of the text.
    const qreal available = contentsRect().marginsRemoved(textMargins()).width() - 4;
    const QFont fitted = OSTTextFieldLayout::fittedFont(*m_description, m_textFont, displayText(), available);
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
    const auto requirement = itemModel->isOptional() ? OSTTextInputRules::Requirement::Optional
                                                     : OSTTextInputRules::Requirement::Required;
    itemModel->setValid(m_rules.isValid(text(), requirement));
}

QVariant OSTTextField::value() const
{
    return m_rules.valueOf(text());
}

void OSTTextField::setValue(const QVariant &value)
{
    if (value.metaType() != QMetaType::fromType<QString>())
        return;
    QLineEdit::setText(m_rules.finalizedText(value.toString()));
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

void OSTTextField::pickerDidChangeCountry(OSTPickerType pickerType, const QString &country, const QString &code)
{
    if (pickerType != OSTPickerTypeCountryCode || !m_rules.isPhoneType())
        return;
    // The current text formatted again under the new calling code.
    const QString raw = m_rules.rawText(text());
    m_rules.formatForCountry(country, code);
    replaceText(raw);
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
