#pragma once

#include <functional>

namespace ostrel {

// The experience manager's view of the user, for choosing the automatic experience. The user
// manager sits beside the experience layer, so start-up connects these sources once; a source
// left empty reads as false. Called on the GUI thread.
struct OSTExperienceUserState {
    std::function<bool()> isLoggedIn = {};
    std::function<bool()> requiresLogin = {};
    // Whether any user has ever logged in on this installation.
    std::function<bool()> isLoggedInLifetime = {};
};

} // namespace ostrel
