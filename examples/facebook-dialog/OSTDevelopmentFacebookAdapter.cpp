#include "OSTDevelopmentFacebookAdapter.h"

#include <ostrel/OSTRuntime.h>

#include <QBuffer>
#include <QCryptographicHash>
#include <QDialog>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPushButton>
#include <QTimer>
#include <QUuid>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

// A stable identifier per e-mail address, so that logging in again is the same user.
QString userIDForEmail(const QString &email)
{
    const QByteArray digest = QCryptographicHash::hash(email.trimmed().toLower().toUtf8(), QCryptographicHash::Sha256);
    return QString::fromLatin1(digest.toHex().left(15));
}

QLineEdit *addField(QFormLayout &form, const QString &label, const QString &objectName)
{
    auto *field = new QLineEdit();
    field->setObjectName(objectName);
    form.addRow(label, field);
    return field;
}

} // namespace

OSTDevelopmentFacebookAdapter::OSTDevelopmentFacebookAdapter(QWidget *dialogParent)
    : m_dialogParent(dialogParent)
{
}

OSTDevelopmentFacebookAdapter::~OSTDevelopmentFacebookAdapter()
{
    delete m_dialog;
}

void OSTDevelopmentFacebookAdapter::registerWithRuntime(const std::shared_ptr<OSTDevelopmentFacebookAdapter> &adapter)
{
    OSTRuntime::registerInstance<OSTFacebookAdapter>(OSTFacebookAdapter::runtimeName, adapter);
}

std::optional<OSTFacebookAdapter::AccessToken> OSTDevelopmentFacebookAdapter::currentAccessToken() const
{
    return m_token;
}

void OSTDevelopmentFacebookAdapter::logInWithReadPermissions(const QStringList &permissions, LoginCompletion completion)
{
    if (m_dialog) {
        // One log-in at a time, as a social SDK allows.
        QTimer::singleShot(0, this, [completion] { completion(LoginResult::Failed); });
        return;
    }
    auto *dialog = new QDialog(m_dialogParent);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowTitle(u"Log in with Facebook (development)"_s);
    auto *form = new QFormLayout(dialog);
    QLineEdit *name = addField(*form, u"Name"_s, u"name"_s);
    QLineEdit *email = addField(*form, u"E-mail"_s, u"email"_s);
    form->addRow(u"Shares"_s, new QLabel(permissions.join(u", "_s)));
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    buttons->button(QDialogButtonBox::Ok)->setText(u"Log in"_s);
    form->addRow(buttons);
    connect(buttons, &QDialogButtonBox::accepted, dialog, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, dialog, &QDialog::reject);
    connect(dialog, &QDialog::finished, this, [this, name, email, completion](int result) {
        finishLogIn(result == QDialog::Accepted, name->text(), email->text(), completion);
    });
    m_dialog = dialog;
    dialog->open();
}

void OSTDevelopmentFacebookAdapter::finishLogIn(bool accepted, const QString &name, const QString &email,
                                                const LoginCompletion &completion)
{
    if (!accepted) {
        completion(LoginResult::Cancelled);
        return;
    }
    if (name.trimmed().isEmpty() || !email.contains(u'@')) {
        completion(LoginResult::Failed);
        return;
    }
    const QString userID = userIDForEmail(email);
    const QStringList nameParts = name.trimmed().split(u' ', Qt::SkipEmptyParts);
    m_profile = {
        {u"id"_s, userID},
        {u"name"_s, name.trimmed()},
        {u"first_name"_s, nameParts.first()},
        {u"last_name"_s, nameParts.size() > 1 ? nameParts.last() : QString()},
        {u"email"_s, email.trimmed()},
    };
    m_token = AccessToken{userID, QUuid::createUuid().toString(QUuid::WithoutBraces)};
    completion(LoginResult::Success);
}

void OSTDevelopmentFacebookAdapter::logOut()
{
    m_token.reset();
    m_profile.clear();
}

void OSTDevelopmentFacebookAdapter::startGraphRequest(const GraphRequest &request, GraphCompletion completion)
{
    const std::optional<QVariantMap> answer = answerGraphRequest(request);
    QTimer::singleShot(0, this, [completion, answer] { completion(answer); });
}

std::optional<QVariantMap> OSTDevelopmentFacebookAdapter::answerGraphRequest(const GraphRequest &request) const
{
    if (!m_token || request.tokenString != m_token->tokenString)
        return std::nullopt;
    if (request.path == u"me"_s)
        return profileWithFields(request.parameters.value(u"fields"_s).toString());
    if (request.path == m_token->userID + u"/picture"_s)
        return QVariantMap{{u"data"_s, QVariantMap{{u"url"_s, pictureURL()}}}};
    return std::nullopt;
}

QVariantMap OSTDevelopmentFacebookAdapter::profileWithFields(const QString &fields) const
{
    QVariantMap profile{{u"id"_s, m_profile.value(u"id"_s)}};
    for (const QString &field : fields.split(u',', Qt::SkipEmptyParts)) {
        if (m_profile.contains(field))
            profile.insert(field, m_profile.value(field));
    }
    return profile;
}

// A square picture with the user's initial, as a data URL: no network needed to show it.
QString OSTDevelopmentFacebookAdapter::pictureURL() const
{
    QImage picture(96, 96, QImage::Format_ARGB32);
    picture.fill(QColor(0x3b, 0x59, 0x98));
    QPainter painter(&picture);
    painter.setPen(Qt::white);
    QFont font = painter.font();
    font.setPixelSize(48);
    painter.setFont(font);
    painter.drawText(picture.rect(), Qt::AlignCenter, m_profile.value(u"name"_s).toString().left(1).toUpper());
    painter.end();
    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    picture.save(&buffer, "PNG");
    return u"data:image/png;base64,"_s + QString::fromLatin1(png.toBase64());
}

} // namespace ostrel
