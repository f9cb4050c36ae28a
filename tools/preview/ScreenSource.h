#pragma once

#include <QByteArray>
#include <QString>

// The screen JSON a preview renders, read from a screen file or from one screen of an experience
// (the development service's experience.json, or the folder holding it).
struct ScreenSource {
    QString path;          // the file read (and watched)
    QByteArray fileText;   // its whole text
    QByteArray screenText; // the screen JSON
    QString screenKey;
    QString pointerPrefix;      // where the screen lies in the file ("/splash/<key>"; "" for a screen file)
    QString imagesFolder;       // the experience's images/ when there is one
    QString error;              // why no screen could be read; empty when one was

    static ScreenSource load(const QString &file, const QString &screenKey);
};
