#pragma once

#include <ostrel/OSTPropertyConversions.h>

#include <QObject>
#include <QString>

namespace ostrel {

// Told of each country chosen in a country picker, of either toolkit. A phone text field adopts
// it to format the number under the chosen calling code; a picker of another kind tells nothing
// it need act on. Adopted by QObjects only (Q_INTERFACES), which pickers keep weakly.
class OSTPickerDelegate {
public:
    virtual ~OSTPickerDelegate() = default;
    virtual void pickerDidChangeCountry(OSTPickerType pickerType, const QString &country, const QString &code) = 0;
};

} // namespace ostrel

Q_DECLARE_INTERFACE(ostrel::OSTPickerDelegate, "com.ostrelhq.Ostrel.OSTPickerDelegate")
