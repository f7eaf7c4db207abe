cmake_minimum_required(VERSION 3.25)

# qorlang as a translator runs it, on a TS and an XLIFF file that lconvert made of one PO: both
# compile to the language file the Linux build wrote, and that file decompiles to the TS and XLIFF
# the Linux build wrote, byte for byte (tests/tools/qorlang/byte_identity, regenerate.sh there).
#   cmake -DQORLANG=<program> [-DEMULATOR=<runner>] -DFIXTURES=<folder> -DWORK_DIR=<folder> -P QorlangBytesCheck.cmake

file(REMOVE_RECURSE ${WORK_DIR})
file(MAKE_DIRECTORY ${WORK_DIR})

# Runs qorlang with ARGN in WORK_DIR and compares what it wrote to `made` with `expected`.
function(expect_bytes made expected)
  execute_process(COMMAND ${EMULATOR} ${QORLANG} ${ARGN} WORKING_DIRECTORY ${WORK_DIR}
    RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE out TIMEOUT 60)
  list(JOIN ARGN " " command)
  if(NOT rc EQUAL 0)
    message(SEND_ERROR "qorlang ${command}: exit ${rc}: ${out}")
  else()
    execute_process(COMMAND ${CMAKE_COMMAND} -E compare_files ${WORK_DIR}/${made} ${FIXTURES}/${expected}
      RESULT_VARIABLE differs)
    if(differs)
      message(SEND_ERROR "qorlang ${command}: ${WORK_DIR}/${made} differs from ${FIXTURES}/${expected}")
    endif()
  endif()
endfunction()

foreach(format IN ITEMS ts xlf)
  file(MAKE_DIRECTORY ${WORK_DIR}/${format})
  expect_bytes(${format}/app-de-DE.qorlang app-de-DE.qorlang compile ${FIXTURES}/de-DE.${format} -o ${format}/app-de-DE.qorlang)
endforeach()
foreach(output IN ITEMS decompiled.ts decompiled.xlf)
  expect_bytes(${output} ${output} decompile ${FIXTURES}/app-de-DE.qorlang -o ${output})
endforeach()
