# Each subsystem is one static library that may use only the layers it names.
# Static archives alone would let a wrong arrow slip through until the final
# executable links everything, so every layer also gets a shared "link check"
# object built with --no-undefined from its archive and its declared
# dependencies only: a call into an undeclared layer fails that link at once.
#
#   quorlin_add_layer(<name> SOURCES ... [PUBLIC_DEPS ...] [PRIVATE_DEPS ...])
function(quorlin_add_layer name)
    cmake_parse_arguments(ARG "" "" "SOURCES;PUBLIC_DEPS;PRIVATE_DEPS" ${ARGN})
    set(target quorlin_${name})
    add_library(${target} STATIC ${ARG_SOURCES})
    target_include_directories(${target} PUBLIC ${PROJECT_SOURCE_DIR}/src)
    target_link_libraries(${target} PUBLIC ${ARG_PUBLIC_DEPS} PRIVATE ${ARG_PRIVATE_DEPS})
    target_compile_definitions(${target} PRIVATE QT_NO_CAST_FROM_BYTEARRAY)

    # Sanitizer runtimes are only linked into executables, so the check would
    # report their hooks as undefined; it runs in the plain builds.
    if(NOT QUORLIN_SANITIZE AND NOT QUORLIN_BUILD_FUZZERS)
        add_library(${target}_linkcheck SHARED ${PROJECT_SOURCE_DIR}/cmake/linkcheck.cpp)
        target_link_libraries(${target}_linkcheck PRIVATE
            "$<LINK_LIBRARY:WHOLE_ARCHIVE,${target}>" ${ARG_PUBLIC_DEPS} ${ARG_PRIVATE_DEPS})
        target_link_options(${target}_linkcheck PRIVATE -Wl,--no-undefined)
        set_target_properties(${target}_linkcheck PROPERTIES LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/linkcheck)
    endif()
endfunction()
