#pragma once

#include "OSTBenchmarkRunner.h"
#include "platform/OSTBundle.h"

#include <QApplication>
#include <QColor>
#include <QImage>
#include <QTemporaryDir>

namespace ostrel::bench {

// The main() of the widget benchmarks: an offscreen QApplication with its own data folder and a
// main bundle holding the host's images "picture0.png" … "picture3.png" (120 × 120), so that
// image views load without the network. Returns the process exit code.
inline int runWidgetBenchmarks(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QTemporaryDir data;
    qputenv("XDG_DATA_HOME", data.path().toUtf8());
    QApplication application(argc, argv);
    QTemporaryDir bundle;
    for (int index = 0; index < 4; ++index) {
        QImage image(120, 120, QImage::Format_ARGB32);
        image.fill(QColor::fromHsv(index * 80, 200, 230));
        image.save(bundle.filePath(QStringLiteral("picture%1.png").arg(index)));
    }
    OSTBundle::setMainBundlePath(bundle.path());
    return runRegisteredBenchmarks(argc, argv);
}

} // namespace ostrel::bench
