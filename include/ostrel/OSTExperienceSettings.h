#pragma once

#include <ostrel/OSTExport.h>

#include <QPointer>
#include <QWindow>

// Named only: a Qt Quick host includes no Qt Widgets header.
class QWidget;

namespace ostrel {

// Which experience to show. Any other value names no experience.
enum OSTExperienceType : int {
    // The SDK chooses from the user's state and the service's instructions.
    OSTExperienceTypeAutomatic = 0,
    OSTExperienceTypeInstall = 1,
    OSTExperienceTypeLoggedOut = 2,
    OSTExperienceTypeLogin = 3,
    OSTExperienceTypeRecoverPassword = 4,
    OSTExperienceTypeSignUp = 5,
};

// How the host wants an experience presented. A plain value: copy it freely.
//
//     OSTExperienceSettings settings = OSTExperienceSettings::settings();
//     settings.experienceType = OSTExperienceTypeSignUp;
//     Ostrel::presentExperienceWithSettings(settings, [](bool shown) { ... });
class OSTREL_EXPORT OSTExperienceSettings {
public:
    // The defaults: automatic type, animated both ways, no presenting window.
    static OSTExperienceSettings settings() { return {}; }

    OSTExperienceType experienceType = OSTExperienceTypeAutomatic;
    bool shouldPresentAnimated = true;
    bool shouldDismissAnimated = true;
    // The widget whose window to present over (Qt Widgets hosts); none means the host's front-most
    // window. Held weakly: a window closed meanwhile counts as none.
    QPointer<QWidget> presentingViewController;
    // The same for a Qt Quick host: the QQuickWindow to present over, when it is not the front-most
    // window. Ignored when presentingViewController is set.
    QPointer<QWindow> presentingWindow;
};

} // namespace ostrel
