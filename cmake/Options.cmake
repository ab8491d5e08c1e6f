# Warnings, strict Qt definitions and sanitizers, as one target that every other one links.
add_library(pc_options INTERFACE)
target_compile_features(pc_options INTERFACE cxx_std_17)
target_compile_options(pc_options INTERFACE
  -Wall -Wextra -Wpedantic -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-qual -Wunused -Wsign-compare)
if(NOT PC_SANITIZE STREQUAL "thread")
  target_compile_options(pc_options INTERFACE -Werror) # Boost's fences warn under the thread sanitizer
endif()
if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
  target_compile_options(pc_options INTERFACE -Wthread-safety -Werror=thread-safety)
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  target_compile_options(pc_options INTERFACE -Wshadow=local) # the wider form trips over Qt's member names
else()
  target_compile_options(pc_options INTERFACE -Wshadow)
endif()
target_compile_definitions(pc_options INTERFACE
  QT_NO_KEYWORDS QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_URL_CAST_FROM_STRING QT_NO_CAST_FROM_BYTEARRAY
  QT_STRICT_ITERATORS QT_NO_NARROWING_CONVERSIONS_IN_CONNECT QT_DISABLE_DEPRECATED_BEFORE=0x050F00
  BOOST_BIND_GLOBAL_PLACEHOLDERS)

if(PC_SANITIZE STREQUAL "address")
  target_compile_options(pc_options INTERFACE -fsanitize=address,undefined -fno-omit-frame-pointer -fno-sanitize-recover=undefined)
  target_link_options(pc_options INTERFACE -fsanitize=address,undefined)
elseif(PC_SANITIZE STREQUAL "thread")
  target_compile_options(pc_options INTERFACE -fsanitize=thread -fno-omit-frame-pointer)
  target_link_options(pc_options INTERFACE -fsanitize=thread)
elseif(NOT PC_SANITIZE STREQUAL "")
  message(FATAL_ERROR "PC_SANITIZE is '${PC_SANITIZE}'; allowed are empty, address and thread")
endif()
