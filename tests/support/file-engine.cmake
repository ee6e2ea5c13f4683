# The file engine as a program, for tests and for benchmarks, whichever of them is built.
include_guard(GLOBAL)

add_executable(file-engine "${CMAKE_CURRENT_LIST_DIR}/file-engine.cpp")
target_include_directories(file-engine PRIVATE "${CMAKE_SOURCE_DIR}/src")
target_link_libraries(file-engine PRIVATE tavrin_linux_files)
set_target_properties(file-engine PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/tests")
# It starts as quickly as what it is measured beside; a host that runs starts no more.
if(NOT TAVRIN_SANITIZERS)
  target_link_options(file-engine PRIVATE -static-libstdc++ -static-libgcc)
endif()
