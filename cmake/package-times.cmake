# Gives what is packaged the time that the environment variable SOURCE_DATE_EPOCH says, if there is one: two builds are not
# made in the same second. Nor have two builders the same time zone and umask. cpack runs this, and takes the time of the
# package itself from there.
if(NOT "$ENV{SOURCE_DATE_EPOCH}" STREQUAL "" AND NOT CMAKE_HOST_WIN32)
  set(ENV{TZ} UTC0) # a zip tells the local time
  execute_process(
    COMMAND find ${CPACK_TEMPORARY_DIRECTORY} -type d -exec chmod 755 {} +
    COMMAND_ERROR_IS_FATAL ANY)
  execute_process(
    COMMAND find ${CPACK_TEMPORARY_DIRECTORY} -exec touch --no-dereference --date=@$ENV{SOURCE_DATE_EPOCH} {} +
    COMMAND_ERROR_IS_FATAL ANY)
endif()
