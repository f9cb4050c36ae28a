#include <ostrel/OSTRuntime.h>

#include <gtest/gtest.h>

#include <thread>
#include <vector>

using namespace ostrel;
using namespace Qt::StringLiterals;

namespace {

struct Greeter {
    virtual ~Greeter() = default;
    virtual QString greeting() const = 0;
};

struct EnglishGreeter : Greeter {
    QString greeting() const override { return u"hello"_s; }
};

struct OtherInterface {
    int value = 7;
};

} // namespace

TEST(Runtime, AdaptersAreFoundOnlyByTheirNameAndInterface)
{
    EXPECT_EQ(OSTRuntime::create<Greeter>(u"greeter"_s), nullptr) << "nothing registered: feature off";

    int made = 0;
    OSTRuntime::registerFactory<Greeter>(u"greeter"_s, [&made] {
        ++made;
        return std::make_shared<EnglishGreeter>();
    });
    const auto first = OSTRuntime::create<Greeter>(u"greeter"_s);
    const auto second = OSTRuntime::create<Greeter>(u"greeter"_s);
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(first->greeting(), u"hello"_s);
    EXPECT_NE(first, second) << "a factory makes a new adapter per request";
    EXPECT_EQ(made, 2);

    EXPECT_EQ(OSTRuntime::create<OtherInterface>(u"greeter"_s), nullptr) << "wrong interface finds nothing";
    EXPECT_EQ(OSTRuntime::create<Greeter>(u"Greeter"_s), nullptr) << "names are exact";

    auto shared = std::make_shared<OtherInterface>();
    OSTRuntime::registerInstance<OtherInterface>(u"greeter"_s, shared);
    EXPECT_EQ(OSTRuntime::create<Greeter>(u"greeter"_s), nullptr) << "a later registration replaces";
    EXPECT_EQ(OSTRuntime::create<OtherInterface>(u"greeter"_s), shared);

    OSTRuntime::unregister(u"greeter"_s);
    EXPECT_FALSE(OSTRuntime::isRegistered(u"greeter"_s));
    EXPECT_EQ(OSTRuntime::create<OtherInterface>(u"greeter"_s), nullptr);
}

TEST(Runtime, RegisteringAndLookingUpFromManyThreadsIsSafe)
{
    std::vector<std::thread> threads;
    for (int index = 0; index < 8; ++index) {
        threads.emplace_back([index] {
            const QString name = u"adapter-%1"_s.arg(index % 2);
            for (int round = 0; round < 500; ++round) {
                OSTRuntime::registerInstance<OtherInterface>(name, std::make_shared<OtherInterface>());
                const auto found = OSTRuntime::create<OtherInterface>(name);
                if (found) {
                    EXPECT_EQ(found->value, 7);
                }
                if (round % 50 == 0)
                    OSTRuntime::unregister(name);
            }
        });
    }
    for (auto &thread : threads)
        thread.join();
    OSTRuntime::registerInstance<OtherInterface>(u"adapter-0"_s, std::make_shared<OtherInterface>());
    EXPECT_NE(OSTRuntime::create<OtherInterface>(u"adapter-0"_s), nullptr);
}
