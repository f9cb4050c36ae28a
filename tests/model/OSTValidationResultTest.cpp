#include <ostrel/OSTValidationResult.h>

#include <gtest/gtest.h>

using namespace ostrel;
using namespace Qt::StringLiterals;

TEST(ValidationResult, CollectsInvalidFieldsWithTheirMessagesAndOneDefaultMessage)
{
    OSTValidationResult result;
    EXPECT_TRUE(result.isValid());

    result.invalidateField(QString());
    result.invalidateField(QString(), u"ignored"_s);
    EXPECT_TRUE(result.isValid()) << "a null field name is ignored";
    EXPECT_TRUE(result.errorMessages().isEmpty());

    result.invalidateField(u"email"_s, u"Already registered."_s);
    result.invalidateField(u"email"_s);
    result.invalidateField(u"phone"_s, QString());
    EXPECT_FALSE(result.isValid());
    EXPECT_EQ(result.invalidFields(), (QStringList{u"email"_s, u"email"_s, u"phone"_s}));
    EXPECT_EQ(result.errorMessages(), (QMap<QString, QString>{{u"email"_s, u"Already registered."_s}}))
        << "invalidating again without a message keeps the field's message";
    EXPECT_FALSE(result.defaultErrorMessage());

    // A default message alone makes a result invalid and a later one replaces it.
    result = OSTValidationResult();
    result.invalidateWithErrorMessage(u"Try again."_s);
    EXPECT_FALSE(result.isValid());
    EXPECT_TRUE(result.invalidFields().isEmpty());
    result.invalidateWithErrorMessage(u"Service unavailable."_s);
    EXPECT_EQ(result.defaultErrorMessage(), u"Service unavailable."_s);

    OSTValidationResult copy = result;
    copy.invalidateWithErrorMessage(QString());
    EXPECT_TRUE(copy.isValid()) << "a null message removes the default one";
    EXPECT_EQ(result.defaultErrorMessage(), u"Service unavailable."_s) << "copies are independent";
}
