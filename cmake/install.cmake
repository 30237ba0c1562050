# What `cmake --install` puts where: programs, the shipped library, man pages, completion, documents and examples.
include(GNUInstallDirs)

install(TARGETS vetro vetro-check)

# vetro-check looks for the library beside its own folder, so that an installed tree may be moved.
install(FILES examples/library/analysis.txt DESTINATION share/vetro/library)

file(GLOB commands CONFIGURE_DEPENDS docs/man/*.1)
file(GLOB formats CONFIGURE_DEPENDS docs/man/*.5)
install(FILES ${commands} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES ${formats} DESTINATION ${CMAKE_INSTALL_MANDIR}/man5)
install(DIRECTORY scripts/completion/ DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)

# In the folders of the project, so that the links between them hold.
install(FILES README.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY docs/ DESTINATION ${CMAKE_INSTALL_DOCDIR}/docs PATTERN man EXCLUDE)
install(DIRECTORY examples/ DESTINATION ${CMAKE_INSTALL_DOCDIR}/examples USE_SOURCE_PERMISSIONS)
