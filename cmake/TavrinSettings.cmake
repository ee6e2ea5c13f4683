# What every target of the project is built with, and where its products land.

option(TAVRIN_WARNINGS_AS_ERRORS "Treat compiler warnings as errors" OFF)
option(TAVRIN_PRECOMPILED_HEADERS
       "Compile libraries' headers once for each target: quicker, but hides a missing #include" OFF)
set(TAVRIN_SANITIZERS "" CACHE STRING "Sanitizers as -fsanitize= takes them; empty for none")

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)

if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE Release CACHE STRING "Build type" FORCE)
endif()

# The build tree is laid out as the installed tree is, so that a program finds its resources by the
# same relative path in both.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/${CMAKE_INSTALL_BINDIR}")
set(TAVRIN_MODULE_DIR "${CMAKE_INSTALL_LIBDIR}/tavrin")
set(TAVRIN_RESOURCE_DIR "${CMAKE_INSTALL_DATADIR}/tavrin")
set(TAVRIN_LOCALE_DIR "${CMAKE_INSTALL_LOCALEDIR}")

# The identity of the product stands here once and reaches the code through Identity.h.
set(TAVRIN_APPLICATION_ID "app.tavrin.Tavrin")
set(TAVRIN_DISPLAY_NAME "Tavrin")
set(TAVRIN_GROUP_IDENTIFIER "TAVRIN0001.group.app.tavrin.Tavrin")
set(TAVRIN_TEXT_DOMAIN "tavrin")

# Without these a compiler cache keeps nothing that precompiled headers go into.
find_program(TAVRIN_CCACHE ccache)
if(TAVRIN_CCACHE AND TAVRIN_PRECOMPILED_HEADERS)
  set(CMAKE_CXX_COMPILER_LAUNCHER
      "${CMAKE_COMMAND}" -E env CCACHE_SLOPPINESS=pch_defines,time_macros "${TAVRIN_CCACHE}")
  add_compile_options("$<$<CXX_COMPILER_ID:GNU>:-fpch-preprocess>"
                      "$<$<CXX_COMPILER_ID:Clang>:SHELL:-Xclang -fno-pch-timestamp>")
elseif(TAVRIN_CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER "${TAVRIN_CCACHE}")
endif()

# Libraries' headers that most sources of a target include: tavrin_precompile(<target> <header>...).
# GCC 12 takes them for ours then, and warns of them where it optimises.
function(tavrin_precompile TARGET)
  if(TAVRIN_PRECOMPILED_HEADERS AND NOT CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_precompile_headers(${TARGET} PRIVATE
      <algorithm> <filesystem> <functional> <map> <memory> <optional> <string> <vector> ${ARGN})
  endif()
endfunction()

add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual
                    -Wconversion -Wsign-conversion -Wformat=2 -Wundef)
# GCC 12 takes std::string's concatenation for overlapping copies (its bug 105651) and the inactive
# members of a moved optional variant for uninitialised reads (its bug 105562), and it misreads the
# bounds of a vector comparison; Clang and the sanitizers look after all of this.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  add_compile_options(-Wno-restrict -Wno-maybe-uninitialized -Wno-stringop-overread)
endif()
if(TAVRIN_WARNINGS_AS_ERRORS)
  add_compile_options(-Werror)
endif()
if(TAVRIN_SANITIZERS)
  add_compile_options(-fsanitize=${TAVRIN_SANITIZERS} -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${TAVRIN_SANITIZERS})
endif()
add_compile_definitions($<$<CONFIG:Debug>:_GLIBCXX_ASSERTIONS>)
if(NOT TAVRIN_SANITIZERS)
  add_compile_options(-fstack-protector-strong)
  add_compile_definitions($<$<CONFIG:Release>:_FORTIFY_SOURCE=2>)
  add_link_options(-Wl,-z,relro,-z,now -Wl,--as-needed)
endif()
