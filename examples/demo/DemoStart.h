#pragma once

#include "AutoplayToolkit.h"
#include "AutoplayWalk.h"
#include "DemoExperienceDelegate.h"
#include "DemoOptions.h"

#include <ostrel/OSTExperienceSettings.h>

#include <memory>
#include <optional>

namespace ostrel::demo {

// What the two demo hosts (Qt Widgets and Qt Quick) do alike at start, on the GUI thread once the
// application object exists.
class DemoStart {
public:
    DemoStart() = delete;

    enum class WhenNothingShows { KeepRunning, ExitWithFailure };

    // The command line, with the bundle folder set for the SDK; nullopt after printing the error.
    static std::optional<DemoOptions> readOptions();
    // Presents the automatic experience over the window `settings` names.
    static void presentAutomaticExperience(OSTExperienceSettings settings, WhenNothingShows whenNothingShows);
    // Starts the walk, which ends the application with its exit code; every hand-over to the host
    // is printed beside the walk's own lines.
    static std::unique_ptr<AutoplayWalk> startWalk(const DemoOptions &options, std::unique_ptr<AutoplayToolkit> toolkit,
                                                   const DemoExperienceDelegate &delegate);
};

} // namespace ostrel::demo
