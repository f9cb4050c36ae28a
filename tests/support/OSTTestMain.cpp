// The main of every test executable.

#include "support/OSTChildProcess.h"

#include <QApplication>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cstdio>

int main(int argc, char **argv)
{
    // Private data, configuration and cache folders, so that the SDK's stores start empty in
    // every test process and parallel tests never share files.
    QTemporaryDir home;
    if (!home.isValid()) {
        std::fprintf(stderr, "cannot create a temporary folder for the test\n");
        return 2;
    }
    qputenv("XDG_DATA_HOME", (home.path() + QStringLiteral("/data")).toLocal8Bit());
    qputenv("XDG_CONFIG_HOME", (home.path() + QStringLiteral("/config")).toLocal8Bit());
    qputenv("XDG_CACHE_HOME", (home.path() + QStringLiteral("/cache")).toLocal8Bit());
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");

    QApplication application(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("OstrelTests"));
    QApplication::setApplicationName(QStringLiteral("ostrel-tests"));

    int childExitCode = 0;
    if (ostrel::test::OSTChildProcess::runIfRequested(QApplication::arguments(), childExitCode))
        return childExitCode;

    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
