# What an installation holds, and the Debian package that is made of it. Program, market and libraries lie in one folder, as
# they do in the build directory, and find each other there; bin/ has links into it. So a prefix can be any, and be moved:
# only the units and the manual name it. The page and the game's tables are part of the program.
include(GNUInstallDirs)
set(private lib/ordomart)
set(packaging ${CMAKE_SOURCE_DIR}/packaging)
# With its packages, as gateway/install.mjs leaves it. Where they are missing when it is installed, it is left out.
set(ORDOMART_GATEWAY ${CMAKE_SOURCE_DIR}/gateway CACHE PATH "The gateway that is installed")

set_target_properties(ordomart-server ordomart PROPERTIES INSTALL_RPATH "$ORIGIN")
install(TARGETS ordomart-server ordomart LLmoney ordoplatform RUNTIME DESTINATION ${private} LIBRARY DESTINATION ${private})

set(links ${CMAKE_BINARY_DIR}/links)
file(RELATIVE_PATH private_from_bin /${CMAKE_INSTALL_BINDIR} /${private})
file(MAKE_DIRECTORY ${links})
foreach(program ordomart-server ordomart-gateway)
  file(CREATE_LINK ${private_from_bin}/${program} ${links}/${program} SYMBOLIC)
endforeach()
install(FILES ${links}/ordomart-server DESTINATION ${CMAKE_INSTALL_BINDIR})

file(GLOB documents ${CMAKE_SOURCE_DIR}/docs/*.md)
install(FILES README.md CHANGELOG.md ${documents} DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(FILES assets/game-1.19.50/LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR} RENAME game-1.19.50.LICENSE)
install(FILES web/vendor/uplot.LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(FILES ${packaging}/ordomart.sysusers DESTINATION lib/sysusers.d RENAME ordomart.conf)

install(CODE "
  set(private ${private})
  set(packaging ${packaging})
  set(gateway ${ORDOMART_GATEWAY})
  set(links ${links})
  set(scratch ${CMAKE_BINARY_DIR}/texts)
  set(bindir ${CMAKE_INSTALL_BINDIR})
  set(docdir ${CMAKE_INSTALL_DOCDIR})
  set(mandir ${CMAKE_INSTALL_MANDIR})
  set(help ${CMAKE_SOURCE_DIR}/scripts/help.txt)
  set(VERSION ${PROJECT_VERSION})
  include(${CMAKE_SOURCE_DIR}/cmake/installed.cmake)")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME ordomart)
set(CPACK_PACKAGE_VENDOR Ordomart)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "market inside a Minecraft Bedrock server")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION "Every player owns two shops: a selling shop with goods, and a recycle
shop with prepaid orders. Players trade on their own inventory screen or
in forms. This package has the market, the embedded server that it runs
in, the page that shows it, and the gateway through which game clients of
version 1.19.50 join.")
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "Ordomart maintainers <maintainers@ordomart.example>")
set(CPACK_DEBIAN_PACKAGE_SECTION net)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "systemd | systemd-standalone-sysusers | systemd-sysusers")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "nodejs (>= 18), ca-certificates")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_BINARY_DIR})
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA
  ${packaging}/debian/conffiles ${packaging}/debian/postinst ${packaging}/debian/prerm ${packaging}/debian/postrm)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_STRIP_FILES ON)
set(CPACK_SET_DESTDIR ON)  # for what lies outside of the prefix
set(CPACK_INSTALL_PREFIX /usr)
set(CPACK_PRE_BUILD_SCRIPTS ${packaging}/debian/prepare.cmake)
include(CPack)
