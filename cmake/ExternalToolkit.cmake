# Builds the application against an installed build of the real toolkit instead of toolkit/:
#   cmake -DSCOPE_TOOLKIT=external -DAWTK_ROOT=/path/to/awtk ...
# Only the application (inf_menu) is built; tools, tests and benchmarks need the host toolkit.
if(NOT AWTK_ROOT)
  message(FATAL_ERROR "SCOPE_TOOLKIT=external needs -DAWTK_ROOT=<path of the toolkit's build>")
endif()
find_library(AWTK_LIBRARY NAMES awtk PATHS ${AWTK_ROOT}/bin ${AWTK_ROOT}/lib NO_DEFAULT_PATH REQUIRED)
add_library(awtk INTERFACE)
target_include_directories(awtk INTERFACE
  ${AWTK_ROOT}/src ${AWTK_ROOT}/src/ext_widgets ${AWTK_ROOT}/3rd)
target_compile_definitions(awtk INTERFACE LINUX HAS_STDIO HAS_PTHREAD WITH_FS_RES)
target_link_libraries(awtk INTERFACE ${AWTK_LIBRARY} pthread dl m)
