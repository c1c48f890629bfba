# One folder is one room. A room's pure files (no windows.h) form <name>_pure and build in both presets; its shell files
# form <name> and build for Windows only. A room sees the headers of the rooms it uses and of no others, because headers
# are included by bare name and every include path comes from a link.

# What everything is compiled and linked with, whatever the flavour.
add_library(morvix_plain_flags INTERFACE)
target_compile_features(morvix_plain_flags INTERFACE cxx_std_20)
# The resource compiler takes none of these.
target_compile_options(morvix_plain_flags INTERFACE "$<$<COMPILE_LANGUAGE:C,CXX>:\
-Wall;-Wextra;-Wpedantic;-Wconversion;-Wshadow;-Werror;\
-ffunction-sections;-fdata-sections;-fstack-protector-strong>")
if(WIN32)
  # 0x0502 is Windows XP x64 and Server 2003, the oldest 64-bit systems served.
  target_compile_definitions(morvix_plain_flags INTERFACE
    _WIN32_WINNT=0x0502 WINVER=0x0502 WIN32_LEAN_AND_MEAN NOMINMAX STRICT)
  target_link_options(morvix_plain_flags INTERFACE
    -static -fstack-protector-strong -Wl,--gc-sections
    -Wl,--dynamicbase -Wl,--nxcompat -Wl,--high-entropy-va
    -Wl,--major-subsystem-version,5 -Wl,--minor-subsystem-version,2
    -Wl,--major-os-version,5 -Wl,--minor-os-version,2)
endif()

add_library(morvix_flags INTERFACE)
target_link_libraries(morvix_flags INTERFACE morvix_plain_flags)
if(NOT WIN32)
  set(MORVIX_SANITIZERS "address,undefined" CACHE STRING
    "Sanitizers of what is built for the build machine; empty for programs that are used rather than tested")
  # morvix_sanitize(FLAGS SANITIZERS): whoever is compiled with FLAGS ends at the first thing that the sanitizers find.
  function(morvix_sanitize flags sanitizers)
    target_compile_options(${flags} INTERFACE -fsanitize=${sanitizers} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_compile_definitions(${flags} INTERFACE _GLIBCXX_ASSERTIONS)
    target_link_options(${flags} INTERFACE -fsanitize=${sanitizers})
  endfunction()
  if(MORVIX_SANITIZERS)
    morvix_sanitize(morvix_flags ${MORVIX_SANITIZERS})
  endif()
  if(MORVIX_FUZZ)
    # The fuzzer sees which branches an input has reached; its own main program comes with the targets.
    target_compile_options(morvix_flags INTERFACE -fsanitize=fuzzer-no-link)
  endif()
  # Programs that run the pure files in several threads link copies of the rooms in which a data race ends the program:
  # config_pure_threads instead of config_pure.
  add_library(morvix_thread_flags INTERFACE)
  target_link_libraries(morvix_thread_flags INTERFACE morvix_plain_flags)
  morvix_sanitize(morvix_thread_flags thread)
endif()

# What the product's own files are compiled and linked with beside that, and the suites, because a program keeps one copy of
# an inline function; nothing in what is shipped.
set(MORVIX_PRODUCT_OPTIONS "" CACHE STRING "Further compiler options for the product's files, for scripts that look into it")
add_library(morvix_product INTERFACE)
target_link_libraries(morvix_product INTERFACE morvix_flags)
target_compile_options(morvix_product INTERFACE "$<$<COMPILE_LANGUAGE:C,CXX>:${MORVIX_PRODUCT_OPTIONS}>")
target_link_options(morvix_product INTERFACE ${MORVIX_PRODUCT_OPTIONS})

# The Windows test programs link copies of the rooms in which undefined behaviour and wrong use of the C++ library end the
# program at the spot. The library's checks are in its inline functions, of which a program keeps one copy: whoever links a
# room with them is compiled with them.
option(MORVIX_TRAPS "Windows test programs have copies of the rooms that trap undefined behaviour" ON)
add_library(morvix_assertions INTERFACE)
target_compile_definitions(morvix_assertions INTERFACE _GLIBCXX_ASSERTIONS)
add_library(morvix_traps INTERFACE)
target_link_libraries(morvix_traps INTERFACE morvix_assertions)
# Without optimisation and debug information the copies are compiled in half the time.
target_compile_options(morvix_traps INTERFACE
  "$<$<COMPILE_LANGUAGE:C,CXX>:-O0;-g0;-fsanitize=undefined;-fsanitize-undefined-trap-on-error>")

# What these copies, and the files that are built for the build machine, include is compiled once. The files of the product
# itself are compiled without, so that each shows that it includes what it uses.
if(NOT WIN32 OR MORVIX_TRAPS)
  set(common_headers <algorithm> <array> <cstdint> <memory> <optional> <span> <string> <string_view> <utility> <vector>)
  file(GENERATE OUTPUT ${CMAKE_BINARY_DIR}/generated/common_headers.cpp CONTENT "")
  add_library(common_headers OBJECT ${CMAKE_BINARY_DIR}/generated/common_headers.cpp)
  target_link_libraries(common_headers PRIVATE morvix_flags morvix_product)
  if(WIN32)
    target_link_libraries(common_headers PRIVATE morvix_traps)
    list(PREPEND common_headers <windows.h>)
  endif()
  target_precompile_headers(common_headers PRIVATE ${common_headers})
endif()

function(morvix_room name)
  morvix_room_libraries("" ${name} ${ARGN})
  if(WIN32)
    morvix_room_libraries("_checked" ${name} ${ARGN})
  else()
    morvix_room_libraries("_threads" ${name} ${ARGN})
  endif()
endfunction()

# The libraries of a room; with the suffix "_checked" or "_threads" the ones for test programs.
function(morvix_room_libraries suffix name)
  cmake_parse_arguments(ROOM "" "" "PURE;SHELL;USES;SYSTEM_LIBRARIES" ${ARGN})
  set(pure ${name}_pure${suffix})
  if(suffix STREQUAL "_checked" AND NOT MORVIX_TRAPS)
    add_library(${pure} INTERFACE)
    add_library(${name}${suffix} INTERFACE)
    target_link_libraries(${pure} INTERFACE ${name}_pure morvix_assertions)
    target_link_libraries(${name}${suffix} INTERFACE ${name} morvix_assertions)
    return()
  endif()
  set(flags morvix_flags)
  set(own_flags morvix_product)
  # Test programs ask for the copies that they need, and fuzz targets for the rooms.
  set(on_request "")
  if(suffix OR MORVIX_FUZZ)
    set(on_request EXCLUDE_FROM_ALL)
  endif()
  if(suffix STREQUAL "_checked")
    list(APPEND flags morvix_assertions)
    list(APPEND own_flags morvix_traps)
  elseif(suffix STREQUAL "_threads")
    set(flags morvix_thread_flags)
    set(own_flags morvix_thread_flags)
  endif()
  if(ROOM_PURE)
    add_library(${pure} STATIC ${on_request} ${ROOM_PURE})
    target_link_libraries(${pure} PRIVATE ${own_flags})
    if((suffix AND WIN32) OR (NOT suffix AND NOT WIN32))
      target_precompile_headers(${pure} REUSE_FROM common_headers)
    endif()
    set(scope PUBLIC)
  else()
    add_library(${pure} INTERFACE)
    set(scope INTERFACE)
  endif()
  target_link_libraries(${pure} ${scope} ${flags})
  target_include_directories(${pure} ${scope} ${CMAKE_CURRENT_SOURCE_DIR})
  list(TRANSFORM ROOM_USES APPEND "${suffix}" OUTPUT_VARIABLE used)
  list(TRANSFORM ROOM_USES APPEND "_pure${suffix}" OUTPUT_VARIABLE used_pure)
  target_link_libraries(${pure} ${scope} ${used_pure})
  if(NOT WIN32)
    return()
  endif()
  set(room ${name}${suffix})
  if(ROOM_SHELL)
    add_library(${room} STATIC ${on_request} ${ROOM_SHELL})
    target_link_libraries(${room} PRIVATE ${own_flags})
    if(suffix)
      target_precompile_headers(${room} REUSE_FROM common_headers)
    endif()
    set(scope PUBLIC)
  else()
    add_library(${room} INTERFACE)
    set(scope INTERFACE)
  endif()
  target_link_libraries(${room} ${scope} ${pure} ${used} ${ROOM_SYSTEM_LIBRARIES} ${flags})
endfunction()

# One place for the version: the resource scripts of the shipped files include it from here.
configure_file(${CMAKE_CURRENT_LIST_DIR}/MorvixVersion.h.in ${CMAKE_BINARY_DIR}/generated/MorvixVersion.h @ONLY)
add_library(morvix_version INTERFACE)
target_include_directories(morvix_version INTERFACE ${CMAKE_BINARY_DIR}/generated)
