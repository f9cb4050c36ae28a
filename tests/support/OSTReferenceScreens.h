#pragma once

#include <QDir>
#include <QImage>
#include <QList>
#include <QString>

namespace ostrel::test {

// The screens with stored reference pictures (tests/widgets/references): every screen the project
// ships or tests with — the sample screens, and the screens of the sample experience, of the
// example experience and of the demo — laid out at 375 × 667 points and drawn at ratio 2.
struct ReferenceScreen {
    QString referenceName; // the reference picture's base name
    QString json;
    QString key;
    QString imagesFolder;   // where its named images lie
    QString sourceFile;     // the screen file, or the experience folder holding it
};

class OSTReferenceScreens {
public:
    OSTReferenceScreens() = delete;

    static QList<ReferenceScreen> all();
    static QString referencePath(const ReferenceScreen &screen);
    // The share of pixels whose channels differ by more than `tolerance`, or 1 when the sizes differ.
    static double differingShare(const QImage &actual, const QImage &expected, int tolerance);
};

} // namespace ostrel::test
