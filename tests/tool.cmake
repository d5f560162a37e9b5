# --- placing, protecting, checking and comparing ---

file(GLOB planning_tests CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/planning/*.cpp)
add_gtests(planning_tests SOURCES ${planning_tests} LIBRARIES tarnex_planning GTest::gtest_main)

# --- the formats of networks, demands and plans ---

file(GLOB formats_tests CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/formats/*.cpp)
add_gtests(formats_tests SOURCES ${formats_tests} LIBRARIES tarnex_formats GTest::gtest_main)
target_compile_definitions(formats_tests PRIVATE
    EXTRACTS="${CMAKE_CURRENT_SOURCE_DIR}/formats/extracts"
    EXAMPLES="${PROJECT_SOURCE_DIR}/examples")

# --- the command, and the schemas of what is written ---

find_program(system_python NAMES python3 PATHS /usr/bin NO_DEFAULT_PATH) # it has Debian's packages
if(system_python)
    add_test(NAME json_schema
        COMMAND ${system_python} ${CMAKE_CURRENT_SOURCE_DIR}/formats/schema_test.py
                $<TARGET_FILE:formats_tests> ${PROJECT_SOURCE_DIR}/docs/schema
                ${PROJECT_SOURCE_DIR}/fuzz/seeds/documents)
    set_tests_properties(json_schema PROPERTIES SKIP_RETURN_CODE 77 TIMEOUT ${test_seconds})

    add_test(NAME command
        COMMAND ${system_python} ${CMAKE_CURRENT_SOURCE_DIR}/cli/command_test.py
                $<TARGET_FILE:tarnex_command> ${PROJECT_SOURCE_DIR} ${PROJECT_BINARY_DIR})
    set_tests_properties(command PROPERTIES SKIP_RETURN_CODE 77 TIMEOUT ${test_seconds})

    add_test(NAME report
        COMMAND ${system_python} ${CMAKE_CURRENT_SOURCE_DIR}/report/report_test.py
                $<TARGET_FILE:tarnex_command> ${PROJECT_SOURCE_DIR})
    set_tests_properties(report PROPERTIES SKIP_RETURN_CODE 77 TIMEOUT ${test_seconds})
else()
    message(STATUS "The command and the schemas of JSON documents are not tested: /usr/bin/python3 was not found.")
endif()
