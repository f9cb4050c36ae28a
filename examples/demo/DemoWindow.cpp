#include "DemoWindow.h"

#include "HostReport.h"

#include <ostrel/Ostrel.h>

#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace ostrel::demo {

DemoWindow::DemoWindow(QWidget *parent)
    : QWidget(parent), m_userLabel(new QLabel(this)), m_handOverLog(new QPlainTextEdit(this))
{
    setWindowTitle(u"Brightday"_s);
    setFixedSize(375, 667);
    auto *title = new QLabel(u"<h2>Brightday</h2>A host application with Ostrel %1"_s.arg(Ostrel::version()), this);
    title->setWordWrap(true);
    m_userLabel->setWordWrap(true);
    m_handOverLog->setReadOnly(true);
    m_handOverLog->setPlaceholderText(u"What the experience hands over to the host appears here."_s);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(16, 16, 16, 16);
    layout->addWidget(title);
    layout->addWidget(m_userLabel);
    layout->addWidget(new QLabel(u"Handed over to the host:"_s, this));
    layout->addWidget(m_handOverLog, 1);
    layout->addWidget(addButton(u"showAutomatic"_s, u"Show the automatic experience"_s,
                                [this] { presentExperience(OSTExperienceTypeAutomatic); }));
    layout->addWidget(addButton(u"showSignUp"_s, u"Sign up"_s, [this] { presentExperience(OSTExperienceTypeSignUp); }));
    layout->addWidget(addButton(u"showLogIn"_s, u"Log in"_s, [this] { presentExperience(OSTExperienceTypeLogin); }));
    layout->addWidget(addButton(u"logOut"_s, u"Log out"_s, [this] {
        Ostrel::logOutUser();
        refreshUser();
    }));
}

void DemoWindow::showHandOver(const QString &callback, const QVariantMap &fields, const QString &outcome)
{
    m_handOverLog->appendPlainText(HostReport::handOverEntry(callback, fields, outcome));
    refreshUser();
}

void DemoWindow::refreshUser()
{
    m_userLabel->setText(HostReport::signedInUser());
}

void DemoWindow::presentExperience(OSTExperienceType experienceType)
{
    OSTExperienceSettings settings = OSTExperienceSettings::settings();
    settings.experienceType = experienceType;
    settings.presentingViewController = this;
    Ostrel::presentExperienceWithSettings(settings, [this](bool presented) {
        if (!presented)
            m_handOverLog->appendPlainText(HostReport::nothingToShow());
        refreshUser();
    });
}

QPushButton *DemoWindow::addButton(const QString &objectName, const QString &title, const std::function<void()> &action)
{
    auto *button = new QPushButton(title, this);
    button->setObjectName(objectName);
    connect(button, &QPushButton::clicked, this, action);
    return button;
}

} // namespace ostrel::demo
