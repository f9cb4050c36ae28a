#pragma once

#include <QString>

#include <optional>

namespace ostrel::demo {

// Finds the PIN the development service sent in its output ("pin: <phone number> <pin>" lines),
// the way a person reads it off their phone. GUI thread.
class VerificationPINReader {
public:
    struct Verification {
        QString phoneNumber;
        QString pin;
    };

    // Reads the service's output from `outputPath`, which the service keeps appending to.
    explicit VerificationPINReader(QString outputPath);

    // The last PIN sent so far; nullopt while none was (or the file cannot be read).
    std::optional<Verification> lastVerification() const;

    // The last well-formed PIN line of `output`.
    static std::optional<Verification> lastVerificationIn(const QString &output);

private:
    QString m_outputPath;
};

} // namespace ostrel::demo
