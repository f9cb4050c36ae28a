#include <ostrel/OSTPropertyConversions.h>

#include <QList>
#include <QThread>

#include <gtest/gtest.h>

#include <functional>
#include <utility>
#include <vector>

using namespace ostrel;
using namespace Qt::StringLiterals;

namespace {

// One lookup seen through its numbers: every word it knows with the value that word must give
// (written as plain numbers, because the numbers are the contract), and its default.
struct Lookup {
    const char *name;
    std::function<int(const std::optional<QString> &)> convert;
    int defaultValue;
    std::vector<std::pair<QString, int>> words;
};

template <typename Enumeration>
std::function<int(const std::optional<QString> &)> asNumber(Enumeration (*convert)(const std::optional<QString> &))
{
    return [convert](const std::optional<QString> &string) { return int(convert(string)); };
}

// The word with the case of its first letter swapped ("left" -> "Left", "URL" -> "uRL").
QString withFirstLetterCaseSwapped(QString word)
{
    const QChar first = word.at(0);
    word[0] = first.isUpper() ? first.toLower() : first.toUpper();
    return word;
}

const std::vector<Lookup> &allLookups()
{
    static const std::vector<Lookup> lookups{
        {"NSTextAlignment", asNumber(NSTextAlignmentFromString), 1,
         {{u"left"_s, 0}, {u"center"_s, 1}, {u"right"_s, 2}, {u"justified"_s, 3}, {u"natural"_s, 4}}},
        {"UIViewContentMode", asNumber(UIViewContentModeFromString), 2,
         {{u"scaleFill"_s, 0}, {u"aspectFit"_s, 1}, {u"aspectFill"_s, 2}, {u"center"_s, 4},
          {u"top"_s, 5}, {u"bottom"_s, 6}, {u"left"_s, 7}, {u"right"_s, 8}, {u"topLeft"_s, 9},
          {u"topRight"_s, 10}, {u"bottomLeft"_s, 11}, {u"bottomRight"_s, 12}}},
        {"UIControlContentHorizontalAlignment", asNumber(UIControlContentHorizontalAlignmentFromString), 0,
         {{u"left"_s, 1}, {u"right"_s, 2}, {u"fill"_s, 3}}},
        {"UIControlContentVerticalAlignment", asNumber(UIControlContentVerticalAlignmentFromString), 0,
         {{u"top"_s, 1}, {u"bottom"_s, 2}, {u"fill"_s, 3}}},
        {"UIDatePickerMode", asNumber(UIDatePickerModeFromString), 1,
         {{u"time"_s, 0}, {u"dateAndTime"_s, 2}, {u"countDownTimer"_s, 3}}},
        {"UIKeyboardAppearance", asNumber(UIKeyboardAppearanceFromString), 0,
         {{u"dark"_s, 1}, {u"light"_s, 2}}},
        {"UIKeyboardType", asNumber(UIKeyboardTypeFromString), 0,
         {{u"ASCIICapable"_s, 1}, {u"numbersAndPunctuation"_s, 2}, {u"URL"_s, 3}, {u"numberPad"_s, 4},
          {u"phonePad"_s, 5}, {u"namePhonePad"_s, 6}, {u"emailAddress"_s, 7}, {u"decimalPad"_s, 8},
          {u"twitter"_s, 9}, {u"webSearch"_s, 10}}},
        {"UIReturnKeyType", asNumber(UIReturnKeyTypeFromString), 0,
         {{u"go"_s, 1}, {u"google"_s, 2}, {u"join"_s, 3}, {u"next"_s, 4}, {u"route"_s, 5},
          {u"search"_s, 6}, {u"send"_s, 7}, {u"yahoo"_s, 8}, {u"done"_s, 9}, {u"emergencyCall"_s, 10}}},
        {"UITextAutocapitalizationType", asNumber(UITextAutocapitalizationTypeFromString), 0,
         {{u"words"_s, 1}, {u"sentences"_s, 2}, {u"allCharacters"_s, 3}}},
        {"UITextAutocorrectionType", asNumber(UITextAutocorrectionTypeFromString), 0,
         {{u"no"_s, 1}, {u"yes"_s, 2}}},
        {"UITextSpellCheckingType", asNumber(UITextSpellCheckingTypeFromString), 0,
         {{u"no"_s, 1}, {u"yes"_s, 2}}},
        {"UITextFieldViewMode", asNumber(UITextFieldViewModeFromString), 0,
         {{u"whileEditing"_s, 1}, {u"unlessEditing"_s, 2}, {u"always"_s, 3}}},
        {"OSTPickerType", asNumber(OSTPickerTypeFromString), 0,
         {{u"countryCode"_s, 1}, {u"date"_s, 2}}},
        {"OSTTextFieldType", asNumber(OSTTextFieldTypeFromString), 0,
         {{u"password"_s, 1}, {u"phoneNumber"_s, 2}, {u"phoneNumberValidated"_s, 3},
          {u"phoneNumberPin"_s, 4}}},
    };
    return lookups;
}

} // namespace

TEST(PropertyConversions, EveryWordGivesItsPlatformNumber)
{
    for (const Lookup &lookup : allLookups()) {
        for (const auto &[word, value] : lookup.words)
            EXPECT_EQ(lookup.convert(word), value) << lookup.name << " \"" << word.toStdString() << "\"";
    }
}

TEST(PropertyConversions, AnythingElseGivesTheDefault)
{
    for (const Lookup &lookup : allLookups()) {
        SCOPED_TRACE(lookup.name);
        EXPECT_EQ(lookup.convert(std::nullopt), lookup.defaultValue) << "no value";
        EXPECT_EQ(lookup.convert(QString()), lookup.defaultValue) << "null string";
        EXPECT_EQ(lookup.convert(u""_s), lookup.defaultValue) << "empty string";
        EXPECT_EQ(lookup.convert(u"middle"_s), lookup.defaultValue) << "unknown word";
        for (const auto &[word, value] : lookup.words) {
            EXPECT_EQ(lookup.convert(withFirstLetterCaseSwapped(word)), lookup.defaultValue)
                << "case matters: " << word.toStdString();
            EXPECT_EQ(lookup.convert(u" "_s + word), lookup.defaultValue)
                << "no trimming: " << word.toStdString();
            EXPECT_EQ(lookup.convert(word.toUpper() + u"X"_s), lookup.defaultValue);
        }
    }
}

TEST(PropertyConversions, DocumentedSpecialCases)
{
    EXPECT_EQ(NSTextAlignmentFromString(u"Left"_s), NSTextAlignmentCenter);
    EXPECT_EQ(UIViewContentModeFromString(u"redraw"_s), UIViewContentModeScaleAspectFill)
        << "redraw has no word on purpose";
    EXPECT_EQ(UIControlContentHorizontalAlignmentFromString(u"center"_s),
              UIControlContentHorizontalAlignmentCenter);
    EXPECT_EQ(UIDatePickerModeFromString(u"date"_s), UIDatePickerModeDate);
}

TEST(PropertyConversions, TablesAreSafeToBuildFromSeveralThreadsAtOnce)
{
    // Each table is built on first use; threads racing to that first use must all see it whole.
    QList<QThread *> threads;
    std::vector<int> mismatches(8, 0);
    for (int index = 0; index < 8; ++index) {
        threads.append(QThread::create([&mismatches, index] {
            for (const Lookup &lookup : allLookups()) {
                for (const auto &[word, value] : lookup.words)
                    mismatches[index] += lookup.convert(word) != value;
            }
        }));
    }
    for (QThread *thread : threads)
        thread->start();
    for (QThread *thread : threads) {
        thread->wait();
        delete thread;
    }
    for (const int count : mismatches)
        EXPECT_EQ(count, 0);
}
