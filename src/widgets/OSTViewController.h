#pragma once

#include <QList>
#include <QObject>
#include <QPointer>
#include <QWidget>

namespace ostrel {

// Whether a transition is animated; controllers pass it through to their appearance callbacks.
enum class OSTAnimation { Immediate, Animated };

// The status bar look a controller asks for. A desktop has no status bar; the values are kept so
// that a host with one of its own (an embedded shell, say) can read and apply them.
enum class OSTStatusBarStyle { Default = 0, LightContent = 1 };

// One page of user interface: a lazily made view plus the appearance callbacks that tell the
// controller when it comes on and goes off screen. Containers (navigation, root) own child
// controllers and forward appearance to them.
//
// Lives on the GUI thread. The controller owns its view: the view is deleted with the
// controller, even while some other widget holds it as a child. Child controllers are owned
// through QObject parenthood.
class OSTViewController : public QObject {
    Q_OBJECT

public:
    enum class AppearanceState { Disappeared, Appearing, Appeared, Disappearing };
    enum class Transition { Appear, Disappear };

    explicit OSTViewController(QObject *parent = nullptr);
    ~OSTViewController() override;

    // The view, made by loadView() on first use.
    QWidget *view();
    bool isViewLoaded() const;

    OSTViewController *parentController() const;
    const QList<OSTViewController *> &childControllers() const;
    // Takes ownership of `child` (detaching it from an earlier parent controller). Does not
    // place its view: the container does that.
    void addChildController(OSTViewController *child);
    // Gives up the parent; the controller then belongs to the caller (or is deleted later).
    void removeFromParentController();

    // Appearance, driven by whoever shows the view. A begin in the direction the controller is
    // already going is ignored, so containers may forward freely.
    void beginAppearanceTransition(Transition transition, OSTAnimation animation);
    void endAppearanceTransition();
    AppearanceState appearanceState() const;

    virtual bool prefersStatusBarHidden() const;
    virtual OSTStatusBarStyle preferredStatusBarStyle() const;
    // Tells listeners (the container up the chain) to read the two values above again.
    void setNeedsStatusBarAppearanceUpdate();

Q_SIGNALS:
    void statusBarAppearanceChanged();

protected:
    // Makes the view; the default is an empty widget. Called once.
    virtual QWidget *loadView();
    virtual void viewDidLoad() {}
    virtual void viewWillAppear(OSTAnimation) {}
    virtual void viewDidAppear(OSTAnimation) {}
    virtual void viewWillDisappear(OSTAnimation) {}
    virtual void viewDidDisappear(OSTAnimation) {}

private:
    QPointer<QWidget> m_view;
    bool m_viewLoaded = false;
    QList<OSTViewController *> m_children;
    AppearanceState m_appearanceState = AppearanceState::Disappeared;
    OSTAnimation m_transitionAnimation = OSTAnimation::Immediate;
};

} // namespace ostrel
