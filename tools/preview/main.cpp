// ostrel-preview: renders a screen JSON through the SDK's own screen view, for people who write
// screens. See tools/preview/README.md.

#include "PreviewApp.h"
#include "PreviewOptions.h"

#include <QApplication>

int main(int argc, char **argv)
{
    QStringList arguments;
    for (int index = 0; index < argc; ++index)
        arguments << QString::fromLocal8Bit(argv[index]);
    std::optional<PreviewOptions> options = PreviewOptions::parse(arguments);
    if (!options)
        return arguments.contains(QStringLiteral("--help")) || arguments.contains(QStringLiteral("-h"))
            ? PreviewApp::Success
            : PreviewApp::Unusable;
    // Without a window the rendering needs no display.
    if (!options->window && qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("Ostrel"));
    QApplication::setApplicationName(QStringLiteral("ostrel-preview"));
    PreviewApp preview(std::move(*options));
    if (const std::optional<int> exitCode = preview.start())
        return *exitCode;
    return QApplication::exec();
}
