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
