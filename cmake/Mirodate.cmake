# mirodate_library(<name> [DEPS <targets>...])
# Builds every .cpp of the calling folder (main.cpp excepted) into the static
# library mirodate_<name>. Includes are written from the repository root
# ("platform/TextUtil.h").
function(mirodate_library name)
    cmake_parse_arguments(ARG "" "" "DEPS" ${ARGN})
    file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
    list(FILTER sources EXCLUDE REGEX "/main\\.cpp$")
    add_library(mirodate_${name} STATIC ${sources})
    target_include_directories(mirodate_${name} PUBLIC ${PROJECT_SOURCE_DIR})
    target_link_libraries(mirodate_${name} PUBLIC ${ARG_DEPS})
endfunction()

# mirodate_test(<folder> [DEPS <targets>...] [LOCK <resource>])
# One GoogleTest executable test_<folder> from every .cpp of the calling
# folder, registered with ctest test by test. Tests that share a LOCK never
# run at the same time.
function(mirodate_test folder)
    cmake_parse_arguments(ARG "" "LOCK" "DEPS" ${ARGN})
    file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
    if(NOT sources)
        return()
    endif()
    add_executable(test_${folder} ${sources})
    target_include_directories(test_${folder} PRIVATE ${PROJECT_SOURCE_DIR})
    target_link_libraries(test_${folder} PRIVATE ${ARG_DEPS} GTest::gtest GTest::gtest_main Threads::Threads)
    target_compile_definitions(test_${folder} PRIVATE
        MIRODATE_SOURCE_DIR="${PROJECT_SOURCE_DIR}"
        MIRODATE_BINARY_DIR="${PROJECT_BINARY_DIR}")
    set(properties ENVIRONMENT "MIRODATE_BIN=${PROJECT_BINARY_DIR}/mirodate")
    if(ARG_LOCK)
        list(APPEND properties RESOURCE_LOCK ${ARG_LOCK})
    endif()
    gtest_discover_tests(test_${folder} DISCOVERY_MODE PRE_TEST PROPERTIES ${properties})
endfunction()
