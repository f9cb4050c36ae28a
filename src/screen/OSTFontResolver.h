#pragma once

#include <QFont>
#include <QString>
#include <QVariantMap>

#include <optional>

namespace ostrel {

// Turns the "font" and "size" keys of an element into a QFont. Sizes are points of the screen
// description, and one point is one device-independent pixel, so sizes are set as pixel sizes
// (typographic points would be scaled by the screen's dots per inch).
//
// Screens written for phones name fonts by PostScript name ("HelveticaNeue-Bold"). A name that is
// not an installed family is read as family plus style: the family compared without spaces
// ("Helvetica Neue"), the style suffix as weight and italic. A name that still names
// no installed family falls back to the system font of that size.
//
// Fonts the host ships in its main bundle's "Fonts" folder are registered on first use, so
// screens can name them; the installed families are read once, after that. GUI thread only (the font database needs the application object).
class OSTFontResolver {
public:
    OSTFontResolver() = delete;

    // With "size" alone, the system font of that size; with "font" and "size", the named font
    // at that size or the system font of that size; without "size", no font. A size that is not
    // a positive number gives no font; sizes are capped at maximumPixelSize.
    static std::optional<QFont> fontWithProperties(const QVariantMap &properties);

    // The installed font `name` resolves to at `pixelSize`, or the system font of that size.
    static QFont fontNamed(const QString &name, int pixelSize);

    static constexpr int maximumPixelSize = 1000;

private:
    static void registerBundleFontsOnce();
};

} // namespace ostrel
