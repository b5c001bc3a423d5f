# Gives what is packaged the time that the environment variable SOURCE_DATE_EPOCH says, if there is one: two builds are not
# made in the same second. cpack runs this, and takes the time of the package itself from there.
if(NOT "$ENV{SOURCE_DATE_EPOCH}" STREQUAL "" AND NOT CMAKE_HOST_WIN32)
  execute_process(
    COMMAND find ${CPACK_TEMPORARY_DIRECTORY} -exec touch --no-dereference --date=@$ENV{SOURCE_DATE_EPOCH} {} +
    COMMAND_ERROR_IS_FATAL ANY)
endif()
