#pragma once

#include "screen/OSTPickerWheel.h"

#include <QString>
#include <QStringList>

namespace ostrel {

// The rows of a picker's list wheel and the chosen one: the countries with their calling codes
// for a country picker, the custom choices for a custom one, none for a date picker. It gives
// each row's title, as the wheel lists it or as the picker shows the choice, and the country
// and code of the chosen row. A picker of any toolkit shows these rows and reports the choice.
//
// A value type; usable on any thread.
class OSTPickerRowModel {
public:
    enum class Formatting { Plain, Formatted };

    explicit OSTPickerRowModel(const OSTPickerWheel &wheel);

    OSTPickerType type() const { return m_type; }
    const QStringList &customData() const { return m_customData; }
    qsizetype rowCount() const;
    // A row's title: formatted for the wheel ("+44     \tUnited Kingdom"), plain for the shown
    // choice ("+44 United Kingdom"); "" for a row out of range.
    QString titleAtRow(qsizetype row, Formatting formatting) const;
    // Every row's title, for filling a wheel.
    QStringList titles(Formatting formatting) const;

    // Chooses a row; a country row out of range keeps the earlier country.
    void chooseRow(qsizetype row);
    // The chosen country and its calling code; empty for other pickers. The first row at first.
    const QString &country() const { return m_country; }
    const QString &countryCode() const { return m_countryCode; }
    // The row whose value is `value` (a country's name or a custom choice); -1 when none is.
    qsizetype rowOfValue(const QString &value) const;

private:
    OSTPickerType m_type;
    QStringList m_customData;
    QString m_country;
    QString m_countryCode;
};

} // namespace ostrel
