#include "widgets/OSTViewController.h"

#include <utility>

namespace ostrel {

OSTViewController::OSTViewController(QObject *parent)
    : QObject(parent)
{
    if (auto *parentController = qobject_cast<OSTViewController *>(parent))
        parentController->m_children.append(this);
}

OSTViewController::~OSTViewController()
{
    if (auto *parent = parentController())
        parent->m_children.removeAll(this);
    // Children go first, while this controller is still whole for them to detach from.
    const QList<OSTViewController *> children = std::exchange(m_children, {});
    for (OSTViewController *child : children)
        delete child;
    delete m_view.data();
}

QWidget *OSTViewController::view()
{
    if (!m_viewLoaded) {
        m_viewLoaded = true;
        m_view = loadView();
        if (!m_view)
            m_view = new QWidget;
        viewDidLoad();
    }
    return m_view.data();
}

bool OSTViewController::isViewLoaded() const
{
    return m_viewLoaded && m_view;
}

OSTViewController *OSTViewController::parentController() const
{
    return qobject_cast<OSTViewController *>(parent());
}

const QList<OSTViewController *> &OSTViewController::childControllers() const
{
    return m_children;
}

void OSTViewController::addChildController(OSTViewController *child)
{
    if (!child || child == this || child->parentController() == this)
        return;
    child->removeFromParentController();
    child->setParent(this);
    m_children.append(child);
}

void OSTViewController::removeFromParentController()
{
    if (auto *parent = parentController()) {
        parent->m_children.removeAll(this);
        setParent(nullptr);
    }
}

void OSTViewController::beginAppearanceTransition(Transition transition, OSTAnimation animation)
{
    const bool appearing = transition == Transition::Appear;
    const AppearanceState target = appearing ? AppearanceState::Appearing : AppearanceState::Disappearing;
    const AppearanceState settled = appearing ? AppearanceState::Appeared : AppearanceState::Disappeared;
    if (m_appearanceState == target || m_appearanceState == settled)
        return;
    m_appearanceState = target;
    m_transitionAnimation = animation;
    if (appearing)
        viewWillAppear(animation);
    else
        viewWillDisappear(animation);
}

void OSTViewController::endAppearanceTransition()
{
    switch (m_appearanceState) {
    case AppearanceState::Appearing:
        m_appearanceState = AppearanceState::Appeared;
        viewDidAppear(m_transitionAnimation);
        break;
    case AppearanceState::Disappearing:
        m_appearanceState = AppearanceState::Disappeared;
        viewDidDisappear(m_transitionAnimation);
        break;
    case AppearanceState::Appeared:
    case AppearanceState::Disappeared:
        break;
    }
}

OSTViewController::AppearanceState OSTViewController::appearanceState() const
{
    return m_appearanceState;
}

bool OSTViewController::prefersStatusBarHidden() const
{
    return false;
}

OSTStatusBarStyle OSTViewController::preferredStatusBarStyle() const
{
    return OSTStatusBarStyle::Default;
}

void OSTViewController::setNeedsStatusBarAppearanceUpdate()
{
    Q_EMIT statusBarAppearanceChanged();
}

QWidget *OSTViewController::loadView()
{
    return new QWidget;
}

} // namespace ostrel
