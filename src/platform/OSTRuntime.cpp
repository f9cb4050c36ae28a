#include <ostrel/OSTRuntime.h>

#include <QHash>
#include <QLoggingCategory>

#include <cstring>
#include <mutex>

namespace ostrel {

namespace {

Q_LOGGING_CATEGORY(runtimeLog, "ostrel.runtime")

struct Registration {
    // typeid names compared as text: the host and the library each have their own copy of the
    // type information of an interface header.
    QByteArray typeName;
    std::function<std::shared_ptr<void>()> factory;
};

struct Registry {
    std::mutex mutex;
    QHash<QString, Registration> registrations;
};

Registry &registry()
{
    // Never destroyed, like every process-wide table that threads may read at exit.
    static Registry *instance = new Registry;
    return *instance;
}

} // namespace

void OSTRuntime::registerErased(const QString &name, const char *typeName, ErasedFactory factory)
{
    Registry &shared = registry();
    const std::lock_guard lock(shared.mutex);
    if (!factory) {
        shared.registrations.remove(name);
        return;
    }
    shared.registrations.insert(name, Registration{QByteArray(typeName), std::move(factory)});
}

OSTRuntime::ErasedFactory OSTRuntime::lookupErased(const QString &name, const char *typeName)
{
    Registry &shared = registry();
    const std::lock_guard lock(shared.mutex);
    const auto found = shared.registrations.constFind(name);
    if (found == shared.registrations.cend())
        return {};
    if (found->typeName != QByteArray(typeName)) {
        qCWarning(runtimeLog).noquote() << "The adapter registered as" << name
                                        << "does not implement the interface asked for; ignoring it";
        return {};
    }
    return found->factory;
}

bool OSTRuntime::isRegistered(const QString &name)
{
    Registry &shared = registry();
    const std::lock_guard lock(shared.mutex);
    return shared.registrations.contains(name);
}

void OSTRuntime::unregister(const QString &name)
{
    registerErased(name, "", {});
}

} // namespace ostrel
