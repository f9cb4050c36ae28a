#include "model/OSTPhoneNumberManager.h"

#include "core/OSTLogging.h"
#include "network/OSTEncryption.h"
#include "network/OSTRequestManager.h"

#include <QMutexLocker>
#include <QRandomGenerator>

using namespace Qt::StringLiterals;

namespace ostrel {

OSTPhoneNumberManager &OSTPhoneNumberManager::sharedManager()
{
    static OSTPhoneNumberManager manager;
    return manager;
}

void OSTPhoneNumberManager::connectTokenSource(TokenSource source)
{
    OSTPhoneNumberManager &manager = sharedManager();
    const QMutexLocker locker(&manager.m_mutex);
    manager.m_tokenSource = std::move(source);
}

OSTPhoneNumberManager::OSTPhoneNumberManager()
    : m_seed(drawSeed())
{
}

int OSTPhoneNumberManager::drawSeed()
{
    return int(QRandomGenerator::global()->bounded(maximumSeed)) + 1;
}

void OSTPhoneNumberManager::validatePhoneNumber(const QString &phoneNumber, const Completion &completion)
{
    int capturedSeed = 0;
    bool alreadyVerified = false;
    {
        const QMutexLocker locker(&m_mutex);
        alreadyVerified = m_lastPhoneNumber == phoneNumber;
        capturedSeed = m_seed;
    }
    if (alreadyVerified) {
        if (completion)
            completion(true);
        return;
    }
    const std::optional<QString> token = currentToken();
    if (!token) {
        OSTLogging::logWarning(u"A phone number cannot be verified before the SDK has its token."_s);
        if (completion)
            completion(false);
        return;
    }
    const QVariantMap parameters{{u"phone_number"_s, phoneNumber},
                                 {u"seed"_s, QString::number(capturedSeed)},
                                 {u"token"_s, *token}};
    OSTRequestManager::sharedManager().apiStringRequestWithEndpoint(
        u"verify_phone_number"_s, parameters,
        [this, phoneNumber, capturedSeed, token = *token, completion](const std::optional<QString> &response,
                                                                     const std::optional<OSTError> &error) {
            const bool accepted = !error && response == u"OK"_s;
            if (accepted)
                storeVerifiedNumber(phoneNumber, verificationPIN(token, phoneNumber, capturedSeed));
            else
                OSTLogging::logDebug(u"The service did not send a verification PIN: %1"_s,
                                     error ? error->message : response.value_or(u"no answer"_s));
            if (completion)
                completion(accepted);
        });
}

void OSTPhoneNumberManager::storeVerifiedNumber(const QString &phoneNumber, const QString &pin)
{
    const QMutexLocker locker(&m_mutex);
    m_lastPhoneNumber = phoneNumber;
    m_lastVerificationPIN = pin;
}

bool OSTPhoneNumberManager::validatePIN(const QString &text) const
{
    const QMutexLocker locker(&m_mutex);
    return m_lastVerificationPIN && *m_lastVerificationPIN == text;
}

QString OSTPhoneNumberManager::generateVerificationPINForPhoneNumber(const QString &phoneNumber, int seed) const
{
    return verificationPIN(currentToken().value_or(QString()), phoneNumber, seed);
}

QString OSTPhoneNumberManager::verificationPIN(const QString &token, const QString &phoneNumber, int seed)
{
    const QString digest = OSTEncryption::md5HashOfString(token + phoneNumber + QString::number(seed));
    const quint64 leadingBits = digest.left(10).toULongLong(nullptr, 16);
    return u"%1"_s.arg(leadingBits % 10000, 4, 10, QLatin1Char('0'));
}

void OSTPhoneNumberManager::reset()
{
    const QMutexLocker locker(&m_mutex);
    m_seed = drawSeed();
    m_lastPhoneNumber.reset();
    m_lastVerificationPIN.reset();
}

int OSTPhoneNumberManager::seed() const
{
    const QMutexLocker locker(&m_mutex);
    return m_seed;
}

std::optional<QString> OSTPhoneNumberManager::lastPhoneNumber() const
{
    const QMutexLocker locker(&m_mutex);
    return m_lastPhoneNumber;
}

std::optional<QString> OSTPhoneNumberManager::lastVerificationPIN() const
{
    const QMutexLocker locker(&m_mutex);
    return m_lastVerificationPIN;
}

std::optional<QString> OSTPhoneNumberManager::currentToken() const
{
    TokenSource source;
    {
        const QMutexLocker locker(&m_mutex);
        source = m_tokenSource;
    }
    return source ? source() : std::nullopt;
}

} // namespace ostrel
