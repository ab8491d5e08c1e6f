# pc_client_layer(<name> SOURCES <files> HOST_HEADERS <files> USES <layers> LINKS <libraries>)
#
# One layer of the client as an object library `client_<name>`. HOST_HEADERS are the contract headers that the layer
# implements, relative to host/<name>; naming them here lets moc see them. A layer may include the contract and the
# layers that it uses, nothing above it.
function(pc_client_layer name)
  cmake_parse_arguments(ARG "" "" "SOURCES;HOST_HEADERS;USES;LINKS" ${ARGN})
  list(TRANSFORM ARG_HOST_HEADERS PREPEND "${PROJECT_SOURCE_DIR}/host/${name}/")
  list(TRANSFORM ARG_USES PREPEND "client_")
  add_library(client_${name} OBJECT ${ARG_SOURCES} ${ARG_HOST_HEADERS})
  target_compile_definitions(client_${name} PRIVATE HOST_BUILD)
  target_include_directories(client_${name} PUBLIC "${PROJECT_SOURCE_DIR}/client")
  target_link_libraries(client_${name} PUBLIC host ${ARG_USES} ${ARG_LINKS} PRIVATE pc_options)
  if(NOT ${name} MATCHES "^(utils|bson|luawrapper|net)$") # those know no widgets
    pc_precompile(client_${name})
  endif()
  set_property(GLOBAL APPEND PROPERTY PC_CLIENT_LAYERS client_${name})
endfunction()
