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
    SKIP_PRECOMPILE_HEADERS ON
    COMPILE_DEFINITIONS "ORDOMART_UPDATE_HOST=\"${updatehost}\";ORDOMART_UPDATE_OWNER=\"${owner}\";ORDOMART_UPDATE_REPOSITORY=\"${repository}\";ORDOMART_REPORT_HOST=\"${reporthost}\"")
endfunction()
