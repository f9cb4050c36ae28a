#pragma once

#include "PreviewOptions.h"
#include "ScreenRenderer.h"
#include "ScreenSource.h"

#include <QFileSystemWatcher>
#include <QObject>

#include <memory>
#include <optional>

// Renders the screen of a PreviewOptions to a PNG or a window, prints what the author should fix
// and, when asked, renders again whenever the file changes.
class PreviewApp final : public QObject {
    Q_OBJECT

public:
    enum ExitCode { Success = 0, ProblemsFound = 1, Unusable = 2 };

    PreviewApp(PreviewOptions options, std::unique_ptr<ScreenRenderer> renderer);
    ~PreviewApp() override;

    // Does the work of the options; returns the exit code, or nothing when the event loop must
    // keep running (watching or showing a window).
    std::optional<int> start();

private:
    int checkFile() const;
    // Renders once; false when the screen does not parse.
    bool renderOnce();
    void fileChanged();
    void printProblems(const ScreenSource &source, bool asWarnings) const;

    const PreviewOptions m_options;
    QFileSystemWatcher m_watcher;
    const std::unique_ptr<ScreenRenderer> m_renderer;
};
