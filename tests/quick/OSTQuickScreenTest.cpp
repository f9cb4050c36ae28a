// The Qt Quick screen as an author and a user see it: the widget screen's geometry for every
// element, taps reaching the model, the required-image wait, the error message, scrolling and
// what the window shows.

#include "model/OSTScreenModelDelegate.h"
#include "model/OSTValidationManager.h"
#include "platform/OSTBundle.h"
#include "quick/OSTQuickButton.h"
#include "quick/OSTQuickLabel.h"
#include "quick/OSTQuickScreen.h"
#include "support/OSTEventRecorder.h"
#include "support/OSTReferenceScreens.h"
#include "support/OSTTestSupport.h"

#include "../widgets/OSTScreenTestSupport.h"
#include "OSTQuickTestWindow.h"

#include <QAccessible>
#include <QFile>
#include <QPainter>
#include <QVariantAnimation>
#include <QWheelEvent>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace ostrel {
namespace {

using test::screenWithJson;

OSTQuickScreen::Environment environmentIn(QSizeF area)
{
    OSTQuickScreen::Environment environment;
    environment.area = area;
    environment.substitution = [](const QString &text) { return QString(text).replace(u"{first_name}"_s, u"Ada"_s); };
    return environment;
}

std::unique_ptr<OSTQuickScreen> quickScreen(const QString &json, QQuickItem *parent = nullptr)
{
    return std::unique_ptr<OSTQuickScreen>(OSTQuickScreen::screenWithScreen(
        screenWithJson(json), environmentIn({375, 667}), OSTQuickScreen::UnresolvedLayout::Fail, parent));
}

QRect frameOf(const QQuickItem *item)
{
    return QRectF(item->position(), item->size()).toAlignedRect();
}

int sceneY(const QQuickItem *item)
{
    return qRound(item->mapToScene(QPointF()).y());
}

// Runs every error-layout move of the screen's items to its end.
void finishMoves(const OSTQuickScreen &screen)
{
    for (QVariantAnimation *move : screen.findChildren<QVariantAnimation *>(u"errorLayoutMove"_s))
        move->setCurrentTime(move->duration());
}

class RecordingModelDelegate final : public OSTScreenModelDelegate {
public:
    void screenModelShouldClose(OSTScreenModel &) override { calls << u"close"_s; }
    void screenModelShouldGoToNextScreen(OSTScreenModel &) override { calls << u"next"_s; }
    void screenModelShouldGoToPreviousScreen(OSTScreenModel &) override { calls << u"previous"_s; }
    void screenModelShouldStartFlow(OSTScreenModel &, const QString &flow) override { calls << u"flow "_s + flow; }
    QStringList calls;
};

const QString samplesFolder = QStringLiteral(QT_TESTCASE_SOURCEDIR "/widgets/samples");

std::shared_ptr<const OSTScreen> sample(const QString &name)
{
    QFile file(samplesFolder + u"/%1.json"_s.arg(name));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return screenWithJson(QString::fromUtf8(file.readAll()), name);
}

TEST(QuickScreen, EverySampleElementGetsAnItemAtTheWidgetScreensGeometry)
{
    for (const QString &name : {u"signup"_s, u"welcome"_s}) {
        const auto screen = sample(name);
        const auto environment = environmentIn({375, 667});
        std::unique_ptr<OSTScreenView> view(OSTScreenView::create(screen, environment.area, environment.substitution));
        std::unique_ptr<OSTQuickScreen> item(OSTQuickScreen::screenWithScreen(screen, environment));
        ASSERT_TRUE(view && item);
        EXPECT_EQ(item->size(), QSizeF(375, 667));
        EXPECT_EQ(item->items().keys(), view->views().keys()) << name.toStdString();
        for (auto widget = view->views().cbegin(); widget != view->views().cend(); ++widget) {
            const QQuickItem *element = item->items().value(widget.key());
            ASSERT_TRUE(element);
            EXPECT_EQ(frameOf(element), widget.value()->geometry()) << widget.key().toStdString();
            EXPECT_EQ(element->parentItem() == item->contentItem(),
                      widget.value()->parentWidget() == view->contentView()) << "grouped alike";
        }
    }

    // What does not build gives no screen, and a completion is told so once.
    EXPECT_EQ(quickScreen(u"[1, 2]"_s), nullptr);
    EXPECT_EQ(quickScreen(uR"({"shapes": {"a": {"width": "{b.width}"}, "b": {"width": "{a.width}"}}})"_s), nullptr);
    int failures = 0;
    OSTQuickScreen::screenWithScreen(screenWithJson(u"{\"shapes\": "_s), {}, [&](OSTQuickScreen *screen) {
        EXPECT_EQ(screen, nullptr);
        ++failures;
    });
    EXPECT_EQ(failures, 1);
}

TEST(QuickScreen, HostileLayoutsBuildWhatTheyCanWithoutHanging)
{
    // Groups that hold themselves or each other never resolve; a preview still builds them.
    const auto cyclic = std::unique_ptr<OSTQuickScreen>(OSTQuickScreen::screenWithScreen(
        screenWithJson(uR"({"shapes": {"shared": {"width": "10", "height": "10"}},
                            "groups": {"self": {"elements": ["self", "shared"]},
                                       "a": {"elements": ["b", "shared"]}, "b": {"elements": ["a"]}}})"_s),
        environmentIn({375, 667}), OSTQuickScreen::UnresolvedLayout::ShowResolved));
    ASSERT_TRUE(cyclic);
    EXPECT_EQ(cyclic->items().size(), 4);
    for (const QQuickItem *item : cyclic->items())
        EXPECT_TRUE(cyclic->isAncestorOf(item)) << item->objectName().toStdString();
}

const char *const validatedScreen = R"({
    "labels": {"errorMessage": {"x": "0", "y": "100", "width": "100%", "height": "0", "textColor": "#000000"},
               "title": {"x": "0", "y": "{errorMessage.y} + {errorMessage.height}", "width": "100", "height": "20"}},
    "animations": {"error": {"targets": {"errorMessage": {"height": "40", "textColor": "#FF0000"}}}},
    "shapes": {"card": {"x": "0", "y": "300", "width": "200", "height": "100"}},
    "buttons": {
        "go": {"x": "200", "y": "500", "width": "100", "height": "40", "onClick": {"func": "next"},
               "states": {"normal": {"text": "Go", "backgroundColor": "#0000FF"}}},
        "agree": {"x": "0", "y": "500", "width": "100", "height": "40", "buttonType": "toggle",
                  "errorMessage": "Please agree", "states": {"normal": {"text": "I agree"}}},
        "broken": {"x": "0", "y": "600", "width": "60", "height": "40"},
        "free": {"x": "0", "y": "200", "width": "60", "height": "40", "states": {"normal": {"text": "Free"}}},
        "plus": {"x": "100", "y": "200", "width": "60", "height": "40", "states": {"normal": {"text": "Plus"}}}},
    "selectionGroups": {"plan": {"elements": {"free": "F", "plus": "P"}, "maximumSelection": "1", "isOptional": "true"}}})";

TEST(QuickScreen, TapsAndButtonsReachTheModelAndTheErrorMessageFollowsTheScreensValidity)
{
    test::OSTEventRecorder events;
    test::QuickTestWindow window;
    window.resize(375, 667);
    const auto screen = quickScreen(QString::fromUtf8(validatedScreen), window.root());
    ASSERT_TRUE(screen);
    EXPECT_FALSE(screen->items().contains(u"broken"_s)) << "a button without states is left out";
    RecordingModelDelegate delegate;
    screen->screenModel().setDelegate(&delegate);
    const auto manager = std::make_shared<OSTValidationManager>();
    screen->screenModel().setValidationManager(manager);

    auto *go = qobject_cast<OSTQuickButton *>(screen->items().value(u"go"_s));
    auto *agree = qobject_cast<OSTQuickButton *>(screen->items().value(u"agree"_s));
    auto *label = qobject_cast<OSTQuickLabel *>(screen->items().value(u"errorMessage"_s));
    const QQuickItem *title = screen->items().value(u"title"_s);
    ASSERT_TRUE(go && agree && label);
    for (const auto &[item, role, name] : {std::tuple{static_cast<QQuickItem *>(go), QAccessible::Button, u"Go"_s},
                                           std::tuple{static_cast<QQuickItem *>(label), QAccessible::StaticText, u"Please agree"_s}}) {
        QAccessibleInterface *accessible = QAccessible::queryAccessibleInterface(item);
        ASSERT_TRUE(accessible);
        EXPECT_EQ(accessible->role(), role);
        EXPECT_EQ(accessible->text(QAccessible::Name), name);
    }
    EXPECT_FALSE(go->isEnabled()) << "an unticked required toggle keeps the screen invalid";
    EXPECT_EQ(label->text(), u"Please agree"_s);
    EXPECT_EQ(title->y(), 100) << "the error layout is animated in";
    finishMoves(*screen);
    EXPECT_EQ(title->y(), 140);
    EXPECT_EQ(label->height(), 40);

    // A disabled button handles nothing: the click reaches the page beneath.
    window.click(*go, {50, 20});
    EXPECT_TRUE(events.parametersOf(u"OST Welcome Action Tapped"_s).empty());
    EXPECT_TRUE(delegate.calls.isEmpty());

    window.click(*agree, {50, 20});
    EXPECT_TRUE(agree->isChecked());
    EXPECT_TRUE(go->isEnabled());
    EXPECT_TRUE(label->text().isNull());
    finishMoves(*screen);
    EXPECT_EQ(title->y(), 100);
    EXPECT_EQ(label->height(), 0);

    window.click(*go, {50, 20});
    // A tap on the page outside controls takes the focus from the control that has it.
    go->forceActiveFocus();
    window.click(*screen->items().value(u"card"_s), {10, 10});
    EXPECT_FALSE(go->hasActiveFocus());
    EXPECT_EQ(delegate.calls, QStringList{u"next"_s});
    auto taps = events.parametersOf(u"OST Welcome Action Tapped"_s);
    ASSERT_EQ(taps.size(), 2u) << "the toggle, then the next button";
    EXPECT_EQ(taps.back().value(u"button_id"_s), u"go"_s);
    EXPECT_EQ(taps.back().value(u"action_id"_s), u"next"_s);

    // The buttons of a selection group answer to it: one choice replaces the other.
    auto *plus = qobject_cast<OSTQuickButton *>(screen->items().value(u"plus"_s));
    window.click(*screen->items().value(u"free"_s), {30, 20});
    window.click(*plus, {30, 20});
    EXPECT_TRUE(plus->isChecked());
    EXPECT_FALSE(qobject_cast<OSTQuickButton *>(screen->items().value(u"free"_s))->isChecked());
    taps = events.parametersOf(u"OST Welcome Action Tapped"_s);
    ASSERT_EQ(taps.size(), 4u);
    EXPECT_EQ(taps.back().value(u"button_id"_s), u"plus"_s);
    EXPECT_EQ(delegate.calls, QStringList{u"next"_s}) << "a plain button tap in a group is no next";

    // A next button turned off keeps the focus on the screen, not on another control.
    go->forceActiveFocus();
    agree->click();
    EXPECT_FALSE(go->isEnabled());
    EXPECT_TRUE(screen->hasActiveFocus());
    EXPECT_EQ(window.activeFocusItem(), screen.get());
}

TEST(QuickScreen, ACompletionWaitsForTheRequiredImagesOnly)
{
    test::ManualClockScope time;
    // Addresses that are not http(s) finish, without an image, on the next turn of the event loop.
    OSTQuickScreen *ready = nullptr;
    OSTQuickScreen::screenWithScreen(screenWithJson(uR"({"images": {
        "a": {"image": "ftp://example.invalid/a.png", "required": "true"},
        "b": {"image": "ftp://example.invalid/b.png", "required": "true"},
        "c": {"image": "ftp://example.invalid/c.png"}}})"_s), environmentIn({375, 667}),
        [&](OSTQuickScreen *screen) { ready = screen; });
    EXPECT_EQ(ready, nullptr) << "two required images are still loading";
    ASSERT_TRUE(test::waitUntil([&] { return ready != nullptr; }));
    std::unique_ptr<OSTQuickScreen> owned(ready);
    EXPECT_EQ(owned->page().requiredImageCount(), 0u);
    EXPECT_TRUE(owned->page().isFullyLoaded());
}

TEST(QuickScreen, WheelAndDragScrollTheTallPageWhileAnchoredElementsStayPut)
{
    test::QuickTestWindow window;
    window.resize(375, 667);
    const auto screen = quickScreen(uR"({"shapes": {
        "low": {"x": "0", "y": "900", "width": "100", "height": "100", "anchored": "false"},
        "logo": {"x": "0", "y": "20", "width": "100", "height": "40"}},
        "groups": {"g": {"x": "0", "y": "100", "width": "100", "height": "100", "elements": ["inner"]}},
        "labels": {"inner": {"text": "i"}},
        "buttons": {"wide": {"x": "0", "y": "400", "width": "100%", "height": "200", "anchored": "false",
                             "states": {"normal": {"text": "Wide"}}}}})"_s, window.root());
    ASSERT_TRUE(screen);
    EXPECT_EQ(screen->contentHeight(), 1000);
    int taps = 0;
    QObject::connect(qobject_cast<OSTQuickButton *>(screen->items().value(u"wide"_s)), &OSTQuickButton::tapped,
                     [&taps] { ++taps; });
    const QQuickItem *low = screen->items().value(u"low"_s);

    QWheelEvent wheel(QPointF(200, 300), QPointF(200, 300), QPoint(), QPoint(0, -120), Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&window, &wheel);
    EXPECT_EQ(screen->scrollOffset(), 60);
    EXPECT_EQ(sceneY(low), 840);

    QTest::mousePress(&window, Qt::LeftButton, {}, {300, 500});
    for (int y = 480; y >= 200; y -= 40)
        QTest::mouseMove(&window, {300, y});
    QTest::mouseRelease(&window, Qt::LeftButton, {}, {300, 200});
    EXPECT_EQ(screen->scrollOffset(), 333) << "held to the content's height";
    EXPECT_EQ(sceneY(low), 567);
    EXPECT_EQ(sceneY(screen->items().value(u"logo"_s)), 20);
    EXPECT_EQ(sceneY(screen->items().value(u"inner"_s)), 100) << "moves with its anchored group";
    EXPECT_EQ(taps, 0) << "the drag began on the button without clicking it";
    window.click(*screen->items().value(u"wide"_s), {100, 100});
    EXPECT_EQ(taps, 1);

    // A keyboard over an element that scrolls lets the page scroll by its height, until it goes;
    // one below every such element changes nothing.
    for (const auto &[bottom, expectedHeight] : {std::pair{400, 667}, std::pair{500, 667 + 216}}) {
        const auto form = quickScreen(uR"({"shapes": {
            "field": {"x": "0", "y": "%1", "width": "100", "height": "0", "anchored": "false"}}})"_s.arg(bottom));
        ASSERT_TRUE(form);
        form->keyboardWillShow(216);
        EXPECT_EQ(form->contentHeight(), expectedHeight) << bottom;
        form->scrollTo(1000);
        EXPECT_EQ(form->scrollOffset(), expectedHeight - 667);
        form->keyboardWillHide();
        EXPECT_EQ(form->contentHeight(), 667);
        EXPECT_EQ(form->scrollOffset(), 0);
    }

    // A size change lays the page out again once the relayout interval passed.
    test::ManualClockScope time;
    screen->setHeight(1200);
    time.advance(OSTScreenPage::relayoutInterval);
    EXPECT_EQ(screen->scrollOffset(), 0);
    EXPECT_EQ(screen->page().layoutSize(), QSize(375, 1200));
}

// Every look an element box, a label, a button and a switch can take, on one screen.
const char *const looksScreen = R"({
    "backgroundGradient": {"colors": ["#203040", "#4060A0"]},
    "shapes": {"card": {"x": "20", "y": "40", "width": "200", "height": "120", "cornerRadius": "16",
                        "backgroundColor": "#FFFFFF", "borderSize": "3", "borderColor": "#FF8800",
                        "objectShadow": ["#000000", "8", "4", "6"]},
               "dot": {"x": "250", "y": "40", "width": "80", "height": "80", "cornerRadius": "circle", "alpha": "0.5",
                       "backgroundGradient": {"colors": ["#FF0000", "#00FF00"], "radius": "40"}},
               "inner": {"x": "0", "y": "0", "width": "60", "height": "30", "backgroundColor": "#00AA00"}},
    "groups": {"box": {"x": "20", "y": "200", "width": "300", "height": "100", "backgroundColor": "#DDDDFF",
                       "borderSize": "4", "borderColor": "#000000", "elements": ["inner", "caption"]}},
    "labels": {"caption": {"x": "80", "y": "10", "width": "200", "height": "60", "text": "A caption in a group",
                           "size": "18", "textColor": "#112233", "shadow": ["#FF0000", "2", "1", "1"]}},
    "buttons": {"go": {"x": "40", "y": "340", "width": "280", "height": "50", "objectShadow": ["#000000", "6", "0", "4"],
                       "states": {"normal": {"text": "Go on", "textColor": "#FFFFFF", "backgroundColor": "#3355DD",
                                             "cornerRadius": "25"}}},
                "agree": {"x": "40", "y": "420", "width": "100", "height": "40", "buttonType": "toggleSwitch",
                          "initialState": "on", "onTintColor": "#AA00AA"}}})";

// Every look drawn by both toolkits alike, at ratio 1 in this process (ToolkitParity compares the
// shipped screens at ratio 2).
TEST(QuickScreen, EveryLookIsDrawnAsTheWidgetScreenDrawsIt)
{
    test::QuickTestWindow window;
    window.resize(375, 667);
    OSTBundle::setMainBundlePath(samplesFolder);
    const auto screen = screenWithJson(QString::fromUtf8(looksScreen), u"looks"_s);
    const auto environment = environmentIn({375, 667});
    std::unique_ptr<OSTScreenView> view(OSTScreenView::create(screen, environment.area, environment.substitution));
    std::unique_ptr<OSTQuickScreen> item(OSTQuickScreen::screenWithScreen(
        screen, environment, OSTQuickScreen::UnresolvedLayout::Fail, window.root()));
    ASSERT_TRUE(view && item);
    QImage drawn(375, 667, QImage::Format_ARGB32);
    drawn.fill(Qt::white); // the window's own colour beneath the screen
    QPainter(&drawn).drawImage(0, 0, view->renderImage(1));
    const QImage grabbed = window.grabWindow().convertToFormat(QImage::Format_ARGB32);
    EXPECT_LE(test::OSTReferenceScreens::differingShare(grabbed, drawn, 32), 0.03);
    QImage blank = grabbed;
    blank.fill(grabbed.pixel(0, 0));
    EXPECT_GT(test::OSTReferenceScreens::differingShare(grabbed, blank, 32), 0) << "drawn, not one colour";
}

} // namespace
} // namespace ostrel
