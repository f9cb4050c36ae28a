#pragma once

#include <ostrel/OSTExport.h>

#include <QString>

#include <functional>
#include <memory>
#include <typeinfo>

namespace ostrel {

// Optional features that depend on software the SDK does not link (a social log-in SDK, an
// advertising identifier) reach it through adapters the host registers here by a well-known
// name. A name nobody registered turns its feature off quietly.
//
// Each name belongs to one interface; looking a name up with another interface type finds
// nothing. Thread-safe: register and look up from any thread.
class OSTREL_EXPORT OSTRuntime {
public:
    template <typename Interface>
    using Factory = std::function<std::shared_ptr<Interface>()>;

    OSTRuntime() = delete;

    // Makes `factory` the source of `name`, replacing an earlier registration. The factory is
    // called on the thread that asks for the adapter, every time one is asked for.
    template <typename Interface>
    static void registerFactory(const QString &name, Factory<Interface> factory)
    {
        registerErased(name, typeid(Interface).name(),
                       [factory = std::move(factory)]() -> std::shared_ptr<void> { return factory(); });
    }

    // Registers one shared instance under `name`.
    template <typename Interface>
    static void registerInstance(const QString &name, std::shared_ptr<Interface> instance)
    {
        registerFactory<Interface>(name, [instance] { return instance; });
    }

    // A new adapter from the factory registered as `name`; nullptr when nothing is registered
    // under that name or it was registered for another interface.
    template <typename Interface>
    static std::shared_ptr<Interface> create(const QString &name)
    {
        const ErasedFactory factory = lookupErased(name, typeid(Interface).name());
        return factory ? std::static_pointer_cast<Interface>(factory()) : nullptr;
    }

    static bool isRegistered(const QString &name);
    static void unregister(const QString &name);

private:
    using ErasedFactory = std::function<std::shared_ptr<void>()>;

    static void registerErased(const QString &name, const char *typeName, ErasedFactory factory);
    static ErasedFactory lookupErased(const QString &name, const char *typeName);
};

} // namespace ostrel
