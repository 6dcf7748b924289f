# The time stamp of what is built, in $ENV{SOURCE_DATE_EPOCH}: what the environment says, or else
# the day of the newest release in CHANGELOG.md. Two builds of one source then give the same bytes.
if(NOT DEFINED ENV{SOURCE_DATE_EPOCH})
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS CHANGELOG.md)
    file(STRINGS CHANGELOG.md release REGEX "^## \\[[0-9.]+\\] - " LIMIT_COUNT 1)
    string(REGEX REPLACE ".* - " "" release ${release})
    execute_process(COMMAND date --utc --date=${release} +%s
        OUTPUT_VARIABLE release OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
    set(ENV{SOURCE_DATE_EPOCH} ${release})
endif()
