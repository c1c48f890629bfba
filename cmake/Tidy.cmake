# clang-tidy in builds of its own: over the product and the scripts' tools as Windows compiles them (preset "tidy"), and over
# morvix-kit as the build machine does ("tidy_tool"). CMake has it run before the compiler, and only when a source, a header
# or the rules have changed. Nearly all of its time goes into the headers of the platform and the library, so it reads
# all files of a group as one: minutes instead of forty. Compared with file by file, this misses two kinds of findings,
# because clang takes the files of a group for headers: misc-unused-using-decls, and the checks of clang-analyzer-* that
# follow the paths of a function. (The analyzer reads headers too with -Xclang -analyzer-opt-analyze-headers, and then all
# those of the library.)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/.clang-tidy)
file(SHA256 ${CMAKE_SOURCE_DIR}/.clang-tidy rules)
foreach(language C CXX)
  # Files of a group include each other on purpose. Other rules, another command: everything is checked again.
  set(tidy_${language} clang-tidy --quiet --checks=-bugprone-suspicious-include --extra-arg=-Wreserved-identifier
    --extra-arg=-DTIDY_RULES=${rules})
  if(NOT WIN32)
    continue()
  endif()
  # clang brings the headers of the processor's instructions itself and takes all others from the cross compiler, whose
  # printf attribute it does not know.
  list(APPEND tidy_${language} --extra-arg=--target=x86_64-w64-mingw32 --extra-arg=-Wno-ignored-attributes)
  foreach(folder IN LISTS CMAKE_${language}_IMPLICIT_INCLUDE_DIRECTORIES)
    if(folder MATCHES "/(c\\+\\+|x86_64-w64-mingw32/include)(/|$)")
      list(APPEND tidy_${language} --extra-arg=-isystem${folder})
    endif()
  endforeach()
endforeach()

# Constants that several files have for themselves.
set(own_constants "#define MORVIX_JOIN(a, b) a##b\n#define MORVIX_OWN(name, file) MORVIX_JOIN(name, file)\n")
foreach(name kProductKey kSourceFile kSpareBytes kThisFile kValueNameChars)
  string(APPEND own_constants "#undef ${name}\n#define ${name} MORVIX_OWN(${name}_, MORVIX_FILE)\n")
endforeach()

# Linked last, so that these come after what the rooms say. A local name may be that of another file's constant.
add_library(tidy_flags INTERFACE)
target_compile_options(tidy_flags INTERFACE -O0 -Wno-shadow)
add_custom_target(tidy)

# morvix_tidy(group target...): the sources of these targets, read as one.
function(morvix_tidy group)
  foreach(target IN LISTS ARGN)
    get_target_property(folder ${target} SOURCE_DIR)
    get_target_property(files ${target} SOURCES)
    list(FILTER files INCLUDE REGEX "\\.(c|cpp)$")
    foreach(file IN LISTS files)
      cmake_path(ABSOLUTE_PATH file BASE_DIRECTORY ${folder})
      list(APPEND sources ${file})
    endforeach()
    list(APPEND folders $<TARGET_PROPERTY:${target},INCLUDE_DIRECTORIES>)
    list(APPEND definitions $<TARGET_PROPERTY:${target},COMPILE_DEFINITIONS>)
  endforeach()
  add_library(tidy_${group} OBJECT ${sources})
  # Not linked to what the targets use: nothing else need be built.
  target_link_libraries(tidy_${group} PRIVATE morvix_flags tidy_flags)
  target_include_directories(tidy_${group} PRIVATE ${folders})
  target_compile_definitions(tidy_${group} PRIVATE ${definitions})
  set_target_properties(tidy_${group} PROPERTIES C_CLANG_TIDY "${tidy_C}" CXX_CLANG_TIDY "${tidy_CXX}"
    UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 0 UNITY_BUILD_UNIQUE_ID MORVIX_FILE
    UNITY_BUILD_CODE_BEFORE_INCLUDE "${own_constants}")
  add_dependencies(tidy tidy_${group})
endfunction()

if(NOT WIN32)
  # The tool, as the build machine compiles it. The library of its command line comes as a system's.
  include_directories(SYSTEM ${CMAKE_BINARY_DIR}/headers)
  morvix_tidy(profiles profiles_pure)
  morvix_tidy(machines machines_pure machines_hive)
  morvix_tidy(checker checker_pure)
  morvix_tidy(pages pages_pure)
  morvix_tidy(planner planner_pure morvix-kit)
  return()
endif()
morvix_tidy(library platform orv_pure orv orv_settings_pure orv_settings base_pure base config_pure config)
morvix_tidy(installer devices_pure devices installer_pure installer Morvix fileversion)
morvix_tidy(companions actions_pure actions MorvixActions netinst_pure netinst NetInst debugview)
morvix_tidy(live machines)
morvix_tidy(proof proof_pure proof proof_tools)
# The kernel's headers want the drivers' file compiled in its own way.
set_target_properties(kit_driver_code PROPERTIES C_CLANG_TIDY "${tidy_C}")
add_dependencies(tidy kit_driver_code)
