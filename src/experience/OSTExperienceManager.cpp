#include "experience/OSTExperienceManager.h"

#include "core/OSTDictionaryHelpers.h"
#include "core/OSTJsonWriter.h"
#include "core/OSTLogging.h"
#include "experience/OSTDelegateDefaults.h"
#include "experience/OSTFlowManager.h"
#include "platform/OSTBundle.h"
#include "platform/OSTURLOpener.h"

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

const QString installKey = u"install"_s;
const QString loggedOutKey = u"logged_out"_s;

void complete(const OSTExperienceManager::Completion &completion, bool success)
{
    if (completion)
        completion(success);
}

// `value` as the inside of a JSON string: a quote or a backslash in a user's name must show as
// itself, not end the string it lands in and break the screen.
QString asJSONStringContent(const QString &value)
{
    QByteArray quoted;
    OSTJsonWriter::appendString(quoted, value);
    return QString::fromUtf8(quoted.sliced(1, quoted.size() - 2));
}

} // namespace

OSTExperienceManager &OSTExperienceManager::sharedManager()
{
    static OSTExperienceManager *manager = new OSTExperienceManager(OSTFlowManager::sharedManager());
    return *manager;
}

OSTExperienceManager::OSTExperienceManager(OSTFlowManager &flows) : m_flows(flows) {}

void OSTExperienceManager::initLocalDefault(const std::optional<QVariantMap> &document)
{
    if (document)
        m_flows.loadLocalDefault(*document);
}

OSTExperienceManager::DelegateAnswer
OSTExperienceManager::sendToDelegate(const std::function<void(OSTExperienceDelegate &delegate)> &callback) const
{
    const std::shared_ptr<OSTExperienceDelegate> delegate = m_delegate.lock();
    if (!delegate)
        return DelegateAnswer::NotImplemented;
    return OSTDelegateDefaults::answeredByOverride([&] { callback(*delegate); }) ? DelegateAnswer::Answered
                                                                                : DelegateAnswer::NotImplemented;
}

// --- Presenting ------------------------------------------------------------------------------------

bool OSTExperienceManager::isReadyToPresent(const QString &warning) const
{
    if (readUserState(m_launch.isStartedOrLaunched))
        return true;
    OSTLogging::logWarning(warning);
    return false;
}

void OSTExperienceManager::presentExperienceWithSettings(const std::optional<OSTExperienceSettings> &settings,
                                                         Completion completion)
{
    if (!isReadyToPresent(u"Trying to present an experience before initializing the SDK!"_s))
        return; // deliberately without the completion
    const OSTExperienceSettings chosen = settings.value_or(OSTExperienceSettings::settings());
    if (chosen.experienceType == OSTExperienceTypeAutomatic && readUserState(m_user.requiresLogin)
        && readUserState(m_user.isLoggedIn)) {
        complete(completion, false);
        return;
    }
    if (!m_presenter) {
        OSTLogging::logWarning(u"No experience can be presented: nothing in this application shows experiences."_s);
        complete(completion, false);
        return;
    }
    m_isPresentingExperience = true;
    const std::shared_ptr<OSTExperiencePresenter::Presentation> presentation =
        m_presenter->presentationWithSettings(chosen);
    if (!presentation) {
        presentationDidFinish(nullptr, false, completion);
        return;
    }
    presentation->presentWithCompletion([this, presentation, completion](bool shown) {
        presentationDidFinish(presentation, shown, completion);
    });
}

void OSTExperienceManager::presentationDidFinish(
    const std::shared_ptr<OSTExperiencePresenter::Presentation> &presentation, bool shown, const Completion &completion)
{
    m_isPresentingExperience = shown;
    m_currentController = shown ? presentation : nullptr;
    complete(completion, shown);
}

void OSTExperienceManager::dismissExperienceWithCompletion(Completion completion)
{
    if (!m_isPresentingExperience || !m_currentController) {
        complete(completion, false);
        return;
    }
    m_currentController->dismissWithCompletion([this, completion](bool dismissed) {
        m_currentController.reset();
        m_isPresentingExperience = false;
        complete(completion, dismissed);
    });
}

void OSTExperienceManager::loadExperienceType(int type, LoadCompletion completion)
{
    if (!isReadyToPresent(u"Trying to load an experience before initializing the SDK!"_s))
        return;
    const auto deliver = [completion](QWidget *experience) {
        if (completion)
            completion(experience);
    };
    if (!m_presenter) {
        OSTLogging::logWarning(u"No experience can be loaded: nothing in this application shows experiences."_s);
        deliver(nullptr);
        return;
    }
    const std::shared_ptr<OSTExperiencePresenter::Presentation> presentation = m_presenter->presentationWithType(type);
    if (!presentation) {
        deliver(nullptr);
        return;
    }
    presentation->loadWithCompletion(
        [presentation, deliver](bool loaded) { deliver(loaded ? presentation->takeView() : nullptr); });
}

std::shared_ptr<const OSTScreen> OSTExperienceManager::currentScreen() const
{
    return m_currentController ? m_currentController->currentScreen() : nullptr;
}

// --- Choosing the experience -------------------------------------------------------------------------

std::optional<QString> OSTExperienceManager::experienceKeyForType(int type) const
{
    switch (type) {
    case OSTExperienceTypeAutomatic:
        return automaticExperienceKey();
    case OSTExperienceTypeInstall:
        return installKey;
    case OSTExperienceTypeLoggedOut:
        return loggedOutKey;
    case OSTExperienceTypeLogin:
        return u"login"_s;
    case OSTExperienceTypeRecoverPassword:
        return u"recoverpw"_s;
    case OSTExperienceTypeSignUp:
        return u"signup"_s;
    default:
        return std::nullopt;
    }
}

std::optional<QString> OSTExperienceManager::automaticExperienceKey() const
{
    // First matching row wins.
    if (m_experienceOverrideKey)
        return m_experienceOverrideKey; // as the service gave it, capitals and all
    const bool requiresLogin = readUserState(m_user.requiresLogin);
    const bool loggedIn = readUserState(m_user.isLoggedIn);
    const bool loggedInLifetime = readUserState(m_user.isLoggedInLifetime);
    if (requiresLogin && loggedIn)
        return std::nullopt;
    if (m_install && !loggedInLifetime)
        return installKey;
    if (loggedIn || !requiresLogin)
        return std::nullopt;
    if (loggedInLifetime && hasExperienceType(OSTExperienceTypeLoggedOut))
        return loggedOutKey;
    return installKey;
}

bool OSTExperienceManager::hasExperienceType(int type) const
{
    const std::optional<QString> key = experienceKeyForType(type);
    return key && (m_flows.hasFlowForKey(*key) || m_flows.hasLocalFlowForKey(*key));
}

void OSTExperienceManager::processLaunchResponse(const std::optional<QVariantMap> &response)
{
    m_install = !readUserState(m_launch.isLaunchedLifetime);
    const QVariantMap document = response.value_or(QVariantMap());
    if (response)
        m_flows.loadLaunchResponse(document);
    m_experienceOverrideKey = ost_stringForKey(document, u"show_key"_s);
}

// --- Host integration --------------------------------------------------------------------------------

bool OSTExperienceManager::openURLWithString(const QString &text)
{
    const QUrl url(text, QUrl::StrictMode);
    if (text.isEmpty() || !url.isValid() || url.scheme().isEmpty()) {
        OSTLogging::logWarning(u"Not an address that can be opened: %1"_s, text);
        return false;
    }
    return OSTURLOpener::openURL(url);
}

bool OSTExperienceManager::usesViewControllerBasedStatusBarAppearance()
{
    static const bool uses = readViewControllerBasedStatusBarAppearance();
    return uses;
}

bool OSTExperienceManager::readViewControllerBasedStatusBarAppearance()
{
    // A number of any kind (a JSON boolean among them) counts; anything else means YES.
    const QVariant value =
        OSTBundle::mainBundle()->objectForInfoDictionaryKey(u"UIViewControllerBasedStatusBarAppearance"_s);
    return ost_isNumber(value) ? value.toDouble() != 0.0 : true;
}

// --- Dynamic variables -------------------------------------------------------------------------------

void OSTExperienceManager::appendDynamicVariables(const QVariantMap &variables)
{
    for (auto variable = variables.cbegin(); variable != variables.cend(); ++variable) {
        if (variable.value().typeId() == QMetaType::QString)
            m_dynamicVariables.insert(variable.key(), variable.value().toString());
    }
}

void OSTExperienceManager::appendDynamicVariables(const QVariantMap &variables, const QString &prefix)
{
    QVariantMap prefixed;
    for (auto variable = variables.cbegin(); variable != variables.cend(); ++variable)
        prefixed.insert(u"%1.%2"_s.arg(prefix, variable.key()), variable.value());
    appendDynamicVariables(prefixed);
}

QString OSTExperienceManager::replaceDynamicVariables(const QString &text) const
{
    return replaceDynamicVariables(text, m_dynamicVariables);
}

QString OSTExperienceManager::replaceDynamicVariables(const QString &text, const QMap<QString, QString> &variables)
{
    QString replaced = text;
    for (auto variable = variables.cbegin(); variable != variables.cend(); ++variable)
        replaced.replace(u'{' + variable.key() + u'}', asJSONStringContent(variable.value()));
    return replaced;
}

} // namespace ostrel
