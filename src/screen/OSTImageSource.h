#pragma once

#include <ostrel/OSTPropertyConversions.h>

#include <QList>
#include <QMargins>
#include <QString>
#include <QUrl>
#include <QVariantMap>

#include <optional>

namespace ostrel {

// What an image shows and how, read once:
//
//   "image"        the address; "{name}" names the user property holding it
//   "tempImage"    the address used while "image" is empty or names a user property
//   "backupImage"  the address tried when the others fail
//   "required"     a string read as a boolean: the screen waits for the image
//   "contentMode"  how the image fills the box (UIViewContentMode words); aspect fill otherwise
//   "insets"       stretch insets [top, left, bottom, right], numbers or numeric strings, each
//                  clamped to 0...100000; none unless all four read
//
// A value type.
struct OSTImageSource {
    QString image;
    QString temporaryImage;
    QString backupImage;
    bool required = false;
    UIViewContentMode contentMode = UIViewContentModeScaleAspectFill;
    std::optional<QMargins> capInsets;

    static OSTImageSource fromProperties(const QVariantMap &properties);

    // The user property "image" names in braces, if it names one.
    std::optional<QString> referencedUserProperty() const;
    // The addresses to try in turn: the user's property (when "image" names one and it holds a
    // text) or else "image" ("tempImage" when that is empty), escaped, then "backupImage".
    QList<QUrl> candidateURLs(const QVariantMap &userProperties) const;
};

} // namespace ostrel
