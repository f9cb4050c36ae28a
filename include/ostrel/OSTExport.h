#pragma once

#include <QtGlobal>

// Marks what the shared library exports. Everything else in libostrel is built with hidden
// visibility, so a host sees only the API declared in include/ostrel/.
#if defined(OSTREL_STATIC)
#define OSTREL_EXPORT
#elif defined(OSTREL_BUILDING_LIBRARY)
#define OSTREL_EXPORT Q_DECL_EXPORT
#else
#define OSTREL_EXPORT Q_DECL_IMPORT
#endif
