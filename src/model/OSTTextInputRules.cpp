#include "model/OSTTextInputRules.h"

#include "core/OSTRegularExpression.h"
#include "model/OSTPhoneNumberFormatter.h"
#include "model/OSTPhoneNumberManager.h"

#include <algorithm>

namespace ostrel {

namespace {

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

// The length of the common start of two texts, at most `limit`.
qsizetype commonPrefixLength(const QString &a, const QString &b, qsizetype limit)
{
    qsizetype length = 0;
    while (length < limit && length < a.size() && length < b.size() && a.at(length) == b.at(length))
        ++length;
    return length;
}

} // namespace

OSTTextInputRules::OSTTextInputRules(std::shared_ptr<const OSTTextFieldDescription> description)
    : m_description(std::move(description))
{
}

bool OSTTextInputRules::isSecure() const
{
    return m_description->isSecureTextEntry() || m_description->textType() == OSTTextFieldTypePassword;
}

bool OSTTextInputRules::isPhoneType() const
{
    const OSTTextFieldType type = m_description->textType();
    return type == OSTTextFieldTypePhoneNumber || type == OSTTextFieldTypePhoneNumberValidated;
}

Qt::InputMethodHints OSTTextInputRules::inputMethodHints() const
{
    const bool pin = m_description->textType() == OSTTextFieldTypePhoneNumberPin;
    const UIKeyboardType keyboard = isPhoneType() || pin ? UIKeyboardTypePhonePad : m_description->keyboardType();
    Qt::InputMethodHints hints = pin ? Qt::ImhDigitsOnly : keyboardHintsOf(keyboard);
    if (m_description->autocapitalizationType() == UITextAutocapitalizationTypeNone)
        hints |= Qt::ImhNoAutoUppercase;
    if (m_description->autocorrectionType() == UITextAutocorrectionTypeNo)
        hints |= Qt::ImhNoPredictiveText;
    if (isSecure())
        hints |= Qt::ImhHiddenText | Qt::ImhSensitiveData | Qt::ImhNoPredictiveText;
    return hints;
}

void OSTTextInputRules::formatForCountry(const QString &country, const QString &code)
{
    m_prefixLength = int(code.size()) + 1;
    m_formatter = [code, country](const QString &text, FormattingMode mode) {
        return OSTPhoneNumberFormatter::liveFormattedPhoneNumber(
            text, code, country, mode == FormattingMode::Raw ? OSTPhoneNumberFormatter::Mode::Raw
                                                             : OSTPhoneNumberFormatter::Mode::Formatted);
    };
}

QString OSTTextInputRules::finalizedText(const QString &text) const
{
    if (m_formatter)
        return m_formatter(text, FormattingMode::Formatted);
    return maxLength() >= 1 ? text.left(maxLength()) : text;
}

QString OSTTextInputRules::rawText(const QString &shown) const
{
    return m_formatter && !shown.isEmpty() ? m_formatter(shown, FormattingMode::Raw) : shown;
}

OSTTextInputRules::Edit OSTTextInputRules::editResult(const QString &previous, const QString &proposed,
                                                     qsizetype cursor) const
{
    // What follows the caret was not touched, which locates the replaced range.
    qsizetype unchangedTail = proposed.size() - cursor;
    if (unchangedTail < 0 || unchangedTail > previous.size()
        || previous.right(unchangedTail) != proposed.right(unchangedTail))
        unchangedTail = 0;
    const qsizetype start = commonPrefixLength(previous, proposed, std::min(cursor, previous.size() - unchangedTail));
    const qsizetype replacedLength = previous.size() - unchangedTail - start;
    const QString replacement = proposed.mid(start, proposed.size() - unchangedTail - start);

    if (m_formatter) {
        const QString formatted = finalizedText(proposed);
        const bool caretWasAtEnd = unchangedTail == 0;
        return {formatted, caretWasAtEnd ? formatted.size() : caretAfterFormatting(formatted, start, replacedLength, replacement)};
    }
    if (maxLength() >= 1 && proposed.size() > maxLength())
        return {proposed.left(maxLength()), std::min<qsizetype>(start + replacement.size(), maxLength())};
    return {proposed, cursor};
}

qsizetype OSTTextInputRules::caretAfterFormatting(const QString &formatted, qsizetype start, qsizetype replacedLength,
                                                 const QString &replacement) const
{
    // After the typed characters, skipping what the formatting put between them.
    const qsizetype base = replacement.size() >= replacedLength ? start + replacement.size() : start;
    qsizetype skip = 0;
    for (qsizetype index = 0; index < replacement.size(); ++index) {
        while (start + index + skip < formatted.size() && formatted.at(start + index + skip) != replacement.at(index))
            ++skip;
    }
    return std::min(base + skip, formatted.size());
}

qsizetype OSTTextInputRules::allowedCursor(const QString &text, qsizetype position) const
{
    if (m_prefixLength > 0 && position < m_prefixLength && text.size() >= m_prefixLength)
        return m_prefixLength;
    return position;
}

bool OSTTextInputRules::isValid(const QString &text, Requirement requirement) const
{
    if (m_description->textType() == OSTTextFieldTypePhoneNumberPin)
        return OSTPhoneNumberManager::sharedManager().validatePIN(text);
    const bool hasContent = requirement == Requirement::Optional || !text.isEmpty();
    // Compared as unsigned: a negative minimum can never be reached.
    const bool lengthOK = !hasContent || quint64(text.size()) >= quint64(qint64(m_description->minLength()));
    if (!hasContent || !lengthOK)
        return false;
    const QString &pattern = m_description->validationPattern();
    return pattern.isEmpty() || OSTRegularExpression(pattern).numberOfMatches(text) == 1;
}

QVariant OSTTextInputRules::valueOf(const QString &text) const
{
    if (text.isEmpty())
        return {};
    return isPhoneType() ? OSTPhoneNumberFormatter::normalizedPhoneNumber(text) : text;
}

} // namespace ostrel
