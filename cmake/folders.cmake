# The boundary between the folders as an include path: a target sees platform/ and the folders named for it, by links
# below the build directory, and nothing else of the tree. An include of another folder does not compile.

function(ordomart_sources variable folder)
  file(GLOB_RECURSE found CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/${folder}/*.cpp)
  set(${variable} ${found} PARENT_SCOPE)
endfunction()

function(ordomart_include target)
  set(root ${CMAKE_BINARY_DIR}/include/${target})
  foreach(folder platform ${ARGN})
    file(MAKE_DIRECTORY ${root})
    file(CREATE_LINK ${CMAKE_SOURCE_DIR}/${folder} ${root}/${folder} SYMBOLIC)
  endforeach()
  target_include_directories(${target} PUBLIC ${root})
endfunction()

# The one precompiled header of all: built once, and its own text holds no path.
macro(ordomart_precompile)
  include_directories(cmake)
  file(GENERATE OUTPUT ${CMAKE_BINARY_DIR}/precompiled.cpp CONTENT "")
  add_library(ordoprecompiled OBJECT ${CMAKE_BINARY_DIR}/precompiled.cpp)
  target_link_libraries(ordoprecompiled PRIVATE fmt::fmt nlohmann_json::nlohmann_json)
  target_precompile_headers(ordoprecompiled PRIVATE <pch.h>)
endmacro()

# Where many files are built as one (CMAKE_UNITY_BUILD), it is those of a folder. The files behind APART, which bear names
# of their neighbours, since they mirror them, are built alone.
function(ordomart_together target)
  cmake_parse_arguments(PARSE_ARGV 1 given "" "" APART)
  get_target_property(sources ${target} SOURCES)
  foreach(source IN LISTS sources)
    cmake_path(GET source PARENT_PATH folder)
    string(MAKE_C_IDENTIFIER "${folder}" group)
    set_source_files_properties(${source} PROPERTIES UNITY_GROUP ${group})
  endforeach()
  list(TRANSFORM given_APART PREPEND ${CMAKE_SOURCE_DIR}/)
  set_source_files_properties(${given_APART} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
  set_target_properties(${target} PROPERTIES UNITY_BUILD_MODE GROUP)
endfunction()

# The market's module, from its objects.
function(ordomart_module target)
  add_library(${target} MODULE ${ARGN})
  set_target_properties(${target} PROPERTIES PREFIX "")
  target_link_libraries(${target} PRIVATE ordoplatform simdjson::simdjson Threads::Threads)
  target_link_options(${target} PRIVATE -Wl,--version-script=${CMAKE_SOURCE_DIR}/cmake/module.map -Wl,--no-undefined)
  set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${CMAKE_SOURCE_DIR}/cmake/module.map)
endfunction()

# What the market's one file of addresses is built with, in the targets of the calling folder.
function(ordomart_addresses updatehost owner repository reporthost)
  set_source_files_properties(${CMAKE_SOURCE_DIR}/plugin/errands/addresses.cpp PROPERTIES
    SKIP_PRECOMPILE_HEADERS ON SKIP_UNITY_BUILD_INCLUSION ON
    COMPILE_DEFINITIONS "ORDOMART_UPDATE_HOST=\"${updatehost}\";ORDOMART_UPDATE_OWNER=\"${owner}\";ORDOMART_UPDATE_REPOSITORY=\"${repository}\";ORDOMART_REPORT_HOST=\"${reporthost}\"")
endfunction()
