# Install and export: find_package(Brushwork CONFIG) and pkg-config for programs outside the tree.
include(CMakePackageConfigHelpers)

set(_config_dir ${CMAKE_INSTALL_LIBDIR}/cmake/Brushwork)
install(TARGETS Brushwork EXPORT BrushworkTargets
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
# Exported, too: hosts tell setBridgeProgram where it stands.
install(TARGETS InkAtelierBridge EXPORT BrushworkTargets RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
if(TARGET brushwork)
  install(TARGETS brushwork RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()
# Without the class that decodes in the host's own process: it needs the codecs, which the engine's
# library doesn't have.
install(DIRECTORY include/brushwork DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
  PATTERN zn_gdi_plus_file_io.h EXCLUDE)
install(EXPORT BrushworkTargets NAMESPACE Brushwork:: DESTINATION ${_config_dir})
configure_package_config_file(cmake/BrushworkConfig.cmake.in
  ${CMAKE_CURRENT_BINARY_DIR}/BrushworkConfig.cmake INSTALL_DESTINATION ${_config_dir})
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/BrushworkConfigVersion.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/BrushworkConfig.cmake
  ${CMAKE_CURRENT_BINARY_DIR}/BrushworkConfigVersion.cmake DESTINATION ${_config_dir})

set(BRUSHWORK_PC_CFLAGS "")
if(NOT BUILD_SHARED_LIBS)
  set(BRUSHWORK_PC_CFLAGS "-DBRUSHWORK_STATIC")
endif()
# Relative to the file itself, so that an installation may be moved.
file(RELATIVE_PATH BRUSHWORK_PC_PREFIX /x/${CMAKE_INSTALL_LIBDIR}/pkgconfig /x)
configure_file(cmake/brushwork.pc.in ${CMAKE_CURRENT_BINARY_DIR}/brushwork.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/brushwork.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
