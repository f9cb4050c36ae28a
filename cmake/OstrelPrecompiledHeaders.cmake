# Qt's headers dominate the compile time of every file. Precompiling the ones nearly every file
# includes roughly halves a build on a machine without a compiler cache, as CI's is. A compiler
# launcher such as ccache does better on its own and cannot cache files built against a
# precompiled header, so the headers are left as they are when one is configured. No toolkit header
# is among them: the core is compiled without Qt Widgets or Qt Quick in reach.
option(OSTREL_PRECOMPILED_HEADERS "Precompile the Qt and standard headers most files include" ON)

function(ostrel_precompile_headers target)
  if(NOT OSTREL_PRECOMPILED_HEADERS OR CMAKE_CXX_COMPILER_LAUNCHER)
    return()
  endif()
  target_precompile_headers(${target} PRIVATE
    <QList> <QMap> <QObject> <QPointer> <QString> <QVariant>
    <functional> <memory> <optional> <vector>)
endfunction()
