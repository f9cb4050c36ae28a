#pragma once

#include "model/OSTScreenModel.h"

#include <QSizeF>

namespace ostrel {

// What the screens of an experience reach outside the toolkit that draws them: the experience
// manager's dynamic variables and address hook, the social log-in adapter, the host's experience
// delegate and the user manager.
class OSTScreenEnvironment {
public:
    OSTScreenEnvironment() = delete;

    // Screens laid out in `area`. Answers from the host or the social log-in adapter reach the
    // screens on the GUI thread, once.
    static OSTScreenModel::Environment forExperience(QSizeF area);
};

} // namespace ostrel
