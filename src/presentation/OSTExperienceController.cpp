#include "presentation/OSTExperienceController.h"

#include "core/OSTGuiThreadAnswer.h"
#include "core/OSTLogging.h"
#include "events/OSTEventHook.h"
#include "events/OSTInternalEvent.h"
#include "experience/OSTAction.h"
#include "experience/OSTExperienceManager.h"
#include "experience/OSTFlow.h"
#include "experience/OSTFlowManager.h"
#include "experience/OSTScreen.h"
#include "input/OSTPhoneNumberFormatter.h"
#include "input/OSTPhoneNumberManager.h"
#include "input/OSTValidationGroupModel.h"
#include "input/OSTValidationItemModel.h"
#include "input/OSTValidationManager.h"
#include "presentation/OSTScreenEnvironment.h"
#include "render/OSTLoadingOverlay.h"
#include "users/OSTUserManager.h"

#include <QShortcut>

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

bool isValid(const OSTScreenController &controller)
{
    // A screen outside any flow's validation has nothing to check.
    const std::shared_ptr<OSTValidationGroupModel> model = controller.model();
    return !model || model->isValid();
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

bool belongsTo(const OSTScreenController &controller, const OSTFlow &flow)
{
    return controller.screen()->flow().get() == &flow;
}

} // namespace

// --- Making ---------------------------------------------------------------------------------

void OSTExperienceController::controllerWithType(int type, QSizeF area, Completion completion)
{
    const std::optional<QString> key = OSTExperienceManager::sharedManager().experienceKeyForType(type);
    if (!key) {
        completion(nullptr);
        return;
    }
    const std::shared_ptr<const OSTFlow> flow = flowForKey(*key);
    if (!flow) {
        if (type == OSTExperienceTypeLoggedOut) {
            controllerWithType(OSTExperienceTypeInstall, area, std::move(completion));
            return;
        }
        OSTLogging::logWarning(u"There is no flow for the experience \"%1\""_s, *key);
        completion(nullptr);
        return;
    }
    if (flow->screens().empty()) {
        OSTLogging::logWarning(u"The flow \"%1\" has no screen to show"_s, flow->key());
        completion(nullptr);
        return;
    }
    const OSTScreenController::Environment environment = OSTScreenEnvironment::forExperience(area);
    OSTScreenController::controllerWithScreen(
        flow->screens().front(), environment,
        [environment, key = *key, completion = std::move(completion)](OSTScreenController *first) {
            completion(first ? new OSTExperienceController(environment, first, key) : nullptr);
        });
}

OSTExperienceController::OSTExperienceController(const OSTScreenController::Environment &screenEnvironment,
                                                 OSTScreenController *first, const QString &experienceKey)
    : OSTNavigationController(first), m_screenEnvironment(screenEnvironment)
{
    // The first screen uses the key the experience was chosen by, later screens their flow's
    // own key: a flow delivered under a key with capitals then has two managers. Kept as the
    // service expects it.
    adopt(*first, experienceKey);
}

OSTExperienceController::~OSTExperienceController() = default;

QWidget *OSTExperienceController::loadView()
{
    QWidget *view = OSTNavigationController::loadView();
    // The overlay takes every click, the screen's close button's too: while it waits for an
    // answer that may never come, Escape still closes the experience.
    m_closeWhileWaiting = new QShortcut(QKeySequence(Qt::Key_Escape), view, this, &OSTExperienceController::close,
                                        Qt::WidgetWithChildrenShortcut);
    m_closeWhileWaiting->setEnabled(false);
    return view;
}

void OSTExperienceController::adopt(OSTScreenController &controller, const QString &validationKey)
{
    controller.setDelegate(this);
    controller.setValidationManager(validationManagerForFlowWithKey(validationKey));
}

OSTScreenController *OSTExperienceController::makeScreenController(const std::shared_ptr<const OSTScreen> &screen)
{
    return OSTScreenController::controllerWithScreen(screen, m_screenEnvironment);
}

void OSTExperienceController::viewDidAppear(OSTAnimation animation)
{
    // The flow starts before its first screen is reported displayed (by the base, below).
    if (!m_didAppear) {
        m_didAppear = true;
        if (const std::shared_ptr<const OSTFlow> flow = currentFlow()) {
            OSTEventHook::sendEvent(OSTInternalEvent::flowStartedEvent(*flow));
            OSTUserManager::sharedManager().setLastViewedVariation(flow->variationName());
        }
    }
    OSTNavigationController::viewDidAppear(animation);
}

// --- State ------------------------------------------------------------------------------------

OSTScreenController *OSTExperienceController::topScreenController() const
{
    return qobject_cast<OSTScreenController *>(topViewController());
}

std::shared_ptr<const OSTScreen> OSTExperienceController::currentScreen() const
{
    const OSTScreenController *top = topScreenController();
    return top ? top->screen() : nullptr;
}

std::shared_ptr<const OSTFlow> OSTExperienceController::currentFlow() const
{
    const std::shared_ptr<const OSTScreen> screen = currentScreen();
    return screen ? screen->flow() : nullptr;
}

std::shared_ptr<OSTValidationManager> OSTExperienceController::validationManagerForFlowWithKey(const QString &key)
{
    std::shared_ptr<OSTValidationManager> &manager = m_validationManagers[key];
    if (!manager)
        manager = std::make_shared<OSTValidationManager>();
    return manager;
}

void OSTExperienceController::removeValidationManagerForFlowWithKey(const QString &key)
{
    m_validationManagers.remove(key);
}

// --- Navigation -------------------------------------------------------------------------------

void OSTExperienceController::goToNextScreen()
{
    OSTScreenController *top = topScreenController();
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
    OSTScreenController *next = after ? makeScreenController(after) : nullptr;
    if (!next)
        return; // the screen could not be built: the user stays where they are
    adopt(*next, flow->key());
    pushViewController(next, OSTAnimation::Animated);
}

void OSTExperienceController::goToPreviousScreen()
{
    OSTScreenController *top = topScreenController();
    if (!top)
        return;
    if (viewControllers().size() == 1) {
        close();
        return;
    }
    const std::shared_ptr<const OSTFlow> flow = currentFlow();
    // Leaving a flow backwards forgets what was entered in it.
    if (flow && isFirstScreenOfFlow(*flow, *top->screen()))
        removeValidationManagerForFlowWithKey(flow->key());
    popViewController(OSTAnimation::Animated);
}

void OSTExperienceController::goToPreviousFlow()
{
    const std::shared_ptr<const OSTFlow> flow = currentFlow();
    if (!flow)
        return;
    const QList<OSTViewController *> &stack = viewControllers();
    for (auto below = stack.rbegin(); below != stack.rend(); ++below) {
        const auto *controller = qobject_cast<OSTScreenController *>(*below);
        if (controller && !belongsTo(*controller, *flow)) {
            removeValidationManagerForFlowWithKey(flow->key());
            popToViewController(*below, OSTAnimation::Animated);
            return;
        }
    }
    close();
}

void OSTExperienceController::startFlowWithKey(const QString &key)
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
    OSTScreenController *first = makeScreenController(flow->screens().front());
    if (!first)
        return;
    adopt(*first, flow->key());
    OSTPhoneNumberManager::sharedManager().reset();
    pushViewController(first, OSTAnimation::Animated);
}

void OSTExperienceController::close()
{
    if (m_dismissed)
        return;
    if (const OSTScreenController *top = topScreenController()) {
        // The screen's own manager: on the first screen of a flow chosen by a differently written
        // key, that is where the fields are.
        const auto manager = top->validationManager();
        const QVariantMap fields = manager ? manager->allFieldsUpToGroupWithKey(top->screen()->key()) : QVariantMap();
        OSTExperienceManager::sharedManager().sendToDelegate(
            [&fields](OSTExperienceDelegate &delegate) { delegate.willCloseWithFields(fields); });
    }
    dismissExperience();
}

void OSTExperienceController::dismissExperience()
{
    // Answers still on their way find the experience gone and are dropped.
    m_dismissed = true;
    hideLoadingOverlay();
    OSTExperienceManager::sharedManager().dismissExperienceWithCompletion(nullptr);
}

bool OSTExperienceController::goToFirstInvalidScreenOfFlow(const OSTFlow &flow)
{
    for (OSTViewController *each : viewControllers()) {
        auto *controller = qobject_cast<OSTScreenController *>(each);
        if (!controller || !belongsTo(*controller, flow) || isValid(*controller))
            continue;
        if (controller != topViewController())
            popToViewController(controller, OSTAnimation::Animated);
        return true;
    }
    return false;
}

// --- Screen controller delegate -------------------------------------------------------------

void OSTExperienceController::screenControllerShouldClose(OSTScreenController &)
{
    close();
}

void OSTExperienceController::screenControllerShouldGoToNextScreen(OSTScreenController &controller)
{
    validateController(controller);
}

void OSTExperienceController::screenControllerShouldGoToPreviousScreen(OSTScreenController &)
{
    goToPreviousScreen();
}

void OSTExperienceController::screenControllerShouldStartFlow(OSTScreenController &, const QString &flowKey)
{
    startFlowWithKey(flowKey);
}

// --- Leaving a screen forward ---------------------------------------------------------------

void OSTExperienceController::showLoadingOverlay()
{
    if (!m_loadingOverlay)
        m_loadingOverlay = new OSTLoadingOverlay(view());
    m_loadingOverlay->presentOnView(view());
    m_closeWhileWaiting->setEnabled(true);
}

void OSTExperienceController::hideLoadingOverlay()
{
    if (m_loadingOverlay)
        m_loadingOverlay->dismiss();
    if (m_closeWhileWaiting)
        m_closeWhileWaiting->setEnabled(false);
}

void OSTExperienceController::validateController(OSTScreenController &controller)
{
    // One step forward at a time, and only from the screen on display: a second "next" (a double
    // click, a second Return) while a step runs or a screen slides away is not a second step.
    if (m_steppingForward || &controller != topScreenController())
        return;
    if (!isValid(controller))
        return; // the screen shows its own errors
    m_steppingForward = true;
    // Set while an answer is awaited; the overlay shows only when a check did not answer at once.
    auto pending = std::make_shared<bool>(true);
    QPointer<OSTScreenController> screenController(&controller);
    validateScreenOfController(controller, [this, pending, screenController] {
        *pending = false;
        m_steppingForward = false;
        if (m_dismissed)
            return;
        if (!screenController || !isValid(*screenController)) {
            hideLoadingOverlay();
            return;
        }
        const std::shared_ptr<const OSTScreen> screen = screenController->screen();
        const std::shared_ptr<const OSTFlow> flow = screen->flow();
        if (!flow || !isLastScreenOfFlow(*flow, *screen)) {
            goToNextScreen();
            hideLoadingOverlay();
            return;
        }
        *pending = true;
        m_steppingForward = true;
        const std::shared_ptr<OSTValidationManager> manager = screenController->validationManager();
        validateFlowOfController(*screenController, [this, pending, flow, screen, manager](const std::optional<QString> &userID) {
            *pending = false;
            m_steppingForward = false;
            endFlow({flow, screen, manager}, userID);
        });
        if (*pending)
            showLoadingOverlay();
    });
    if (*pending)
        showLoadingOverlay();
}

void OSTExperienceController::validateScreenOfController(OSTScreenController &controller, Done done)
{
    const std::shared_ptr<OSTValidationManager> manager = controller.validationManager();
    const QString screenKey = controller.screen()->key();
    const QVariantMap unique = manager ? manager->uniqueFieldsOfGroupWithKey(screenKey) : QVariantMap();
    QPointer<OSTScreenController> screenController(&controller);
    const auto checkPhone = [this, screenController, done] {
        if (screenController)
            validatePhoneNumberOfControllerIfAny(*screenController, done);
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

void OSTExperienceController::validatePhoneNumberOfControllerIfAny(OSTScreenController &controller, Done done)
{
    const std::shared_ptr<OSTValidationManager> manager = controller.validationManager();
    const QString screenKey = controller.screen()->key();
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
    OSTPhoneNumberManager::sharedManager().validatePhoneNumber(OSTPhoneNumberFormatter::rawPhoneNumber(number), answer);
}

void OSTExperienceController::validateFlowOfController(OSTScreenController &controller, UserDone done)
{
    const std::shared_ptr<OSTValidationManager> manager = controller.validationManager();
    const std::shared_ptr<const OSTFlow> flow = controller.screen()->flow();
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

void OSTExperienceController::endFlow(const FlowEnd &end, const std::optional<QString> &userID)
{
    if (m_dismissed)
        return;
    hideLoadingOverlay();
    if (goToFirstInvalidScreenOfFlow(*end.flow))
        return; // the host marked a field invalid: the user corrects it first
    recordAccount(end, userID);
    const QString &key = end.flow->key();
    if (key == signUpFlowKey || key == logInFlowKey || key == recoverPasswordFlowKey)
        OSTEventHook::sendEvent(OSTInternalEvent::flowCompletedEvent(*end.flow, *end.screen));
    runEndAction(*end.flow);
}

void OSTExperienceController::recordAccount(const FlowEnd &end, const std::optional<QString> &userID)
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

void OSTExperienceController::runEndAction(const OSTFlow &flow)
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
