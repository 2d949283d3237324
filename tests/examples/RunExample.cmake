# Runs PROGRAM OUTPUT ARGUMENTS..., and wants a PNG of more than its bare headers at OUTPUT.
file(REMOVE "${OUTPUT}")
execute_process(COMMAND "${PROGRAM}" "${OUTPUT}" ${ARGUMENTS} COMMAND_ERROR_IS_FATAL ANY)
file(READ "${OUTPUT}" signature LIMIT 8 HEX)
file(SIZE "${OUTPUT}" size)
if(NOT signature STREQUAL "89504e470d0a1a0a" OR size LESS 200)
    message(FATAL_ERROR "${OUTPUT} is no picture: ${size} bytes that begin with ${signature}")
endif()
