// The screen view as an author and a user see it: which screens it builds, where and in which order
// its elements land, how it answers taps, keyboards, error messages, images and resizes.

#include "OSTScreenTestSupport.h"

#include "layout/OSTLayoutManager.h"
#include "screen/OSTScreenDocument.h"
#include "support/OSTEventRecorder.h"
#include "support/OSTTestSupport.h"
#include "widgets/OSTBackgroundView.h"
#include "widgets/OSTInput.h"
#include "widgets/OSTLabel.h"
#include "widgets/OSTPicker.h"
#include "model/OSTSelectionGroup.h"
#include "widgets/OSTSwitchControl.h"
#include "widgets/OSTTextField.h"
#include "widgets/OSTView.h"

#include "OSTPixelTestSupport.h"

#include <QApplication>
#include <QPropertyAnimation>
#include <QScrollArea>
#include <QScrollBar>
#include <QTest>

using namespace Qt::StringLiterals;

namespace ostrel {
namespace {

using test::RecordingScreenViewDelegate;
using test::screenView;

const char *const buttonStates = R"("states": {"normal": {"text": "Go", "backgroundColor": "#0000FF"}})";

TEST(ScreenView, BuildsOnlyFromAnObjectThatResolvesUnlessAskedToShowWhatResolved)
{
    for (const char *bad : {"", "[1, 2]", "{\"shapes\": ", "null", "\"text\""})
        EXPECT_EQ(screenView(QString::fromUtf8(bad)), nullptr) << bad;

    const QString stuck = uR"({"shapes": {"a": {"width": "{b.width}"}, "b": {"width": "{a.width}"},
                                          "ok": {"x": "10", "y": "10", "width": "20", "height": "20"}}})"_s;
    EXPECT_EQ(screenView(stuck), nullptr);
    std::unique_ptr<OSTScreenView> partial(OSTScreenView::create(test::screenWithJson(stuck), {375, 667}, {},
                                                                 OSTScreenView::UnresolvedLayout::ShowResolved));
    ASSERT_TRUE(partial);
    EXPECT_EQ(partial->views().value(u"ok"_s)->geometry(), QRect(10, 10, 20, 20));
    EXPECT_EQ(partial->views().value(u"a"_s)->geometry(), QRect());

    // Substitution runs on the text before it is parsed.
    const auto view = screenView(uR"({"labels": {"hello": {"text": "Hi {first_name}"}}})"_s, {375, 667},
                                 [](const QString &text) { return QString(text).replace(u"{first_name}"_s, u"Ada"_s); });
    ASSERT_TRUE(view);
    EXPECT_EQ(qobject_cast<OSTLabel *>(view->views().value(u"hello"_s))->text(), u"Hi Ada"_s);
    EXPECT_TRUE(view->isLoaded());
    EXPECT_TRUE(view->isFullyLoaded());
    EXPECT_EQ(view->size(), QSize(375, 667));
}

TEST(ScreenView, StacksByLayerWithTheBackgroundLowestAndGroupMembersInsideTheirGroup)
{
    const auto view = screenView(uR"({
        "shapes": {"background": {"zLayer": "900"}, "top": {"zLayer": "800"}, "low": {"zLayer": "1"},
                   "member": {"x": "10", "y": "5", "width": "50%", "height": "10"},
                   "5": {"x": "1", "y": "2", "width": "3", "height": "4"}},
        "groups": {"box": {"x": "100", "y": "200", "width": "100", "height": "50", "elements": ["member", "ghost", 5]}},
        "labels": {"caption": {"text": "x"}}})"_s);
    ASSERT_TRUE(view);
    view->show(); // lays out the scroll view
    const QObjectList stack = view->contentView()->children();
    const auto position = [&](const QString &key) { return stack.indexOf(view->views().value(key)); };
    EXPECT_LT(position(u"background"_s), position(u"low"_s));
    EXPECT_LT(position(u"low"_s), position(u"box"_s));     // groups default to layer 400
    EXPECT_LT(position(u"box"_s), position(u"caption"_s)); // labels to 500
    EXPECT_LT(position(u"caption"_s), position(u"top"_s));

    auto *box = qobject_cast<OSTView *>(view->views().value(u"box"_s));
    QWidget *member = view->views().value(u"member"_s);
    EXPECT_EQ(member->parentWidget(), box->container());
    EXPECT_EQ(member->geometry(), QRect(10, 5, 50, 10)); // relative to the group, half its width
    EXPECT_EQ(member->mapTo(view.get(), QPoint()), QPoint(110, 205));
    EXPECT_TRUE(member->isVisibleTo(view.get()));
    EXPECT_EQ(view->groupedViewKeys(), (QStringList{u"member"_s, u"ghost"_s}));
    // A number names a member view too, but the layout takes string members only: the view lies
    // in the group at its frame on the screen.
    QWidget *numbered = view->views().value(u"5"_s);
    EXPECT_EQ(numbered->parentWidget(), box->container());
    EXPECT_EQ(numbered->geometry(), QRect(1, 2, 3, 4));
    EXPECT_EQ(view->document()->elements(u"shapes"_s).size(), 5);
}

TEST(ScreenView, GroupsThatHoldThemselvesOrEachOtherAndSharedMembersNeitherHangNorLeakWindows)
{
    // Such groups never resolve; a preview still builds what it can.
    const QString cyclic = uR"({
        "shapes": {"shared": {"width": "10", "height": "10"}},
        "groups": {"self": {"elements": ["self", "shared"]},
                   "a": {"elements": ["b", "shared"]}, "b": {"elements": ["a"]}}})"_s;
    EXPECT_EQ(screenView(cyclic), nullptr);
    std::unique_ptr<OSTScreenView> view(OSTScreenView::create(test::screenWithJson(cyclic), {375, 667}, {},
                                                              OSTScreenView::UnresolvedLayout::ShowResolved));
    ASSERT_TRUE(view);
    EXPECT_EQ(view->views().size(), 4);
    for (QWidget *element : view->views()) {
        EXPECT_FALSE(element->isWindow()) << element->objectName().toStdString();
        EXPECT_TRUE(view->isAncestorOf(element));
    }

    // Ten thousand elements, each placed below the previous one, still build.
    QStringList shapes;
    for (int index = 0; index < 10000; ++index)
        shapes << uR"("s%1": {"y": "%2", "height": "1"})"_s.arg(index).arg(index ? u"{s%1.y} + 1"_s.arg(index - 1) : u"0"_s);
    const auto crowded = screenView(uR"({"shapes": {%1}})"_s.arg(shapes.join(u","_s)));
    ASSERT_TRUE(crowded);
    EXPECT_EQ(crowded->views().size(), 10000);
    EXPECT_EQ(crowded->views().value(u"s9999"_s)->y(), 9999);
}

TEST(ScreenView, FractionalFramesRoundByEdgesSoNeighboursTouchInAndOutOfGroups)
{
    struct Case {
        QRectF frame;
        QPointF parentOrigin;
        QRect expected;
    } const cases[] = {
        {{0, 0, 12.75, 10}, {}, {0, 0, 13, 10}},
        {{12.75, 0, 12.75, 10}, {}, {13, 0, 13, 10}}, // starts where the first ended
        {{25.5, 0.5, 0.4, 0.4}, {}, {26, 1, 0, 0}},
        {{2.6, 0, 10, 10}, {10.25, 0}, {3, 0, 10, 10}}, // 12.85 rounds to 13, the group's origin to 10
        {{1e57, 0, 1e60, 10}, {}, {QWIDGETSIZE_MAX, 0, 0, 10}}, // held to the largest widget
    };
    for (const Case &c : cases)
        EXPECT_EQ(OSTScreenPage::pixelGeometry(c.frame, c.parentOrigin), c.expected) << c.frame.x();

    const auto view = screenView(uR"({
        "shapes": {"left": {"x": "0", "y": "0", "width": "12.75", "height": "10"},
                   "right": {"x": "{left.width}", "y": "0", "width": "12.75", "height": "10"},
                   "inner": {"x": "2.6", "y": "0", "width": "{left.width}", "height": "10"}},
        "groups": {"g": {"x": "10.25", "y": "20", "width": "100", "height": "50", "elements": ["inner"]}}})"_s);
    ASSERT_TRUE(view);
    view->show();
    const QRect left = view->views().value(u"left"_s)->geometry();
    const QRect right = view->views().value(u"right"_s)->geometry();
    EXPECT_EQ(left.right() + 1, right.left());
    const QWidget *inner = view->views().value(u"inner"_s);
    EXPECT_EQ(inner->mapTo(view.get(), QPoint()).x(), 13); // 10.25 + 2.6 = 12.85 on screen
}

TEST(ScreenView, ButtonsQueueTheirEventsAndReachTheDelegateAsDoTapsOnThePageOutsideControls)
{
    test::OSTEventRecorder events;
    RecordingScreenViewDelegate delegate;
    auto view = screenView(uR"({"shapes": {"card": {"x": "0", "y": "0", "width": "200", "height": "200"}},
        "groups": {"g": {"x": "0", "y": "300", "width": "100", "height": "100", "elements": ["inside"]}},
        "labels": {"inside": {"text": "in a group"}},
        "buttons": {"go": {"x": "250", "y": "10", "width": "100", "height": "40", %1, "onClick": {"func": "next"}},
                    "agree": {"x": "250", "y": "100", "width": "60", "height": "40", "buttonType": "toggleSwitch"},
                    "broken": {"x": "250", "y": "200", "width": "60", "height": "40"}}})"_s
                               .arg(QString::fromUtf8(buttonStates)));
    ASSERT_TRUE(view);
    view->setDelegate(&delegate);
    EXPECT_FALSE(view->views().contains(u"broken"_s));
    EXPECT_EQ(view->validationItems().keys(), (QStringList{u"agree"_s, u"go"_s}));

    view->show();
    QTest::mouseClick(view->views().value(u"card"_s), Qt::LeftButton);
    QTest::mouseClick(view->views().value(u"inside"_s), Qt::LeftButton);
    QTest::mouseClick(view->views().value(u"go"_s), Qt::LeftButton);
    QWidget *toggle = view->views().value(u"agree"_s);
    QTest::mouseClick(toggle->childAt(toggle->rect().center()) ? toggle->childAt(toggle->rect().center()) : toggle,
                      Qt::LeftButton);
    EXPECT_EQ(delegate.calls, (QStringList{u"tap"_s, u"tap"_s, u"press go"_s})) << "switches do not reach it";
    const auto taps = events.parametersOf(u"OST Welcome Action Tapped"_s);
    ASSERT_GE(taps.size(), 1u);
    EXPECT_EQ(taps.front().value(u"button_id"_s), u"go"_s);
    EXPECT_EQ(taps.front().value(u"action_id"_s), u"next"_s);

    // A disabled button handles nothing: a click on it is a tap on the screen, which then shows
    // why the button is off. The click goes through the window, as a person's does.
    auto *go = qobject_cast<OSTButton *>(view->views().value(u"go"_s));
    go->setEnabled(false);
    QTest::mouseClick(view->windowHandle(), Qt::LeftButton, {}, go->mapTo(view.get(), go->rect().center()));
    EXPECT_EQ(delegate.calls.last(), u"tap"_s);
    EXPECT_EQ(events.parametersOf(u"OST Welcome Action Tapped"_s).size(), taps.size()) << "no press of a disabled button";
    go->setEnabled(true);
    delegate.calls.clear();

    // A delegate that is gone is not called.
    {
        RecordingScreenViewDelegate shortLived;
        view->setDelegate(&shortLived);
    }
    QTest::mouseClick(view->views().value(u"card"_s), Qt::LeftButton);
    QTest::mouseClick(view->views().value(u"go"_s), Qt::LeftButton);
    EXPECT_TRUE(delegate.calls.isEmpty());
}

TEST(ScreenView, KeyboardLiftsThePageOnlyWhenAScrollingElementEndsBelowItsTop)
{
    for (const auto &[bottom, expectedScroll] : {std::pair{400, 0}, std::pair{500, 216}}) {
        const auto view = screenView(uR"({"shapes": {
            "field": {"x": "0", "y": "%1", "width": "100", "height": "0", "anchored": "false"},
            "header": {"x": "0", "y": "600", "width": "100", "height": "60"}}})"_s.arg(bottom));
        ASSERT_TRUE(view);
        view->show();
        view->keyboardWillShow(216);
        EXPECT_EQ(view->scrollView()->verticalScrollBar()->maximum(), expectedScroll) << bottom;
        view->keyboardWillHide();
        EXPECT_EQ(view->scrollView()->verticalScrollBar()->maximum(), 0);
    }
}

TEST(ScreenView, AnchoredElementsStayPutWhileThePageScrolls)
{
    const auto view = screenView(uR"({"shapes": {
        "field": {"x": "0", "y": "600", "width": "100", "height": "40", "anchored": "false"},
        "logo": {"x": "0", "y": "20", "width": "100", "height": "40"}},
        "groups": {"g": {"x": "0", "y": "100", "width": "100", "height": "100", "elements": ["inner"]}},
        "labels": {"inner": {"text": "i"}}})"_s);
    ASSERT_TRUE(view);
    view->show();
    view->keyboardWillShow(300);
    view->scrollView()->verticalScrollBar()->setValue(200);
    const auto onScreen = [&](const QString &key) {
        return view->views().value(key)->mapTo(view.get(), QPoint()).y();
    };
    EXPECT_EQ(onScreen(u"logo"_s), 20);
    EXPECT_EQ(onScreen(u"field"_s), 400);
    EXPECT_EQ(onScreen(u"inner"_s), 100); // moves with its anchored group
}

const char *const errorScreen = R"({
    "labels": {"errorMessage": {"x": "0", "y": "100", "width": "100%", "height": "0", "textColor": "#000000"},
               "title": {"x": "0", "y": "{errorMessage.y} + {errorMessage.height}", "width": "100", "height": "20"}},
    "animations": {"error": {"targets": {"errorMessage": {"height": "40", "textColor": "#FF0000"}}}}})";

TEST(ScreenView, ErrorMessageOpensWithItsOwnLayoutAndClosesBackToTheScreens)
{
    const auto view = screenView(QString::fromUtf8(errorScreen));
    ASSERT_TRUE(view);
    auto *label = qobject_cast<OSTLabel *>(view->views().value(u"errorMessage"_s));
    QWidget *title = view->views().value(u"title"_s);
    EXPECT_EQ(title->y(), 100);

    view->showErrorMessage(u"Please fill in your name"_s, OSTAnimation::Immediate);
    EXPECT_EQ(label->text(), u"Please fill in your name"_s);
    EXPECT_EQ(label->height(), 40);
    EXPECT_EQ(title->y(), 140);
    // The same message again changes nothing, even a frame moved meanwhile.
    title->move(0, 0);
    view->showErrorMessage(u"Please fill in your name"_s, OSTAnimation::Immediate);
    EXPECT_EQ(title->y(), 0);

    view->showErrorMessage(QString(), OSTAnimation::Immediate);
    EXPECT_EQ(label->text(), QString());
    EXPECT_EQ(label->height(), 0);
    EXPECT_EQ(title->y(), 100);

    // A screen without an error label ignores messages.
    const auto plain = screenView(uR"({"labels": {"title": {"text": "t"}}})"_s);
    ASSERT_TRUE(plain);
    plain->showErrorMessage(u"x"_s, OSTAnimation::Animated);
}

TEST(ScreenView, ASwitchKeepsItsNaturalSizeCentredInItsBoxWhenTheErrorMessageMovesIt)
{
    const auto view = screenView(uR"({
        "labels": {"errorMessage": {"x": "0", "y": "100", "width": "100%", "height": "0"}},
        "buttons": {"agree": {"x": "100", "y": "{errorMessage.y} + {errorMessage.height}", "width": "151",
                              "height": "71", "buttonType": "toggleSwitch", "backgroundColor": "#FF0000"}},
        "animations": {"error": {"targets": {"errorMessage": {"height": "40"}}}}})"_s);
    ASSERT_TRUE(view);
    view->show();
    QWidget *agree = view->views().value(u"agree"_s);
    const QSize natural = OSTSwitchControl::naturalSize();
    EXPECT_EQ(agree->geometry(), QRect(QPoint(150, 120), natural));

    view->showErrorMessage(u"Please agree"_s, OSTAnimation::Immediate);
    EXPECT_EQ(agree->geometry(), QRect(QPoint(150, 160), natural)) << "40 points lower, centred in its box";
    const QImage image = view->renderImage(1);
    EXPECT_FALSE(test::colorNear(image.pixelColor(105, 145), QColor(255, 0, 0))) << "the box is not drawn";
    EXPECT_TRUE(test::colorNear(image.pixelColor(151, 161), QColor(255, 0, 0)))
        << "the switch's own background, where the switch is";
}

TEST(ScreenView, ANewErrorLayoutStopsTheMovesTowardsTheOldOne)
{
    const auto view = screenView(QString::fromUtf8(errorScreen));
    ASSERT_TRUE(view);
    view->show();
    QWidget *title = view->views().value(u"title"_s);
    view->showErrorMessage(u"Please fill in your name"_s, OSTAnimation::Animated);
    view->showErrorMessage(QString(), OSTAnimation::Immediate);
    EXPECT_EQ(title->y(), 100);
    // A move left running would carry the title off to the error layout when it ends.
    for (QPropertyAnimation *move : title->findChildren<QPropertyAnimation *>()) {
        if (move->state() == QAbstractAnimation::Running)
            move->setCurrentTime(move->duration());
    }
    EXPECT_EQ(title->y(), 100);
}

TEST(ScreenView, AKeyInTwoCategoriesShowsOnlyTheViewThatIsStacked)
{
    const auto view = screenView(uR"({"shapes": {"twice": {"backgroundColor": "#FF0000"}},
                                      "labels": {"twice": {"text": "label"}}})"_s);
    ASSERT_TRUE(view);
    view->show();
    int shown = 0;
    for (QWidget *child : view->contentView()->findChildren<QWidget *>(u"twice"_s, Qt::FindDirectChildrenOnly))
        shown += child->isVisible() ? 1 : 0;
    EXPECT_EQ(shown, 1);
    EXPECT_FALSE(test::colorNear(view->renderImage(1).pixelColor(5, 5), QColor(255, 0, 0))) << "the shape is not drawn";
}

TEST(ScreenView, RequiredImagesAreCountedAndReportedOnceEvenBeforeADelegateIsSet)
{
    // Addresses that are not http(s) finish, without an image, on the next turn of the event loop.
    const auto view = screenView(uR"({"images": {
        "a": {"image": "ftp://example.invalid/a.png", "required": "true"},
        "b": {"image": "ftp://example.invalid/b.png", "required": "true"},
        "c": {"image": "ftp://example.invalid/c.png"}}})"_s);
    ASSERT_TRUE(view);
    EXPECT_EQ(view->requiredImageCount(), 2u);
    EXPECT_TRUE(view->isLoaded());
    EXPECT_FALSE(view->isFullyLoaded());
    ASSERT_TRUE(test::waitUntil([&] { return view->isFullyLoaded(); }));

    RecordingScreenViewDelegate delegate;
    view->setDelegate(&delegate);
    view->setDelegate(&delegate);
    EXPECT_EQ(delegate.calls, QStringList{u"images"_s});
}

TEST(ScreenView, ResizingLaysTheScreenOutAgainOnceForABurstOfSizes)
{
    test::ManualClockScope time;
    const auto view = screenView(QString::fromUtf8(R"({"shapes": {"half": {"width": "50%", "height": "10"}, "fraction": {"width": "12.5", "height": "10"}}})"));
    ASSERT_TRUE(view);
    QWidget *half = view->views().value(u"half"_s);
    EXPECT_EQ(half->width(), 187);
    EXPECT_EQ(view->views().value(u"fraction"_s)->width(), 13); // 12.5 rounds up
    view->show();
    for (int width = 400; width <= 800; width += 100)
        view->resize(width, 600);
    EXPECT_EQ(half->width(), 187);
    EXPECT_EQ(time.clock().pendingTimerCount(), 1);
    time.advance(OSTScreenView::relayoutInterval);
    EXPECT_EQ(half->width(), 400);
    EXPECT_EQ(view->layoutManager().baseElement()->frame().size(), QSizeF(800, 600));
    EXPECT_EQ(view->contentView()->size(), QSize(800, 600));
    EXPECT_EQ(time.clock().pendingTimerCount(), 0);
}

QString field(const QString &key, int order, const QString &extra = {})
{
    return uR"("%1": {"x": "10", "y": "%2", "width": "200", "height": "40", "inputOrder": "%3"%4})"_s
        .arg(key)
        .arg(order * 50)
        .arg(order)
        .arg(extra.isEmpty() ? QString() : u", "_s + extra);
}

TEST(ScreenView, InputsChainInInputOrderAndTheLastReturnMovesToTheNextScreen)
{
    test::OSTEventRecorder events;
    RecordingScreenViewDelegate delegate;
    const auto view = screenView(uR"({"inputs": {%1, %2, %3}})"_s.arg(field(u"a"_s, 3), field(u"b"_s, 1),
                                                                       field(u"c"_s, 2, uR"("picker": {"pickerData": ["x", "y"]})"_s)));
    ASSERT_TRUE(view);
    view->setDelegate(&delegate);
    const auto input = [&](const QString &key) {
        QWidget *widget = view->views().value(key);
        if (auto *text = qobject_cast<OSTTextField *>(widget))
            return static_cast<OSTInput *>(text);
        return static_cast<OSTInput *>(qobject_cast<OSTPicker *>(widget));
    };
    ASSERT_TRUE(input(u"c"_s));
    EXPECT_EQ(input(u"b"_s)->nextInput(), view->views().value(u"c"_s));
    EXPECT_EQ(input(u"c"_s)->nextInput(), view->views().value(u"a"_s));
    EXPECT_EQ(input(u"a"_s)->nextInput(), nullptr);
    EXPECT_EQ(view->validationItems().size(), 3);

    view->show();
    view->views().value(u"a"_s)->setFocus();
    QTest::keyClick(view->views().value(u"a"_s), Qt::Key_Return);
    EXPECT_EQ(delegate.calls, QStringList{u"next"_s});
    const auto returns = events.parametersOf(u"OST Welcome Action Tapped"_s);
    ASSERT_EQ(returns.size(), 1u);
    EXPECT_EQ(returns.front().value(u"action_name"_s), u"textFieldReturn"_s);

    const auto single = screenView(uR"({"inputs": {%1}})"_s.arg(field(u"only"_s, 5)));
    ASSERT_TRUE(single);
    EXPECT_EQ(qobject_cast<OSTTextField *>(single->views().value(u"only"_s))->nextInput(), nullptr);
}

TEST(ScreenView, SelectionGroupsTakeTheirButtonsValidationAndPassTheirActionOn)
{
    test::OSTEventRecorder events;
    RecordingScreenViewDelegate delegate;
    const auto view = screenView(uR"({
        "buttons": {"free": {"x": "0", "y": "0", "width": "100", "height": "40", "buttonType": "toggle", %1},
                    "plus": {"x": "0", "y": "50", "width": "100", "height": "40", "buttonType": "toggle", %1},
                    "alone": {"x": "0", "y": "100", "width": "100", "height": "40", %1}},
        "selectionGroups": {"plan": {"elements": {"free": "F", "plus": "P", "ghost": "G"}, "maximumSelection": "1",
                                     "onClick": {"func": "next"}},
                            "broken": 7}})"_s.arg(QString::fromUtf8(buttonStates)));
    ASSERT_TRUE(view);
    view->setDelegate(&delegate);
    EXPECT_EQ(view->validationItems().keys(), (QStringList{u"alone"_s, u"plan"_s}));
    view->show();
    QTest::mouseClick(view->views().value(u"plus"_s), Qt::LeftButton);
    EXPECT_EQ(delegate.calls, QStringList{u"action next"_s});
    const auto taps = events.parametersOf(u"OST Welcome Action Tapped"_s);
    ASSERT_EQ(taps.size(), 1u);
    EXPECT_EQ(taps.front().value(u"action_type"_s), u"selectionGroup"_s);
    EXPECT_EQ(taps.front().value(u"button_id"_s), u"plus"_s);
    EXPECT_EQ(taps.front().value(u"button_value"_s), u"P"_s);
}

} // namespace
} // namespace ostrel
