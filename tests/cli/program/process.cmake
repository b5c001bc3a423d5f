# Runs the program itself and looks at what only a process shows. Arguments: CHECK, QUILLETCTL (a list: the
# emulator, if any, and the program), SOURCE_DIR, WORK_DIR.
cmake_policy(VERSION 3.25)
file(MAKE_DIRECTORY ${WORK_DIR})
# The trace file goes where no other process of the tests writes its own, on the hosts that ask this variable.
set(ENV{Temp} ${WORK_DIR})
set(golden_machine ${SOURCE_DIR}/tests/cli/machines/golden.mof)

function(run expected_status)
  execute_process(COMMAND ${QUILLETCTL} ${ARGN}
    WORKING_DIRECTORY ${WORK_DIR}
    RESULT_VARIABLE status OUTPUT_FILE ${WORK_DIR}/out.txt ERROR_FILE ${WORK_DIR}/err.txt)
  file(READ ${WORK_DIR}/out.txt out)
  file(READ ${WORK_DIR}/err.txt err)
  if(NOT status EQUAL expected_status)
    message(FATAL_ERROR "quilletctl ${ARGN}: status ${status}, not ${expected_status}\n${out}\n${err}")
  endif()
  set(out "${out}" PARENT_SCOPE)
  set(err "${err}" PARENT_SCOPE)
endfunction()

function(expect_match text pattern)
  if(NOT text MATCHES "${pattern}")
    message(FATAL_ERROR "no match for \"${pattern}\" in:\n${text}")
  endif()
endfunction()

# The output of a command, byte for byte; the file was made natively.
function(expect_golden file)
  run(0 --simulate ${golden_machine} ${ARGN})
  execute_process(COMMAND ${CMAKE_COMMAND} -E compare_files
    ${WORK_DIR}/out.txt ${SOURCE_DIR}/tests/cli/golden/${file} RESULT_VARIABLE different)
  if(different)
    message(FATAL_ERROR "the output differs from tests/cli/golden/${file}:\n${out}")
  endif()
endfunction()

if(CHECK STREQUAL bytes)
  set(adapter {64D1BF82-B507-5E42-AED2-547CA8AAC36A})
  set(teamed "Zorel Quad Port Gigabit Server Adapter #2")
  set(team {233D64CB-B845-581B-A807-C628FFE690C9})
  set(vlan {063ED469-BA26-5EFF-991F-22031C2B1C4A})
  expect_golden(adapter-list.json adapter list --json)
  expect_golden(adapter-show.json adapter show ${adapter} --json)
  expect_golden(adapter-show.txt adapter show "Zorel Gigabit Server Adapter (東京)")
  expect_golden(adapter-capabilities.json adapter capabilities ${adapter} --json)
  expect_golden(adapter-ports.json adapter ports ${teamed} --json)
  expect_golden(adapter-identify.json adapter identify ${adapter} --seconds 5 --json)
  expect_golden(setting-list-adapter.json setting list ${adapter} --json)
  expect_golden(setting-list-adapter.txt setting list ${adapter})
  expect_golden(setting-list-team.txt setting list ${team} --of team)
  expect_golden(setting-list-vlan.txt setting list ${vlan} --of vlan)
  expect_golden(setting-list-boot-agent.txt setting list ${adapter} --of boot-agent)
  expect_golden(setting-get.json setting get ${adapter} *FlowControl --json)

elseif(CHECK STREQUAL status)
  run(0 version)
  run(2 nonsense)
  expect_match("${err}" "^quilletctl: [^\n]*nonsense[^\n]*\n$")
  # An argument outside every code page, and back again.
  run(2 --simulate "missing 東京.mof" warnings)
  expect_match("${err}" "^quilletctl: missing 東京.mof: no such file\n$")
  file(WRITE ${WORK_DIR}/fault.mof [=[
instance of Zorel_NetService { Name = "ZorelNetService"; };
instance of QuilletSimulator_Fault { Id = 1; Operation = "ConnectServer"; Code = 0x80041003; };
]=])
  run(1 --simulate fault.mof adapter list)
  expect_match("${err}" "0x80041003 WBEM_E_ACCESS_DENIED\n$")

elseif(CHECK STREQUAL trace)
  run(0 --simulate trace --lines 4 --json)
  string(JSON file GET "${out}" file)
  expect_match("${file}" "Gui_Quillet.txt$")
  string(JSON count LENGTH "${out}" lines)
  if(NOT count EQUAL 4)
    message(FATAL_ERROR "${count} lines instead of 4:\n${out}")
  endif()
  string(JSON last GET "${out}" lines 3)
  expect_match("${last}" "^Quillet\tPID:.*\t~CQuillet$")
  run(0 --simulate trace)
  expect_match("${out}" "^trace file: [^\n]*Gui_Quillet.txt\n")
  expect_match("${out}" " Exit UninitQuillet\n")
  # A connection that fails leaves its steps there too.
  file(WRITE ${WORK_DIR}/fault.mof [=[
instance of Zorel_NetService { Name = "ZorelNetService"; };
instance of QuilletSimulator_Fault { Id = 1; Operation = "ConnectServer"; Code = 0x80041003; };
]=])
  run(1 --simulate fault.mof trace)
  expect_match("${out}" " Could not connect to namespace.\n")

elseif(CHECK STREQUAL output)
  # A shell runs the program ("$@") in each of these ways.
  function(run_in_shell script expected_status expected_errors)
    execute_process(COMMAND sh -c "${script}" sh ${QUILLETCTL} --simulate adapter list
      WORKING_DIRECTORY ${WORK_DIR} RESULT_VARIABLE status ERROR_VARIABLE err OUTPUT_VARIABLE out)
    if(NOT status EQUAL expected_status OR NOT err STREQUAL expected_errors)
      message(FATAL_ERROR "${script}: status ${status}, not ${expected_status}\n${out}\n${err}")
    endif()
    set(out "${out}" PARENT_SCOPE)
  endfunction()
  set(unwritten "quilletctl: standard output cannot be written\n")
  # The reader leaves after the first line, or before it.
  run_in_shell("{ \"$@\"; echo $? >left.txt; } | head -n 1; exit $(cat left.txt)" 0 "")
  expect_match("${out}" "^NAME [^\n]*\n$")
  run_in_shell("{ sleep 0.2; \"$@\"; echo $? >left.txt; } | true; exit $(cat left.txt)" 0 "")
  # Nobody is there, or nothing can be stored.
  run_in_shell("\"$@\" >&-" 1 "${unwritten}")
  run_in_shell("\"$@\" --json >&-" 1 "${unwritten}")
  run_in_shell("\"$@\" >/dev/full" 1 "${unwritten}")
  # Nor does what is meant for a closed stream get into the trace, which is opened later.
  run_in_shell("\"$@\" nobody 2>&-" 2 "")
  file(GLOB_RECURSE traces ${WORK_DIR}/*Gui_Quillet.txt)
  if(NOT traces)
    message(FATAL_ERROR "no trace in ${WORK_DIR}")
  endif()
  file(STRINGS ${traces} strangers REGEX "^NAME |^quilletctl:")
  if(strangers)
    message(FATAL_ERROR "in the trace: ${strangers}")
  endif()

elseif(CHECK STREQUAL untraced)
  # The machine's administrator has switched the trace off.
  file(WRITE ${WORK_DIR}/registry.reg [=[
Windows Registry Editor Version 5.00

[HKEY_LOCAL_MACHINE\SOFTWARE\MARLO\NETWORK_SERVICES\LUM2]
"TRACE"=dword:00000000
]=])
  set(ENV{QUILLET_REGISTRY} ${WORK_DIR}/registry.reg)
  run(0 --simulate trace)
  expect_match("${out}" "^no trace is written\n$")
  run(0 --simulate trace --json)
  string(JSON type TYPE "${out}" file)
  if(NOT type STREQUAL NULL)
    message(FATAL_ERROR "a file where none is written:\n${out}")
  endif()

else()
  message(FATAL_ERROR "unknown check \"${CHECK}\"")
endif()
