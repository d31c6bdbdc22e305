# brushwork_precompile(<target> [TESTS])
#
# Parses the common standard headers, for tests also GoogleTest, once a target instead of once a
# file. Off unless asked for; builds by g++ ask for it in tests alone, and so show whether each file
# of the engine includes what it uses.
set(BRUSHWORK_PRECOMPILE "" CACHE STRING "Precompile the common headers of TESTS or of ALL targets")

function(brushwork_precompile target)
  cmake_parse_arguments(ARG "TESTS" "" "" ${ARGN})
  if(NOT (BRUSHWORK_PRECOMPILE STREQUAL "ALL" OR (ARG_TESTS AND BRUSHWORK_PRECOMPILE)))
    return()
  endif()
  target_precompile_headers(${target} PRIVATE
    <algorithm> <array> <atomic> <cmath> <cstddef> <cstdint> <cstring> <functional> <limits>
    <memory> <mutex> <new> <optional> <span> <string> <string_view> <utility> <vector>)
  if(ARG_TESTS)
    target_precompile_headers(${target} PRIVATE <random> <gtest/gtest.h>)
  endif()
  if(CMAKE_CXX_COMPILER_ID STREQUAL GNU)
    target_compile_options(${target} PRIVATE -fpch-preprocess)  # lets ccache see through it
  endif()
endfunction()
