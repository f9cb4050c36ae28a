#include "platform/OSTBundle.h"
#include "support/OSTTestSupport.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace ostrel;
using namespace Qt::StringLiterals;

TEST(Bundle, MainBundleIsTheExecutablesFolderUntilTheHostNamesAnother)
{
    EXPECT_EQ(OSTBundle::mainBundle()->bundlePath(), QCoreApplication::applicationDirPath());

    QTemporaryDir folder;
    test::writeBundle(folder.path(), {{u"OstrelToken"_s, u"abc"_s}, {u"Nested"_s, QVariantMap{{u"n"_s, 1}}}});
    test::writeFile(folder.filePath(u"OSTDefault.json"_s), "{}");
    const auto before = OSTBundle::mainBundle();
    OSTBundle::setMainBundlePath(folder.path());
    const auto bundle = OSTBundle::mainBundle();

    EXPECT_EQ(before->bundlePath(), QCoreApplication::applicationDirPath()) << "earlier holders keep theirs";
    EXPECT_EQ(bundle->objectForInfoDictionaryKey(u"OstrelToken"_s), u"abc"_s);
    EXPECT_EQ(bundle->infoDictionary().value(u"Nested"_s).toMap().value(u"n"_s).toInt(), 1);
    EXPECT_FALSE(bundle->objectForInfoDictionaryKey(u"Missing"_s).isValid());
    EXPECT_EQ(bundle->pathForResource(u"OSTDefault"_s, u"json"_s), folder.filePath(u"OSTDefault.json"_s));
    EXPECT_TRUE(bundle->pathForResource(u"Absent"_s, u"json"_s).isEmpty());
    EXPECT_TRUE(bundle->infoDictionaryError().isEmpty());
}

TEST(Bundle, BrokenInfoFilesReadAsEmptyWithAReason)
{
    QTemporaryDir folder;
    test::writeFile(folder.filePath(u"a/Info.json"_s), "{ not json");
    test::writeFile(folder.filePath(u"b/Info.json"_s), "[1, 2]");
    const OSTBundle invalid(folder.filePath(u"a"_s));
    const OSTBundle array(folder.filePath(u"b"_s));
    const OSTBundle missing(folder.filePath(u"c"_s));

    EXPECT_TRUE(invalid.infoDictionary().isEmpty());
    EXPECT_TRUE(invalid.infoDictionaryError().contains(u"is not valid JSON"_s));
    EXPECT_TRUE(array.infoDictionary().isEmpty());
    EXPECT_TRUE(array.infoDictionaryError().contains(u"does not hold a JSON object"_s));
    EXPECT_TRUE(missing.infoDictionary().isEmpty());
    EXPECT_TRUE(missing.infoDictionaryError().isEmpty()) << "a bundle without Info.json is not an error";
}
