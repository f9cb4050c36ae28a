#pragma once

#include "model/OSTScreenModel.h"
#include "model/OSTScreenModelView.h"
#include "widgets/OSTScreenView.h"
#include "widgets/OSTScreenViewDelegate.h"
#include "widgets/OSTViewController.h"

#include <QMetaObject>
#include <QPointer>

#include <functional>
#include <memory>

namespace ostrel {

class OSTLoadingOverlay;
class OSTScreen;

// Shows one screen of a flow with Qt Widgets: builds its screen view, lifts it above an on-screen
// keyboard, and hands what happens on it to its screen model, which decides (the image wait,
// the load and display events, the actions) and drives it back through OSTScreenModelView.
//
// The controller's view is the screen view itself; whoever shows it sizes it, and the screen is
// laid out again for the new size.
//
// Lives on the GUI thread; owns its screen model. A controller made with a completion belongs to
// the completion's receiver once it succeeded; on failure it deletes itself after calling the
// completion with null.
class OSTScreenController final : public OSTViewController,
                                  public OSTScreenViewDelegate,
                                  private OSTScreenModelView {
    Q_OBJECT

public:
    using Environment = OSTScreenModel::Environment;
    using Completion = std::function<void(OSTScreenController *controller)>;

    // The controller, or null when no screen view could be built.
    static OSTScreenController *controllerWithScreen(const std::shared_ptr<const OSTScreen> &screen,
                                                     const Environment &environment, QObject *parent = nullptr);
    // Calls `completion` with the controller once its required images are in or the bounded wait
    // ran out (the screen then shows without them), or with null when the screen could not be built.
    static void controllerWithScreen(const std::shared_ptr<const OSTScreen> &screen,
                                     const Environment &environment, Completion completion);
    ~OSTScreenController() override;

    const std::shared_ptr<const OSTScreen> &screen() const { return m_model->screen(); }
    OSTScreenModel &screenModel() { return *m_model; }
    OSTScreenView *screenView() const { return m_screenView; }

    bool prefersStatusBarHidden() const override { return m_statusBarHidden; }
    OSTStatusBarStyle preferredStatusBarStyle() const override { return m_statusBarStyle; }

    // OSTScreenViewDelegate
    void screenViewDidTapScreen(OSTScreenView &view) override;
    void screenViewDidPressButton(OSTScreenView &view, OSTButton &button) override;
    void screenViewShouldGoToNextScreen(OSTScreenView &view) override;
    void screenViewShouldHandleAction(OSTScreenView &view, const std::shared_ptr<const OSTAction> &action) override;
    void screenViewDidFinishLoadingRequiredImages(OSTScreenView &view) override;

protected:
    QWidget *loadView() override;
    void viewDidAppear(OSTAnimation animation) override;
    void viewDidDisappear(OSTAnimation animation) override;

private:
    OSTScreenController(const std::shared_ptr<const OSTScreen> &screen, const Environment &environment,
                        Completion completion, QObject *parent);

    bool loadScreen();
    // The status bar the screen's document asks for.
    void readStatusBarStyle();
    void fireCompletion(bool success);
    void updateKeyboard();

    // OSTScreenModelView
    const OSTScreenDocument &screenDocument() const override;
    ValidationItems validationItems() const override;
    bool isFullyLoaded() const override;
    void setNextButtonsEnabled(bool enabled) override;
    void showErrorMessage(const QString &message) override;
    void showLoadingOverlay() override;
    void hideLoadingOverlay() override;

    const std::unique_ptr<OSTScreenModel> m_model;
    QPointer<OSTScreenView> m_screenView; // the controller's view once loaded, deleted with it
    Completion m_completion;
    bool m_statusBarHidden = true;
    OSTStatusBarStyle m_statusBarStyle = OSTStatusBarStyle::Default;
    QPointer<OSTLoadingOverlay> m_loadingOverlay; // child of the view, made on first use
    QMetaObject::Connection m_keyboardVisibility;
    QMetaObject::Connection m_keyboardGeometry;
};

} // namespace ostrel
