#include "users/OSTUserManager.h"

#include "core/OSTDateFormatter.h"
#include "core/OSTFileManager.h"
#include "core/OSTJsonWriter.h"
#include "core/OSTLogging.h"
#include "core/OSTUserDefaultsManager.h"
#include "core/OSTDictionaryHelpers.h"
#include "events/OSTEventHook.h"
#include "events/OSTEventSources.h"
#include "events/OSTInternalEvent.h"
#include "network/OSTRequestManager.h"
#include "platform/OSTMainQueue.h"
#include "platform/OSTPropertyListArchive.h"
#include "users/OSTFacebookManager.h"
#include "users/OSTUserArchive.h"

#include <QDateTime>
#include <QImage>
#include <QMutexLocker>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

const QString currentUserKey = u"currentUser"_s;
const QString loggedInKey = u"loggedIn"_s;
const QString loggedInLifetimeKey = u"loggedInLifetime"_s;
const QString userPropertiesEndpoint = u"user_properties"_s;
const QString nameParameter = u"ost_name"_s;
const QString userIDParameter = u"ost_user_id"_s;
constexpr double userPropertiesTimeout = 5.0;

// The service keeps the name and identifier it received beside the properties; they are the
// user's fields, never properties of their own.
QVariantMap serviceProperties(const QVariantMap &container)
{
    QVariantMap properties = ost_dictionaryForKey(container, userPropertiesEndpoint).value_or(QVariantMap());
    properties.remove(nameParameter);
    properties.remove(userIDParameter);
    return properties;
}

} // namespace

OSTUserManager &OSTUserManager::sharedManager()
{
    static OSTUserManager *manager =
        new OSTUserManager(OSTUserDefaultsManager::sharedManager(), OSTFileManager::sharedManager());
    return *manager;
}

OSTUserManager::OSTUserManager(OSTUserDefaultsManager &defaults, OSTFileManager &files)
    : m_defaults(defaults), m_files(files), m_currentUser(storedUser(defaults))
{
}

OSTUser OSTUserManager::storedUser(const OSTUserDefaultsManager &defaults)
{
    const QVariant stored = defaults.objectForKey(currentUserKey);
    if (!stored.isValid())
        return {};
    if (stored.typeId() == QMetaType::QByteArray) {
        if (auto user = OSTUserArchive::unarchive(stored.toByteArray()))
            return *std::move(user);
    }
    OSTLogging::logWarning(u"The stored user could not be read; starting with an empty user."_s);
    return {};
}

// --- State ----------------------------------------------------------------------------------------

OSTUser OSTUserManager::currentUser() const
{
    QMutexLocker locker(&m_userMutex);
    return m_currentUser;
}

bool OSTUserManager::isLoggedIn() const
{
    return m_defaults.boolForKey(loggedInKey);
}

void OSTUserManager::setLoggedIn(bool loggedIn)
{
    m_defaults.setBool(loggedIn, loggedInKey);
}

bool OSTUserManager::isLoggedInLifetime() const
{
    return m_defaults.boolForKey(loggedInLifetimeKey);
}

void OSTUserManager::setLoggedInLifetime(bool loggedInLifetime)
{
    m_defaults.setBool(loggedInLifetime, loggedInLifetimeKey);
}

bool OSTUserManager::requiresLogin() const
{
    return m_requiresLogin;
}

void OSTUserManager::setRequiresLogin(bool requiresLogin)
{
    m_requiresLogin = requiresLogin;
}

// --- Sign-up, log-in, log-out -------------------------------------------------------------------

void OSTUserManager::signUpUser()
{
    logInUserWithID(QVariant(), Registration::SignUp);
}

void OSTUserManager::signUpUserWithID(const QVariant &userID)
{
    logInUserWithID(userID, Registration::SignUp);
}

void OSTUserManager::logInUser()
{
    logInUserWithID(QVariant(), Registration::LogIn);
}

void OSTUserManager::logInUserWithID(const QVariant &userID)
{
    logInUserWithID(userID, Registration::LogIn);
}

void OSTUserManager::logInUserWithID(const QVariant &userID, Registration registration)
{
    const QString identifier = userID.typeId() == QMetaType::QString ? userID.toString() : u""_s;
    changeCurrentUser([&identifier](OSTUser &user) { user.setUserID(identifier); });
    setLoggedIn(true);
    if (!isLoggedInLifetime())
        setLoggedInLifetime(true);
    sendUserPropertiesWithCompletion([this, identifier](const QVariantMap &properties) {
        changeCurrentUser([&](OSTUser &user) {
            // A log-out or another log-in while the answer travelled: it belongs to nobody now.
            if (user.userID() == identifier)
                user.appendUserProperties(properties);
        });
    });
    const std::shared_ptr<const OSTTrackedItem> screen = m_currentScreen ? m_currentScreen() : nullptr;
    OSTEventHook::sendEvent(registration == Registration::SignUp ? OSTInternalEvent::signupEvent(screen.get())
                                                                 : OSTInternalEvent::loginEvent(screen.get()));
}

void OSTUserManager::logOutUser()
{
    // Recorded while the user is still known, so that the event names who logged out.
    OSTEventHook::sendEvent(OSTInternalEvent::logoutEvent());
    // Not a change of the user but a new one: nothing is sent and no properties are announced.
    const OSTUser emptyUser;
    {
        QMutexLocker locker(&m_userMutex);
        m_currentUser = emptyUser;
    }
    saveCurrentUser(emptyUser);
    emit didLogOut();
    setLoggedIn(false);
    OSTFacebookManager &facebook = OSTFacebookManager::sharedManager();
    if (facebook.isLoggedIn())
        facebook.logOut();
}

// --- Properties ---------------------------------------------------------------------------------

void OSTUserManager::appendUserProperties(const QVariantMap &properties, Delivery delivery)
{
    const QVariantMap normalized = normalizedUserProperties(properties);
    changeCurrentUser([&normalized](OSTUser &user) { user.appendUserProperties(normalized); });
    if (delivery == Delivery::Send)
        sendUserPropertiesWithCompletion();
}

void OSTUserManager::sendUserPropertiesWithCompletion(PropertiesCompletion completion)
{
    const QVariantMap parameters = userPropertiesParameters(bool(completion));
    OSTRequestManager::sharedManager().apiRequestWithEndpoint(
        userPropertiesEndpoint, parameters, userPropertiesTimeout,
        [completion = std::move(completion)](const std::optional<QVariantMap> &response,
                                             const std::optional<OSTError> &error) {
            if (error)
                OSTLogging::logDebug(u"Sending the user properties failed (%1); they are sent again with the next send."_s,
                                     error->message);
            if (!completion)
                return;
            // Answers arrive on the network queue; the user belongs to the GUI thread.
            OSTMainQueue::async([completion, properties = response ? serviceProperties(*response) : QVariantMap()] {
                completion(properties);
            });
        });
}

QVariantMap OSTUserManager::userPropertiesParameters(bool returnProperties) const
{
    const OSTEventSources::Sources sources = OSTEventSources::current();
    QVariantMap parameters;
    if (sources.sdkToken) {
        if (const auto token = sources.sdkToken())
            parameters.insert(u"token"_s, *token);
    }
    const std::optional<QString> advertiserID = sources.advertiserID ? sources.advertiserID() : std::nullopt;
    parameters.insert(u"advertiser_id"_s, advertiserID.value_or(u""_s));
    if (sources.deviceFingerprint)
        parameters.insert(sources.deviceFingerprint());
    if (returnProperties)
        parameters.insert(u"return_properties"_s, u"1"_s);

    const OSTUser user = currentUser();
    QVariantMap properties = user.properties();
    if (user.name())
        properties.insert(nameParameter, *user.name());
    if (user.userID())
        properties.insert(userIDParameter, *user.userID());
    parameters.insert(userPropertiesEndpoint, properties);
    return parameters;
}

QVariantMap OSTUserManager::normalizedUserProperties(const QVariantMap &properties) const
{
    QVariantMap normalized;
    for (auto entry = properties.cbegin(); entry != properties.cend(); ++entry) {
        const QVariant value = normalizedValue(entry.key(), entry.value());
        // Kept with the user and sent as JSON: it must be both (a date inside a list is neither
        // turned into text nor something JSON carries).
        if (OSTPropertyListArchive::isPropertyListValue(value) && OSTJsonWriter::isJSONValue(value)) {
            normalized.insert(entry.key(), value);
            continue;
        }
        OSTLogging::logWarning(u"The user property \"%1\" holds a value of type %2, which cannot be stored; "
                               u"it is left out."_s,
                               entry.key(), QString::fromLatin1(entry.value().typeName()));
    }
    return normalized;
}

QVariant OSTUserManager::normalizedValue(const QString &key, const QVariant &value) const
{
    if (value.typeId() == QMetaType::QDateTime)
        return ost_timestampFormatter().stringFromDate(value.toDateTime());
    if (value.typeId() == QMetaType::QImage) {
        const QString fileName = key + u".png"_s;
        if (m_files.saveImage(value.value<QImage>(), fileName))
            return fileName;
        OSTLogging::logWarning(u"The image of the user property \"%1\" could not be saved; it is left out."_s, key);
        return {};
    }
    return value;
}

// --- Other changes of the user ------------------------------------------------------------------

void OSTUserManager::setUserName(const std::optional<QString> &name)
{
    changeCurrentUser([&name](OSTUser &user) { user.setName(name); });
}

void OSTUserManager::setLastViewedVariation(const std::optional<QString> &variation)
{
    changeCurrentUser([&variation](OSTUser &user) { user.setLastViewedVariation(variation); });
}

void OSTUserManager::processLaunchResponse(const std::optional<QVariantMap> &response)
{
    const std::optional<QVariantMap> appUser = response ? ost_dictionaryForKey(*response, u"app_user"_s) : std::nullopt;
    if (!appUser)
        return;
    const std::optional<QVariantList> abTests = ost_arrayForKey(*appUser, u"ab_tests"_s);
    const QVariantMap properties = serviceProperties(*appUser);
    changeCurrentUser([&](OSTUser &user) {
        if (abTests) {
            QList<OSTUserABNTest> tests;
            for (const QVariant &entry : *abTests) {
                if (auto test = OSTUserABNTest::fromProperties(entry))
                    tests.append(*test);
            }
            user.setActiveABNTests(tests);
        }
        user.appendUserProperties(properties);
    });
}

// --- Observation --------------------------------------------------------------------------------

void OSTUserManager::changeCurrentUser(const std::function<void(OSTUser &)> &change)
{
    OSTUser before;
    OSTUser after;
    {
        QMutexLocker locker(&m_userMutex);
        before = m_currentUser;
        change(m_currentUser);
        after = m_currentUser;
    }
    reactToChange(before, after);
}

void OSTUserManager::reactToChange(const OSTUser &before, const OSTUser &after)
{
    if (before == after)
        return;
    saveCurrentUser(after);
    if (before.properties() != after.properties())
        emit propertiesChanged(after.properties());
    if (before.name() != after.name())
        sendUserPropertiesWithCompletion();
}

void OSTUserManager::saveCurrentUser(const OSTUser &user)
{
    m_defaults.setObject(OSTUserArchive::archive(user), currentUserKey);
}

} // namespace ostrel
