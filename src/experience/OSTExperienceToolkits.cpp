#include "experience/OSTExperienceToolkits.h"

#include "core/OSTLogging.h"

#include <QGuiApplication>
#include <QWindow>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

bool canBeCovered(const QWindow *window)
{
    if (!window || !window->isVisible() || window->windowStates().testFlag(Qt::WindowMinimized))
        return false;
    const Qt::WindowType type = window->type();
    return type == Qt::Window || type == Qt::Dialog;
}

} // namespace

const std::shared_ptr<OSTExperienceToolkits> &OSTExperienceToolkits::shared()
{
    static const std::shared_ptr<OSTExperienceToolkits> toolkits = std::make_shared<OSTExperienceToolkits>();
    return toolkits;
}

void OSTExperienceToolkits::add(std::shared_ptr<OSTExperiencePresenter> toolkit)
{
    if (toolkit && std::find(m_toolkits.begin(), m_toolkits.end(), toolkit) == m_toolkits.end())
        m_toolkits.push_back(std::move(toolkit));
}

QWindow *OSTExperienceToolkits::windowToCover(const OSTExperienceSettings &settings)
{
    if (settings.presentingWindow)
        return settings.presentingWindow.data();
    if (!qobject_cast<QGuiApplication *>(QCoreApplication::instance()))
        return nullptr;
    if (QWindow *focused = QGuiApplication::focusWindow(); canBeCovered(focused))
        return focused;
    const QWindowList windows = QGuiApplication::topLevelWindows();
    const auto last = std::find_if(windows.crbegin(), windows.crend(), canBeCovered);
    return last == windows.crend() ? nullptr : *last;
}

bool OSTExperienceToolkits::drawsOver(const OSTExperienceSettings &settings, const QWindow *window) const
{
    return std::any_of(m_toolkits.begin(), m_toolkits.end(), [&](const auto &toolkit) {
        return toolkit->drawsOver(settings, window);
    });
}

std::shared_ptr<OSTExperiencePresenter::Presentation>
OSTExperienceToolkits::presentationWithSettings(const OSTExperienceSettings &settings)
{
    const QWindow *window = windowToCover(settings);
    for (const std::shared_ptr<OSTExperiencePresenter> &toolkit : m_toolkits) {
        if (toolkit->drawsOver(settings, window))
            return toolkit->presentationWithSettings(settings);
    }
    warnNothingDrawsOver(window);
    return nullptr;
}

std::shared_ptr<OSTExperiencePresenter::Presentation> OSTExperienceToolkits::presentationWithType(int type)
{
    for (const std::shared_ptr<OSTExperiencePresenter> &toolkit : m_toolkits) {
        if (std::shared_ptr<Presentation> presentation = toolkit->presentationWithType(type))
            return presentation;
    }
    OSTLogging::logWarning(u"An experience is loaded as a widget, which needs the Qt Widgets toolkit (Ostrel::Widgets) "
                           "and a QApplication; a Qt Quick application places an OstrelExperience item instead."_s);
    return nullptr;
}

void OSTExperienceToolkits::warnNothingDrawsOver(const QWindow *window) const
{
    if (m_toolkits.empty()) {
        OSTLogging::logWarning(u"No experience can be shown: this application links no Ostrel toolkit (link "
                               "Ostrel::Widgets for a Qt Widgets application, Ostrel::Quick for a Qt Quick one)."_s);
    } else if (!window) {
        OSTLogging::logWarning(u"No experience can be shown: the application shows no window to present it over, "
                               "and experiences get a window of their own only in a QApplication."_s);
    } else {
        OSTLogging::logWarning(u"No experience can be shown over the front-most window, a %1: experiences are drawn "
                               "over a QQuickWindow (Ostrel::Quick) or, in a QApplication, a widget window "
                               "(Ostrel::Widgets)."_s,
                               QString::fromLatin1(window->metaObject()->className()));
    }
}

} // namespace ostrel
