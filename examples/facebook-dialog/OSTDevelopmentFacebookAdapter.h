#pragma once

#include <ostrel/OSTFacebookAdapter.h>

#include <QDialog>
#include <QObject>
#include <QPointer>
#include <QWidget>
#include <QVariantMap>

#include <memory>
#include <optional>


namespace ostrel {

// A stand-in for a social log-in SDK, for walking the "log in with Facebook" path on a machine
// without one (and without network). Log-in shows a small dialog asking for a name and an
// e-mail address; the graph requests answer from what was typed, as the real service would
// ("me" with the requested fields, "<id>/picture" with a generated picture as a data URL).
//
//     auto adapter = std::make_shared<ostrel::OSTDevelopmentFacebookAdapter>(&mainWindow);
//     ostrel::OSTDevelopmentFacebookAdapter::registerWithRuntime(adapter);
//     ostrel::Ostrel::start();
//
// GUI thread only. Answers arrive on a later turn of the event loop, as a real SDK's would.
class OSTDevelopmentFacebookAdapter : public QObject, public OSTFacebookAdapter {
    Q_OBJECT

public:
    // The dialog is shown over `dialogParent` (a top-level window when null).
    explicit OSTDevelopmentFacebookAdapter(QWidget *dialogParent = nullptr);
    ~OSTDevelopmentFacebookAdapter() override;

    // Registers `adapter` under OSTFacebookAdapter::runtimeName.
    static void registerWithRuntime(const std::shared_ptr<OSTDevelopmentFacebookAdapter> &adapter);

    std::optional<AccessToken> currentAccessToken() const override;
    void logInWithReadPermissions(const QStringList &permissions, LoginCompletion completion) override;
    void logOut() override;
    void startGraphRequest(const GraphRequest &request, GraphCompletion completion) override;

    // The open log-in dialog, if any (for tests and for hosts that style it).
    QDialog *loginDialog() const { return m_dialog; }

private:
    void finishLogIn(bool accepted, const QString &name, const QString &email, const LoginCompletion &completion);
    std::optional<QVariantMap> answerGraphRequest(const GraphRequest &request) const;
    QVariantMap profileWithFields(const QString &fields) const;
    QString pictureURL() const;

    QPointer<QWidget> m_dialogParent;
    QPointer<QDialog> m_dialog;
    std::optional<AccessToken> m_token;
    QVariantMap m_profile;
};

} // namespace ostrel
