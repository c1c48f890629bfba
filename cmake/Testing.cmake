# How CTest runs what is built here. A test's name is the name of its program, with a number when its cases are split over
# several runs, or <folder>_<script>. Its cases are reported in build/test/<name>.xml.

# What CTest starts ends with it, even when CTest is killed outright.
set(ends_with_ctest setpriv --pdeathsig TERM)
set(runners ${CMAKE_SOURCE_DIR}/scripts/lib)

# Programs in Wine mostly wait for its server, and both are fastest on one processor: CTest hands out the processors of a
# list (scripts/lib/tests.sh), several programs for each.
set(on_one_processor RESOURCE_GROUPS processors:1)

# morvix_machine_use(target kind text): what a test program for Windows does to a machine, which it says itself, and with a
# kind of MachineUse.h, by which it refuses to run where it must not.
function(morvix_machine_use target kind text)
  set(source ${CMAKE_CURRENT_BINARY_DIR}/${target}_machine_use.cpp)
  file(CONFIGURE OUTPUT ${source} CONTENT "#include \"MachineGuard.h\"
static const bool kGuarded = GuardMachine(MachineUse::${kind}, \"${text}\");
")
  target_sources(${target} PRIVATE ${source})
  target_link_libraries(${target} PRIVATE test_support)
  set_target_properties(${target} PROPERTIES MORVIX_MACHINE_USE ${kind})
  set_property(GLOBAL APPEND_STRING PROPERTY morvix_machine_uses "$<TARGET_FILE:${target}>\t${kind}\t${text}\n")
endfunction()

# morvix_program_test(name LABEL label [WINDOWS | WINDOWS_WITHOUT_DISPLAY] [SHARDS count] [ENVIRONMENT variable=value...])
# The GoogleTest program of the target `name`; with WINDOWS, in a fresh Windows of its own, so that no two of them meet, and
# only with a morvix_machine_use. SHARDS splits its cases over so many runs.
function(morvix_program_test name)
  cmake_parse_arguments(TEST "WINDOWS;WINDOWS_WITHOUT_DISPLAY" "LABEL;SHARDS" "ENVIRONMENT" ${ARGN})
  set(properties LABELS ${TEST_LABEL})
  if(TEST_WINDOWS)
    set(kind windows)
    list(APPEND properties ${on_one_processor})
  elseif(TEST_WINDOWS_WITHOUT_DISPLAY)
    set(kind windows-without-display)
    list(APPEND properties ${on_one_processor})
  else()
    set(kind host)
  endif()
  get_target_property(use ${name} MORVIX_MACHINE_USE)
  if(NOT kind STREQUAL host AND NOT use)
    message(FATAL_ERROR "${name} does not say what it does to a machine: morvix_machine_use")
  endif()
  if(NOT TEST_SHARDS)
    set(TEST_SHARDS 1)
  endif()
  foreach(shard RANGE 1 ${TEST_SHARDS})
    set(test ${name})
    set(environment ${TEST_ENVIRONMENT})
    if(TEST_SHARDS GREATER 1)
      string(APPEND test _${shard})
      math(EXPR index "${shard} - 1")
      list(APPEND environment GTEST_TOTAL_SHARDS=${TEST_SHARDS} GTEST_SHARD_INDEX=${index})
    endif()
    add_test(NAME ${test} COMMAND ${ends_with_ctest} ${runners}/run_program.sh ${test} ${kind} $<TARGET_FILE:${name}>)
    set_tests_properties(${test} PROPERTIES ENVIRONMENT "${environment}" ${properties})
  endforeach()
endfunction()

# morvix_script_tests(folder): the scripts in tests/<folder>. Each prints its promises in the Test Anything Protocol and
# makes the Windows that it needs.
function(morvix_script_tests folder)
  file(GLOB scripts CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/tests/${folder}/*.sh)
  foreach(script IN LISTS scripts)
    get_filename_component(name ${script} NAME_WE)
    add_test(NAME ${folder}_${name} COMMAND ${ends_with_ctest} ${runners}/run_script.sh ${folder}_${name} ${script})
    set_tests_properties(${folder}_${name} PROPERTIES LABELS ${folder} ${on_one_processor})
  endforeach()
endfunction()
