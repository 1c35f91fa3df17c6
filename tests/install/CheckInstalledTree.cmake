# Installs the build into a staging folder and checks what a desktop and a
# package manager will find there: launcher, file type, icons, software-centre
# description, manual pages, and programs that still find their resources
# once moved out of the build tree.
#
#   cmake -DBUILD_DIR=... -DSTAGE_DIR=... -DAPPLICATION_ID=... -DPROJECT_VERSION=...
#         -DPROFILE_FIXTURE=... -P CheckInstalledTree.cmake
#
# Every check runs and reports; the script fails at the end if any did not hold.
cmake_minimum_required(VERSION 3.25)

foreach(variable BUILD_DIR STAGE_DIR APPLICATION_ID PROJECT_VERSION PROFILE_FIXTURE)
    if(NOT DEFINED ${variable})
        message(FATAL_ERROR "${variable} is not set")
    endif()
endforeach()

set(FAILURES 0)
macro(check_failed text)
    message(SEND_ERROR "${text}")
    math(EXPR FAILURES "${FAILURES} + 1")
endmacro()

set(ROOT ${STAGE_DIR}/usr)
set(SHARE ${ROOT}/share)
set(HOME_DIR ${STAGE_DIR}/home)
set(ICON_SIZES 16 32 48 64 128 256)

# Installed programs run against a home of their own, never the user's.
set(ISOLATED_ENV
    ${CMAKE_COMMAND} -E env HOME=${HOME_DIR} XDG_CONFIG_HOME=${HOME_DIR}/config
    XDG_DATA_HOME=${HOME_DIR}/data XDG_CACHE_HOME=${HOME_DIR}/cache QT_QPA_PLATFORM=offscreen)

function(install_stage)
    file(REMOVE_RECURSE ${STAGE_DIR})
    file(MAKE_DIRECTORY ${HOME_DIR})
    execute_process(
        COMMAND ${CMAKE_COMMAND} -E env DESTDIR=${STAGE_DIR} ${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix /usr
        RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "cmake --install failed (${result}):\n${output}")
    endif()
endfunction()

# ---------------------------------------------------------------- programs

function(check_programs)
    foreach(program quorlin-profile quorlin-profile-editor)
        if(NOT EXISTS ${ROOT}/bin/${program})
            check_failed("missing ${ROOT}/bin/${program}")
        endif()
    endforeach()
    execute_process(COMMAND ${ISOLATED_ENV} ${ROOT}/bin/quorlin-profile-editor --version
        RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE errors)
    if(NOT result EQUAL 0 OR NOT output MATCHES "${PROJECT_VERSION}")
        check_failed("installed editor --version gave ${result}: ${output}${errors}")
    endif()
    # The desktop files and manual pages have folders of their own, not a copy among the resources.
    foreach(folder desktop man)
        if(EXISTS ${SHARE}/quorlin-profile-editor/${folder})
            check_failed("share/quorlin-profile-editor/${folder} is installed with the resources")
        endif()
    endforeach()
    # Listing the domains needs the bundled manifests, found relative to the program.
    execute_process(COMMAND ${ISOLATED_ENV} ${ROOT}/bin/quorlin-profile domains
        RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE errors)
    if(NOT result EQUAL 0 OR output STREQUAL "")
        check_failed("installed quorlin-profile can't list the bundled domains (${result}): ${errors}")
    endif()
endfunction()

# ------------------------------------------------------------ desktop entry

# Reads the [Desktop Entry] group into ENTRY_<key> variables of the caller and
# ENTRY_KEYS; anything that isn't a group, a comment, a blank or key=value fails.
function(read_desktop_entry file)
    file(STRINGS ${file} lines)
    set(group "")
    set(keys "")
    foreach(line IN LISTS lines)
        if(line MATCHES "^[ \t]*(#|$)")
            continue()
        elseif(line MATCHES "^\\[([^]]+)\\]$")
            set(group "${CMAKE_MATCH_1}")
        elseif(line MATCHES "^([A-Za-z0-9-]+(\\[[^]]+\\])?) *= *(.*)$")
            if(group STREQUAL "")
                check_failed("desktop file: key before the first group: ${line}")
            elseif(group STREQUAL "Desktop Entry")
                if("${CMAKE_MATCH_1}" IN_LIST keys)
                    check_failed("desktop file: key ${CMAKE_MATCH_1} given twice")
                endif()
                list(APPEND keys "${CMAKE_MATCH_1}")
                set(ENTRY_${CMAKE_MATCH_1} "${CMAKE_MATCH_3}" PARENT_SCOPE)
            endif()
        else()
            check_failed("desktop file: not a group, comment or key: ${line}")
        endif()
    endforeach()
    set(ENTRY_KEYS "${keys}" PARENT_SCOPE)
    set(FAILURES ${FAILURES} PARENT_SCOPE)
endfunction()

function(check_desktop_entry)
    set(file ${SHARE}/applications/${APPLICATION_ID}.desktop)
    if(NOT EXISTS ${file})
        check_failed("missing ${file}")
        set(FAILURES ${FAILURES} PARENT_SCOPE)
        return()
    endif()
    read_desktop_entry(${file})
    foreach(key Type Name Comment Exec Icon MimeType Categories Keywords StartupWMClass)
        if(NOT key IN_LIST ENTRY_KEYS)
            check_failed("desktop file: no ${key}")
        endif()
    endforeach()
    if(NOT ENTRY_Type STREQUAL "Application")
        check_failed("desktop file: Type is '${ENTRY_Type}'")
    endif()
    # Files opened from a file manager arrive as arguments, several at once.
    if(NOT ENTRY_Exec MATCHES "^([^ ]+) %F$")
        check_failed("desktop file: Exec '${ENTRY_Exec}' doesn't pass the files with %F")
    endif()
    set(program "${CMAKE_MATCH_1}")
    if(NOT EXISTS ${ROOT}/bin/${program})
        check_failed("desktop file: Exec names '${program}', which isn't installed in bin")
    endif()
    # Qt names the window class after the application, which is the program's name;
    # a mismatch leaves the running window unattached to its launcher.
    if(NOT ENTRY_StartupWMClass STREQUAL program)
        check_failed("desktop file: StartupWMClass '${ENTRY_StartupWMClass}' isn't '${program}'")
    endif()
    if(NOT ENTRY_Icon STREQUAL APPLICATION_ID)
        check_failed("desktop file: Icon '${ENTRY_Icon}' isn't the application's icon name")
    endif()
    foreach(list_key MimeType Categories Keywords)
        if(NOT "${ENTRY_${list_key}}" MATCHES ";$")
            check_failed("desktop file: ${list_key} doesn't end with ';'")
        endif()
    endforeach()
    if(NOT ENTRY_MimeType STREQUAL "application/x-apple-aspen-config;")
        check_failed("desktop file: MimeType is '${ENTRY_MimeType}'")
    endif()

    find_program(DESKTOP_FILE_VALIDATE desktop-file-validate)
    if(DESKTOP_FILE_VALIDATE)
        execute_process(COMMAND ${DESKTOP_FILE_VALIDATE} ${file}
            RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
        if(NOT result EQUAL 0)
            check_failed("desktop-file-validate:\n${output}")
        endif()
    endif()
    set(FAILURES ${FAILURES} PARENT_SCOPE)
endfunction()

# -------------------------------------------------------------- MIME type

# Asks GIO, which reads the staged MIME database only, what type a file has.
function(content_type file out)
    execute_process(
        COMMAND ${CMAKE_COMMAND} -E env XDG_DATA_DIRS=${SHARE} XDG_DATA_HOME=${HOME_DIR}/data
            GIO_USE_VFS=local ${GIO} info -a standard::content-type ${file}
        RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_QUIET)
    set(type "")
    if(result EQUAL 0 AND output MATCHES "standard::content-type: ([^\n]+)")
        set(type "${CMAKE_MATCH_1}")
    endif()
    set(${out} "${type}" PARENT_SCOPE)
endfunction()

function(check_detection)
    set(samples ${STAGE_DIR}/samples)
    file(MAKE_DIRECTORY ${samples})
    set(profile_type application/x-apple-aspen-config)
    # Signed profiles are recognised by name alone; these bytes open a DER
    # SEQUENCE holding the CMS signed-data identifier, as a signed profile does.
    string(ASCII 48 130 5 18 6 9 42 134 72 134 247 13 1 7 2 160 der_start)
    file(WRITE ${samples}/Signed.mobileconfig "${der_start}")
    content_type(${samples}/Signed.mobileconfig type)
    if(NOT type STREQUAL profile_type)
        check_failed("a .mobileconfig file is '${type}', not ${profile_type}")
    endif()
    # An unsigned profile without its extension is recognised by its content.
    configure_file(${PROFILE_FIXTURE} ${samples}/downloaded-file COPYONLY)
    content_type(${samples}/downloaded-file type)
    if(NOT type STREQUAL profile_type)
        check_failed("an unsigned profile without extension is '${type}', not ${profile_type}")
    endif()
    # Any other property list is not a profile.
    file(WRITE ${samples}/settings "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n"
        "<dict>\n\t<key>Name</key>\n\t<string>Payload</string>\n</dict>\n</plist>\n")
    content_type(${samples}/settings type)
    if(type STREQUAL profile_type)
        check_failed("a property list without payload keys passes for a profile")
    endif()
    set(FAILURES ${FAILURES} PARENT_SCOPE)
endfunction()

function(check_mime_package)
    set(file ${SHARE}/mime/packages/${APPLICATION_ID}.xml)
    if(NOT EXISTS ${file})
        check_failed("missing ${file}")
        set(FAILURES ${FAILURES} PARENT_SCOPE)
        return()
    endif()
    file(READ ${file} text)
    if(NOT text MATCHES "<mime-type type=\"application/x-apple-aspen-config\">"
       OR NOT text MATCHES "<glob pattern=\"\\*\\.mobileconfig\"/>"
       OR NOT text MATCHES "<comment>[^<]+</comment>")
        check_failed("MIME package lacks the type, its comment or the *.mobileconfig glob")
    endif()
    find_program(XMLLINT xmllint)
    if(XMLLINT)
        execute_process(COMMAND ${XMLLINT} --noout ${file} RESULT_VARIABLE result ERROR_VARIABLE output)
        if(NOT result EQUAL 0)
            check_failed("MIME package isn't well-formed XML:\n${output}")
        endif()
    endif()

    # The database tool is the real reader of the package: it must take it
    # without a word, and the cache it builds must map the glob to the type.
    find_program(UPDATE_MIME_DATABASE update-mime-database)
    if(NOT UPDATE_MIME_DATABASE)
        set(FAILURES ${FAILURES} PARENT_SCOPE)
        return()
    endif()
    execute_process(COMMAND ${UPDATE_MIME_DATABASE} -V ${SHARE}/mime
        RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE errors)
    if(NOT result EQUAL 0 OR errors MATCHES "[Ww]arning|[Ee]rror")
        check_failed("update-mime-database rejected the package (${result}):\n${errors}")
    endif()
    file(STRINGS ${SHARE}/mime/globs2 globs REGEX "application/x-apple-aspen-config")
    if(NOT globs MATCHES ":application/x-apple-aspen-config:\\*\\.mobileconfig")
        check_failed("MIME cache has no *.mobileconfig glob: ${globs}")
    endif()
    find_program(GIO gio)
    if(GIO)
        check_detection()
    endif()
    set(FAILURES ${FAILURES} PARENT_SCOPE)
endfunction()

# ------------------------------------------------------------------ icons

function(check_png file size)
    if(NOT EXISTS ${file})
        check_failed("missing ${file}")
        set(FAILURES ${FAILURES} PARENT_SCOPE)
        return()
    endif()
    # The signature, then the IHDR chunk: length, "IHDR", width and height as big-endian words.
    file(READ ${file} header LIMIT 24 HEX)
    string(SUBSTRING "${header}" 0 16 signature)
    string(SUBSTRING "${header}" 24 8 chunk)
    string(SUBSTRING "${header}" 32 8 width_hex)
    string(SUBSTRING "${header}" 40 8 height_hex)
    math(EXPR width "0x${width_hex}")
    math(EXPR height "0x${height_hex}")
    if(NOT signature STREQUAL "89504e470d0a1a0a" OR NOT chunk STREQUAL "49484452")
        check_failed("${file} isn't a PNG")
    elseif(NOT width EQUAL size OR NOT height EQUAL size)
        check_failed("${file} is ${width}x${height}, not ${size}x${size}")
    endif()
    set(FAILURES ${FAILURES} PARENT_SCOPE)
endfunction()

function(check_icons)
    set(theme ${SHARE}/icons/hicolor)
    foreach(size IN LISTS ICON_SIZES)
        check_png(${theme}/${size}x${size}/apps/${APPLICATION_ID}.png ${size})
    endforeach()
    set(svg ${theme}/scalable/apps/${APPLICATION_ID}.svg)
    if(NOT EXISTS ${svg})
        check_failed("missing ${svg}")
    else()
        file(READ ${svg} text)
        if(NOT text MATCHES "<svg [^>]*viewBox=\"0 0 ([0-9]+) ([0-9]+)\""
           OR NOT CMAKE_MATCH_1 EQUAL CMAKE_MATCH_2 OR NOT text MATCHES "<path ")
            check_failed("${svg} isn't a square SVG drawing")
        endif()
    endif()
    set(FAILURES ${FAILURES} PARENT_SCOPE)
endfunction()

# ------------------------------------------------------------ metainfo

function(check_metainfo)
    set(file ${SHARE}/metainfo/${APPLICATION_ID}.metainfo.xml)
    if(NOT EXISTS ${file})
        check_failed("missing ${file}")
        set(FAILURES ${FAILURES} PARENT_SCOPE)
        return()
    endif()
    file(READ ${file} text)
    if(NOT text MATCHES "<id>${APPLICATION_ID}</id>"
       OR NOT text MATCHES "<launchable type=\"desktop-id\">${APPLICATION_ID}.desktop</launchable>")
        check_failed("metainfo doesn't name the application and its desktop file")
    endif()
    # The newest release comes first; it must be the version being installed.
    if(NOT text MATCHES "<release version=\"([^\"]+)\"" OR NOT CMAKE_MATCH_1 STREQUAL PROJECT_VERSION)
        check_failed("metainfo's newest release is '${CMAKE_MATCH_1}', the project is ${PROJECT_VERSION}")
    endif()
    find_program(APPSTREAMCLI appstreamcli)
    if(APPSTREAMCLI)
        execute_process(COMMAND ${APPSTREAMCLI} validate --no-net --no-color ${file}
            RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
        if(NOT result EQUAL 0)
            check_failed("appstreamcli validate:\n${output}")
        endif()
    endif()
    set(FAILURES ${FAILURES} PARENT_SCOPE)
endfunction()

# ------------------------------------------------------------ manual pages

function(read_man_page name out)
    set(file ${SHARE}/man/man1/${name}.1.gz)
    set(${out} "" PARENT_SCOPE)
    if(NOT EXISTS ${file})
        check_failed("missing ${file}")
        set(FAILURES ${FAILURES} PARENT_SCOPE)
        return()
    endif()
    execute_process(COMMAND gzip -dc ${file} RESULT_VARIABLE result OUTPUT_VARIABLE text)
    if(NOT result EQUAL 0)
        check_failed("${file} isn't gzip-compressed")
    endif()
    string(TOUPPER "${name}" title)
    if(NOT text MATCHES "^[^\n]*\\.TH ${title} 1 " OR NOT text MATCHES "\n\\.SH NAME\n[^\n]*${name} \\\\- ")
        check_failed("${file} has no .TH ${title} 1 header or no NAME line")
    endif()
    find_program(GROFF groff)
    if(GROFF)
        file(WRITE ${STAGE_DIR}/${name}.1 "${text}")
        execute_process(COMMAND ${GROFF} -man -ww -z ${STAGE_DIR}/${name}.1
            RESULT_VARIABLE result ERROR_VARIABLE warnings)
        if(NOT result EQUAL 0 OR NOT warnings STREQUAL "")
            check_failed("groff warns about ${name}(1):\n${warnings}")
        endif()
    endif()
    set(${out} "${text}" PARENT_SCOPE)
    set(FAILURES ${FAILURES} PARENT_SCOPE)
endfunction()

# The lines between "Commands:" and the next blank line of the tool's help,
# each a command of one or two words, two spaces or more, and its summary.
function(listed_commands out)
    execute_process(COMMAND ${ISOLATED_ENV} ${ROOT}/bin/quorlin-profile --help OUTPUT_VARIABLE help)
    string(REPLACE "\n" ";" lines "${help}")
    set(commands "")
    set(inside FALSE)
    foreach(line IN LISTS lines)
        if(line STREQUAL "Commands:")
            set(inside TRUE)
        elseif(inside AND line STREQUAL "")
            break()
        elseif(inside AND line MATCHES "^  ([a-z][a-z-]*( [a-z][a-z-]*)?)   *[^ ]")
            list(APPEND commands "${CMAKE_MATCH_1}")
        endif()
    endforeach()
    set(${out} "${commands}" PARENT_SCOPE)
endfunction()

function(man_section page name out)
    set(${out} "" PARENT_SCOPE)
    string(FIND "${page}" "\n.SH ${name}\n" start)
    if(start EQUAL -1)
        return()
    endif()
    string(SUBSTRING "${page}" ${start} -1 rest)
    string(LENGTH "\n.SH ${name}\n" heading)
    string(SUBSTRING "${rest}" ${heading} -1 rest)
    string(FIND "${rest}" "\n.SH " end)
    string(SUBSTRING "${rest}" 0 ${end} section)
    set(${out} "\n${section}" PARENT_SCOPE)
endfunction()

# The tool's own list of commands is the truth: each needs its entry in the
# manual, or the page has fallen behind the program.
function(check_man_pages)
    read_man_page(quorlin-profile-editor editor_page)
    read_man_page(quorlin-profile tool_page)
    listed_commands(commands)
    if(NOT commands)
        check_failed("quorlin-profile --help lists no commands")
    endif()
    man_section("${tool_page}" COMMANDS section)
    if(NOT section MATCHES "[^\n]")
        check_failed("quorlin-profile(1) has no COMMANDS section")
    endif()
    string(REPLACE "\\-" "-" section "${section}")
    foreach(command IN LISTS commands)
        if(NOT section MATCHES "\n\\.TP\n[^\n]*${command}")
            check_failed("quorlin-profile(1) doesn't describe the command '${command}'")
        endif()
    endforeach()
    set(FAILURES ${FAILURES} PARENT_SCOPE)
endfunction()

install_stage()
check_programs()
check_desktop_entry()
check_mime_package()
check_icons()
check_metainfo()
check_man_pages()
if(FAILURES GREATER 0)
    message(FATAL_ERROR "${FAILURES} check(s) of the installed tree failed")
endif()
message(STATUS "Installed tree in ${STAGE_DIR} checked")
