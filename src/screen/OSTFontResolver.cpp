#include "screen/OSTFontResolver.h"

#include "core/OSTLogging.h"
#include "platform/OSTBundle.h"
#include "screen/OSTPropertyValues.h"

#include <QDir>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QHash>
#include <QRegularExpression>

#include <cmath>
#include <mutex>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

struct PostScriptStyle {
    QFont::Weight weight = QFont::Normal;
    bool italic = false;
};

// The weight and slant a PostScript style suffix names ("Bold", "MediumItalic", "Oblique").
PostScriptStyle styleFromSuffix(QString suffix)
{
    PostScriptStyle style;
    for (const QString &slant : {u"Italic"_s, u"Oblique"_s}) {
        if (suffix.endsWith(slant, Qt::CaseInsensitive)) {
            style.italic = true;
            suffix.chop(slant.size());
        }
    }
    static const QList<std::pair<QString, QFont::Weight>> weights{
        {u"ultralight"_s, QFont::ExtraLight}, {u"extralight"_s, QFont::ExtraLight},
        {u"thin"_s, QFont::Thin},             {u"light"_s, QFont::Light},
        {u"book"_s, QFont::Normal},           {u"roman"_s, QFont::Normal},
        {u"regular"_s, QFont::Normal},        {u"medium"_s, QFont::Medium},
        {u"semibold"_s, QFont::DemiBold},     {u"demibold"_s, QFont::DemiBold},
        {u"extrabold"_s, QFont::ExtraBold},   {u"ultrabold"_s, QFont::ExtraBold},
        {u"heavy"_s, QFont::Black},           {u"black"_s, QFont::Black},
        {u"bold"_s, QFont::Bold},
    };
    const QString lower = suffix.toLower();
    for (const auto &[word, weight] : weights) {
        if (lower == word) {
            style.weight = weight;
            break;
        }
    }
    return style;
}

// The font database names a family that more than one foundry installs "Family [Foundry]"
// ("C059 [URW]", "C059 [UKWN]"). A screen names the family alone, and the family alone lets Qt
// pick the face of the asked weight and slant from whichever foundry has it.
QString familyWithoutFoundry(const QString &listed)
{
    static const QRegularExpression foundrySuffix(u"\\s*\\[[^\\]]*\\]$"_s);
    return QString(listed).remove(foundrySuffix);
}

// PostScript names drop the spaces of the family name ("HelveticaNeue", "DejaVuSans"), so
// families are compared without spaces and case.
QString comparableFamily(const QString &family)
{
    return QString(family).remove(u' ').toLower();
}

// Installed families by their comparable form, read on first use and again after the font
// database changes (a host registering its own fonts): screens name fonts per element, and the
// database's list is long.
const QHash<QString, QString> &familiesByComparableName()
{
    static QHash<QString, QString> families;
    static bool stale = true;
    [[maybe_unused]] static const QMetaObject::Connection changes = QObject::connect(
        qGuiApp, &QGuiApplication::fontDatabaseChanged, qGuiApp, [] { stale = true; });
    if (stale) {
        families.clear();
        for (const QString &listed : QFontDatabase::families()) {
            const QString family = familyWithoutFoundry(listed);
            families.insert(comparableFamily(family), family);
        }
        stale = false;
    }
    return families;
}

std::optional<QString> installedFamily(const QString &family)
{
    if (family.isEmpty())
        return std::nullopt;
    if (QFontDatabase::hasFamily(family))
        return family;
    const auto found = familiesByComparableName().constFind(comparableFamily(family));
    if (found == familiesByComparableName().constEnd())
        return std::nullopt;
    return *found;
}

QFont systemFont(int pixelSize)
{
    QFont font = QFontDatabase::systemFont(QFontDatabase::GeneralFont);
    font.setPixelSize(pixelSize);
    return font;
}

} // namespace

void OSTFontResolver::registerBundleFontsOnce()
{
    static std::once_flag once;
    std::call_once(once, [] {
        const QDir folder(QDir(OSTBundle::mainBundle()->bundlePath()).filePath(u"Fonts"_s));
        const QStringList files = folder.entryList({u"*.ttf"_s, u"*.otf"_s, u"*.ttc"_s}, QDir::Files);
        for (const QString &file : files) {
            if (QFontDatabase::addApplicationFont(folder.filePath(file)) < 0)
                OSTLogging::logWarning(u"The font file \"%1\" of the main bundle could not be loaded."_s, file);
        }
    });
}

std::optional<QFont> OSTFontResolver::fontWithProperties(const QVariantMap &properties)
{
    const std::optional<double> size = ost_stringNumberForKey(properties, u"size"_s);
    if (!size)
        return std::nullopt;
    if (!(*size > 0)) {
        OSTLogging::logWarning(u"Font size %1 is not positive; the text keeps the default font."_s, *size);
        return std::nullopt;
    }
    const int pixelSize = int(std::lround(std::min<double>(*size, maximumPixelSize)));
    const QVariant font = properties.value(u"font"_s);
    const std::optional<QString> name = font.typeId() == QMetaType::QString ? std::optional(font.toString()) : std::nullopt;
    if (!name)
        return systemFont(std::max(pixelSize, 1));
    return fontNamed(*name, std::max(pixelSize, 1));
}

QFont OSTFontResolver::fontNamed(const QString &name, int pixelSize)
{
    registerBundleFontsOnce();
    if (const auto family = installedFamily(name)) {
        QFont font(*family);
        font.setPixelSize(pixelSize);
        return font;
    }
    const qsizetype dash = name.lastIndexOf(u'-');
    if (dash > 0) {
        if (const auto family = installedFamily(name.left(dash))) {
            const PostScriptStyle style = styleFromSuffix(name.mid(dash + 1));
            QFont font(*family);
            font.setPixelSize(pixelSize);
            font.setWeight(style.weight);
            font.setItalic(style.italic);
            return font;
        }
    }
    OSTLogging::logDebug(u"Font \"%1\" is not installed; using the system font."_s, name);
    return systemFont(pixelSize);
}

} // namespace ostrel
