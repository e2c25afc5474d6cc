# What Debian asks of files that elsewhere lie as they are: texts packed, the copyright in its place, and nothing in the gateway's
# packages that only their makers ran.
set(root "${CPACK_TEMPORARY_INSTALL_DIRECTORY}/usr")
if(NOT EXISTS "${root}/lib/ordomart/gateway/main.js")
  message(FATAL_ERROR "the gateway's packages are missing: node gateway/install.mjs fetches them; configure again behind it")
endif()
set(documents "${root}/share/doc/ordomart")
file(RENAME "${documents}/CHANGELOG.md" "${documents}/changelog")
file(COPY_FILE "${CMAKE_CURRENT_LIST_DIR}/copyright" "${documents}/copyright")
file(GLOB texts "${root}/share/man/man1/*.1")
execute_process(COMMAND gzip -9n ${texts} "${documents}/changelog" COMMAND_ERROR_IS_FATAL ANY)
file(GLOB_RECURSE files "${root}/lib/ordomart/gateway/*")
file(CHMOD ${files} PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
