#include "model/OSTPickerRowModel.h"

#include "model/OSTCountryTable.h"

namespace ostrel {

namespace {

constexpr int countryCodeColumnWidth = 8;

// "%-8.8s": the code cut or padded to exactly eight characters.
QString codeColumn(const QString &code)
{
    return code.left(countryCodeColumnWidth).leftJustified(countryCodeColumnWidth, u' ');
}

} // namespace

OSTPickerRowModel::OSTPickerRowModel(const OSTPickerWheel &wheel) : m_type(wheel.type)
{
    if (m_type == OSTPickerTypeCustomData)
        m_customData = wheel.customData;
    if (m_type == OSTPickerTypeCountryCode) {
        m_country = OSTCountryTable::sortedCountries().constFirst();
        m_countryCode = OSTCountryTable::sortedCodes().constFirst();
    }
}

qsizetype OSTPickerRowModel::rowCount() const
{
    switch (m_type) {
    case OSTPickerTypeCountryCode:
        return OSTCountryTable::rowCount();
    case OSTPickerTypeCustomData:
        return m_customData.size();
    case OSTPickerTypeDate:
        break;
    }
    return 0;
}

QString OSTPickerRowModel::titleAtRow(qsizetype row, Formatting formatting) const
{
    if (row < 0)
        return {};
    if (m_type == OSTPickerTypeCustomData)
        return row < m_customData.size() ? m_customData.at(row) : QString();
    if (m_type != OSTPickerTypeCountryCode || row >= OSTCountryTable::rowCount())
        return {};
    const QString &code = OSTCountryTable::sortedCodes().at(row);
    const QString &name = OSTCountryTable::sortedCountries().at(row);
    return formatting == Formatting::Formatted ? codeColumn(code) + u'\t' + name : code + u' ' + name;
}

QStringList OSTPickerRowModel::titles(Formatting formatting) const
{
    QStringList all;
    for (qsizetype row = 0; row < rowCount(); ++row)
        all.append(titleAtRow(row, formatting));
    return all;
}

void OSTPickerRowModel::chooseRow(qsizetype row)
{
    if (m_type != OSTPickerTypeCountryCode || row < 0 || row >= OSTCountryTable::rowCount())
        return;
    m_country = OSTCountryTable::sortedCountries().at(row);
    m_countryCode = OSTCountryTable::sortedCodes().at(row);
}

qsizetype OSTPickerRowModel::rowOfValue(const QString &value) const
{
    const QStringList &rows = m_type == OSTPickerTypeCountryCode ? OSTCountryTable::sortedCountries() : m_customData;
    return rows.indexOf(value);
}

} // namespace ostrel
