# What a workstation takes besides: the tool, its phone, the sample, the manual page and the completions. The phone,
# libwideseek_host.so, is for the tool alone and lies in a folder that no other program looks into.

set(private_dir "${CMAKE_INSTALL_LIBDIR}/wideseek")
file(RELATIVE_PATH way_to_lib "${CMAKE_INSTALL_FULL_BINDIR}" "${CMAKE_INSTALL_FULL_LIBDIR}")
set(rpath "$ORIGIN/${way_to_lib}/wideseek")
if(NOT CMAKE_INSTALL_FULL_LIBDIR IN_LIST CMAKE_CXX_IMPLICIT_LINK_DIRECTORIES)
  # The loader does not look there for libWideseek.so by itself.
  list(APPEND rpath "$ORIGIN/${way_to_lib}")
endif()
set_target_properties(wideseek PROPERTIES INSTALL_RPATH "${rpath}")

install(TARGETS wideseek_host LIBRARY DESTINATION "${private_dir}")
install(TARGETS wideseek RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}")
install(DIRECTORY "${PROJECT_SOURCE_DIR}/sample" DESTINATION "${CMAKE_INSTALL_DATADIR}/wideseek")
if(TARGET wideseek_manual)
  install(FILES "${WIDESEEK_MANUAL_DIR}/wideseek.1" DESTINATION "${CMAKE_INSTALL_MANDIR}/man1")
  install(FILES "${WIDESEEK_MANUAL_DIR}/wideseek" DESTINATION "${CMAKE_INSTALL_DATADIR}/bash-completion/completions")
  install(FILES "${WIDESEEK_MANUAL_DIR}/_wideseek" DESTINATION "${CMAKE_INSTALL_DATADIR}/zsh/site-functions")
endif()
