#include "VerificationPINReader.h"

#include <QFile>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace ostrel::demo {

VerificationPINReader::VerificationPINReader(QString outputPath)
    : m_outputPath(std::move(outputPath))
{
}

std::optional<VerificationPINReader::Verification> VerificationPINReader::lastVerification() const
{
    QFile output(m_outputPath);
    if (!output.open(QIODevice::ReadOnly))
        return std::nullopt;
    return lastVerificationIn(QString::fromUtf8(output.readAll()));
}

std::optional<VerificationPINReader::Verification> VerificationPINReader::lastVerificationIn(const QString &output)
{
    static const QRegularExpression pinLine(u"^pin: (\\S+) (\\d{4})$"_s, QRegularExpression::MultilineOption);
    std::optional<Verification> last;
    for (const QRegularExpressionMatch &match : pinLine.globalMatch(output))
        last = Verification{match.captured(1), match.captured(2)};
    return last;
}

} // namespace ostrel::demo
