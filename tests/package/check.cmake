# Installs the build tree into a scratch prefix, then builds and runs a consumer
# through find_package(Varnel) and checks the pkg-config file.
# Arguments: BUILD_DIR, SOURCE_DIR, WORK_DIR, CXX_FLAGS.
file(REMOVE_RECURSE "${WORK_DIR}")
set(prefix "${WORK_DIR}/prefix")

function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "failed: ${ARGN}\n${out}\n${err}")
  endif()
  set(last_output "${out}" PARENT_SCOPE)
endfunction()

run(${CMAKE_COMMAND} --install "${BUILD_DIR}" --prefix "${prefix}")
run(${CMAKE_COMMAND} -S "${SOURCE_DIR}/tests/package/consumer" -B "${WORK_DIR}/consumer" -G Ninja
    "-DCMAKE_PREFIX_PATH=${prefix}" "-DCMAKE_CXX_FLAGS=${CXX_FLAGS}" "-DCMAKE_EXE_LINKER_FLAGS=${CXX_FLAGS}")
run(${CMAKE_COMMAND} --build "${WORK_DIR}/consumer")
run("${WORK_DIR}/consumer/consumer")
if(NOT last_output MATCHES "1970-01-01 00:00:01 \\+0000")
  message(FATAL_ERROR "consumer printed: ${last_output}")
endif()

run("${WORK_DIR}/consumer/fakes_consumer")
if(NOT last_output MATCHES "Welcome back, guest-1")
  message(FATAL_ERROR "fakes_consumer printed: ${last_output}")
endif()

# The quickstart an integrator copies builds and runs against the package.
run(${CMAKE_COMMAND} -S "${SOURCE_DIR}/examples/quickstart" -B "${WORK_DIR}/quickstart" -G Ninja
    "-DCMAKE_PREFIX_PATH=${prefix}" "-DCMAKE_CXX_FLAGS=${CXX_FLAGS}" "-DCMAKE_EXE_LINKER_FLAGS=${CXX_FLAGS}")
run(${CMAKE_COMMAND} --build "${WORK_DIR}/quickstart")
run("${WORK_DIR}/quickstart/quickstart" "${prefix}/share/varnel/guests/sample-guest.json")
if(NOT last_output MATCHES "[1-9][0-9]* renewable pass\\(es\\)\n.*AP-100201")
  message(FATAL_ERROR "quickstart printed: ${last_output}")
endif()

# The renewal example renews the sample guest's pass against the installed mock
# commerce server (a free port; stopped when the example has ended).
run(${CMAKE_COMMAND} -S "${SOURCE_DIR}/examples/renewal" -B "${WORK_DIR}/renewal" -G Ninja
    "-DCMAKE_PREFIX_PATH=${prefix}" "-DCMAKE_CXX_FLAGS=${CXX_FLAGS}" "-DCMAKE_EXE_LINKER_FLAGS=${CXX_FLAGS}")
run(${CMAKE_COMMAND} --build "${WORK_DIR}/renewal")
run(sh "${SOURCE_DIR}/tests/package/renew-against-mock.sh" "${prefix}" "${WORK_DIR}"
    "${prefix}/share/varnel/guests/sample-guest.json")
if(NOT last_output MATCHES "renewed AP-[0-9A-Z-]+: confirmation [^,]+, status BOOKED")
  message(FATAL_ERROR "renewal printed: ${last_output}")
endif()

set(ENV{PKG_CONFIG_PATH} "${prefix}/lib/pkgconfig")
run(pkg-config --cflags --libs varnel)
if(NOT last_output MATCHES "-lvarnel_platform")
  message(FATAL_ERROR "pkg-config gave: ${last_output}")
endif()
