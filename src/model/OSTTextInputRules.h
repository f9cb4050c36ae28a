#pragma once

#include "screen/OSTTextFieldDescription.h"

#include <QString>
#include <QVariant>
#include <Qt>

#include <functional>
#include <memory>

namespace ostrel {

// What a text field does with its text, apart from drawing it: the formatting applied as the
// user types (a phone number under its country's calling code), the maximum length, which
// characters a virtual keyboard offers, whether the entry is secure, where the caret may go, and
// whether a text is valid and what value it gives. A field of any toolkit hands each edit to
// editResult() and shows what comes back.
//
// A value type made from the field's description; usable on any thread, but the PIN check asks
// the phone number manager, which lives on the GUI thread.
class OSTTextInputRules {
public:
    enum class Requirement { Required, Optional };

    // A text and where its caret stands.
    struct Edit {
        QString text;
        qsizetype cursor = 0;
    };

    explicit OSTTextInputRules(std::shared_ptr<const OSTTextFieldDescription> description);

    // 0 and -1 mean no limit.
    int maxLength() const { return m_description->maxLength(); }
    // Secure text or a password: the text is shown masked.
    bool isSecure() const;
    // What a virtual keyboard should offer: the keyboard type (a phone pad for phone fields,
    // digits for a PIN), capitalization and correction, and hidden text for secure entry.
    Qt::InputMethodHints inputMethodHints() const;
    bool isPhoneType() const;

    // Whether texts are formatted (else cut to the maximum length).
    bool hasFormatter() const { return bool(m_formatter); }
    // Formats the live phone number under a country's calling code from now on, and keeps the
    // caret after the code and its space.
    void formatForCountry(const QString &country, const QString &code);
    // How many characters at the start the caret stays out of (the calling code and a space).
    int prefixLength() const { return m_prefixLength; }

    // What the field shows for `text` set by a program: formatted, or cut to the maximum length.
    QString finalizedText(const QString &text) const;
    // The bare text behind what the field shows, for formatting it again under another formatter.
    QString rawText(const QString &shown) const;
    // The user turned `previous` into `proposed`, the caret standing at `cursor` after the
    // inserted text: what the field shows then and where its caret goes. Formatting keeps the
    // caret after what was typed; a text beyond the maximum length is cut.
    Edit editResult(const QString &previous, const QString &proposed, qsizetype cursor) const;
    // Where the caret goes when moved to `position` in `text`: never into the prefix.
    qsizetype allowedCursor(const QString &text, qsizetype position) const;

    // Whether `text` is valid: a PIN field's text must be the verified phone number's PIN; other
    // texts need content (unless optional), the minimum length and exactly one match of the
    // validation pattern when there is one.
    bool isValid(const QString &text, Requirement requirement) const;
    // The field's value for `text`: none when empty, the normalized number for phone fields.
    QVariant valueOf(const QString &text) const;

private:
    enum class FormattingMode { Formatted, Raw };
    // Turns any text into what the field shows (Formatted) or into the bare digits (Raw).
    using Formatter = std::function<QString(const QString &text, FormattingMode mode)>;

    qsizetype caretAfterFormatting(const QString &formatted, qsizetype start, qsizetype replacedLength,
                                   const QString &replacement) const;

    std::shared_ptr<const OSTTextFieldDescription> m_description;
    Formatter m_formatter;
    int m_prefixLength = 0;
};

} // namespace ostrel
