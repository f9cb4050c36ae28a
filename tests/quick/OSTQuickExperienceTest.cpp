// Experiences drawn by Qt Quick, through the public API and against the development service: the
// cover over a host's QQuickWindow (its size, its focus, a second presentation, a window that goes
// away) and the QML type a host places itself.

#include <ostrel/Ostrel.h>

#include "experience/OSTExperienceManager.h"
#include "experience/OSTScreen.h"
#include "model/OSTExperienceModel.h"
#include "platform/OSTApplication.h"
#include "quick/OSTQuickCover.h"
#include "quick/OSTQuickLoadingOverlay.h"
#include "quick/OSTQuickExperience.h"
#include "quick/OSTQuickExperienceItem.h"
#include "quick/OSTQuickScreen.h"
#include "support/OSTDevServerProcess.h"
#include "support/OSTTestSupport.h"

#include <QFile>
#include <QJsonDocument>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickWindow>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

using namespace ostrel;
using namespace Qt::StringLiterals;

namespace {

const QColor hostColor(0x20, 0x40, 0x60);

QVariantMap sampleExperience()
{
    QFile file(QStringLiteral(QT_TESTCASE_SOURCEDIR "/widgets/samples/experience/experience.json"));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return QJsonDocument::fromJson(file.readAll()).toVariant().toMap();
}

QList<OSTQuickCover *> coversIn(const QQuickWindow &window)
{
    QList<OSTQuickCover *> covers;
    for (QQuickItem *child : window.contentItem()->childItems()) {
        if (auto *cover = qobject_cast<OSTQuickCover *>(child))
            covers << cover;
    }
    return covers;
}

class QuickExperience : public ::testing::Test {
protected:
    static void SetUpTestSuite() { QQuickWindow::setGraphicsApi(QSGRendererInterface::Software); }

    void SetUp() override
    {
        if (!test::OSTDevServerProcess::isAvailable())
            GTEST_SKIP() << "ostrel-devserver is not built";
        m_server.writeExperience(sampleExperience());
        ASSERT_TRUE(m_server.start());
        m_server.installMainBundle(m_bundle.path(), {{u"OstrelToken"_s, u"test-token"_s}});
        m_window = std::make_unique<QQuickWindow>();
        m_window->setColor(hostColor);
        m_window->resize(375, 667);
        m_hostItem = new QQuickItem(m_window->contentItem());
        m_window->show();
        m_window->requestActivate();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(m_window.get()));
        m_hostItem->forceActiveFocus();
        OSTApplication::setLifecycleSource(OSTApplication::LifecycleSource::Host);
        Ostrel::start();
    }

    void finishLaunch(OSTApplicationState state = OSTApplicationState::Active)
    {
        Ostrel::applicationDidChangeState(state);
        std::optional<bool> launched;
        Ostrel::executeAfterLaunch([&](bool success) { launched = success; });
        Ostrel::applicationDidFinishLaunching();
        ASSERT_TRUE(test::waitUntil([&] { return launched.has_value(); }, 30000));
    }

    // Ends every running fade and slide.
    void settle() const
    {
        for (int round = 0; round < 4; ++round) {
            QCoreApplication::processEvents();
            for (OSTQuickCover *cover : m_window ? coversIn(*m_window) : QList<OSTQuickCover *>()) {
                if (QAbstractAnimation *fade = cover->runningFade())
                    fade->setCurrentTime(fade->totalDuration());
                if (OSTQuickExperienceItem *experience = cover->experience(); experience && experience->runningSlide())
                    experience->runningSlide()->setCurrentTime(experience->runningSlide()->totalDuration());
            }
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        }
    }

    std::optional<bool> present()
    {
        if (!m_launched) {
            finishLaunch();
            m_launched = true;
        }
        std::optional<bool> presented;
        Ostrel::presentExperienceWithCompletion([&](bool shown) { presented = shown; });
        test::waitUntil([&] { return presented.has_value(); });
        settle();
        return presented;
    }

    QString currentScreenKey() const
    {
        const auto screen = OSTExperienceManager::sharedManager().currentScreen();
        return screen ? screen->key() : QString();
    }

    test::OSTDevServerProcess m_server;
    QTemporaryDir m_bundle;
    std::unique_ptr<QQuickWindow> m_window;
    QQuickItem *m_hostItem = nullptr; // child item of the window's content
    bool m_launched = false;
};

} // namespace

TEST_F(QuickExperience, TheCoverFillsTheQuickWindowFollowsItAndGivesItsFocusBack)
{
    EXPECT_EQ(present(), true);
    ASSERT_EQ(coversIn(*m_window).size(), 1);
    OSTQuickCover *cover = coversIn(*m_window).front();
    EXPECT_EQ(cover->size(), QSizeF(375, 667));
    EXPECT_EQ(currentScreenKey(), u"welcome"_s);
    EXPECT_TRUE(cover->isAncestorOf(m_window->activeFocusItem())) << "the experience takes the keyboard";
    const QImage grab = m_window->grabWindow().convertToFormat(QImage::Format_RGB32);
    const QImage hostOnly = [&] {
        QImage plain(grab.size(), QImage::Format_RGB32);
        plain.fill(hostColor);
        return plain;
    }();
    EXPECT_NE(grab, hostOnly) << "a grab of the window shows the experience";

    m_window->resize(500, 700);
    QCoreApplication::processEvents();
    EXPECT_EQ(cover->size(), QSizeF(500, 700));
    ASSERT_NE(cover->experience(), nullptr);
    EXPECT_EQ(cover->experience()->stack().front()->size(), QSizeF(500, 700));

    EXPECT_EQ(present(), true);
    EXPECT_EQ(coversIn(*m_window).size(), 1) << "a second presentation replaces the first";

    std::optional<bool> dismissed;
    Ostrel::dismissExperienceWithCompletion([&](bool done) { dismissed = done; });
    settle();
    EXPECT_EQ(dismissed, true);
    EXPECT_TRUE(coversIn(*m_window).isEmpty());
    EXPECT_FALSE(Ostrel::isPresentingExperience());
    EXPECT_EQ(m_window->activeFocusItem(), m_hostItem) << "the host's item has the keyboard again";
}

TEST_F(QuickExperience, AWindowThatGoesAwayTakesTheExperienceWithItAndNothingHangs)
{
    EXPECT_EQ(present(), true);
    m_window.reset();
    settle();
    std::optional<bool> dismissed;
    Ostrel::dismissExperienceWithCompletion([&](bool done) { dismissed = done; });
    settle();
    EXPECT_EQ(dismissed, false) << "nothing was left to dismiss";
    EXPECT_FALSE(Ostrel::isPresentingExperience());
}

TEST_F(QuickExperience, APresentationWhileTheApplicationStartsShowsTheLaunchScreenThenCrossFades)
{
    ASSERT_FALSE(OSTApplication::hasBecomeActiveOnce()) << "run this test in a process of its own";
    std::optional<bool> presented;
    Ostrel::presentExperienceWithCompletion([&](bool shown) { presented = shown; });
    QCoreApplication::processEvents();
    ASSERT_EQ(coversIn(*m_window).size(), 1);
    OSTQuickCover *cover = coversIn(*m_window).front();
    ASSERT_NE(cover->launchScreen(), nullptr);
    const QImage starting = m_window->grabWindow();
    EXPECT_EQ(starting.pixelColor(starting.width() / 2, starting.height() / 2), QColor(Qt::black))
        << "no launch image: the launch screen is black";

    finishLaunch(OSTApplicationState::Inactive);
    ASSERT_TRUE(test::waitUntil([&] { return cover->runningFade() != nullptr; }));
    EXPECT_FALSE(presented) << "the completion waits for the cross-fade";
    settle();
    EXPECT_EQ(presented, true);
    EXPECT_EQ(cover->launchScreen(), nullptr);
    EXPECT_EQ(currentScreenKey(), u"welcome"_s);
}

TEST_F(QuickExperience, TheQmlTypeShowsAnExperienceWhereTheHostPlacesIt)
{
    finishLaunch();
    QQmlEngine engine;
    QQmlComponent component(&engine);
    component.setData("import QtQuick\nimport Ostrel\nOstrelExperience { width: 320; height: 480; experienceType: 1 }",
                      QUrl(u"qrc:/host.qml"_s));
    ASSERT_TRUE(component.isReady()) << component.errorString().toStdString();
    std::unique_ptr<QObject> object(component.create());
    auto *placed = qobject_cast<OSTQuickExperience *>(object.get());
    ASSERT_NE(placed, nullptr);
    placed->setParentItem(m_window->contentItem());
    ASSERT_TRUE(test::waitUntil([&] { return placed->isLoaded(); }));
    ASSERT_EQ(placed->experience()->stack().size(), 1);
    EXPECT_EQ(placed->experience()->stack().front()->screen()->key(), u"welcome"_s);
    EXPECT_EQ(placed->experience()->size(), QSizeF(320, 480));

    placed->setExperienceType(3000);
    ASSERT_TRUE(test::waitUntil([&] { return !placed->isLoaded(); })) << "a type that names no experience shows none";
}
