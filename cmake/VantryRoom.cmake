# The compiler's settings for everything that is ours, without the sanitizers. Designated initializers leave members out on purpose.
add_library(vantry_plain_settings INTERFACE)
target_compile_options(vantry_plain_settings INTERFACE -Wall -Wextra -Wno-missing-field-initializers -Werror -Wnon-virtual-dtor -Woverloaded-virtual)
target_compile_definitions(vantry_plain_settings INTERFACE
    VANTRY_VERSION="${PROJECT_VERSION}" QT_NO_CAST_FROM_ASCII QT_NO_KEYWORDS)
target_include_directories(vantry_plain_settings INTERFACE ${PROJECT_SOURCE_DIR}/src)
add_library(vantry_settings INTERFACE)
target_link_libraries(vantry_settings INTERFACE vantry_plain_settings)
if(VANTRY_SANITIZE)
    # What the sanitizers add to the code makes GCC take the standard library's own variables for uninitialized; and it warns of a fence in
    # Qt's headers, which the thread sanitizer does not follow.
    target_compile_options(vantry_settings INTERFACE -fsanitize=${VANTRY_SANITIZE} -fno-sanitize-recover=all -Wno-maybe-uninitialized -Wno-tsan -fno-omit-frame-pointer)
    target_link_options(vantry_settings INTERFACE -fsanitize=${VANTRY_SANITIZE})
endif()

# vantry_room(NAME [ROOMS room...] [LINK library...])
#
# One static library from every source of src/NAME but a main.cpp. ROOMS are the rooms it may include, LINK what it uses from outside.
# All of it is private: a room that needs another one says so itself.
function(vantry_room name)
    cmake_parse_arguments(ROOM "" "" "ROOMS;LINK" ${ARGN})
    set(folder ${PROJECT_SOURCE_DIR}/src/${name})
    file(GLOB sources CONFIGURE_DEPENDS ${folder}/*.cpp ${folder}/*.h)
    list(REMOVE_ITEM sources ${folder}/main.cpp)
    add_library(${name} STATIC ${sources})
    set_target_properties(${name} PROPERTIES OUTPUT_NAME vantry_${name})
    target_link_libraries(${name} PRIVATE vantry_settings ${ROOM_ROOMS} ${ROOM_LINK})
    set_property(GLOBAL APPEND PROPERTY VANTRY_ROOMS ${name})
endfunction()

# vantry_test(NAME [SERIAL] [SERIAL_TESTS filter] [ROOMS room...] [LINK library...])
#
# One GoogleTest program from every source of tests/NAME; each of its tests is a test of CTest. SERIAL: the tests share the desktop
# with each other (windows, the screen's picture, sound devices) and never run side by side with another such test. SERIAL_TESTS: so
# do those of them that GoogleTest's filter names.
function(vantry_test name)
    cmake_parse_arguments(TEST "SERIAL" "SERIAL_TESTS" "ROOMS;LINK" ${ARGN})
    file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${name}/*.cpp ${CMAKE_CURRENT_SOURCE_DIR}/${name}/*.h)
    add_executable(test_${name} ${sources})
    target_link_libraries(test_${name} PRIVATE vantry_settings ${TEST_ROOMS} ${TEST_LINK} GTest::gmock GTest::gtest_main)
    target_include_directories(test_${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
    set(properties TIMEOUT 120)
    if(VANTRY_SANITIZE)
        set(properties TIMEOUT 900) # up to twenty times slower, and machines differ
    endif()
    include(GoogleTest)
    set(serial "*")
    if(NOT TEST_SERIAL)
        set(serial "${TEST_SERIAL_TESTS}")
        gtest_discover_tests(test_${name} DISCOVERY_MODE PRE_TEST TEST_PREFIX "${name}." TEST_FILTER "-${serial}"
            PROPERTIES ${properties})
    endif()
    if(serial)
        gtest_discover_tests(test_${name} DISCOVERY_MODE PRE_TEST TEST_PREFIX "${name}." TEST_FILTER "${serial}"
            TEST_LIST test_${name}_SERIAL PROPERTIES ${properties} RESOURCE_LOCK desktop)
    endif()
endfunction()
