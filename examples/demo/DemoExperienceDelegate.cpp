#include "DemoExperienceDelegate.h"

#include <QTimer>

using namespace Qt::StringLiterals;

namespace ostrel::demo {

namespace {

const QString emailField = u"email"_s;

OSTValidationResult invalidField(const QString &field, const QString &message)
{
    OSTValidationResult result;
    result.invalidateField(field, message);
    return result;
}

} // namespace

DemoExperienceDelegate::DemoExperienceDelegate(std::chrono::milliseconds answerDelay, QObject *parent)
    : QObject(parent), m_answerDelay(answerDelay)
{
}

void DemoExperienceDelegate::willCloseWithFields(const QVariantMap &fields)
{
    emit received(u"willCloseWithFields"_s, fields, u"closed by the user"_s);
}

void DemoExperienceDelegate::validateUniqueFields(const QVariantMap &fields, ValidationCompletion completion)
{
    answerLater([this, fields, completion] {
        if (m_accounts.isRegistered(fields.value(emailField).toString())) {
            completion(invalidField(emailField, u"This e-mail address is already registered."_s));
            emit received(u"validateUniqueFields"_s, fields, u"rejected: address taken"_s);
            return;
        }
        completion(OSTValidationResult());
        emit received(u"validateUniqueFields"_s, fields, u"accepted"_s);
    });
}

void DemoExperienceDelegate::signUpWithFields(const QVariantMap &fields, AuthenticationCompletion completion)
{
    answerLater([this, fields, completion] {
        const std::optional<DemoAccounts::Account> account = m_accounts.signUp(fields);
        if (!account) {
            completion(invalidField(emailField, u"This e-mail address is already registered."_s), QString());
            emit received(u"signUpWithFields"_s, fields, u"rejected: address missing or taken"_s);
            return;
        }
        completion(OSTValidationResult(), account->userID);
        emit received(u"signUpWithFields"_s, fields, u"signed up as "_s + account->userID);
    });
}

void DemoExperienceDelegate::logInWithFields(const QVariantMap &fields, AuthenticationCompletion completion)
{
    answerLater([this, fields, completion] {
        if (!m_accounts.isRegistered(fields.value(emailField).toString())) {
            completion(invalidField(emailField, u"No account uses this address. Create one first."_s), QString());
            emit received(u"logInWithFields"_s, fields, u"rejected: unknown address"_s);
            return;
        }
        const std::optional<DemoAccounts::Account> account = m_accounts.logIn(fields);
        if (!account) {
            completion(invalidField(u"password"_s, u"That password is not right."_s), QString());
            emit received(u"logInWithFields"_s, fields, u"rejected: wrong password"_s);
            return;
        }
        completion(OSTValidationResult(), account->userID);
        emit received(u"logInWithFields"_s, fields, u"logged in as "_s + account->userID);
    });
}

void DemoExperienceDelegate::recoverPasswordWithFields(const QVariantMap &fields, ValidationCompletion completion)
{
    answerLater([this, fields, completion] {
        if (!m_accounts.isRegistered(fields.value(emailField).toString())) {
            completion(invalidField(emailField, u"No account uses this address."_s));
            emit received(u"recoverPasswordWithFields"_s, fields, u"rejected: unknown address"_s);
            return;
        }
        completion(OSTValidationResult());
        emit received(u"recoverPasswordWithFields"_s, fields, u"reset link sent"_s);
    });
}

void DemoExperienceDelegate::authenticateFacebookWithFields(const QVariantMap &fields,
                                                            AuthenticationCompletion completion)
{
    answerLater([this, fields, completion] {
        const QString userID = u"facebook-"_s + fields.value(u"id"_s).toString();
        completion(OSTValidationResult(), userID);
        emit received(u"authenticateFacebookWithFields"_s, fields, u"logged in as "_s + userID);
    });
}

void DemoExperienceDelegate::answerLater(std::function<void()> answer)
{
    QTimer::singleShot(m_answerDelay, this, std::move(answer));
}

} // namespace ostrel::demo
