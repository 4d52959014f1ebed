#!/bin/bash
# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT
#
# check_unrun_tests.sh SCRIPTS FOLDER OUTCOME: checks one outcome of find-unrun-tests, in FOLDER.
set -euo pipefail
# shellcheck source=tests/scripts/support.sh
source "$(dirname "$0")/support.sh" "$@"

# project LINE...: a project whose folder tests/part has a CMakeLists.txt of these lines.
project() {
  mkdir -p scripts tests/part
  printf '%s\n' 'project(example)' 'add_subdirectory(tests)' >CMakeLists.txt
  echo 'add_subdirectory(part)' >tests/CMakeLists.txt
  printf '%s\n' "$@" >tests/part/CMakeLists.txt
  : >scripts/check
}

accept() {
  expect 0 "" "$scripts/lib/find-unrun-tests"
}

# report FAULT...
report() {
  local IFS=$'\n'
  expect 1 "$*" "$scripts/lib/find-unrun-tests"
}

case $outcome in
  FindUnrunTests.AcceptsASourceThatIsNamed)
    project 'tarnvod_test(test_part SOURCES thing_test.cpp)'
    touch tests/part/thing_test.cpp
    accept ;;
  FindUnrunTests.ReportsASourceThatIsNotNamed)
    project 'tarnvod_test(test_part SOURCES other_thing_test.cpp)'
    touch tests/part/thing_test.cpp
    report 'tests/part/thing_test.cpp: nothing runs it' ;;
  FindUnrunTests.ReportsASourceThatIsOnlyInAComment)
    project '# thing_test.cpp'
    touch tests/part/thing_test.cpp
    report 'tests/part/thing_test.cpp: nothing runs it' ;;
  FindUnrunTests.ReportsAFolderThatIsNotAdded)
    project 'tarnvod_test(test_part SOURCES thing_test.cpp)'
    touch tests/part/thing_test.cpp
    echo 'add_subdirectory(other-part)' >tests/CMakeLists.txt
    report 'tests/part/CMakeLists.txt: nothing adds it' 'tests/part/thing_test.cpp: nothing runs it' ;;
  FindUnrunTests.AcceptsChecksThatAreNamed)
    project 'add_test(NAME one COMMAND "${CMAKE_CURRENT_SOURCE_DIR}/check.sh")' \
      'add_test(NAME two COMMAND "${Python3_EXECUTABLE}" "${PROJECT_SOURCE_DIR}/tests/thing_test.py")'
    touch tests/part/check.sh tests/thing_test.py
    accept ;;
  FindUnrunTests.ReportsChecksThatAreNotNamed)
    project
    touch tests/part/check.sh tests/part/{thing_test.py,thing.test.js,thing.mjs,thing_test.yml,run}
    chmod +x tests/part/run
    report tests/part/{check.sh,run,thing.mjs,thing.test.js,thing_test.py,thing_test.yml}': nothing runs it' ;;
  FindUnrunTests.ReportsACheckOfTheSameNameInAnotherFolder)
    project 'add_test(NAME one COMMAND "${CMAKE_CURRENT_SOURCE_DIR}/other/check.sh")'
    mkdir tests/part/other
    touch tests/part/check.sh tests/part/other/check.sh
    report 'tests/part/check.sh: nothing runs it' ;;
  FindUnrunTests.AcceptsWhatAnotherCheckRuns)
    project 'add_test(NAME one COMMAND "${CMAKE_CURRENT_SOURCE_DIR}/check.sh")'
    echo '"$(dirname "$0")/../run_it.sh"' >tests/part/check.sh
    touch tests/run_it.sh
    accept ;;
  FindUnrunTests.ReportsWhatOnlyAnUnrunCheckRuns)
    project
    echo '"$(dirname "$0")/../run_it.sh"' >tests/part/check.sh
    touch tests/run_it.sh
    report 'tests/part/check.sh: nothing runs it' 'tests/run_it.sh: nothing runs it' ;;
  FindUnrunTests.AcceptsAModuleThatATestImports)
    project 'add_test(NAME one COMMAND "${CMAKE_CURRENT_SOURCE_DIR}/thing_test.py")'
    echo 'from things import thing' >tests/part/thing_test.py
    touch tests/part/things.py
    accept ;;
  FindUnrunTests.AcceptsWhatTheChecksCall)
    project
    echo 'scripts/test-pages' >scripts/check
    echo 'exec tests/part/check.sh' >scripts/test-pages
    touch tests/part/check.sh
    accept ;;
  FindUnrunTests.ReportsWhatOnlyOtherScriptsCall)
    project
    echo 'exec tests/part/check.sh' >scripts/test-pages
    touch tests/part/check.sh
    report 'tests/part/check.sh: nothing runs it' ;;
  FindUnrunTests.AcceptsAPageTestThatMatchesThePattern)
    project
    printf '%s\n' 'cp tests/part/* build/' 'node --test ./*.test.js' >scripts/check
    echo "require('./support.js');" >tests/part/thing.test.js
    touch tests/part/support.js
    accept ;;
  FindUnrunTests.ReportsAPageTestThatDoesNotMatch)
    project
    printf '%s\n' 'cp tests/part/* build/' 'node --test ./*.test.js' >scripts/check
    touch tests/part/thing_test.js
    report 'tests/part/thing_test.js: nothing runs it' ;;
  FindUnrunTests.ReportsAConditionOnAFile)
    project 'if(EXISTS "${CMAKE_CURRENT_SOURCE_DIR}/other")' '  add_subdirectory(other)' 'endif()'
    report 'tests/part/CMakeLists.txt: what depends on whether a file exists may be left out unseen' ;;
  *) echo "unknown outcome: $outcome" >&2; exit 2 ;;
esac
