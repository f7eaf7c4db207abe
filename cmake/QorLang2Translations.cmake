# qorlang_add_translations(<target> APP_ID <id> OUTPUT_DIRECTORY <dir> SOURCES <file>...
#                          [OPTIONS <qorlang compile option>...] [OUTPUT_FILES_VARIABLE <var>])
#
# Compiles translation sources (.po, .xlf/.xliff, .ts, .json, .txt) into language files at build
# time: <dir>/<id>-<tag>.qorlang, where the library looks for them. The tag comes from the end of
# each source's name ("de-DE.po", "myapp_de_DE.ts", "fr-FR.xlf") and is passed on as --language,
# so the file's name and content always agree. <target> is built after its translations
# (a custom target <target>_translations). OPTIONS go to every "qorlang compile" (--use-fuzzy,
# --author NAME, ...). OUTPUT_FILES_VARIABLE receives the list of the language files, e.g. for
# install(FILES).
#
# The compiler is the imported target qor_lang2::qorlang (from find_package(qor_lang2)), or,
# inside the qor_lang2 build itself, its qorlang target. A cross build runs it through
# CMAKE_CROSSCOMPILING_EMULATOR, or uses the host's own compiler when QORLANG_EXECUTABLE names one.
include_guard(GLOBAL)

function(qorlang_add_translations target)
  cmake_parse_arguments(PARSE_ARGV 1 ARG "" "APP_ID;OUTPUT_DIRECTORY;OUTPUT_FILES_VARIABLE" "SOURCES;OPTIONS")
  if(ARG_UNPARSED_ARGUMENTS)
    message(FATAL_ERROR "qorlang_add_translations: unknown arguments: ${ARG_UNPARSED_ARGUMENTS}")
  endif()
  foreach(required IN ITEMS APP_ID OUTPUT_DIRECTORY SOURCES)
    if(NOT ARG_${required})
      message(FATAL_ERROR "qorlang_add_translations(${target}): ${required} is missing")
    endif()
  endforeach()
  if(NOT TARGET ${target})
    message(FATAL_ERROR "qorlang_add_translations: ${target} is not a target")
  endif()
  if(QORLANG_EXECUTABLE)
    set(tool ${QORLANG_EXECUTABLE})
  elseif(TARGET qor_lang2::qorlang)
    set(tool qor_lang2::qorlang)
  elseif(TARGET qorlang)
    set(tool qorlang)
  else()
    message(FATAL_ERROR "qorlang_add_translations: no qorlang compiler (find_package(qor_lang2) first)")
  endif()
  set(command ${tool})
  # CMake puts the emulator before targets it builds, not before imported ones.
  if(TARGET ${tool} AND CMAKE_CROSSCOMPILING AND CMAKE_CROSSCOMPILING_EMULATOR)
    get_target_property(imported ${tool} IMPORTED)
    if(imported)
      set(command ${CMAKE_CROSSCOMPILING_EMULATOR} $<TARGET_FILE:${tool}>)
    endif()
  endif()

  cmake_path(ABSOLUTE_PATH ARG_OUTPUT_DIRECTORY BASE_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR} NORMALIZE)
  set(outputs)
  foreach(source IN LISTS ARG_SOURCES)
    cmake_path(ABSOLUTE_PATH source BASE_DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR} NORMALIZE)
    cmake_path(GET source STEM LAST_ONLY stem)
    # language (two or three letters), "-" or "_", country (two letters), at the end of the name
    if(NOT stem MATCHES "(^|[^A-Za-z])([A-Za-z][A-Za-z][A-Za-z]?)[-_]([A-Za-z][A-Za-z])$")
      message(FATAL_ERROR "qorlang_add_translations(${target}): ${source}: the file name must end in "
                          "a language-COUNTRY tag such as de-DE or de_DE")
    endif()
    string(TOLOWER "${CMAKE_MATCH_2}" language)
    string(TOUPPER "${CMAKE_MATCH_3}" country)
    set(tag "${language}-${country}")
    # The library reduces "--" to "-" in the names it looks for; so must the file's name.
    string(REPLACE "--" "-" name "${ARG_APP_ID}-${tag}.qorlang")
    set(output "${ARG_OUTPUT_DIRECTORY}/${name}")
    if(output IN_LIST outputs)
      message(FATAL_ERROR "qorlang_add_translations(${target}): two sources for ${tag}")
    endif()
    add_custom_command(OUTPUT ${output}
      COMMAND ${CMAKE_COMMAND} -E make_directory ${ARG_OUTPUT_DIRECTORY}
      COMMAND ${command} compile ${source} -o ${output} --app-id ${ARG_APP_ID} --language ${tag} ${ARG_OPTIONS}
      DEPENDS ${tool} ${source}
      COMMENT "Compiling translation ${name}"
      VERBATIM)
    list(APPEND outputs ${output})
  endforeach()

  add_custom_target(${target}_translations DEPENDS ${outputs})
  add_dependencies(${target} ${target}_translations)
  if(ARG_OUTPUT_FILES_VARIABLE)
    set(${ARG_OUTPUT_FILES_VARIABLE} ${outputs} PARENT_SCOPE)
  endif()
endfunction()
