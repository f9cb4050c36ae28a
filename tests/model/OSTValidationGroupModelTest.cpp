#include "model/OSTValidationGroupModel.h"

#include "OSTValidationTestFakes.h"

#include <gtest/gtest.h>

#include <memory>

using namespace ostrel;
using namespace ostrel::test;
using namespace Qt::StringLiterals;

namespace {

std::shared_ptr<OSTValidationItemModel> makeItem(const QString &key, const char *properties = "{}")
{
    return std::make_shared<OSTValidationItemModel>(key, OSTValidationSettings::fromProperties(key, mapFromJson(properties)));
}

} // namespace

TEST(ValidationGroupModel, IsValidWhenEveryItemIsAndNoScreenMessageIsPending)
{
    const auto empty = OSTValidationGroupModel::create(u"empty"_s, {});
    EXPECT_TRUE(empty->isValid());
    EXPECT_FALSE(empty->errorMessage());

    const auto first = makeItem(u"first"_s);
    const auto second = makeItem(u"second"_s);
    const auto group = OSTValidationGroupModel::create(u"screen"_s, {first, nullptr, second});
    EXPECT_EQ(group->items().size(), 2u) << "null items are dropped";
    EXPECT_EQ(group->itemModelForKey(u"second"_s), second);
    EXPECT_EQ(group->itemModelForKey(u"third"_s), nullptr);

    first->setValid(true);
    EXPECT_FALSE(group->isValid());
    second->setValid(true);
    EXPECT_TRUE(group->isValid());
    group->setErrorMessage(u"Sign-up failed."_s);
    EXPECT_FALSE(group->isValid());
}

TEST(ValidationGroupModel, ScreenMessagePrecedence)
{
    const auto name = makeItem(u"name"_s, R"({"errorMessage": "Enter your name."})");
    const auto email = makeItem(u"email"_s);
    FakeTextInput nameInput;
    FakeTextInput emailInput;
    name->setItem(&nameInput);
    email->setItem(&emailInput);
    const auto group = OSTValidationGroupModel::create(u"screen"_s, {name, email});

    EXPECT_EQ(group->errorMessage(), u"Enter your name."_s) << "the first invalid item's message";
    EXPECT_FALSE(group->stateSensitiveErrorMessage()) << "no input lets its error show yet";

    emailInput.showsErrorMessage = true;
    EXPECT_EQ(group->stateSensitiveErrorMessage(), u"Invalid input."_s) << "the first invalid item that may show";
    nameInput.showsErrorMessage = true;
    EXPECT_EQ(group->stateSensitiveErrorMessage(), u"Enter your name."_s);

    name->setValid(true);
    EXPECT_EQ(group->errorMessage(), u"Invalid input."_s);
    EXPECT_EQ(group->stateSensitiveErrorMessage(), u"Invalid input."_s);

    group->setErrorMessage(u"Sign-up failed."_s);
    EXPECT_EQ(group->errorMessage(), u"Sign-up failed."_s) << "a screen-level message comes first";
    EXPECT_EQ(group->stateSensitiveErrorMessage(), u"Sign-up failed."_s);

    email->setValid(true);
    EXPECT_FALSE(group->errorMessage());
    EXPECT_FALSE(group->stateSensitiveErrorMessage());
}
