# brushwork_layer(<name> [FOLDER <dir>] [DEPENDS <layer>...] [ONLY <regex>...] [EXCLUDE <regex>...]
#                [APART])
#
# One layer of the house. Its sources are found by name below src/<dir>: files that end in _posix or
# _win32 belong to that system alone, _sse2 and _avx2 are compiled for that instruction set.
# Makes brushwork_<name>_objects, compiled once, and the static library brushwork_<name> over them,
# which may see exactly the layers it names. With APART its files stay files of their own where others
# are compiled together (CMAKE_UNITY_BUILD): files of one pattern may use the same names inside.
function(brushwork_layer name)
  cmake_parse_arguments(ARG "APART" "FOLDER" "DEPENDS;ONLY;EXCLUDE" ${ARGN})
  if(NOT ARG_FOLDER)
    set(ARG_FOLDER ${name})
  endif()
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/src/${ARG_FOLDER}/*.cpp)
  if(WIN32)
    list(FILTER sources EXCLUDE REGEX "_posix\\.cpp$")
  else()
    list(FILTER sources EXCLUDE REGEX "_win32\\.cpp$")
  endif()
  foreach(pattern IN LISTS ARG_ONLY)
    list(FILTER sources INCLUDE REGEX ${pattern})
  endforeach()
  foreach(pattern IN LISTS ARG_EXCLUDE)
    list(FILTER sources EXCLUDE REGEX ${pattern})
  endforeach()
  if(NOT sources)
    return()
  endif()
  foreach(source IN LISTS sources)
    if(source MATCHES "_sse2\\.cpp$")
      set_source_files_properties(${source} PROPERTIES COMPILE_OPTIONS "-msse2"
                                  SKIP_PRECOMPILE_HEADERS ON)
    elseif(source MATCHES "_avx2\\.cpp$")
      set_source_files_properties(${source} PROPERTIES COMPILE_OPTIONS "-mavx2;-mfma"
                                  SKIP_PRECOMPILE_HEADERS ON)
    endif()
  endforeach()

  add_library(brushwork_${name}_objects OBJECT ${sources})
  target_include_directories(brushwork_${name}_objects PUBLIC
    ${PROJECT_SOURCE_DIR}/src ${PROJECT_SOURCE_DIR}/include)
  target_link_libraries(brushwork_${name}_objects PRIVATE brushwork_options)
  brushwork_precompile(brushwork_${name}_objects)
  if(ARG_APART)
    set_target_properties(brushwork_${name}_objects PROPERTIES UNITY_BUILD OFF)
  endif()
  if(BUILD_SHARED_LIBS)
    target_compile_definitions(brushwork_${name}_objects PRIVATE BRUSHWORK_BUILDING)
  else()
    target_compile_definitions(brushwork_${name}_objects PUBLIC BRUSHWORK_STATIC)
  endif()

  add_library(brushwork_${name} STATIC $<TARGET_OBJECTS:brushwork_${name}_objects>)
  target_include_directories(brushwork_${name} PUBLIC
    ${PROJECT_SOURCE_DIR}/src ${PROJECT_SOURCE_DIR}/include)
  if(NOT BUILD_SHARED_LIBS)
    target_compile_definitions(brushwork_${name} PUBLIC BRUSHWORK_STATIC)
  endif()
  foreach(layer IN LISTS ARG_DEPENDS)
    target_link_libraries(brushwork_${name} PUBLIC brushwork_${layer})
  endforeach()
endfunction()
