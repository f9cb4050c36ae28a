// A Qt Quick host in miniature: a QGuiApplication whose QML imports Ostrel's module, built only
// from the installed public headers and the Qt Quick library.
#include <ostrel/Ostrel.h>

#include <QGuiApplication>
#include <QQmlComponent>
#include <QQmlEngine>

#include <cstdio>
#include <memory>

int main(int argc, char **argv)
{
    QGuiApplication application(argc, argv);
    QQmlEngine engine;
    QQmlComponent component(&engine);
    component.setData("import QtQuick\nimport Ostrel\nOstrelExperience { experienceType: 1 }", QUrl());
    const std::unique_ptr<QObject> experience(component.create());
    if (!experience) {
        std::printf("import Ostrel failed: %s\n", qPrintable(component.errorString()));
        return 1;
    }
    std::printf("linked Ostrel %s; QML made a %s\n", qPrintable(ostrel::Ostrel::version()),
                experience->metaObject()->className());
    return 0;
}
