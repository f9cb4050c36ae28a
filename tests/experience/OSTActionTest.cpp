// Actions as the screen controller and a flow's end see them: type, parameters of that type only,
// and a bounded nesting of login success actions.

#include "experience/OSTAction.h"
#include "support/OSTTestSupport.h"

#include "core/OSTLogging.h"

#include <gtest/gtest.h>

#include <optional>
#include <vector>

using namespace ostrel;
using namespace Qt::StringLiterals;

namespace {

QVariantMap action(const QString &func, const std::optional<QVariantMap> &parameters = std::nullopt)
{
    QVariantMap properties{{u"func"_s, func}};
    if (parameters)
        properties.insert(u"params"_s, *parameters);
    return properties;
}

} // namespace

TEST(Action, ParsesTheTypeAndOnlyTheParametersOfThatType)
{
    struct Case {
        const char *what;
        QVariantMap properties;
        OSTActionType type;
        std::optional<QString> flowKey;
        std::optional<QString> urlString;
        bool closes;
    };
    const std::vector<Case> cases = {
        {"empty", {}, OSTActionTypeNone, {}, {}, false},
        {"names are case-sensitive", action(u"Next"_s), OSTActionTypeNone, {}, {}, false},
        {"func of the wrong type", {{u"func"_s, 1}}, OSTActionTypeNone, {}, {}, false},
        {"previous", action(u"previous"_s, QVariantMap{{u"flowName"_s, u"X"_s}}), OSTActionTypePrevious, {}, {}, false},
        {"start flow, lower-cased", action(u"startFlow"_s, QVariantMap{{u"flowName"_s, u"SignUp"_s}}),
         OSTActionTypeStartFlow, u"signup"_s, {}, false},
        {"start flow without name", action(u"startFlow"_s, QVariantMap()), OSTActionTypeStartFlow, u""_s, {}, false},
        {"start flow without params", action(u"startFlow"_s), OSTActionTypeStartFlow, {}, {}, false},
        {"params not an object", {{u"func"_s, u"openUrl"_s}, {u"params"_s, u"x"_s}}, OSTActionTypeOpenURL, {}, {}, false},
        {"open url without params", action(u"openUrl"_s), OSTActionTypeOpenURL, {}, {}, false},
        {"open url, close as number", action(u"openUrl"_s, QVariantMap{{u"url"_s, u"https://a.example"_s}, {u"closeSelf"_s, 1}}),
         OSTActionTypeOpenURL, {}, u"https://a.example"_s, true},
        {"open url, close as boolean", action(u"openUrl"_s, QVariantMap{{u"closeSelf"_s, true}}), OSTActionTypeOpenURL, {},
         u""_s, true},
        {"open url, close zero", action(u"openUrl"_s, QVariantMap{{u"url"_s, 5}, {u"closeSelf"_s, 0}}),
         OSTActionTypeOpenURL, {}, u""_s, false},
    };
    for (const Case &c : cases) {
        const OSTAction parsed(c.properties);
        EXPECT_EQ(parsed.type(), c.type) << c.what;
        EXPECT_EQ(parsed.flowKey(), c.flowKey) << c.what;
        EXPECT_EQ(parsed.urlString(), c.urlString) << c.what;
        EXPECT_EQ(parsed.shouldCloseSelf(), c.closes) << c.what;
        EXPECT_EQ(parsed.successAction(), nullptr) << c.what;
    }
    EXPECT_EQ(OSTAction(action(u"Next"_s)).name(), u"Next"_s) << "the name is kept as given";
    EXPECT_EQ(OSTActionTypeFromString(std::nullopt), OSTActionTypeNone);
}

TEST(Action, LoginSuccessActionsNestUpToALimitWithAWarning)
{
    const QVariantMap close = action(u"close"_s);
    const OSTAction login(action(u"loginFacebook"_s, QVariantMap{{u"successAction"_s, close}}));
    ASSERT_NE(login.successAction(), nullptr);
    EXPECT_EQ(login.successAction()->type(), OSTActionTypeClose);

    // A hostile document: far deeper than any real one.
    QVariantMap nested = close;
    for (int depth = 0; depth < 5000; ++depth)
        nested = action(u"loginFacebook"_s, QVariantMap{{u"successAction"_s, nested}});
    OSTLogging::setLoggingLevel(OSTLoggingLevelWarning);
    std::optional<OSTAction> deep;
    const QString log = test::captureStandardError([&] { deep.emplace(nested); });

    int depth = 1;
    for (const OSTAction *current = &*deep; current->successAction(); current = current->successAction().get())
        ++depth;
    EXPECT_EQ(depth, OSTAction::maximumNestingDepth);
    EXPECT_EQ(log.count(u"Ostrel Warning: "_s), 1) << log.toStdString();
}
