# One folder is one room. A room's pure files (no windows.h) form <name>_pure and build in both presets; its shell files
# form <name> and build for Windows only. A room sees the headers of the rooms it uses and of no others, because headers
# are included by bare name and every include path comes from a link.

add_library(morvix_flags INTERFACE)
target_compile_features(morvix_flags INTERFACE cxx_std_20)
# The resource compiler takes none of these.
target_compile_options(morvix_flags INTERFACE "$<$<COMPILE_LANGUAGE:C,CXX>:\
-Wall;-Wextra;-Wpedantic;-Wconversion;-Wshadow;-Werror;\
-ffunction-sections;-fdata-sections;-fstack-protector-strong>")
if(WIN32)
  # 0x0502 is Windows XP x64 and Server 2003, the oldest 64-bit systems served.
  target_compile_definitions(morvix_flags INTERFACE
    _WIN32_WINNT=0x0502 WINVER=0x0502 WIN32_LEAN_AND_MEAN NOMINMAX STRICT)
  target_link_options(morvix_flags INTERFACE
    -static -fstack-protector-strong -Wl,--gc-sections
    -Wl,--dynamicbase -Wl,--nxcompat -Wl,--high-entropy-va
    -Wl,--major-subsystem-version,5 -Wl,--minor-subsystem-version,2
    -Wl,--major-os-version,5 -Wl,--minor-os-version,2)
else()
  target_compile_options(morvix_flags INTERFACE -fsanitize=address,undefined -fno-sanitize-recover=all
    -fno-omit-frame-pointer)
  target_compile_definitions(morvix_flags INTERFACE _GLIBCXX_ASSERTIONS)
  target_link_options(morvix_flags INTERFACE -fsanitize=address,undefined)
  if(MORVIX_FUZZ)
    # The fuzzer sees which branches an input has reached; its own main program comes with the targets.
    target_compile_options(morvix_flags INTERFACE -fsanitize=fuzzer-no-link)
  endif()
endif()

function(morvix_room name)
  cmake_parse_arguments(ROOM "" "" "PURE;SHELL;USES;SYSTEM_LIBRARIES" ${ARGN})
  if(ROOM_PURE)
    add_library(${name}_pure STATIC ${ROOM_PURE})
    target_link_libraries(${name}_pure PUBLIC morvix_flags)
  else()
    add_library(${name}_pure INTERFACE)
  endif()
  if(ROOM_PURE)
    set(scope PUBLIC)
  else()
    set(scope INTERFACE)
  endif()
  target_include_directories(${name}_pure ${scope} ${CMAKE_CURRENT_SOURCE_DIR})
  foreach(used IN LISTS ROOM_USES)
    target_link_libraries(${name}_pure ${scope} ${used}_pure)
  endforeach()
  if(NOT WIN32)
    return()
  endif()
  if(ROOM_SHELL)
    add_library(${name} STATIC ${ROOM_SHELL})
    target_link_libraries(${name} PUBLIC ${name}_pure ${ROOM_USES} ${ROOM_SYSTEM_LIBRARIES} morvix_flags)
  else()
    add_library(${name} INTERFACE)
    target_link_libraries(${name} INTERFACE ${name}_pure ${ROOM_USES} ${ROOM_SYSTEM_LIBRARIES})
  endif()
endfunction()

# One place for the version: the resource scripts of the shipped files include it from here.
configure_file(${CMAKE_CURRENT_LIST_DIR}/MorvixVersion.h.in ${CMAKE_BINARY_DIR}/generated/MorvixVersion.h @ONLY)
add_library(morvix_version INTERFACE)
target_include_directories(morvix_version INTERFACE ${CMAKE_BINARY_DIR}/generated)
