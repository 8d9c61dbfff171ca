# The test run's check of /dev/shm: every object a test makes carries the
# run's mark (TVC_TEST_RUN); MODE=before lists what is there at the start,
# MODE=after fails on anything the run added.
file(GLOB found LIST_DIRECTORIES false "/dev/shm/tvc-*-${RUN}")
if(MODE STREQUAL "before")
    file(WRITE "${LIST}" "${found}")
else()
    set(before "")
    if(EXISTS "${LIST}")
        file(READ "${LIST}" before)
    endif()
    list(REMOVE_ITEM found ${before})
    if(found)
        message(FATAL_ERROR "The tests left shared memory behind: ${found}")
    endif()
endif()
