// Selection groups as a user clicks their buttons: single and multiple choice, the bounds, the
// action passed on once enough is selected, the value and its restoration, and validity.

#include "experience/OSTAction.h"
#include "model/OSTValidationItemModel.h"
#include "widgets/OSTButton.h"
#include "model/OSTSelectionGroup.h"

#include "../model/OSTValidationTestFakes.h"
#include "OSTInputTestSupport.h"
#include "OSTPixelTestSupport.h"

#include <QTest>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace ostrel {
namespace {

using test::jsonObject;

std::shared_ptr<const OSTSelectionGroupDescription> groupDescription(const char *json, const char *key)
{
    return std::make_shared<const OSTSelectionGroupDescription>(QString::fromUtf8(key), jsonObject(json));
}

// The screen's side: records what the group tells it, in order.
class RecordingScreen : public QObject, public OSTSelectionGroupDelegate {
    Q_OBJECT
    Q_INTERFACES(ostrel::OSTSelectionGroupDelegate)

public:
    void selectionGroupDidTapButton(OSTSelectionGroup &, const QString &buttonName,
                                    const std::shared_ptr<const OSTAction> &action) override
    {
        calls.append(u"tap %1 %2"_s.arg(buttonName, action ? action->name() : u"-"_s));
    }
    bool selectionGroupShouldHandleAction(OSTSelectionGroup &, const std::shared_ptr<const OSTAction> &action) override
    {
        calls.append(u"should %1"_s.arg(action->name()));
        return false; // not consulted
    }

    QStringList calls;
};

class SelectionGroupTest : public ::testing::Test {
protected:
    // A group over buttons "a", "b", "c" standing for "A", "B" and 3.
    std::unique_ptr<OSTSelectionGroup> makeGroup(const char *extra)
    {
        const QString properties = u"{\"elements\": {\"a\": \"A\", \"b\": \"B\", \"c\": 3}%1}"_s.arg(QString::fromUtf8(extra));
        auto group = std::make_unique<OSTSelectionGroup>(groupDescription(properties.toUtf8().constData(), "group"));
        for (const QString &name : {u"a"_s, u"b"_s, u"c"_s})
            buttons.emplace_back(OSTButton::create(QRect(0, 0, 80, 30),
                    test::buttonOf(R"({"states": {}})", name), &screenWidget));
        group->setElements({buttons[0].get(), buttons[1].get(), buttons[2].get()});
        group->setDelegate(&screen);
        return group;
    }

    void click(int index) { QTest::mouseClick(buttons.at(index).get(), Qt::LeftButton); }
    QList<bool> selection() const
    {
        QList<bool> states;
        for (const auto &button : buttons)
            states.append(button->isChecked());
        return states;
    }

    QWidget screenWidget;
    RecordingScreen screen;
    std::vector<std::unique_ptr<OSTButton>> buttons;
};

TEST_F(SelectionGroupTest, SingleChoiceReplacesTheChoiceAndATapOnItClearsIt)
{
    const auto group = makeGroup(R"(, "maximumSelection": "1")");
    click(0);
    click(1);
    EXPECT_EQ(selection(), (QList<bool>{false, true, false}));
    EXPECT_EQ(group->value(), QVariant(QVariantList{u"B"_s}));
    click(1);
    EXPECT_EQ(selection(), (QList<bool>{false, false, false}));
    EXPECT_EQ(screen.calls, (QStringList{u"tap a -"_s, u"tap b -"_s, u"tap b -"_s}));
}

TEST_F(SelectionGroupTest, AnUpperBoundRefusesFurtherTapsAndNoBoundAllowsAll)
{
    const auto bounded = makeGroup(R"(, "maximumSelection": 2)");
    click(0);
    click(1);
    click(2);
    EXPECT_EQ(selection(), (QList<bool>{true, true, false})) << "refused, not swapped";
    EXPECT_EQ(screen.calls.last(), u"tap c -"_s) << "the screen still hears of the refused tap";
    click(0);
    EXPECT_EQ(selection(), (QList<bool>{false, true, false}));
    click(2);
    EXPECT_EQ(bounded->value(), QVariant(QVariantList{u"B"_s, 3}));

    buttons.clear();
    const auto open = makeGroup("");
    click(0);
    click(1);
    click(2);
    EXPECT_EQ(selection(), (QList<bool>{true, true, true}));
    EXPECT_EQ(open->currentSelection(), 3);
}

TEST_F(SelectionGroupTest, TheActionIsPassedOnOnceTheMinimumIsSelectedAndValidityFollows)
{
    const auto group = makeGroup(R"(, "minimumSelection": "2", "onClick": {"func": "next"},
        "errorMessage": "Pick two")");
    const auto model = test::bindModel(*group, {{u"errorMessage"_s, u"Pick two"_s}});
    EXPECT_FALSE(model->isValid());
    EXPECT_FALSE(group->shouldShowErrorMessage()) << "below the minimum from the start: no message";

    click(0);
    EXPECT_FALSE(model->isValid());
    EXPECT_EQ(screen.calls, QStringList{u"tap a -"_s});
    click(2);
    EXPECT_TRUE(model->isValid());
    EXPECT_EQ(model->value(), QVariant(QVariantList{u"A"_s, 3}));
    EXPECT_EQ(screen.calls.mid(1), (QStringList{u"should next"_s, u"tap c next"_s}));
    click(2);
    EXPECT_FALSE(model->isValid());
    EXPECT_TRUE(group->shouldShowErrorMessage()) << "after having been valid once";

    // Optional groups are always valid.
    buttons.clear();
    const auto optional = makeGroup(R"(, "minimumSelection": 2)");
    EXPECT_TRUE(test::bindModel(*optional, "true")->isValid());
}

TEST_F(SelectionGroupTest, ValuesRestoreTheSameButtonsAndBadInputGivesDefaults)
{
    const auto group = makeGroup("");
    EXPECT_EQ(group->valueForElementWithKey(u"c"_s), QVariant(3));
    EXPECT_FALSE(group->valueForElementWithKey(u"z"_s).isValid());
    group->setValue(QVariantList{u"B"_s, 3, u"nothing"_s, QVariantMap()});
    EXPECT_EQ(selection(), (QList<bool>{false, true, true}));
    EXPECT_EQ(group->value(), QVariant(QVariantList{u"B"_s, 3}));
    group->setValue(u"A"_s);
    EXPECT_EQ(selection(), (QList<bool>{false, false, false})) << "not a list: nothing selected";

    // A button's own receivers no longer hear its taps.
    int ownTaps = 0;
    buttons.clear();
    buttons.emplace_back(OSTButton::create(QRect(0, 0, 80, 30), test::buttonOf(R"({"states": {}})", u"a"_s), &screenWidget));
    QObject::connect(buttons[0].get(), &OSTButton::tapped, [&ownTaps] { ++ownTaps; });
    OSTSelectionGroup taking(groupDescription(R"({"elements": {"a": "A"}})", "taking"));
    taking.setElements({buttons[0].get(), nullptr});
    click(0);
    EXPECT_EQ(ownTaps, 0);
    EXPECT_TRUE(buttons[0]->isChecked());
    buttons.clear();
    EXPECT_TRUE(taking.elements().isEmpty()) << "a destroyed button leaves the group";
    EXPECT_EQ(taking.value(), QVariant(QVariantList()));

    // A minimum above the buttons stays invalid.
    OSTSelectionGroup unreachable(groupDescription(R"({"elements": {"a": "A"}, "minimumSelection": 5})", "unreachable"));
    EXPECT_FALSE(test::bindModel(unreachable, "false")->isValid());
}

} // namespace
} // namespace ostrel

#include "OSTSelectionGroupTest.moc"
