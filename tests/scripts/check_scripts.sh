#!/bin/bash
# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT
#
# check_scripts.sh SCRIPTS FOLDER OUTCOME: checks one outcome of a script, in FOLDER.
set -euo pipefail
# shellcheck source=tests/scripts/support.sh
source "$(dirname "$0")/support.sh" "$@"

# project VERSION CHANGE_LOG_VERSION LIBRARY_VERSION: the files that name a version.
project() {
  mkdir -p src packaging
  echo "project(tarnvod VERSION $1 LANGUAGES CXX)" >CMakeLists.txt
  printf '# Change log\n\n## %s (unreleased)\n\n## 0.1.0\n' "$2" >CHANGELOG.md
  printf '# Upgrading\n\n## %s\n' "$1" >UPGRADING.md
  printf 'set_target_properties(tarnvod PROPERTIES\n  VERSION %s)\n' "$3" >src/CMakeLists.txt
  : >packaging/CMakeLists.txt
}

# counted SOURCE LINES...: a source, and a program in the place of gcov that has these counts for it, one object after the other.
counted() {
  mkdir -p src build/tarnvod_internals.dir
  echo "$1" >src/a.cpp
  printf '#!/bin/bash\n[[ $* != *--help* ]] || { echo --conditions; exit; }\ncat "${!#}"\n' >gcov
  chmod +x gcov
  local number=0 lines
  for lines in "${@:2}"; do
    lines=${lines//$'\n'/}
    echo "{\"current_working_directory\": \"$PWD\", \"files\": [{\"file\": \"src/a.cpp\", \"lines\": [$lines]}]}" \
      >"build/tarnvod_internals.dir/$((++number)).gcno"
  done
}

# line NUMBER COUNT [BRANCH...]: what gcov counted of a line and of its branches.
line() {
  local branch branches=
  for branch in "${@:3}"; do
    branches+="${branches:+, }{\"throw\": false, \"count\": $branch}"
  done
  echo "{\"line_number\": $1, \"count\": $2, \"branches\": [$branches]}"
}

readonly undecided='{"line_number": 1, "count": 4, "branches": [], "conditions": [
  {"count": 4, "covered": 3, "not_covered_true": [1], "not_covered_false": []}]}'

# find_uncovered STATUS LINES BRANCHES CONDITIONS EXEMPT [FAULT]: what it prints of one line, of which LINES are reached.
find_uncovered() {
  local lines=('lines: 0.0 % (0 of 1)' 'lines: 100.0 % (1 of 1)')
  expect "$1" "${6:+$6
}${lines[$2]}
branches: $3
conditions: $4
exempt lines: $5" "$scripts/lib/find-uncovered" --gcov ./gcov build
}

case $outcome in
  FindAvoidedWords.AcceptsPlainWords)
    echo "The library reports a tallest teller." >text
    expect 0 "" "$scripts/lib/find-avoided-words" text ;;
  FindAvoidedWords.ReportsFileAndLine)
    printf 'one\nit Tells two\n' >text # avoided on purpose
    expect 1 "text:2:it Tells two
find-avoided-words: plainer words are at the head of $scripts/lib/avoided-words.txt" "$scripts/lib/find-avoided-words" text ;;
  FindBrokenLinks.AcceptsFilesAndHeadings)
    printf '# A `Heading` of mine\n\n[1](other.md) [2](#a-heading-of-mine) [3](other.md#more)\n' >text.md
    echo "## More" >other.md
    expect 0 "" "$scripts/lib/find-broken-links" text.md ;;
  FindBrokenLinks.DoesNotFollowLinksToOtherMachines)
    echo "[1](https://example.org/nothing)" >text.md
    expect 0 "" "$scripts/lib/find-broken-links" text.md ;;
  FindBrokenLinks.ReportsAMissingFile)
    echo "[1](nowhere.md)" >text.md
    expect 1 "text.md: a broken link: nowhere.md" "$scripts/lib/find-broken-links" text.md ;;
  FindBrokenLinks.ReportsAMissingHeading)
    printf '# One\n\n[1](#two)\n' >text.md
    expect 1 "text.md: a broken link: #two" "$scripts/lib/find-broken-links" text.md ;;
  CheckVersion.AcceptsOneVersion)
    project 1.2.3 1.2.3 '${PROJECT_VERSION}'
    expect 0 "" "$scripts/lib/check-version" ;;
  CheckVersion.ReportsAChangeLogOfAnotherVersion)
    project 1.2.3 1.2.2 '${PROJECT_VERSION}'
    expect 1 "check-version: CHANGELOG.md begins with version 1.2.2, CMakeLists.txt has 1.2.3" "$scripts/lib/check-version" ;;
  CheckVersion.ReportsASecondVersion)
    project 1.2.3 1.2.3 1.2
    expect 1 "src/CMakeLists.txt:2:  VERSION 1.2)
check-version: take the version from PROJECT_VERSION" "$scripts/lib/check-version" ;;
  FindUncovered.AcceptsWhatIsCovered)
    counted "a;" "$(line 1 4 1 3)"
    find_uncovered 0 1 "100.0 % (2 of 2)" "none" 0 ;;
  FindUncovered.ReportsALineThatIsNotReached)
    counted "a;" "$(line 1 0)"
    find_uncovered 1 0 "none" "none" 0 "src/a.cpp:1: is not reached" ;;
  FindUncovered.ReportsABranchThatIsNotTaken)
    counted "a;" "$(line 1 4 4 0)"
    find_uncovered 1 1 "50.0 % (1 of 2)" "none" 0 "src/a.cpp:1: 1 of 2 branches are not taken" ;;
  FindUncovered.AddsUpWhatSeveralObjectsHaveCounted)
    counted "a;" "$(line 1 4 4 0)" "$(line 1 4 0 4)"
    find_uncovered 0 1 "100.0 % (2 of 2)" "none" 0 ;;
  FindUncovered.ReportsATermThatHasNotDecided)
    counted "a;" "$undecided"
    find_uncovered 1 1 "none" "75.0 % (3 of 4)" 0 "src/a.cpp:1: term 2 of 2 has never decided the condition by being true" ;;
  FindUncovered.AcceptsAnExemptionBehindItsLine)
    counted "a;  // uncovered: a reason" "$undecided"
    find_uncovered 0 1 "none" "75.0 % (3 of 4)" 1 ;;
  FindUncovered.AcceptsAnExemptionAboveItsLine)
    counted "// uncovered: a reason
// of two lines
a;" "$(line 3 0)"
    find_uncovered 0 0 "none" "none" 1 ;;
  FindUncovered.ReportsAnExemptionWithoutAReason)
    counted "a;  // uncovered:" "$(line 1 0)"
    find_uncovered 1 0 "none" "none" 0 "src/a.cpp:1: is not reached" ;;
  FindUncovered.ReportsAnExemptionThatIsOutOfDate)
    counted "a;  // uncovered: a reason" "$(line 1 4)"
    find_uncovered 1 1 "none" "none" 1 "src/a.cpp:1: is exempt, but covered" ;;
  FindUncovered.AcceptsAnExemptionOfWhatMayBeCovered)
    counted "a;  // may be uncovered: a reason" "$(line 1 4)"
    find_uncovered 0 1 "none" "none" 1 ;;
  Check.RefusesUnknownArguments)
    expect 2 "usage: $scripts/check [--quick|--nightly]" "$scripts/check" --fast ;;
  CheckReproducible.RefusesUnknownArguments)
    expect 2 "usage: $scripts/check-reproducible [--with-tools]" "$scripts/check-reproducible" --tools ;;
  SourceDate.IsTheOneThatIsSet)
    expect 0 1790000000 env SOURCE_DATE_EPOCH=1790000000 "$scripts/lib/source-date" ;;
  SourceDate.IsOtherwiseThatOfTheCommit)
    git init --quiet
    mkdir lib
    cp "$scripts/lib/source-date" lib/
    git add lib
    env GIT_COMMITTER_DATE="1780000000 +0200" git -c user.name=a -c user.email=a@b commit --quiet --message=one
    expect 0 1780000000 env --unset=SOURCE_DATE_EPOCH lib/source-date ;;
  Coverage.RefusesUnknownArguments)
    expect 2 "usage: $scripts/coverage [--write]" "$scripts/coverage" --html ;;
  Conditions.RefusesUnknownArguments)
    expect 2 "usage: $scripts/conditions [--write]" "$scripts/conditions" --html ;;
  ReportFootprint.RefusesToRunWithoutALibrary)
    expect 2 "usage: $scripts/report-footprint [--write] LIBRARY" "$scripts/report-footprint" --write ;;
  MeasureRecordings.RefusesUnknownArguments)
    expect 2 "usage: $scripts/measure-recordings [--write]" "$scripts/measure-recordings" --html ;;
  TestBills.RefusesAFolderWithoutPackages)
    expect 2 "usage: $scripts/test-bills PACKAGES, a folder with packages" "$scripts/test-bills" "$folder" ;;
  Install.RefusesUnknownArguments)
    expect 2 "usage: $scripts/install [PREFIX]" "$scripts/install" --user ;;
  *) echo "unknown outcome: $outcome" >&2; exit 2 ;;
esac
