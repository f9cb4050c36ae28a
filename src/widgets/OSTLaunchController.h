#pragma once

#include "widgets/OSTViewController.h"

#include <QImage>
#include <QSizeF>
#include <QString>

#include <optional>

namespace ostrel {

// The host application's launch screen, rebuilt so that an experience asked for while the host
// is starting looks as if the launch screen stayed up until the first screen is ready. The view
// is, in this order of preference: the Qt Designer form named by the main bundle's Info.json
// "UILaunchStoryboardName" (`<name>.ui` in the bundle); the first bundle image whose file name
// holds "LaunchImage" and whose size in points and scale match the covered area exactly; a plain
// black cover.
//
// Lives on the GUI thread.
class OSTLaunchController : public OSTViewController {
    Q_OBJECT

public:
    // `areaSize` (points) and `devicePixelRatio` describe the area the cover will fill.
    OSTLaunchController(QSizeF areaSize, double devicePixelRatio, QObject *parent = nullptr);

    // The main bundle's "UILaunchStoryboardName" when it is a non-empty string.
    static std::optional<QString> getLaunchStoryboardName();

protected:
    QWidget *loadView() override;

private:
    QWidget *loadLaunchForm(const QString &name, QWidget *container) const;
    QWidget *makeLaunchImageView() const;

    QSizeF m_areaSize;
    double m_devicePixelRatio;
};

} // namespace ostrel
