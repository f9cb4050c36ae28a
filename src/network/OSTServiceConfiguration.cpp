#include "network/OSTServiceConfiguration.h"

#include "core/OSTDictionaryHelpers.h"
#include "core/OSTLogging.h"
#include "platform/OSTBundle.h"

#include <QSslCertificate>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

const QString serviceURLKey = u"OstrelServiceURL"_s;
const QString certificateKey = u"OstrelServiceCertificate"_s;
// Lengths of the first two certificate pieces; the third takes the rest.
constexpr qsizetype firstPartLength = 569;
constexpr qsizetype secondPartLength = 464;

QString infoString(const QString &key)
{
    return ost_stringForKey(OSTBundle::mainBundle()->infoDictionary(), key).value_or(QString());
}

QUrl parseServiceURL(const QString &text)
{
    if (text.isEmpty())
        return {};
    const QUrl url(text.trimmed(), QUrl::StrictMode);
    if (!url.isValid() || url.host().isEmpty()
        || (url.scheme() != u"http"_s && url.scheme() != u"https"_s)) {
        OSTLogging::logError(u"The service URL \"%1\" is not an http or https URL."_s, text);
        return {};
    }
    return url;
}

} // namespace

const OSTServiceConfiguration &OSTServiceConfiguration::sharedConfiguration()
{
    static const OSTServiceConfiguration *configuration =
        new OSTServiceConfiguration(infoString(serviceURLKey), infoString(certificateKey));
    return *configuration;
}

OSTServiceConfiguration::OSTServiceConfiguration(const QString &serviceURL,
                                                 const QString &certificateBase64)
{
    m_serviceURL = parseServiceURL(serviceURL.isEmpty() ? QStringLiteral(OSTREL_DEFAULT_SERVICE_URL)
                                                        : serviceURL);
    splitCertificate(certificateBase64.isEmpty()
                         ? QStringLiteral(OSTREL_DEFAULT_SERVICE_CERTIFICATE)
                         : certificateBase64);
    m_sslConfiguration = makeSslConfiguration();
}

QUrl OSTServiceConfiguration::urlForEndpoint(const QString &endpoint) const
{
    if (!m_serviceURL.isValid())
        return {};
    QUrl url = m_serviceURL;
    QString path = url.path();
    if (!path.endsWith(u'/'))
        path += u'/';
    url.setPath(path + endpoint);
    return url;
}

QByteArray OSTServiceConfiguration::certificateData() const
{
    const QString joined = u"%1%2%3"_s.arg(m_firstPart, m_secondPart, m_thirdPart);
    const auto decoded = QByteArray::fromBase64Encoding(joined.toLatin1(),
                                                        QByteArray::AbortOnBase64DecodingErrors);
    return decoded ? *decoded : QByteArray();
}

void OSTServiceConfiguration::splitCertificate(const QString &base64)
{
    QString text = base64;
    text.remove(u'\n').remove(u'\r').remove(u' ');
    m_firstPart = text.left(firstPartLength);
    m_secondPart = text.mid(firstPartLength, secondPartLength);
    m_thirdPart = text.mid(firstPartLength + secondPartLength);
}

QSslConfiguration OSTServiceConfiguration::sslConfigurationForURL(const QUrl &url) const
{
    if (isServiceHost(url))
        return m_sslConfiguration;
    QSslConfiguration systemTrust = QSslConfiguration::defaultConfiguration();
    systemTrust.setPeerVerifyMode(QSslSocket::VerifyPeer);
    return systemTrust;
}

bool OSTServiceConfiguration::isServiceHost(const QUrl &url) const
{
    return m_serviceURL.isValid() && url.host().compare(m_serviceURL.host(), Qt::CaseInsensitive) == 0;
}

QSslConfiguration OSTServiceConfiguration::makeSslConfiguration() const
{
    QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
    configuration.setPeerVerifyMode(QSslSocket::VerifyPeer);
    const QList<QSslCertificate> serviceCertificates =
        QSslCertificate::fromData(certificateData(), QSsl::Der);
    if (!serviceCertificates.isEmpty())
        configuration.addCaCertificates(serviceCertificates);
    return configuration;
}

} // namespace ostrel
