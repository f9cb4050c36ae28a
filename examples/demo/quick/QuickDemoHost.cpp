#include "QuickDemoHost.h"

#include "HostReport.h"

#include <ostrel/Ostrel.h>

using namespace Qt::StringLiterals;

namespace ostrel::demo {

QuickDemoHost::QuickDemoHost(QObject *parent)
    : QObject(parent)
{
}

QString QuickDemoHost::ostrelVersion() const
{
    return Ostrel::version();
}

void QuickDemoHost::showHandOver(const QString &callback, const QVariantMap &fields, const QString &outcome)
{
    appendToLog(HostReport::handOverEntry(callback, fields, outcome));
    refreshUser();
}

void QuickDemoHost::refreshUser()
{
    const QString user = HostReport::signedInUser();
    if (user == m_signedInUser)
        return;
    m_signedInUser = user;
    emit signedInUserChanged();
}

void QuickDemoHost::logOut()
{
    Ostrel::logOutUser();
    refreshUser();
}

void QuickDemoHost::presentExperience(OSTExperienceType experienceType)
{
    OSTExperienceSettings settings = OSTExperienceSettings::settings();
    settings.experienceType = experienceType;
    settings.presentingWindow = m_window;
    Ostrel::presentExperienceWithSettings(settings, [this](bool presented) {
        if (!presented)
            appendToLog(HostReport::nothingToShow());
        refreshUser();
    });
}

void QuickDemoHost::appendToLog(const QString &entry)
{
    // One entry a paragraph, as a plain-text log appends them.
    m_handOverLog += (m_handOverLog.isEmpty() ? QString() : u"\n"_s) + entry;
    emit handOverLogChanged();
}

} // namespace ostrel::demo
