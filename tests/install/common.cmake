# Runs a command and ends the test if it fails.
function(run)
    execute_process(COMMAND ${ARGN} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

# Configures the consumer: configure_consumer(<build folder> [<option>...])
function(configure_consumer dir)
    run("${CMAKE_COMMAND}" -S "${CONSUMER_DIR}" -B "${dir}" -G "${GENERATOR}"
        -D "CMAKE_BUILD_TYPE=${BUILD_TYPE}"
        -D "CONSUMER_PACKAGE=${NAME}"
        -D "PLUGININTERFACE_QT=${QT_MAJOR}"
        -D "CMAKE_CXX_COMPILER=${CXX_COMPILER}"
        -D "CMAKE_CXX_COMPILER_LAUNCHER=${CXX_COMPILER_LAUNCHER}"
        -D "CMAKE_CXX_FLAGS=${CXX_FLAGS}"
        ${ARGN})
endfunction()

# Each of the texts has to be in a file: expect_texts(<file> <text>...)
function(expect_texts file)
    file(READ "${file}" content)
    foreach(text IN LISTS ARGN)
        string(FIND "${content}" "${text}" position)
        if(position EQUAL -1)
            message(FATAL_ERROR "\"${text}\" isn't in ${file}:\n${content}")
        endif()
    endforeach()
endfunction()
