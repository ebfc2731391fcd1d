# Files in the system's folders find their libraries there; the RUNPATH serves an installation elsewhere. Sections that
# name the compiler go as well.
file(GLOB_RECURSE files "${CPACK_TEMPORARY_DIRECTORY}/*")
foreach(file IN LISTS files)
    if(NOT IS_SYMLINK "${file}")
        file(READ "${file}" magic LIMIT 4 HEX)
        if(magic STREQUAL "7f454c46") # ELF
            file(RPATH_REMOVE FILE "${file}")
            execute_process(COMMAND strip --remove-section=.comment --remove-section=.note "${file}"
                COMMAND_ERROR_IS_FATAL ANY)
        endif()
    endif()
endforeach()
