cmake_minimum_required(VERSION 3.25)

# Runs kore_json as a user would.
#   cmake -DKORE_JSON=<program> [-DEMULATOR=<runner>] -DWORK_DIR=<folder> [-DSUITE=<folder>] -P KoreJsonCheck.cmake
# Without SUITE: output, exit status and messages on a few files. With SUITE: every file of the
# public JSON parsing test suite gets the exit status its name asks for (y_ 0, n_ 1, i_ 0 or 1),
# and the output of an accepted file reads back to the same output.

set(failures 0)
macro(fail text)
  message(SEND_ERROR "${text}")
  math(EXPR failures "${failures} + 1")
endmacro()

# Runs kore_json with the arguments after `prefix`; sets <prefix>_rc, <prefix>_out, <prefix>_err.
function(run_json prefix)
  execute_process(COMMAND ${EMULATOR} ${KORE_JSON} ${ARGN}
    RESULT_VARIABLE rc OUTPUT_FILE ${WORK_DIR}/${prefix}.out ERROR_VARIABLE err TIMEOUT 60)
  file(READ ${WORK_DIR}/${prefix}.out out)
  set(${prefix}_rc "${rc}" PARENT_SCOPE)
  set(${prefix}_out "${out}" PARENT_SCOPE)
  set(${prefix}_err "${err}" PARENT_SCOPE)
endfunction()

file(REMOVE_RECURSE ${WORK_DIR})
file(MAKE_DIRECTORY ${WORK_DIR})

if(NOT SUITE)
  file(WRITE ${WORK_DIR}/doc.json " {\"b\" : [1, 2.50, \"नमस्ते 😀 \\u00e9\\n\"], \"a\": {}} \n")
  run_json(compact ${WORK_DIR}/doc.json)
  if(NOT compact_rc EQUAL 0 OR NOT compact_out STREQUAL "{\"a\":{},\"b\":[1,2.5,\"नमस्ते 😀 é\\n\"]}\n")
    fail("compact: ${compact_rc} '${compact_out}' ${compact_err}")
  endif()
  run_json(pretty --pretty ${WORK_DIR}/doc.json)
  if(NOT pretty_rc EQUAL 0 OR NOT pretty_out STREQUAL
     "{\n\t\"a\": {\n\n\t},\n\t\"b\": [\n\t\t1,\n\t\t2.5,\n\t\t\"नमस्ते 😀 é\\n\"\n\t]\n}\n")
    fail("pretty: ${pretty_rc} '${pretty_out}' ${pretty_err}")
  endif()

  file(WRITE ${WORK_DIR}/bad.json "[tru]")
  run_json(bad ${WORK_DIR}/bad.json)
  if(NOT bad_rc EQUAL 1 OR NOT bad_out STREQUAL "" OR NOT bad_err STREQUAL "could not parse boolean value\n")
    fail("parse error: ${bad_rc} '${bad_out}' '${bad_err}'")
  endif()

  # Usage and input errors.
  foreach(args "" "--pretty" "${WORK_DIR}/doc.json;${WORK_DIR}/doc.json" "--compact;${WORK_DIR}/doc.json"
               "${WORK_DIR}/missing.json" "${WORK_DIR}")
    run_json(usage ${args})
    if(NOT usage_rc EQUAL 2 OR NOT usage_out STREQUAL "" OR usage_err STREQUAL "")
      fail("'${args}': ${usage_rc} '${usage_out}' '${usage_err}'")
    endif()
  endforeach()
else()
  if(NOT IS_DIRECTORY ${SUITE})
    message("no JSON test suite at ${SUITE}: skipped")
    return()
  endif()
  file(GLOB files ${SUITE}/[yni]_*.json)
  list(LENGTH files count)
  foreach(file IN LISTS files)
    get_filename_component(name ${file} NAME)
    string(SUBSTRING ${name} 0 1 kind)
    run_json(first ${file})
    if(kind STREQUAL "y" AND NOT first_rc EQUAL 0)
      fail("${name}: ${first_rc} ${first_err}")
    elseif(kind STREQUAL "n" AND NOT first_rc EQUAL 1)
      fail("${name}: ${first_rc}, expected 1")
    elseif(kind STREQUAL "i" AND NOT first_rc MATCHES "^[01]$")
      fail("${name}: ${first_rc} ${first_err}")
    endif()
    if(first_rc EQUAL 0)
      configure_file(${WORK_DIR}/first.out ${WORK_DIR}/again.json COPYONLY)
      run_json(second ${WORK_DIR}/again.json)
      file(SHA256 ${WORK_DIR}/first.out first_hash)
      file(SHA256 ${WORK_DIR}/second.out second_hash)
      # The printer writes control characters other than \b \f \n \r \t raw, and raw control
      # characters are not JSON; only such output may fail to read back.
      file(READ ${WORK_DIR}/first.out hex HEX)
      string(REGEX REPLACE "0a$" "" hex "${hex}")
      string(REGEX MATCHALL "[0-9a-f][0-9a-f]" bytes "${hex}")
      set(raw FALSE)
      foreach(byte IN LISTS bytes)
        if(byte MATCHES "^[01][0-9a-f]$")
          set(raw TRUE)
        endif()
      endforeach()
      if(NOT (second_rc EQUAL 0 AND first_hash STREQUAL second_hash) AND NOT (raw AND second_rc EQUAL 1))
        fail("${name}: printed text reads back as '${second_out}' ${second_err}")
      endif()
    endif()
  endforeach()
  message("${count} files checked")
endif()

if(failures GREATER 0)
  message(FATAL_ERROR "${failures} failures")
endif()
