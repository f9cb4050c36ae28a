#pragma once

#include <QString>
#include <QStringList>

#include <functional>

namespace ostrel::test {

// Lets a test run part of itself in a separate process of the same executable, for example to
// kill it at a chosen moment. A child mode is registered at static-initialisation time and
// selected with the argument "--ostrel-child=<name>"; the test main then runs it instead of the
// tests and exits with its return value.
class OSTChildProcess {
public:
    using Mode = std::function<int(const QStringList &arguments)>;

    // Registers `mode` under `name`; returns true so it can initialise a static.
    static bool registerMode(const QString &name, Mode mode);
    // Runs the mode named by "--ostrel-child=<name>" in `arguments`, if any; returns whether one
    // was named, with its exit code in `exitCode`.
    static bool runIfRequested(const QStringList &arguments, int &exitCode);
    // The argument that selects `name`.
    static QString argumentFor(const QString &name);

    // Runs `name` in a child that shares this process's data folder and uses `bundleFolder` as
    // its main bundle, its output forwarded; returns its exit code, -1 if it did not finish.
    static int runSharingData(const QString &name, const QString &bundleFolder);
    // In a child started by runSharingData(): takes over the parent's data folder and bundle.
    static void adoptParentData(const QStringList &arguments);
};

} // namespace ostrel::test
