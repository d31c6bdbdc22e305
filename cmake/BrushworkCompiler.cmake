# How all of our own code is compiled. Floating-point expressions keep their written order and
# roundings: the bytes of a picture must not depend on the compiler.
find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_C_COMPILER_LAUNCHER ${CCACHE_PROGRAM})
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE_PROGRAM})
endif()

if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
  set(CMAKE_BUILD_TYPE Release CACHE STRING "Build type" FORCE)
endif()

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

# brushwork_options: flags of every target of ours; never exported.
add_library(brushwork_options INTERFACE)
target_compile_options(brushwork_options INTERFACE
  -Wall -Wextra -Wconversion -Wshadow -ffp-contract=off)
if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # False alarms of this version on ordinary string concatenation.
  target_compile_options(brushwork_options INTERFACE -Wno-restrict)
endif()
if(BRUSHWORK_WERROR)
  target_compile_options(brushwork_options INTERFACE -Werror)
endif()
if(NOT WIN32)
  target_compile_definitions(brushwork_options INTERFACE _FILE_OFFSET_BITS=64)
endif()
if(BRUSHWORK_SANITIZE)
  target_compile_options(brushwork_options INTERFACE
    -fsanitize=${BRUSHWORK_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  target_link_options(brushwork_options INTERFACE -fsanitize=${BRUSHWORK_SANITIZE})
  if(CMAKE_CXX_COMPILER_ID STREQUAL Clang AND BRUSHWORK_SANITIZE MATCHES thread)
    # Its runtime brings an operator new that isn't weak beside that of tests that count allocations.
    target_link_options(brushwork_options INTERFACE -Wl,-z,muldefs)
  endif()
endif()
if(BRUSHWORK_BUILD_FUZZ)
  target_compile_options(brushwork_options INTERFACE -fsanitize=fuzzer-no-link)
endif()
