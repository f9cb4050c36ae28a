#pragma once

#include "platform/OSTBundle.h"

#include <QColor>
#include <QImage>
#include <QTemporaryDir>

namespace ostrel::bench {

// What the screen benchmarks run in: the offscreen platform, a data folder of their own and a main
// bundle holding the host's images "picture0.png" … "picture3.png" (120 × 120), so that images load
// without the network. Make it before the Qt application; keep it for the whole run.
class BenchmarkBundle {
public:
    BenchmarkBundle()
    {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        qputenv("XDG_DATA_HOME", m_data.path().toUtf8());
    }

    // Writes the images and makes the bundle the main bundle; needs the Qt application.
    void install()
    {
        for (int index = 0; index < 4; ++index) {
            QImage image(120, 120, QImage::Format_ARGB32);
            image.fill(QColor::fromHsv(index * 80, 200, 230));
            image.save(m_bundle.filePath(QStringLiteral("picture%1.png").arg(index)));
        }
        OSTBundle::setMainBundlePath(m_bundle.path());
    }

private:
    QTemporaryDir m_data;
    QTemporaryDir m_bundle;
};

} // namespace ostrel::bench
