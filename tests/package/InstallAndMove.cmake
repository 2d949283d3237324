# Installs BUILD_DIR to a folder beside PREFIX and moves it to PREFIX.
file(REMOVE_RECURSE "${PREFIX}" "${PREFIX}.first")
execute_process(COMMAND "${CMAKE_COMMAND}" --install "${BUILD_DIR}" --prefix "${PREFIX}.first"
    OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
file(RENAME "${PREFIX}.first" "${PREFIX}")
