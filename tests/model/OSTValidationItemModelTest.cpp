#include "model/OSTValidationItemModel.h"

#include "OSTValidationTestFakes.h"

#include <gtest/gtest.h>

#include <memory>

using namespace ostrel;
using namespace ostrel::test;
using namespace Qt::StringLiterals;

TEST(ValidationItemModel, StartsInvalidWithoutAValueUnderItsSettings)
{
    const OSTValidationItemModel plain(u"email"_s, OSTValidationSettings::fromProperties(u"email"_s, {}));
    EXPECT_EQ(plain.key(), u"email"_s);
    EXPECT_EQ(plain.userPropertyName(), u"email"_s) << "fields are keyed by the element key";
    EXPECT_EQ(plain.errorMessage(), u"Invalid input."_s);
    EXPECT_EQ(plain.defaultErrorMessage(), u"Invalid input."_s);
    EXPECT_FALSE(plain.isValid());
    EXPECT_EQ(plain.visibilityLevel(), OSTVisibilityLevel::Savable);
    EXPECT_TRUE(plain.value().isNull());

    const OSTValidationItemModel configured(u"field1"_s, OSTValidationSettings{true, true, u"email"_s, u"Enter it."_s});
    EXPECT_TRUE(configured.isOptional());
    EXPECT_TRUE(configured.isUnique());
    EXPECT_EQ(configured.userPropertyName(), u"email"_s);
    EXPECT_EQ(configured.errorMessage(), u"Enter it."_s);
}

TEST(ValidationItemModel, SetValidTellsTheInputOfChangesAndDropsResultMessagesOnceValid)
{
    auto item = std::make_shared<OSTValidationItemModel>(u"email"_s, OSTValidationSettings{false, false, u"email"_s, u"Own."_s});
    FakeTextInput input;
    item->setItem(&input);

    item->setErrorMessage(u"Already registered."_s);
    item->setValid(false);
    EXPECT_EQ(input.validityChangedCount, 0) << "validity starts false: nothing changed";
    EXPECT_EQ(item->errorMessage(), u"Already registered."_s) << "an invalid item keeps the result's message";

    item->setValid(true);
    EXPECT_EQ(input.validityChangedCount, 1);
    EXPECT_EQ(item->errorMessage(), u"Own."_s) << "valid again: the result's message no longer applies";

    item->setValid(true);
    EXPECT_EQ(input.validityChangedCount, 1);

    item->setErrorMessage(u"Later."_s);
    item->setErrorMessage(std::nullopt);
    EXPECT_EQ(item->errorMessage(), u"Own."_s);
}

TEST(ValidationItemModel, ModelsInputsAndViewsOutliveEachOtherSafely)
{
    auto item = std::make_shared<OSTValidationItemModel>(u"email"_s, OSTValidationSettings{});
    auto input = std::make_unique<FakeTextInput>();
    item->setItem(input.get());
    input->setModel(item);
    input->type(u"ada@example.com"_s);

    input.reset();
    EXPECT_EQ(item->item(), nullptr);
    EXPECT_FALSE(item->shouldShowErrorMessage());
    item->valueChanged();
    item->setValid(false);
    EXPECT_EQ(item->value(), QVariant(u"ada@example.com"_s)) << "the value survives its input";

    FakeScreenView view;
    auto group = OSTValidationGroupModel::create(u"screen"_s, {item});
    group->setGroup(&view);
    view.setModel(group);
    item->setValid(true);
    EXPECT_EQ(view.validityChangedCount, 1);

    group.reset();
    item->setValid(false);
    EXPECT_EQ(view.validityChangedCount, 1) << "a destroyed group listens no more";
    EXPECT_EQ(view.model(), nullptr) << "the view held its model weakly";

    FakeTextInput survivingInput;
    item->setItem(&survivingInput);
    survivingInput.setModel(item);
    item.reset();
    EXPECT_EQ(survivingInput.model(), nullptr) << "the input held its model weakly";
}
