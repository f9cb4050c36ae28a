#include <ostrel/OSTEventEmitter.h>

#include <QCoreApplication>

namespace ostrel {

OSTEventEmitter *OSTEventEmitter::sharedEmitter()
{
    static OSTEventEmitter *emitter = [] {
        auto *made = new OSTEventEmitter();
        // Made wherever the first event is; it belongs to the GUI thread like the host's widgets.
        if (QCoreApplication *application = QCoreApplication::instance())
            made->moveToThread(application->thread());
        return made;
    }();
    return emitter;
}

} // namespace ostrel
