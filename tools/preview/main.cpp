// ostrel-preview: renders a screen JSON through the SDK's own screen view, for people who write
// screens. See tools/preview/README.md.

#include "PreviewApp.h"
#include "PreviewOptions.h"
#include "QuickScreenRenderer.h"
#include "WidgetScreenRenderer.h"

#include <QApplication>
#include <QQuickWindow>

#include <memory>

namespace {

// Qt Quick draws with its software renderer, which needs no GPU and draws what the SDK's painters
// paint; a picture at the requested ratio comes from scaling the whole window by it.
std::unique_ptr<QGuiApplication> makeApplication(const PreviewOptions &options, int &argc, char **argv)
{
    if (options.toolkit == PreviewOptions::Toolkit::Widgets)
        return std::make_unique<QApplication>(argc, argv);
    if (!options.window && qEnvironmentVariableIsEmpty("QT_SCALE_FACTOR"))
        qputenv("QT_SCALE_FACTOR", QByteArray::number(options.ratio));
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    return std::make_unique<QGuiApplication>(argc, argv);
}

std::unique_ptr<ScreenRenderer> makeRenderer(PreviewOptions::Toolkit toolkit)
{
    if (toolkit == PreviewOptions::Toolkit::Quick)
        return std::make_unique<QuickScreenRenderer>();
    return std::make_unique<WidgetScreenRenderer>();
}

} // namespace

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
    const std::unique_ptr<QGuiApplication> application = makeApplication(*options, argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("Ostrel"));
    QCoreApplication::setApplicationName(QStringLiteral("ostrel-preview"));
    PreviewApp preview(*options, makeRenderer(options->toolkit));
    if (const std::optional<int> exitCode = preview.start())
        return *exitCode;
    return QCoreApplication::exec();
}
