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
    EXPECT_EQ(addressesOf(avatar).size(), 2) << "no such property: the placeholder and the backup";
    EXPECT_TRUE(addressesOf(OSTImageSource::fromProperties(test::jsonObject(R"({"image": 5, "backupImage": ""})")))
                    .isEmpty());

    // The user property "{avatar}" names comes first, when it holds an address.
    const QStringList fallbacks{u"https://x.test/a%20b.png"_s, u"https://x.test/backup.png"_s};
    EXPECT_EQ(addressesOf(avatar, {{u"avatar"_s, u"https://x.test/me.png"_s}}),
              QStringList{u"https://x.test/me.png"_s} + fallbacks);
    for (const QVariantMap &user : {QVariantMap{{u"avatar"_s, 42}}, QVariantMap{{u"avatar"_s, u""_s}},
                                    QVariantMap{{u"other"_s, u"https://x.test/other.png"_s}}})
        EXPECT_EQ(addressesOf(avatar, user), fallbacks) << user.keys().join(u',').toStdString();

    const OSTImageSource braces = OSTImageSource::fromProperties(test::jsonObject(R"({"image": "https://x.test/{x}.png"})"));
    EXPECT_EQ(braces.referencedUserProperty(), std::nullopt);
    EXPECT_EQ(addressesOf(braces, {{u"x"_s, u"https://x.test/me.png"_s}}), QStringList{u"https://x.test/%7Bx%7D.png"_s})
        << "braces inside an address name no property";
}
