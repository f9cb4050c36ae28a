#pragma once

#include <QStringList>

namespace ostrel {

// The SDK's fixed list of countries and their calling codes, offered by country pickers and used
// to format phone numbers. Row i is entry i of both lists. The order is fixed, not sorted at run
// time: a preferred block (United States, Canada, United Kingdom, France, Germany, India, Japan)
// comes first, then every country in roughly alphabetical order, in which the preferred seven
// occur again. Some countries have one row per code, and a few rows are kept exactly as the
// service's screens expect them (Cayman Islands "+ 345" with a blank, Montserrat "+1664" without).
//
// Both lists are built once, on first use (safe under concurrent first use), and never change;
// any thread may read them.
class OSTCountryTable {
public:
    OSTCountryTable() = delete;

    // The country names, one per row.
    static const QStringList &sortedCountries();
    // The calling codes as shown: a "+" and digits, with a blank inside some of them.
    static const QStringList &sortedCodes();
    static qsizetype rowCount();
};

} // namespace ostrel
