# How every target of the house is built, and where its files go.

# One layout in the build tree and after installation, so that a program finds plug-ins and data beside itself.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/${CMAKE_INSTALL_BINDIR})
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/${CMAKE_INSTALL_LIBDIR})
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/archive)

find_program(LCD_CCACHE ccache)
if(LCD_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    # Precompiled headers need the two sloppinesses to be cached at all.
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env CCACHE_SLOPPINESS=pch_defines,time_macros ${LCD_CCACHE})
endif()

# Everything is position independent, programs too, so that one set of precompiled headers fits all.
add_library(lcd_flags INTERFACE)
target_include_directories(lcd_flags INTERFACE ${CMAKE_SOURCE_DIR} ${CMAKE_SOURCE_DIR}/include)
target_compile_options(lcd_flags INTERFACE -Wall -Wextra -Wshadow -Wconversion -fPIC)
if(LCD_WERROR)
    target_compile_options(lcd_flags INTERFACE -Werror)
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # Unique symbols would keep a plug-in mapped after dlclose.
    target_compile_options(lcd_flags INTERFACE -fno-gnu-unique -fpch-preprocess)
elseif(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    # A precompiled header out of the cache is good whatever the times of the files that it was made of.
    target_compile_options(lcd_flags INTERFACE "SHELL:-Xclang -fno-pch-timestamp")
endif()
if(LCD_SANITIZE)
    target_compile_options(lcd_flags INTERFACE -fsanitize=${LCD_SANITIZE} -fno-sanitize-recover=all
                                               -fno-omit-frame-pointer)
    target_link_options(lcd_flags INTERFACE -fsanitize=${LCD_SANITIZE})
endif()

# The headers that most files include, compiled once for all position-independent targets.
add_library(lcd_pch STATIC ${CMAKE_SOURCE_DIR}/cmake/pch.cpp)
set_target_properties(lcd_pch PROPERTIES CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
target_link_libraries(lcd_pch PRIVATE lcd_flags fmt::fmt spdlog::spdlog)
target_precompile_headers(lcd_pch PRIVATE <any> <atomic> <chrono> <condition_variable> <cstdint> <deque> <functional>
                          <list> <map> <memory> <mutex> <string> <thread> <utility> <vector> <spdlog/logger.h>
                          <fmt/format.h>)

# Own code: warnings, hidden symbols, the precompiled headers.
function(lcd_target target)
    set_target_properties(${target} PROPERTIES CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
    target_link_libraries(${target} PRIVATE lcd_flags fmt::fmt spdlog::spdlog Threads::Threads)
    target_precompile_headers(${target} REUSE_FROM lcd_pch)
endfunction()

function(lcd_library target)
    add_library(${target} ${ARGN})
    lcd_target(${target})
endfunction()

# A program, which finds our shared libraries beside itself wherever it is installed.
function(lcd_program target)
    add_executable(${target} ${ARGN})
    lcd_target(${target})
    set_target_properties(${target} PROPERTIES BUILD_RPATH_USE_ORIGIN ON
                                               INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")
endfunction()

# A plug-in: NAME is also its file's name. Exports its three entry points alone, so that it really unloads.
function(lcd_plugin target)
    add_library(${target} SHARED ${ARGN})
    lcd_target(${target})
    set(script ${CMAKE_CURRENT_BINARY_DIR}/${target}.map)
    file(WRITE ${script} "{ global: pluginfo; pluginit; ${target}_ktp_componentInfoTable; local: *; };\n")
    target_link_options(${target} PRIVATE -Wl,--version-script=${script} -Wl,-z,defs)
    set_target_properties(${target} PROPERTIES SKIP_BUILD_RPATH ON LINK_DEPENDS ${script})
    if(LCD_SANITIZE)
        # The sanitizers' run-time comes with the program.
        target_link_options(${target} PRIVATE -Wl,-z,undefs)
    endif()
endfunction()
