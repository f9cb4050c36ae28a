#include "widgets/OSTViewController.h"

#include <QLabel>
#include <QPointer>
#include <QSignalSpy>

#include <gtest/gtest.h>

using namespace ostrel;
using namespace Qt::StringLiterals;

namespace {

class RecordingController : public OSTViewController {
public:
    using OSTViewController::OSTViewController;
    QStringList calls;

protected:
    QWidget *loadView() override
    {
        calls << u"load"_s;
        return new QLabel(u"page"_s);
    }
    void viewDidLoad() override { calls << u"didLoad"_s; }
    void viewWillAppear(OSTAnimation animation) override { calls << u"willAppear:%1"_s.arg(int(animation)); }
    void viewDidAppear(OSTAnimation animation) override { calls << u"didAppear:%1"_s.arg(int(animation)); }
    void viewWillDisappear(OSTAnimation) override { calls << u"willDisappear"_s; }
    void viewDidDisappear(OSTAnimation) override { calls << u"didDisappear"_s; }
};

} // namespace

TEST(ViewController, ViewIsMadeOnceAndAppearanceCallbacksComeInPairs)
{
    RecordingController controller;
    EXPECT_FALSE(controller.isViewLoaded());
    QWidget *view = controller.view();
    EXPECT_EQ(controller.view(), view);
    EXPECT_EQ(qobject_cast<QLabel *>(view)->text(), u"page"_s);

    using Transition = OSTViewController::Transition;
    controller.beginAppearanceTransition(Transition::Appear, OSTAnimation::Animated);
    controller.beginAppearanceTransition(Transition::Appear, OSTAnimation::Animated);
    controller.endAppearanceTransition();
    controller.endAppearanceTransition();
    controller.beginAppearanceTransition(Transition::Appear, OSTAnimation::Immediate);
    EXPECT_EQ(controller.appearanceState(), OSTViewController::AppearanceState::Appeared);
    controller.beginAppearanceTransition(Transition::Disappear, OSTAnimation::Immediate);
    controller.endAppearanceTransition();
    EXPECT_EQ(controller.calls, (QStringList{u"load"_s, u"didLoad"_s, u"willAppear:1"_s, u"didAppear:1"_s,
                                             u"willDisappear"_s, u"didDisappear"_s}));

    QSignalSpy changed(&controller, &OSTViewController::statusBarAppearanceChanged);
    controller.setNeedsStatusBarAppearanceUpdate();
    EXPECT_EQ(changed.count(), 1);
}

TEST(ViewController, ControllersOwnTheirViewsAndChildren)
{
    QWidget container;
    auto *parent = new OSTViewController;
    auto *child = new RecordingController;
    parent->addChildController(child);
    parent->addChildController(child);
    EXPECT_EQ(parent->childControllers().size(), 1);
    EXPECT_EQ(child->parentController(), parent);

    child->view()->setParent(&container);
    QPointer<QWidget> childView = child->view();
    QPointer<OSTViewController> watchedChild = child;

    auto *other = new OSTViewController;
    other->addChildController(child);
    EXPECT_TRUE(parent->childControllers().isEmpty()) << "moving a child detaches it from its old parent";
    child->removeFromParentController();
    EXPECT_EQ(child->parentController(), nullptr);
    parent->addChildController(child);

    delete parent;
    EXPECT_TRUE(watchedChild.isNull());
    EXPECT_TRUE(childView.isNull()) << "the view goes with its controller even when another widget holds it";
    EXPECT_TRUE(container.children().isEmpty());

    auto *survivor = new OSTViewController;
    QPointer<QWidget> survivorView = survivor->view();
    delete survivorView.data();
    EXPECT_FALSE(survivor->isViewLoaded()) << "a view deleted by its holder is not used again";
    delete survivor;
    delete other;
}
