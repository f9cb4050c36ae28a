#pragma once

#include <ostrel/OSTExperienceDelegate.h>
#include <ostrel/OSTExperienceSettings.h>

#include "experience/OSTExperienceLaunchState.h"
#include "experience/OSTExperiencePresenter.h"
#include "experience/OSTExperienceUserState.h"

#include <QMap>
#include <QString>
#include <QVariantMap>

#include <functional>
#include <memory>
#include <optional>

class QWidget;

namespace ostrel {

class OSTFlowManager;
class OSTScreen;

// The one way in for the host's requests to show, load or dismiss an experience. It chooses the
// automatic experience from the user's state and the service's "show_key", holds the experience on
// screen, carries the host's experience delegate, and keeps the dynamic variables that screen
// texts refer to as "{name}".
//
// Lives for the whole process and belongs to the GUI thread: every call, including the launch
// response (the service manager brings it there), is made on it. The user and launch state and
// the presenter come from the layers above through start-up.
class OSTExperienceManager {
public:
    using Completion = std::function<void(bool success)>;
    using LoadCompletion = std::function<void(QWidget *experience)>;

    // Whether a delegate callback reached an override of the host.
    enum class DelegateAnswer { Answered, NotImplemented };

    static OSTExperienceManager &sharedManager();

    explicit OSTExperienceManager(OSTFlowManager &flows);
    OSTExperienceManager(const OSTExperienceManager &) = delete;
    OSTExperienceManager &operator=(const OSTExperienceManager &) = delete;

    // --- Connections (start-up) --------------------------------------------------------------
    void connectUserState(OSTExperienceUserState state) { m_user = std::move(state); }
    void connectLaunchState(OSTExperienceLaunchState state) { m_launch = std::move(state); }
    void setPresenter(std::shared_ptr<OSTExperiencePresenter> presenter) { m_presenter = std::move(presenter); }
    // Registers the local default document's flows and screens, all or nothing.
    void initLocalDefault(const std::optional<QVariantMap> &document);

    // --- Delegate ----------------------------------------------------------------------------
    // Held weakly.
    void setExperienceDelegate(const std::shared_ptr<OSTExperienceDelegate> &delegate) { m_delegate = delegate; }
    std::shared_ptr<OSTExperienceDelegate> experienceDelegate() const { return m_delegate.lock(); }
    // Calls `callback` on the delegate; NotImplemented when there is none or the host did not
    // override that callback.
    DelegateAnswer sendToDelegate(const std::function<void(OSTExperienceDelegate &delegate)> &callback) const;

    // --- Presenting --------------------------------------------------------------------------
    void presentExperienceWithSettings(const std::optional<OSTExperienceSettings> &settings, Completion completion);
    void dismissExperienceWithCompletion(Completion completion);
    void loadExperienceType(int type, LoadCompletion completion);
    bool isPresentingExperience() const { return m_isPresentingExperience; }
    // The screen on display; nullptr when nothing is shown.
    std::shared_ptr<const OSTScreen> currentScreen() const;

    // --- Choosing the experience ---------------------------------------------------------------
    // The flow key of `type`; the automatic key for type 0; none for an unknown type.
    std::optional<QString> experienceKeyForType(int type) const;
    std::optional<QString> automaticExperienceKey() const;
    bool hasExperienceType(int type) const;
    const std::optional<QString> &experienceOverrideKey() const { return m_experienceOverrideKey; }
    bool isInstall() const { return m_install; }
    // The experience part of a launch response (nothing after a failed launch).
    void processLaunchResponse(const std::optional<QVariantMap> &response);

    // --- Host integration ----------------------------------------------------------------------
    // Hands `text` as an address to the URL hook; false for text that makes no address.
    static bool openURLWithString(const QString &text);
    // The main bundle's "UIViewControllerBasedStatusBarAppearance"; true unless it is a boolean
    // or number that says otherwise. Read once.
    static bool usesViewControllerBasedStatusBarAppearance();
    // The same reading of the main bundle, done again at every call.
    static bool readViewControllerBasedStatusBarAppearance();

    // --- Dynamic variables ---------------------------------------------------------------------
    // String values are added, replacing earlier ones; other values are ignored.
    void appendDynamicVariables(const QVariantMap &variables);
    // Each name becomes "prefix.name".
    void appendDynamicVariables(const QVariantMap &variables, const QString &prefix);
    void cleanDynamicVariables() { m_dynamicVariables.clear(); }
    // Replaces "{name}" in a screen's JSON text with each variable's value, one variable after the
    // other in name order; a value is escaped for the JSON string it lands in and otherwise
    // inserted as it is, so a reference it holds is replaced only by a later variable.
    QString replaceDynamicVariables(const QString &text) const;
    // The same with `variables` instead of the manager's own (the screen preview's).
    static QString replaceDynamicVariables(const QString &text, const QMap<QString, QString> &variables);
    const QMap<QString, QString> &dynamicVariables() const { return m_dynamicVariables; }

private:
    bool isReadyToPresent(const QString &warning) const;
    bool readUserState(const std::function<bool()> &source) const { return source && source(); }
    void presentationDidFinish(const std::shared_ptr<OSTExperiencePresenter::Presentation> &presentation, bool shown,
                               const Completion &completion);

    OSTFlowManager &m_flows;
    OSTExperienceUserState m_user;
    OSTExperienceLaunchState m_launch;
    std::shared_ptr<OSTExperiencePresenter> m_presenter;
    std::weak_ptr<OSTExperienceDelegate> m_delegate;

    bool m_isPresentingExperience = false;
    // The root controller of the experience on screen.
    std::shared_ptr<OSTExperiencePresenter::Presentation> m_currentController;
    std::optional<QString> m_experienceOverrideKey;
    bool m_install = false;
    QMap<QString, QString> m_dynamicVariables;
};

} // namespace ostrel
