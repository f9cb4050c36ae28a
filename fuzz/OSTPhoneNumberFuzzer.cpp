// Arbitrary UTF-8 as what a user types or pastes into a phone field, under an arbitrary calling
// code and country: the cleaning, normalising and live-formatting operations.
//
// Input layout: the text, then optionally a 0 byte, the calling code, a 0 byte and the country
// name. Checks, besides the sanitizers' own (and the regular expressions' time limit, which
// turns a runaway search into no match):
// - raw text holds none of "+() -";
// - cleaning is idempotent and leaves no character that cleaning would remove;
// - the normalised text is a calling-code prefix (or nothing) followed by the clean digits;
// - US formatting is at most 14 characters and its digits begin the clean digits; other
//   formatting is exactly the first 26 characters of the clean digits;
// - the live form is empty exactly when the country's format of the raw digits is, and otherwise
//   is the code, a blank and that format; its raw form is clean.

#include "core/OSTLogging.h"
#include "model/OSTPhoneNumberFormatter.h"

#include <QCoreApplication>
#include <QList>

#include <cstdint>
#include <cstdio>
#include <cstdlib>

using namespace ostrel;
using namespace Qt::StringLiterals;

namespace {

using Formatter = OSTPhoneNumberFormatter;

[[noreturn]] void fail(const char *what, const QString &text)
{
    std::fprintf(stderr, "phone number fuzzer: %s: %s\n", what, text.left(500).toUtf8().constData());
    std::abort();
}

void check(bool holds, const char *what, const QString &text)
{
    if (!holds)
        fail(what, text);
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    static QCoreApplication application(*argc, *argv);
    OSTLogging::setLoggingLevel(OSTLoggingLevelNone);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QList<QByteArray> parts = QByteArray(reinterpret_cast<const char *>(data), qsizetype(size)).split('\0');
    const QString text = QString::fromUtf8(parts.value(0));
    const QString code = QString::fromUtf8(parts.value(1, "+1"));
    const QString country = QString::fromUtf8(parts.value(2, "United States"));

    const QString raw = Formatter::rawPhoneNumber(text);
    for (const QChar removed : u"+() -"_s)
        check(!raw.contains(removed), "raw text keeps a formatting character", text);

    const QString clean = Formatter::cleanPhoneNumber(text);
    check(Formatter::cleanPhoneNumber(clean) == clean, "cleaning is not idempotent", text);
    check(Formatter::rawPhoneNumber(clean) == clean, "clean text holds a formatting character", text);

    const QString normalized = Formatter::normalizedPhoneNumber(text);
    check(normalized.endsWith(clean), "the normalised text does not end with the clean digits", text);
    const QString prefix = normalized.left(normalized.size() - clean.size());
    check(prefix.isEmpty() || (prefix.startsWith(u'+') && prefix.endsWith(u' ') && text.contains(prefix)),
          "the normalised prefix is no calling code of the text", text);

    const QString us = Formatter::formatUSPhoneNumber(text);
    check(us.size() <= 14, "US formatting is longer than 14 characters", text);
    check(clean.startsWith(Formatter::cleanPhoneNumber(us)), "US formatting changed the digits", text);
    check(Formatter::formatOtherPhoneNumber(text) == clean.left(26), "other formatting changed the digits", text);

    const QString live = Formatter::liveFormattedPhoneNumber(text, code, country, Formatter::Mode::Formatted);
    const QString liveRaw = Formatter::liveFormattedPhoneNumber(text, code, country, Formatter::Mode::Raw);
    check(Formatter::cleanPhoneNumber(liveRaw) == liveRaw, "the live raw form is not clean", text);
    const QString countryFormat = country == u"United States"_s ? Formatter::formatUSPhoneNumber(liveRaw)
                                                                 : Formatter::formatOtherPhoneNumber(liveRaw);
    check(live == (countryFormat.isEmpty() ? QString() : code + u' ' + countryFormat),
          "the live form is not the code and the country's format", text);
    return 0;
}
