#include "PreviewOptions.h"

#include <QCommandLineParser>
#include <QFileInfo>
#include <QRegularExpression>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

std::optional<QSize> parseSize(const QString &text)
{
    static const QRegularExpression pattern(u"^(\\d{1,5})x(\\d{1,5})$"_s);
    const QRegularExpressionMatch match = pattern.match(text);
    if (!match.hasMatch())
        return std::nullopt;
    const QSize size(match.captured(1).toInt(), match.captured(2).toInt());
    if (size.isEmpty() || size.width() > 10000 || size.height() > 10000)
        return std::nullopt;
    return size;
}

bool fail(const QString &message)
{
    std::fprintf(stderr, "ostrel-preview: %s\n", qPrintable(message));
    return false;
}

} // namespace

std::optional<PreviewOptions> PreviewOptions::parse(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(u"Renders an Ostrel screen through the SDK's own screen view."_s);
    parser.addHelpOption();
    parser.addPositionalArgument(u"file"_s, u"A screen JSON file, an experience.json or an experience folder."_s);
    const QCommandLineOption screen(u"screen"_s, u"The screen of an experience to render (default: the first)."_s, u"key"_s);
    const QCommandLineOption size(u"size"_s, u"Points, WIDTHxHEIGHT (default 375x667)."_s, u"size"_s, u"375x667"_s);
    const QCommandLineOption ratio(u"ratio"_s, u"Device pixels per point (default 2)."_s, u"ratio"_s, u"2"_s);
    const QCommandLineOption output(QStringList{u"o"_s, u"output"_s}, u"The PNG to write (default: FILE.png)."_s, u"png"_s);
    const QCommandLineOption variable(u"var"_s, u"A dynamic variable, name=value (repeatable)."_s, u"name=value"_s);
    const QCommandLineOption images(u"images"_s, u"Folder of images named as in the screen (default: the experience's images/)."_s, u"folder"_s);
    const QCommandLineOption watch(u"watch"_s, u"Render again whenever the file changes."_s);
    const QCommandLineOption window(u"window"_s, u"Show the screen in a window instead of writing a PNG."_s);
    const QCommandLineOption check(u"check"_s, u"Check the file and print each problem; exit 1 when there are any."_s);
    const QCommandLineOption toolkit(u"toolkit"_s, u"The toolkit that draws the screen: widgets (default) or quick."_s,
                                     u"toolkit"_s, u"widgets"_s);
    parser.addOptions({screen, size, ratio, output, variable, images, watch, window, check, toolkit});
    if (!parser.parse(arguments)) {
        fail(parser.errorText());
        return std::nullopt;
    }
    if (parser.isSet(u"help"_s)) {
        std::fputs(qPrintable(parser.helpText()), stdout);
        return std::nullopt;
    }
    if (parser.positionalArguments().size() != 1) {
        fail(u"name exactly one file (see --help)"_s);
        return std::nullopt;
    }
    PreviewOptions options;
    options.file = parser.positionalArguments().constFirst();
    options.screenKey = parser.value(screen);
    const std::optional<QSize> parsedSize = parseSize(parser.value(size));
    bool ratioIsNumber = false;
    options.ratio = parser.value(ratio).toDouble(&ratioIsNumber);
    if (!parsedSize || !ratioIsNumber || options.ratio < 0.25 || options.ratio > 8) {
        fail(u"--size takes WIDTHxHEIGHT up to 10000x10000 and --ratio a number from 0.25 to 8"_s);
        return std::nullopt;
    }
    options.size = *parsedSize;
    options.output = parser.isSet(output) ? parser.value(output)
                                          : QFileInfo(options.file).completeBaseName() + u".png"_s;
    for (const QString &entry : parser.values(variable)) {
        const qsizetype equals = entry.indexOf(u'=');
        if (equals <= 0) {
            fail(u"--var takes name=value, not \"%1\""_s.arg(entry));
            return std::nullopt;
        }
        options.variables.insert(entry.left(equals), entry.mid(equals + 1));
    }
    options.imagesFolder = parser.value(images);
    options.watch = parser.isSet(watch);
    options.window = parser.isSet(window);
    options.check = parser.isSet(check);
    const QString toolkitName = parser.value(toolkit);
    if (toolkitName != u"widgets"_s && toolkitName != u"quick"_s) {
        fail(u"--toolkit takes widgets or quick, not \"%1\""_s.arg(toolkitName));
        return std::nullopt;
    }
    options.toolkit = toolkitName == u"quick"_s ? Toolkit::Quick : Toolkit::Widgets;
    return options;
}
