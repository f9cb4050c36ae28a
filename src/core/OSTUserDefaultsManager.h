#pragma once

#include "platform/OSTNotificationCenter.h"

#include <QMutex>
#include <QString>
#include <QVariant>
#include <QVariantMap>

namespace ostrel {

class OSTDefaultsStore;

// The SDK's private settings: the domain "com.ostrelhq.Ostrel", held in memory and written
// through to the persistent store on every change (only the changed key is written). Every
// operation holds one lock for its whole duration, so it may be called from any thread.
// Reads never touch the disk. The domain is also synchronised when the application enters the
// background.
class OSTUserDefaultsManager {
public:
    static inline const QString domainName = QStringLiteral("com.ostrelhq.Ostrel");

    static OSTUserDefaultsManager &sharedManager();

    // Reads `domain` of `store` into memory. `store` must outlive the manager.
    OSTUserDefaultsManager(OSTDefaultsStore &store, const QString &domain);
    ~OSTUserDefaultsManager();

    OSTUserDefaultsManager(const OSTUserDefaultsManager &) = delete;
    OSTUserDefaultsManager &operator=(const OSTUserDefaultsManager &) = delete;

    // Stores a property-list value; a null value removes the key. Other values are refused with
    // a warning and change nothing.
    void setObject(const QVariant &value, const QString &key);
    void setBool(bool value, const QString &key);
    void setNumber(double value, const QString &key);
    void removeObjectForKey(const QString &key);

    QVariant objectForKey(const QString &key) const;
    // The value as a boolean: booleans and numbers as such, strings by their first letter;
    // absent or any other type reads as false.
    bool boolForKey(const QString &key) const;
    // The stored value unchanged (a null QVariant when absent).
    QVariant numberForKey(const QString &key) const;

    // Writes the domain back if needed and flushes the store to disk.
    bool synchronize();
    // Empties the in-memory domain; the persistent domain is rewritten at the next change.
    void reset();

private:
    void writeThrough(const QString &key, const QVariant &value);
    bool rewriteWholeDomain();
    void reportStoreProblems();

    OSTDefaultsStore &m_store;
    const QString m_domain;
    mutable QMutex m_lock;
    QVariantMap m_cachedDomain;
    // After reset() the store still holds keys that memory no longer has.
    bool m_persistentDomainIsStale = false;
    OSTObserverToken m_backgroundObserver = 0;
};

} // namespace ostrel
