# pc_precompile(<target>): what nearly every file includes is read once. Only for the sanitizer builds, which are built
# from nothing: the other builds show whether each file includes what it uses.
option(PC_PRECOMPILE "Read common headers once for each target" OFF)

function(pc_precompile target)
  if(NOT PC_PRECOMPILE)
    return()
  endif()
  target_precompile_headers(${target} PRIVATE
    <QApplication> <QHash> <QObject> <QPainter> <QPointer> <QString> <QStringList> <QTimer> <QWidget>
    <boost/make_shared.hpp> <boost/shared_ptr.hpp> <fmt/format.h>
    <algorithm> <atomic> <functional> <map> <memory> <mutex> <optional> <set> <string> <thread> <unordered_map> <vector>
    ${ARGN})
  if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    target_compile_options(${target} PRIVATE "SHELL:-Xclang -fno-pch-timestamp") # for ccache
  endif()
endfunction()
