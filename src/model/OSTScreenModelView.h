#pragma once

#include <QMap>
#include <QString>

namespace ostrel {

class OSTScreenDocument;
class OSTValidationItem;

// What a screen model needs from whatever draws its screen: the Qt Widgets screen controller
// today, a Qt Quick screen item later. Every call comes on the GUI thread.
class OSTScreenModelView {
public:
    using ValidationItems = QMap<QString, OSTValidationItem *>;

    OSTScreenModelView() = default;
    OSTScreenModelView(const OSTScreenModelView &) = delete;
    OSTScreenModelView &operator=(const OSTScreenModelView &) = delete;
    virtual ~OSTScreenModelView() = default;

    // The screen's document, from which the flow's validation learns the screen's inputs.
    virtual const OSTScreenDocument &screenDocument() const = 0;
    // Element key to each drawn input that takes part in validation.
    virtual ValidationItems validationItems() const = 0;
    // Whether every image the screen requires is in.
    virtual bool isFullyLoaded() const = 0;

    // The buttons whose action moves to the next screen follow the screen's validity.
    virtual void setNextButtonsEnabled(bool enabled) = 0;
    // Shows the screen's error message, animated; an empty message hides it.
    virtual void showErrorMessage(const QString &message) = 0;
    // Covers the screen while the host checks a social log-in.
    virtual void showLoadingOverlay() = 0;
    virtual void hideLoadingOverlay() = 0;
};

} // namespace ostrel
