#include "core/OSTUserDefaultsManager.h"

#include "core/OSTDictionaryHelpers.h"
#include "core/OSTLogging.h"
#include "platform/OSTApplication.h"
#include "platform/OSTDefaultsStore.h"
#include "platform/OSTPropertyListArchive.h"

#include <QMutexLocker>

using namespace Qt::StringLiterals;

namespace ostrel {

OSTUserDefaultsManager &OSTUserDefaultsManager::sharedManager()
{
    static OSTUserDefaultsManager *manager =
        new OSTUserDefaultsManager(OSTDefaultsStore::standardStore(), domainName);
    return *manager;
}

OSTUserDefaultsManager::OSTUserDefaultsManager(OSTDefaultsStore &store, const QString &domain)
    : m_store(store), m_domain(domain)
{
    m_cachedDomain = m_store.persistentDomain(m_domain).value_or(QVariantMap());
    reportStoreProblems();
    m_backgroundObserver = OSTNotificationCenter::defaultCenter().addObserver(
        OSTApplicationDidEnterBackgroundNotification,
        [this](const OSTNotification &) { synchronize(); });
}

OSTUserDefaultsManager::~OSTUserDefaultsManager()
{
    OSTNotificationCenter::defaultCenter().removeObserver(m_backgroundObserver);
}

void OSTUserDefaultsManager::setObject(const QVariant &value, const QString &key)
{
    if (!value.isValid()) {
        removeObjectForKey(key);
        return;
    }
    if (!OSTPropertyListArchive::isPropertyListValue(value)) {
        OSTLogging::logWarning(u"Refusing to store a value of type %1 under \"%2\": only strings, "
                               u"numbers, booleans, data, dates, arrays and dictionaries can be stored."_s,
                               QString::fromLatin1(value.typeName()), key);
        return;
    }
    QMutexLocker locker(&m_lock);
    m_cachedDomain.insert(key, value);
    writeThrough(key, value);
}

void OSTUserDefaultsManager::setBool(bool value, const QString &key)
{
    setObject(value, key);
}

void OSTUserDefaultsManager::setNumber(double value, const QString &key)
{
    setObject(value, key);
}

void OSTUserDefaultsManager::removeObjectForKey(const QString &key)
{
    QMutexLocker locker(&m_lock);
    m_cachedDomain.remove(key);
    writeThrough(key, QVariant());
}

QVariant OSTUserDefaultsManager::objectForKey(const QString &key) const
{
    QMutexLocker locker(&m_lock);
    return m_cachedDomain.value(key);
}

bool OSTUserDefaultsManager::boolForKey(const QString &key) const
{
    const QVariant value = objectForKey(key);
    if (ost_isNumber(value))
        return value.toDouble() != 0.0;
    if (value.typeId() == QMetaType::QString)
        return ost_boolValue(value.toString());
    return false;
}

QVariant OSTUserDefaultsManager::numberForKey(const QString &key) const
{
    return objectForKey(key);
}

bool OSTUserDefaultsManager::synchronize()
{
    QMutexLocker locker(&m_lock);
    const bool written = !m_persistentDomainIsStale || rewriteWholeDomain();
    const bool flushed = m_store.synchronize();
    reportStoreProblems();
    return written && flushed;
}

void OSTUserDefaultsManager::reset()
{
    QMutexLocker locker(&m_lock);
    m_cachedDomain.clear();
    m_persistentDomainIsStale = true;
}

void OSTUserDefaultsManager::writeThrough(const QString &key, const QVariant &value)
{
    if (m_persistentDomainIsStale) {
        rewriteWholeDomain();
        return;
    }
    const bool written = value.isValid() ? m_store.setValue(m_domain, key, value)
                                         : m_store.removeValue(m_domain, key);
    if (!written)
        OSTLogging::logError(u"Could not save \"%1\" to the SDK's store; it is kept in memory for "
                             u"this run."_s, key);
    reportStoreProblems();
}

bool OSTUserDefaultsManager::rewriteWholeDomain()
{
    const bool written = m_store.setPersistentDomain(m_domain, m_cachedDomain);
    if (written)
        m_persistentDomainIsStale = false;
    else
        OSTLogging::logError(u"Could not save the SDK's settings; they are kept in memory for this run."_s);
    reportStoreProblems();
    return written;
}

void OSTUserDefaultsManager::reportStoreProblems()
{
    for (const QString &problem : m_store.takeProblems())
        OSTLogging::logError(problem);
}

} // namespace ostrel
