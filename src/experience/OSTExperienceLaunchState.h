#pragma once

#include <functional>

namespace ostrel {

// What the experience manager needs to know of the launch, which the service manager above it
// owns. Start-up connects the sources once; a source left empty reads as false. Called on the GUI
// thread.
struct OSTExperienceLaunchState {
    // Whether the SDK has a token or has launched: presenting and loading need one of the two.
    std::function<bool()> isStartedOrLaunched = {};
    // Whether any launch has ever finished on this installation.
    std::function<bool()> isLaunchedLifetime = {};
};

} // namespace ostrel
