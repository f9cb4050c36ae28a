#include "model/OSTExperienceModel.h"

#include "core/OSTGuiThreadAnswer.h"
#include "core/OSTLogging.h"
#include "events/OSTEventHook.h"
#include "events/OSTInternalEvent.h"
#include "experience/OSTAction.h"
#include "experience/OSTExperienceManager.h"
#include "experience/OSTFlow.h"
#include "experience/OSTFlowManager.h"
#include "experience/OSTScreen.h"
#include "model/OSTExperienceView.h"
#include "model/OSTPhoneNumberFormatter.h"
#include "model/OSTPhoneNumberManager.h"
#include "model/OSTScreenModel.h"
#include "model/OSTValidationItemModel.h"
#include "model/OSTValidationManager.h"
#include "users/OSTUserManager.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

const QString logInFlowKey = u"LOGIN"_s;
const QString signUpFlowKey = u"SIGNUP"_s;
const QString recoverPasswordFlowKey = u"RECOVERPW"_s;

std::shared_ptr<const OSTFlow> flowForKey(const QString &key)
{
    // Server flows win over the local default's.
    OSTFlowManager &flows = OSTFlowManager::sharedManager();
    if (auto flow = flows.flowForKey(key))
        return flow;
    return flows.localFlowForKey(key);
}

// The screen after `screen` in its flow; null when it is the last or not in the flow.
std::shared_ptr<const OSTScreen> screenAfter(const OSTFlow &flow, const OSTScreen &screen)
{
    const OSTFlow::Screens &screens = flow.screens();
    const auto found = std::find_if(screens.begin(), screens.end(),
                                    [&screen](const std::shared_ptr<OSTScreen> &each) { return each.get() == &screen; });
    if (found == screens.end() || std::next(found) == screens.end())
        return nullptr;
    return *std::next(found);
}

bool isLastScreenOfFlow(const OSTFlow &flow, const OSTScreen &screen)
{
    return !flow.screens().empty() && flow.screens().back().get() == &screen;
}

bool isFirstScreenOfFlow(const OSTFlow &flow, const OSTScreen &screen)
{
    return !flow.screens().empty() && flow.screens().front().get() == &screen;
}

bool belongsTo(const OSTScreenModel &screen, const OSTFlow &flow)
{
    return screen.screen()->flow().get() == &flow;
}

} // namespace

// --- Making -----------------------------------------------------------------------------------

std::optional<OSTExperienceModel::Start> OSTExperienceModel::startOfType(int type)
{
    const std::optional<QString> key = OSTExperienceManager::sharedManager().experienceKeyForType(type);
    if (!key)
        return std::nullopt;
    const std::shared_ptr<const OSTFlow> flow = flowForKey(*key);
    if (!flow) {
        if (type == OSTExperienceTypeLoggedOut)
            return startOfType(OSTExperienceTypeInstall);
        OSTLogging::logWarning(u"There is no flow for the experience \"%1\""_s, *key);
        return std::nullopt;
    }
    if (flow->screens().empty()) {
        OSTLogging::logWarning(u"The flow \"%1\" has no screen to show"_s, flow->key());
        return std::nullopt;
    }
    return Start{*key, flow};
}

void OSTExperienceModel::verifyWithService(const QString &number, std::function<void(bool verified)> verified)
{
    OSTPhoneNumberManager::sharedManager().validatePhoneNumber(number, verified);
}

OSTExperienceModel::OSTExperienceModel(OSTExperienceView &view, OSTScreenModel &first, const QString &experienceKey,
                                       PhoneVerification verifyPhoneNumber, QObject *parent)
    : QObject(parent), m_view(view), m_verifyPhoneNumber(std::move(verifyPhoneNumber)), m_screens{&first}
{
    // A flow delivered under a key with capitals then has two managers. Kept as the service
    // expects it.
    adopt(first, experienceKey);
}

OSTExperienceModel::~OSTExperienceModel() = default;

void OSTExperienceModel::adopt(OSTScreenModel &screen, const QString &validationKey)
{
    screen.setDelegate(this);
    screen.setValidationManager(validationManagerForFlowWithKey(validationKey));
}

void OSTExperienceModel::experienceDidAppear()
{
    if (m_didAppear)
        return;
    m_didAppear = true;
    if (const std::shared_ptr<const OSTFlow> flow = currentFlow()) {
        OSTEventHook::sendEvent(OSTInternalEvent::flowStartedEvent(*flow));
        OSTUserManager::sharedManager().setLastViewedVariation(flow->variationName());
    }
}

// --- State ------------------------------------------------------------------------------------

OSTScreenModel *OSTExperienceModel::topScreen() const
{
    return m_screens.isEmpty() ? nullptr : m_screens.last().data();
}

std::shared_ptr<const OSTScreen> OSTExperienceModel::currentScreen() const
{
    const OSTScreenModel *top = topScreen();
    return top ? top->screen() : nullptr;
}

std::shared_ptr<const OSTFlow> OSTExperienceModel::currentFlow() const
{
    const std::shared_ptr<const OSTScreen> screen = currentScreen();
    return screen ? screen->flow() : nullptr;
}

std::shared_ptr<OSTValidationManager> OSTExperienceModel::validationManagerForFlowWithKey(const QString &key)
{
    std::shared_ptr<OSTValidationManager> &manager = m_validationManagers[key];
    if (!manager)
        manager = std::make_shared<OSTValidationManager>();
    return manager;
}

void OSTExperienceModel::removeValidationManagerForFlowWithKey(const QString &key)
{
    m_validationManagers.remove(key);
}

// --- Navigation -------------------------------------------------------------------------------

void OSTExperienceModel::push(OSTScreenModel &screen)
{
    m_screens.append(&screen);
    m_view.pushScreen(screen);
}

void OSTExperienceModel::pop()
{
    m_screens.removeLast();
    m_view.popScreen();
}

void OSTExperienceModel::popTo(OSTScreenModel &screen)
{
    while (!m_screens.isEmpty() && m_screens.last() != &screen)
        m_screens.removeLast();
    m_view.popToScreen(screen);
}

void OSTExperienceModel::goToNextScreen()
{
    OSTScreenModel *top = topScreen();
    const std::shared_ptr<const OSTFlow> flow = currentFlow();
    if (!top || !flow)
        return;
    const OSTScreen &screen = *top->screen();
    if (isLastScreenOfFlow(*flow, screen)) {
        dismissExperience();
        return;
    }
    if (const auto manager = top->validationManager())
        OSTExperienceManager::sharedManager().appendDynamicVariables(manager->allSavableFieldsOfGroupWithKey(screen.key()));
    const std::shared_ptr<const OSTScreen> after = screenAfter(*flow, screen);
    OSTScreenModel *next = after ? m_view.makeScreen(after) : nullptr;
    if (!next)
        return; // the screen could not be built: the user stays where they are
    adopt(*next, flow->key());
    push(*next);
}

void OSTExperienceModel::goToPreviousScreen()
{
    const OSTScreenModel *top = topScreen();
    if (!top)
        return;
    if (m_screens.size() == 1) {
        close();
        return;
    }
    const std::shared_ptr<const OSTFlow> flow = currentFlow();
    // Leaving a flow backwards forgets what was entered in it.
    if (flow && isFirstScreenOfFlow(*flow, *top->screen()))
        removeValidationManagerForFlowWithKey(flow->key());
    pop();
}

void OSTExperienceModel::goToPreviousFlow()
{
    const std::shared_ptr<const OSTFlow> flow = currentFlow();
    if (!flow)
        return;
    for (auto below = m_screens.rbegin(); below != m_screens.rend(); ++below) {
        if (*below && !belongsTo(**below, *flow)) {
            removeValidationManagerForFlowWithKey(flow->key());
            popTo(**below);
            return;
        }
    }
    close();
}

void OSTExperienceModel::startFlowWithKey(const QString &key)
{
    const std::shared_ptr<const OSTFlow> current = currentFlow();
    // A local flow only ever leads to local flows, a service flow to service flows.
    OSTFlowManager &flows = OSTFlowManager::sharedManager();
    const std::shared_ptr<const OSTFlow> flow = current && current->isLocal() ? flows.localFlowForKey(key)
                                                                               : flows.flowForKey(key);
    if (!flow || flow->screens().empty()) {
        OSTLogging::logWarning(u"The flow \"%1\" cannot be started: it is unknown or has no screens"_s, key);
        return;
    }
    OSTScreenModel *first = m_view.makeScreen(flow->screens().front());
    if (!first)
        return;
    adopt(*first, flow->key());
    OSTPhoneNumberManager::sharedManager().reset();
    push(*first);
}

void OSTExperienceModel::close()
{
    if (m_dismissed)
        return;
    if (const OSTScreenModel *top = topScreen()) {
        // The screen's own manager: on the first screen of a flow chosen by a differently written
        // key, that is where the fields are.
        const auto manager = top->validationManager();
        const QVariantMap fields = manager ? manager->allFieldsUpToGroupWithKey(top->screen()->key()) : QVariantMap();
        OSTExperienceManager::sharedManager().sendToDelegate(
            [&fields](OSTExperienceDelegate &delegate) { delegate.willCloseWithFields(fields); });
    }
    dismissExperience();
}

void OSTExperienceModel::dismissExperience()
{
    // Answers still on their way find the experience gone and are dropped.
    m_dismissed = true;
    m_view.hideLoadingOverlay();
    m_view.dismiss();
}

bool OSTExperienceModel::goToFirstInvalidScreenOfFlow(const OSTFlow &flow)
{
    for (const QPointer<OSTScreenModel> &screen : std::as_const(m_screens)) {
        if (!screen || !belongsTo(*screen, flow) || screen->isValid())
            continue;
        if (screen != topScreen())
            popTo(*screen);
        return true;
    }
    return false;
}

// --- Screen model delegate --------------------------------------------------------------------

void OSTExperienceModel::screenModelShouldClose(OSTScreenModel &)
{
    close();
}

void OSTExperienceModel::screenModelShouldGoToNextScreen(OSTScreenModel &screen)
{
    validateScreen(screen);
}

void OSTExperienceModel::screenModelShouldGoToPreviousScreen(OSTScreenModel &)
{
    goToPreviousScreen();
}

void OSTExperienceModel::screenModelShouldStartFlow(OSTScreenModel &, const QString &flowKey)
{
    startFlowWithKey(flowKey);
}

// --- Leaving a screen forward -----------------------------------------------------------------

void OSTExperienceModel::validateScreen(OSTScreenModel &leaving)
{
    // One step forward at a time, and only from the screen on display: a second "next" (a double
    // click, a second Return) while a step runs or a screen slides away is not a second step.
    if (m_steppingForward || &leaving != topScreen())
        return;
    if (!leaving.isValid())
        return; // the screen shows its own errors
    m_steppingForward = true;
    // Set while an answer is awaited; the overlay shows only when a check did not answer at once.
    auto pending = std::make_shared<bool>(true);
    QPointer<OSTScreenModel> screenModel(&leaving);
    validateFieldsOfScreen(leaving, [this, pending, screenModel] {
        *pending = false;
        m_steppingForward = false;
        if (m_dismissed)
            return;
        if (!screenModel || !screenModel->isValid()) {
            m_view.hideLoadingOverlay();
            return;
        }
        const std::shared_ptr<const OSTScreen> screen = screenModel->screen();
        const std::shared_ptr<const OSTFlow> flow = screen->flow();
        if (!flow || !isLastScreenOfFlow(*flow, *screen)) {
            goToNextScreen();
            m_view.hideLoadingOverlay();
            return;
        }
        *pending = true;
        m_steppingForward = true;
        const std::shared_ptr<OSTValidationManager> manager = screenModel->validationManager();
        validateFlowOfScreen(*screenModel, [this, pending, flow, screen, manager](const std::optional<QString> &userID) {
            *pending = false;
            m_steppingForward = false;
            endFlow({flow, screen, manager}, userID);
        });
        if (*pending)
            m_view.showLoadingOverlay();
    });
    if (*pending)
        m_view.showLoadingOverlay();
}

void OSTExperienceModel::validateFieldsOfScreen(OSTScreenModel &screen, Done done)
{
    const std::shared_ptr<OSTValidationManager> manager = screen.validationManager();
    const QString screenKey = screen.screen()->key();
    const QVariantMap unique = manager ? manager->uniqueFieldsOfGroupWithKey(screenKey) : QVariantMap();
    QPointer<OSTScreenModel> screenModel(&screen);
    const auto checkPhone = [this, screenModel, done] {
        if (screenModel)
            validatePhoneNumberOfScreenIfAny(*screenModel, done);
        else
            done();
    };
    if (unique.isEmpty()) {
        checkPhone();
        return;
    }
    const auto answer = ost_answerOnGuiThreadOnce<const OSTValidationResult &>(
        this, u"The experience delegate's validateUniqueFields"_s, OSTAnswerDelivery::AtOnce,
        [manager, screenKey, done, checkPhone](const OSTValidationResult &result) {
            if (result.isValid()) {
                checkPhone();
                return;
            }
            manager->handleValidationResult(result, screenKey);
            done();
        });
    const auto sent = OSTExperienceManager::sharedManager().sendToDelegate(
        [&](OSTExperienceDelegate &delegate) { delegate.validateUniqueFields(unique, answer); });
    if (sent == OSTExperienceManager::DelegateAnswer::NotImplemented)
        checkPhone();
}

void OSTExperienceModel::validatePhoneNumberOfScreenIfAny(OSTScreenModel &screen, Done done)
{
    const std::shared_ptr<OSTValidationManager> manager = screen.validationManager();
    const QString screenKey = screen.screen()->key();
    const std::shared_ptr<OSTValidationItemModel> item =
        manager ? manager->phoneNumberItemOfGroupWithKey(screenKey) : nullptr;
    const QString number = item && item->value().isValid() ? item->value().toString() : QString();
    if (!item || item->userPropertyName().isEmpty() || number.isEmpty()) {
        done();
        return;
    }
    const auto answer = ost_answerOnGuiThreadOnce<bool>(
        this, u"The phone number verification"_s, OSTAnswerDelivery::AtOnce, [manager, item, screenKey, done](bool verified) {
            if (!verified) {
                OSTValidationResult result;
                result.invalidateField(item->userPropertyName());
                manager->handleValidationResult(result, screenKey);
            }
            done();
        });
    m_verifyPhoneNumber(OSTPhoneNumberFormatter::rawPhoneNumber(number), answer);
}

void OSTExperienceModel::validateFlowOfScreen(OSTScreenModel &screen, UserDone done)
{
    const std::shared_ptr<OSTValidationManager> manager = screen.validationManager();
    const std::shared_ptr<const OSTFlow> flow = screen.screen()->flow();
    const QString key = flow ? flow->key() : QString();
    const QVariantMap fields = manager ? manager->allFields() : QVariantMap();
    const auto handOver = [manager, done](const OSTValidationResult &result, const std::optional<QString> &userID) {
        if (manager)
            manager->handleValidationResult(result);
        done(userID);
    };
    const auto authenticated = ost_answerOnGuiThreadOnce<const OSTValidationResult &, const QString &>(
        this, u"The experience delegate's answer at the end of flow \"%1\""_s.arg(key), OSTAnswerDelivery::AtOnce,
        [handOver](const OSTValidationResult &result, const QString &userID) {
            handOver(result, userID.isEmpty() ? std::nullopt : std::optional<QString>(userID));
        });

    // The keys are compared exactly: a flow keyed "login" is not a log-in flow.
    std::function<void(OSTExperienceDelegate &)> handOverToHost;
    if (key == logInFlowKey) {
        handOverToHost = [&](OSTExperienceDelegate &delegate) { delegate.logInWithFields(fields, authenticated); };
    } else if (key == signUpFlowKey) {
        handOverToHost = [&](OSTExperienceDelegate &delegate) { delegate.signUpWithFields(fields, authenticated); };
    } else if (key == recoverPasswordFlowKey) {
        const auto validated = ost_answerOnGuiThreadOnce<const OSTValidationResult &>(
            this, u"The experience delegate's recoverPasswordWithFields"_s, OSTAnswerDelivery::AtOnce,
            [handOver](const OSTValidationResult &result) { handOver(result, std::nullopt); });
        handOverToHost = [&fields, validated](OSTExperienceDelegate &delegate) {
            delegate.recoverPasswordWithFields(fields, validated);
        };
    }
    if (!handOverToHost
        || OSTExperienceManager::sharedManager().sendToDelegate(handOverToHost)
               == OSTExperienceManager::DelegateAnswer::NotImplemented)
        done(std::nullopt);
}

void OSTExperienceModel::endFlow(const FlowEnd &end, const std::optional<QString> &userID)
{
    if (m_dismissed)
        return;
    m_view.hideLoadingOverlay();
    if (goToFirstInvalidScreenOfFlow(*end.flow))
        return; // the host marked a field invalid: the user corrects it first
    recordAccount(end, userID);
    const QString &key = end.flow->key();
    if (key == signUpFlowKey || key == logInFlowKey || key == recoverPasswordFlowKey)
        OSTEventHook::sendEvent(OSTInternalEvent::flowCompletedEvent(*end.flow, *end.screen));
    runEndAction(*end.flow);
}

void OSTExperienceModel::recordAccount(const FlowEnd &end, const std::optional<QString> &userID)
{
    const bool signsUp = end.flow->key() == signUpFlowKey;
    if (!signsUp && end.flow->key() != logInFlowKey)
        return;
    OSTUserManager &users = OSTUserManager::sharedManager();
    if (end.manager)
        users.appendUserProperties(end.manager->allSavableFields(), OSTUserManager::Delivery::KeepLocal);
    const QVariant identifier = userID ? QVariant(*userID) : QVariant();
    if (signsUp)
        users.signUpUserWithID(identifier);
    else
        users.logInUserWithID(identifier);
}

void OSTExperienceModel::runEndAction(const OSTFlow &flow)
{
    const OSTAction &action = flow.endAction();
    switch (action.type()) {
    case OSTActionTypeClose:
        dismissExperience();
        return;
    case OSTActionTypeOpenURL:
        if (OSTExperienceManager::openURLWithString(action.urlString().value_or(QString())) && action.shouldCloseSelf())
            dismissExperience();
        return;
    default:
        goToPreviousFlow();
        return;
    }
}

} // namespace ostrel
