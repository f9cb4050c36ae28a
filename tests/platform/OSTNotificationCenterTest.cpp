#include "platform/OSTNotificationCenter.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

using namespace ostrel;
using namespace Qt::StringLiterals;

TEST(NotificationCenter, DeliversByNameAndObjectWithUserInfo)
{
    OSTNotificationCenter center;
    int sender = 0;
    int otherSender = 0;
    std::vector<QString> calls;
    center.addObserver(u"changed"_s, [&](const OSTNotification &note) {
        calls.push_back(u"any:"_s + note.userInfo.value(u"k"_s).toString());
    });
    center.addObserver(u"changed"_s, [&](const OSTNotification &note) {
        EXPECT_EQ(note.object, &sender);
        calls.push_back(u"sender"_s);
    }, &sender);
    center.addObserver(u"other"_s, [&](const OSTNotification &) { calls.push_back(u"other"_s); });

    center.post(u"changed"_s, &sender, {{u"k"_s, u"v"_s}});
    center.post(u"changed"_s, &otherSender, {{u"k"_s, u"w"_s}});
    EXPECT_EQ(calls, (std::vector<QString>{u"any:v"_s, u"sender"_s, u"any:w"_s}));
}

TEST(NotificationCenter, ObserversMayRemoveThemselvesAndOthersWhileCalled)
{
    OSTNotificationCenter center;
    std::vector<QString> calls;
    OSTObserverToken self = 0;
    OSTObserverToken victim = 0;
    self = center.addObserver(u"n"_s, [&](const OSTNotification &) {
        calls.push_back(u"self"_s);
        center.removeObserver(self);
        center.removeObserver(victim);
        center.addObserver(u"n"_s, [&](const OSTNotification &) { calls.push_back(u"late"_s); });
    });
    victim = center.addObserver(u"n"_s, [&](const OSTNotification &) { calls.push_back(u"victim"_s); });

    center.post(u"n"_s);
    EXPECT_EQ(calls, (std::vector<QString>{u"self"_s})) << "removed before its turn, added for the next post";
    center.post(u"n"_s);
    EXPECT_EQ(calls, (std::vector<QString>{u"self"_s, u"late"_s}));
    center.removeObserver(self); // removing twice is harmless
}

TEST(NotificationCenter, PostsFromManyThreadsWhileObserversComeAndGo)
{
    OSTNotificationCenter center;
    std::atomic<int> delivered{0};
    center.addObserver(u"n"_s, [&](const OSTNotification &) { delivered.fetch_add(1); });
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([&] {
            for (int round = 0; round < 500; ++round) {
                const OSTObserverToken token = center.addObserver(u"n"_s, [](const OSTNotification &) {});
                center.post(u"n"_s);
                center.removeObserver(token);
            }
        });
    }
    for (auto &thread : threads)
        thread.join();
    EXPECT_EQ(delivered.load(), 2000);
}
