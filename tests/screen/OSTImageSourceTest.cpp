// The addresses an image (or a button state's background) tries, in order: the user property it
// names, the image or its placeholder, the backup.

#include "screen/OSTImageSource.h"
#include "support/OSTTestSupport.h"

#include <gtest/gtest.h>

using namespace ostrel;
using namespace Qt::StringLiterals;

namespace {

QStringList addressesOf(const OSTImageSource &source, const QVariantMap &userProperties = {})
{
    QStringList addresses;
    for (const QUrl &url : source.candidateURLs(userProperties))
        addresses << url.toString(QUrl::FullyEncoded);
    return addresses;
}

} // namespace

TEST(ImageSource, CandidatesFollowTheOrderAndEscapingRules)
{
    const OSTImageSource avatar = OSTImageSource::fromProperties(test::jsonObject(R"({"image": "{avatar}",
        "tempImage": "https://x.test/a b.png", "backupImage": "https://x.test/backup.png"})"));
    EXPECT_EQ(avatar.referencedUserProperty(), u"avatar"_s);
    EXPECT_EQ(addressesOf(avatar), (QStringList{u"https://x.test/a%20b.png"_s, u"https://x.test/backup.png"_s}));
    EXPECT_TRUE(addressesOf(OSTImageSource::fromProperties(test::jsonObject(R"({"image": 5, "backupImage": ""})")))
                    .isEmpty());

    // The user property "{avatar}" names comes first, when it holds an address.
    const struct {
        QVariantMap userProperties;
        QStringList expected;
    } cases[] = {
        {{{u"avatar"_s, u"https://x.test/me.png"_s}},
         {u"https://x.test/me.png"_s, u"https://x.test/a%20b.png"_s, u"https://x.test/backup.png"_s}},
        {{{u"avatar"_s, 42}}, {u"https://x.test/a%20b.png"_s, u"https://x.test/backup.png"_s}},
        {{{u"avatar"_s, u""_s}}, {u"https://x.test/a%20b.png"_s, u"https://x.test/backup.png"_s}},
        {{{u"other"_s, u"https://x.test/other.png"_s}}, {u"https://x.test/a%20b.png"_s, u"https://x.test/backup.png"_s}},
    };
    for (const auto &testCase : cases)
        EXPECT_EQ(addressesOf(avatar, testCase.userProperties), testCase.expected)
            << testCase.userProperties.keys().join(u',').toStdString();

    const OSTImageSource braces = OSTImageSource::fromProperties(test::jsonObject(R"({"image": "https://x.test/{x}.png"})"));
    EXPECT_EQ(braces.referencedUserProperty(), std::nullopt);
    EXPECT_EQ(addressesOf(braces, {{u"x"_s, u"https://x.test/me.png"_s}}), QStringList{u"https://x.test/%7Bx%7D.png"_s})
        << "braces inside an address name no property";
}
