#pragma once

#include <ostrel/OSTExport.h>

#include <QMap>
#include <QString>
#include <QStringList>

#include <optional>

namespace ostrel {

// The host application's answer to a validation request of the experience delegate (unique
// fields, sign-up, log-in, password recovery): which fields are invalid, with an optional message
// for each, and a default message for the rest or for the screen as a whole.
//
// Fields are named by their user-property names, the keys of the field dictionaries that the
// delegate received. A plain value: copy it freely. Hand it back on the GUI thread.
//
//     OSTValidationResult result;
//     result.invalidateField(u"email"_s, u"This address is already registered."_s);
//     completion(result);
class OSTREL_EXPORT OSTValidationResult {
public:
    OSTValidationResult() = default;

    // True while no field was invalidated and no default message is set.
    bool isValid() const;

    // Sets the default message, replacing an earlier one; a null string removes it. With no field
    // invalidated, the message is shown for the whole screen.
    void invalidateWithErrorMessage(const QString &message);
    // Marks a field invalid; it shows the default message (or its own when there is none). A null
    // name is ignored; a name invalidated twice is listed twice.
    void invalidateField(const QString &name);
    // Marks a field invalid with its own message. A null name is ignored; a null message adds no
    // message and keeps an earlier one for that field.
    void invalidateField(const QString &name, const QString &errorMessage);

    const QStringList &invalidFields() const { return m_invalidFields; }
    const std::optional<QString> &defaultErrorMessage() const { return m_defaultErrorMessage; }
    const QMap<QString, QString> &errorMessages() const { return m_errorMessages; }

private:
    QStringList m_invalidFields;
    std::optional<QString> m_defaultErrorMessage;
    QMap<QString, QString> m_errorMessages;
};

} // namespace ostrel
