# The instruction exerciser: several billion instructions, so it carries the
# label "slow" and stays out of the quick unit test run (ctest -LE slow). The
# unit test program runs its short groups (a few seconds).
set(TVC_Z80TESTS_DIR "${CMAKE_SOURCE_DIR}/../shared/z80tests" CACHE PATH
    "Folder holding the Z80 exerciser zexdoc.com")
add_executable(tvc_zexdoc ${CMAKE_CURRENT_LIST_DIR}/zexdoc_run.cpp ${CMAKE_CURRENT_LIST_DIR}/CpmShim.cpp)
target_link_libraries(tvc_zexdoc PRIVATE tvc_test_support GTest::gtest_main)
add_test(NAME z80.zexdoc COMMAND tvc_zexdoc)
set_tests_properties(z80.zexdoc PROPERTIES LABELS slow TIMEOUT 3600)
target_sources(tvc_tests PRIVATE ${CMAKE_CURRENT_LIST_DIR}/CpmShim.cpp)
foreach(t tvc_zexdoc tvc_tests)
    target_compile_definitions(${t} PRIVATE TVC_ZEXDOC="${TVC_Z80TESTS_DIR}/zexdoc.com")
endforeach()
