#pragma once

#include "PreviewOptions.h"
#include "ScreenSource.h"

#include <QFileSystemWatcher>
#include <QObject>
#include <QPointer>

#include <memory>
#include <optional>

class QWidget;

namespace ostrel {
class OSTScreenView;
}

// Renders the screen of a PreviewOptions to a PNG or a window, prints what the author should fix
// and, when asked, renders again whenever the file changes.
class PreviewApp final : public QObject {
    Q_OBJECT

public:
    enum ExitCode { Success = 0, ProblemsFound = 1, Unusable = 2 };

    explicit PreviewApp(PreviewOptions options);
    ~PreviewApp() override;

    // Does the work of the options; returns the exit code, or nothing when the event loop must
    // keep running (watching or showing a window).
    std::optional<int> start();

private:
    int checkFile() const;
    // Renders once; false when the screen does not parse.
    bool renderOnce();
    void waitForImages(ostrel::OSTScreenView &view) const;
    void reportImages(const ostrel::OSTScreenView &view) const;
    void fileChanged();
    void printProblems(const ScreenSource &source, bool asWarnings) const;

    const PreviewOptions m_options;
    QFileSystemWatcher m_watcher;
    std::unique_ptr<QWidget> m_window; // --window only
    QPointer<ostrel::OSTScreenView> m_view; // child of m_window, or owned here while rendering to a file
};
