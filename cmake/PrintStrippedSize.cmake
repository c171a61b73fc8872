# cmake -DSTRIP=strip -DLIBRARY=FILE -P PrintStrippedSize.cmake: how large a library is as a phone carries it.

set(stripped "${LIBRARY}.stripped")
execute_process(COMMAND "${STRIP}" -o "${stripped}" "${LIBRARY}" COMMAND_ERROR_IS_FATAL ANY)
file(SIZE "${stripped}" size)
file(REMOVE "${stripped}")
cmake_path(GET LIBRARY FILENAME name)
message(STATUS "${name}: ${size} bytes stripped")
