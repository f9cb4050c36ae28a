#pragma once

#include <QMap>
#include <QSize>
#include <QString>
#include <QStringList>

#include <optional>

// The command line of ostrel-preview.
struct PreviewOptions {
    // Which of the SDK's toolkits draws the screen.
    enum class Toolkit { Widgets, Quick };

    QString file;        // a screen JSON file, an experience file or an experience folder
    QString screenKey;   // which screen of an experience; the first when empty
    QSize size{375, 667};
    double ratio = 2;
    QString output;      // the PNG to write
    QMap<QString, QString> variables;
    QString imagesFolder;
    bool watch = false;
    bool window = false;
    bool check = false;
    Toolkit toolkit = Toolkit::Widgets;

    // The options, or nothing after printing why they are wrong (or the help).
    static std::optional<PreviewOptions> parse(const QStringList &arguments);
};
