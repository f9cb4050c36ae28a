#pragma once

#include <QMutex>
#include <QString>

#include <functional>
#include <optional>

namespace ostrel {

// Verifies phone numbers by PIN. (The text operations phone fields use are in
// OSTPhoneNumberFormatter.)
//
// Verification: validatePhoneNumber asks the service ("verify_phone_number") to send the user a
// four-digit PIN derived from the SDK token, the number and this process's seed; the same PIN is
// derived here, so validatePIN can check what the user types without asking the service again.
// A verified number stays verified (no new request) until reset() or another number is verified.
//
// The SDK token comes from the service manager, which sits above this layer: start-up connects
// it with connectTokenSource (a seam); without a token no request is sent.
//
// One process-wide instance (sharedManager). Thread-safe: the request completes on the request
// manager's data-session queue, where the verified number and PIN are stored and the caller's
// completion runs; callers that touch widgets post from there to the GUI thread.
class OSTPhoneNumberManager {
public:
    using Completion = std::function<void(bool verified)>;
    using TokenSource = std::function<std::optional<QString>()>;

    static constexpr int maximumSeed = 9999;

    static OSTPhoneNumberManager &sharedManager();
    static void connectTokenSource(TokenSource source);

    OSTPhoneNumberManager(const OSTPhoneNumberManager &) = delete;
    OSTPhoneNumberManager &operator=(const OSTPhoneNumberManager &) = delete;

    // Asks the service to send a PIN to `phoneNumber` (as given; callers pass
    // OSTPhoneNumberFormatter::rawPhoneNumber of
    // the field's value). The completion gets true when the service answered exactly "OK" or
    // the number is already the verified one, false on any other answer or failure, which
    // leaves the verified number and PIN as they were.
    void validatePhoneNumber(const QString &phoneNumber, const Completion &completion);
    // Whether `text` is, character for character, the PIN of the verified number.
    bool validatePIN(const QString &text) const;
    // The four-digit PIN (leading zeros kept) for the number and seed with the current token.
    QString generateVerificationPINForPhoneNumber(const QString &phoneNumber, int seed) const;
    // The PIN rule itself: MD5 of token, number and seed; its first 40 bits modulo 10000.
    static QString verificationPIN(const QString &token, const QString &phoneNumber, int seed);

    // Draws a new seed and forgets the verified number and PIN (a flow starts).
    void reset();

    int seed() const;
    std::optional<QString> lastPhoneNumber() const;
    std::optional<QString> lastVerificationPIN() const;

private:
    OSTPhoneNumberManager();

    static int drawSeed();
    std::optional<QString> currentToken() const;
    void storeVerifiedNumber(const QString &phoneNumber, const QString &pin);

    mutable QMutex m_mutex; // guards the fields below and the token source
    int m_seed;
    std::optional<QString> m_lastPhoneNumber;
    std::optional<QString> m_lastVerificationPIN;
    TokenSource m_tokenSource;
};

} // namespace ostrel
