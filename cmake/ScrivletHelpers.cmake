# Helpers that keep each library's CMakeLists.txt to a list of its files and what it links.

set(SCRIVLET_SOURCE_ROOT "${CMAKE_SOURCE_DIR}/src")

function(scrivlet_set_warnings target)
    # Aggregates of optionals are built with only the fields that matter.
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wno-missing-field-initializers)
    if(SCRIVLET_WERROR)
        target_compile_options(${target} PRIVATE -Werror)
    endif()
    # Strings from bytes must say their encoding; QStringBuilder joins without temporaries.
    target_compile_definitions(${target} PRIVATE
        QT_NO_CAST_FROM_BYTEARRAY QT_USE_QSTRINGBUILDER QT_NO_URL_CAST_FROM_STRING
        QT_NO_NARROWING_CONVERSIONS_IN_CONNECT)
endfunction()

# scrivlet_add_library(<name> SOURCES ... [LINKS ...] [PUBLIC_LINKS ...])
# Every library sees the whole src/ tree as its include root, so includes read
# "notes/CoreDataManager.h" wherever they stand.
function(scrivlet_add_library name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LINKS;PUBLIC_LINKS;PCH" ${ARGN})
    add_library(${name} STATIC ${ARG_SOURCES})
    target_include_directories(${name} PUBLIC "${SCRIVLET_SOURCE_ROOT}")
    target_link_libraries(${name} PUBLIC ${ARG_PUBLIC_LINKS} PRIVATE ${ARG_LINKS})
    if(ARG_PCH)
        target_precompile_headers(${name} PRIVATE ${ARG_PCH})
    endif()
    scrivlet_set_warnings(${name})
endfunction()

# The core must run without a window: a core library that links QtGui or QtWidgets
# fails the configure step instead of quietly growing a dependency.
function(scrivlet_assert_core name)
    get_target_property(libs ${name} LINK_LIBRARIES)
    foreach(lib IN LISTS libs)
        if(lib MATCHES "Qt6?::(Gui|Widgets)")
            message(FATAL_ERROR "${name} is a core library and must not link ${lib}")
        endif()
    endforeach()
endfunction()

# scrivlet_add_test(<name> [GUI] SOURCES ... LINKS ...)
# GUI test programs get a QApplication and draw offscreen.
function(scrivlet_add_test name)
    cmake_parse_arguments(ARG "GUI" "" "SOURCES;LINKS;ENV" ${ARGN})
    add_executable(${name} ${ARG_SOURCES})
    if(ARG_GUI)
        set(support scrivlet_gui_test_support)
    else()
        set(support scrivlet_test_support)
    endif()
    target_link_libraries(${name} PRIVATE ${ARG_LINKS} ${support} GTest::gtest GTest::gmock)
    target_include_directories(${name} PRIVATE "${CMAKE_SOURCE_DIR}/tests")
    scrivlet_set_warnings(${name})
    add_test(NAME ${name} COMMAND ${name})
    set_tests_properties(${name} PROPERTIES
        ENVIRONMENT "QT_QPA_PLATFORM=offscreen;${ARG_ENV}"
        TIMEOUT 300)
endfunction()
