# What `cmake --install` lays down, and the Debian package that cpack makes of it.
include(GNUInstallDirs)

set(application_id com.varnholt.Lumiscan)
install(TARGETS lumiscan RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(FILES data/${application_id}.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES data/${application_id}.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
install(FILES data/${application_id}.svg DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
install(FILES data/${application_id}-symbolic.svg DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/symbolic/apps)
install(FILES data/lumiscan.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME lumiscan)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "Lumiscan maintainers <maintainers@lumiscan.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Copy the text in any part of the screen")
set(CPACK_PACKAGE_DESCRIPTION
"Press a shortcut, drag over any part of any screen, and the text there is on
the clipboard. QR codes and barcodes are read as well. Everything is
recognised on your own machine.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
# The libraries, which bring what they load themselves, such as the toolkit's platform for X11, and then what the
# program opens at run time.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libtesseract5, tesseract-ocr-eng")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "libcanberra-pulse, speech-dispatcher, xdg-utils")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS
  "tesseract-ocr-chi-sim, tesseract-ocr-chi-tra, tesseract-ocr-deu, tesseract-ocr-fra, tesseract-ocr-ita, \
tesseract-ocr-jpn, tesseract-ocr-kor, tesseract-ocr-por, tesseract-ocr-rus, tesseract-ocr-spa, tesseract-ocr-ukr")
include(CPack)
