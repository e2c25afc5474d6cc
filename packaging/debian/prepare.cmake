# What Debian asks of files that elsewhere lie as they are: manual packed, copyright and changelog in its own form, and the
# gateway's native part stripped.
set(root "${CPACK_TEMPORARY_INSTALL_DIRECTORY}/usr")
set(gateway "${root}/lib/ordomart/gateway")
if(NOT EXISTS "${gateway}/main.js")
  message(FATAL_ERROR "the gateway's packages are missing: node gateway/install.mjs fetches them")
endif()
file(GLOB_RECURSE natives "${gateway}/*.node")
if(natives)
  execute_process(COMMAND strip --strip-unneeded ${natives} COMMAND_ERROR_IS_FATAL ANY)
endif()
set(documents "${root}/share/doc/ordomart")
file(COPY_FILE "${CMAKE_CURRENT_LIST_DIR}/copyright" "${documents}/copyright")
string(TIMESTAMP now "%a, %d %b %Y %H:%M:%S +0000" UTC)
file(WRITE "${documents}/changelog"
  "${CPACK_PACKAGE_NAME} (${CPACK_PACKAGE_VERSION}) stable; urgency=medium\n\n  * CHANGELOG.md in this folder tells what is new.\n\n"
  " -- ${CPACK_DEBIAN_PACKAGE_MAINTAINER}  ${now}\n")
file(GLOB manuals "${root}/share/man/man1/*.1")
execute_process(COMMAND gzip -9n ${manuals} "${documents}/changelog" COMMAND_ERROR_IS_FATAL ANY)
