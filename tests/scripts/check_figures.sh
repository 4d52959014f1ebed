#!/bin/bash
# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT
#
# check_figures.sh SCRIPTS FOLDER OUTCOME: checks one outcome of the scripts that write figures into documents, in FOLDER.
set -euo pipefail
# shellcheck source=tests/scripts/support.sh
source "$(dirname "$0")/support.sh" "$@"

# project SCRIPT: a copy of the project in which a script builds nothing, with a document for its figures.
project() {
  mkdir -p build docs scripts/lib
  ln -s "$scripts/$1" "scripts/$1"
  ln -s "$scripts"/lib/{figures.sh,endurance-figures,rehearsal-figures,write-figures} scripts/lib/
  echo 'build_release() { :; }' >scripts/lib/build.sh
  echo 'build_packages=(); require_packages() { :; }' >scripts/lib/packages.sh
  printf '%s\n' "<!-- figures: scripts/$1 -->" old '<!-- end of figures -->' >docs/testing.md
}

# program PATH LINE...: a shell script.
program() {
  mkdir -p "$(dirname "$1")"
  printf '%s\n' '#!/bin/bash' "${@:2}" >"$1"
  chmod +x "$1"
}

readonly unwritten="<!-- figures: scripts/measure -->
old
<!-- end of figures -->"

# figures_of LINE...: documents and scripts that agree on their figures, and a script with more lines.
figures_of() {
  mkdir -p docs benchmarks scripts
  printf '<!-- figures: %s -->\n' scripts/measure 'scripts/weigh, all of them' scripts/count >docs/some.md
  echo 'report_figures scripts/measure "$figures"' >scripts/measure
  echo 'scripts/lib/write-figures docs/some.md scripts/count <<<"$figures"' >scripts/count
  echo 'write_figures(sys.argv[2], "scripts/weigh, all of them", text)' >benchmarks/weigh.py
  printf '%s\n' "$@" >scripts/more
}

# expect_written SCRIPT FIGURES: what the document has.
expect_written() {
  expect 0 "<!-- figures: scripts/$1 -->

$2

<!-- end of figures -->" cat docs/testing.md
}

# expect_unwritten SCRIPT
expect_unwritten() {
  expect 0 "${unwritten/measure/$1}" cat docs/testing.md
}

readonly campaign=build/release/tests/endurance/campaign/campaign
readonly campaign_output='seed 7
2 worlds, 1000 steps, 25 subscriptions lost, 22 of them dropped by the service: 22 recovered, 3 torn down by the application'\
' before that; 14 frames arrived as they must, and 772 while everything happened at once'
readonly campaign_figures='| | last run |
|---|---|
| seed | 7 |
| worlds, steps | 2, 1,000 |
| subscriptions lost | 25, of them 22 dropped by the service |
| recovered | 22 |
| torn down by the application before they were recovered | 3 |
| frames that arrived as the model says | 14 |
| frames of the concurrent parts, none misattributed | 772 |'

# fuzzer NAME EXECUTIONS LINE...: what builds a fuzzer builds this one, which runs some lines before it searches.
fuzzer() {
  mkdir -p "fuzz/corpus/$1"
  touch "fuzz/corpus/$1/"{one,two}
  program "built/fuzz_$1" 'case $* in' "  *-runs=0*/corpus/*) echo '#9	DONE   cov: $((10 * $2)) ft: $((20 * $2)) corp: 2/9b' ;;" \
    "  *-runs=0*) echo '#3	DONE   cov: $((5 * $2)) ft: $((6 * $2)) corp: 2/9b' ;;" \
    '  *)' "${@:3}" "echo 'stat::number_of_executed_units: $2' ;;" 'esac'
  program fuzz/build.sh 'mkdir -p "$OUT"' 'for fuzzer; do' '  cp "built/fuzz_$fuzzer" "$OUT/"' \
    '  echo "max_len = 10" >"$OUT/fuzz_$fuzzer.options"' \
    '  (cd "fuzz/corpus/$fuzzer" && cmake -E tar cf "$OUT/fuzz_${fuzzer}_seed_corpus.zip" --format=zip -- *)' 'done'
}

readonly fuzz_head='| fuzzer | seconds | executions | edges reached | distinguished by their counts | committed inputs | edges that these reach |
|---|---:|---:|---:|---:|---:|---:|'

case $outcome in
  WriteFigures.ReplacesWhatIsBetweenTheMarkers)
    printf '%s\n' before '<!-- figures: scripts/measure -->' old '<!-- end of figures -->' after >document
    expect 0 '' "$scripts/lib/write-figures" document scripts/measure <<<'| new |'
    expect 0 "before
<!-- figures: scripts/measure -->

| new |

<!-- end of figures -->
after" cat document ;;
  WriteFigures.RefusesADocumentWithoutMarkers)
    echo before >document
    expect 1 'document lacks the markers <!-- figures: scripts/measure --> and <!-- end of figures -->' \
      "$scripts/lib/write-figures" document scripts/measure <<<'| new |'
    expect 0 before cat document ;;
  WriteFigures.RefusesToWriteNone)
    expect 1 'the standard input has no figures of scripts/measure' "$scripts/lib/write-figures" document scripts/measure <<<'' ;;
  FindLostFigures.AcceptsFiguresThatAScriptWrites)
    figures_of
    expect 0 '' "$scripts/lib/find-lost-figures" ;;
  FindLostFigures.ReportsFiguresThatNoScriptWrites)
    figures_of
    rm scripts/measure
    expect 1 'scripts/measure: no script writes these figures' "$scripts/lib/find-lost-figures" ;;
  FindLostFigures.ReportsFiguresWithoutMarkers)
    figures_of 'run_for_figures scripts/more program "$@"'
    expect 1 'scripts/more: no document has the markers of these figures' "$scripts/lib/find-lost-figures" ;;
  RehearsalFigures.HaveARowForEachProgram)
    printf '{"survived": 999, "days": 1000, "unconfirmed": 2, "recoveries": [{"seconds": 7}, {"seconds": 0.25}, {"seconds": 1}]}' \
      >examples-a.json
    printf '{"survived": 4, "days": 4, "unconfirmed": 0, "recoveries": []}' >watch.json
    expect 0 '| program | days survived | recoveries | half of them within | the longest | findings not confirmed |
|---|---:|---:|---:|---:|---:|
| `examples/a` | 999 of 1,000 | 3 | 1.0 s | 7.0 s | 2 |
| `watch` | 4 of 4 | 0 |  |  | 0 |' "$scripts/lib/rehearsal-figures" . examples/a watch ;;
  RehearsalFigures.SayWhatAReportSays)
    printf '{"survived": 1, "days": 2, "seconds": 8.6, "faults": {"drop": 2, "down": 1}, "recoveries": [{"seconds": 7}, {"seconds": 0.25}],
      "failures": [{"sentence": "It crashed.", "days": [2], "replay": "tarnvod rehearse --day 2"}]}' >report.json
    expect 0 '1 of 2 days survived, 3 faults, in 9 s
2 recoveries, half of them within 7.0 s, the longest 7.0 s
It crashed. (1 days; tarnvod rehearse --day 2)' "$scripts/lib/rehearsal-figures" report.json ;;
  EnduranceFigures.CountTheWorldsOfEachClass)
    printf '%s schedules of --deviations 3, %s random ones\n' 'late-drop (Handler): 1000' 7 'exit (Handler): 234' 8 'end (Camera): 5' 9 >report
    expect 0 '| worlds of | number | schedules with at most 3 deviations | random schedules |
|---|---:|---:|---:|
| `Handler` | 2 | 1,234 | 15 |
| `Camera` | 1 | 5 | 9 |' "$scripts/lib/endurance-figures" interleave report ;;
  EnduranceFigures.AccountForTheFramesOfASoak)
    printf '%s\n' '7 frames sent; 1 while nobody was subscribed, 1006 received = 1004 delivered + 2 dropped because their camera was'\
' being torn down + 0 unexplained' '21 subscriptions dropped, 2 outages, 9 teardowns, 11 updates, 0 lines logged' \
      'after a tenth of the run: 5416 kB resident, 6 descriptors, 6 threads' 'at its end: 5576 kB resident, 6 descriptors, 6 threads' \
      '0.61 s, 323825 frames delivered per second' >report
    expect 0 '| | last run |
|---|---|
| received = delivered + dropped while their camera was being torn down | 1,006 = 1,004 + 2 |
| subscriptions dropped, outages, teardowns, updates | 21, 2, 9, 11 |
| after a tenth of the run | 5,416 kB resident, 6 descriptors, 6 threads |
| at its end | 5,576 kB resident, 6 descriptors, 6 threads |
| frames per second | 323,825 |' "$scripts/lib/endurance-figures" soak report ;;
  EnduranceFigures.RefuseAReportThatLacksOne)
    echo "no seed" >report
    expect 1 'report has nothing like: ^seed (\d+)$' "$scripts/lib/endurance-figures" campaign report
    expect 1 'report has no worlds that passed' "$scripts/lib/endurance-figures" interleave report ;;
  FootprintFigures.AccountForEachByteOfTheFile)
    printf '%s\n' 'libtarnvod.so.0.0, stripped: 10000 bytes; the limit is 140000' Sections: '  .note.gnu.build-id        36' \
      '  .dynstr             3000' '  .plt                 500' '  .text               4000' '  .tbss                  9' '  .bss                 948' \
      Needs: '  libc.so.6' Relocations: '  R_ARM_ABS32              116' '  R_ARM_RELATIVE           245' >report
    expect 0 '| part | bytes |
|---|---:|
| code (`.text`, `.plt`) | 4,500 |
| names of the interface and of what it calls (`.dynstr`, `.dynsym`, `.gnu.hash`, versions) | 3,000 |
| constants (`.rodata`, `.data.rel.ro`) | 0 |
| what unwinding needs (`.ARM.exidx`, `.ARM.extab`) | 0 |
| relocations | 0 |
| variables in the file (`.data`, `.got`) | 0 |
| headers, smaller sections, padding | 2,500 |
| the file | 10,000 |

It has 361 relocations, of which 245 are relative.' "$scripts/lib/footprint-figures" <report ;;
  FootprintFigures.RefuseAnotherReport)
    expect 1 'the standard input is not a report of scripts/report-footprint' "$scripts/lib/footprint-figures" <<<'nothing' ;;
  Campaign.WritesItsFiguresWhenAsked)
    project campaign
    program "$campaign" "[[ \$* == '--minutes 1' ]] || exit 9" "echo '$campaign_output'"
    expect 0 "$campaign_output
$campaign_figures" scripts/campaign --write --minutes 1
    expect_written campaign "$campaign_figures" ;;
  Campaign.LeavesTheDocumentsOtherwise)
    project campaign
    program "$campaign" "echo '$campaign_output'"
    expect 0 "$campaign_output" scripts/campaign
    expect_unwritten campaign ;;
  Campaign.WritesNoFiguresOfAFailure)
    project campaign
    program "$campaign" "echo '$campaign_output'" "exit 3"
    expect 3 "$campaign_output" scripts/campaign --write
    expect_unwritten campaign ;;
  Interleave.RunsForTwoMinutesUnlessAskedOtherwise)
    project interleave
    program build/release/tests/endurance/interleavings/interleavings 'echo "$*" >>options' \
      'echo "exit (Handler): 4 schedules of --deviations 2, 5 random ones"'
    scripts/interleave
    scripts/interleave --write
    scripts/interleave --write --random 6
    scripts/interleave --random 7
    expect 0 "--random-seconds 120
--random-seconds 120
--random 6
--random 7" cat options ;;
  Coverage.WritesItsFiguresWhenAsked)
    project coverage
    mkdir build/coverage
    program bin/cmake
    program bin/ctest
    program bin/gcovr 'case $* in' '  *--print-summary*) printf "lines: 99.7% (787 out of 789)\nbranches: 97.9% (571 out of 583)\n" ;;' \
      '  *--txt*) touch "${*: -1}" ;;' 'esac'
    PATH=$PWD/bin:$PATH scripts/coverage
    expect_unwritten coverage
    PATH=$PWD/bin:$PATH scripts/coverage --write
    expect_written coverage '| | lines | branches |
|---|---:|---:|
| `src/` | 99.7 % (787 of 789) | 97.9 % (571 of 583) |
| `platform/` | 99.7 % (787 of 789) | 97.9 % (571 of 583) |' ;;
  Conditions.WritesItsFiguresWhenAsked)
    project conditions
    mkdir build/newest
    cat >scripts/lib/newest-system.sh <<'SYSTEM'
make_newest_system() { :; }
copy_to_newest() { :; }
in_newest() {
  if [[ $1 == g++ ]]; then
    echo 16
  else
    printf '%s\n' 'lines: 99.6 % (944 of 948)' 'branches: none' 'conditions: 95.4 % (376 of 394)' 'exempt lines: 19'
  fi
}
SYSTEM
    scripts/conditions
    expect_unwritten conditions
    scripts/conditions --write
    expect_written conditions '| `src/` | covered, with gcc 16 |
|---|---:|
| lines | 99.6 % (944 of 948) |
| branches | none |
| outcomes of terms | 95.4 % (376 of 394) |
| exempt lines | 19 |' ;;
  Rehearse.WritesTheFiguresOfAllPrograms)
    project rehearse
    program prefix/bin/tarnvod "echo '{\"survived\": 7, \"days\": 7, \"unconfirmed\": 0, \"seconds\": 1, \"recoveries\": [], \"faults\": {},' \\
      '\"failures\": []}'"
    mkdir -p examples/one build/rehearsed
    for report in examples-one README.md docs-doxygen-front-page.md docs-your-first-application.md docs-rehearsal.md \
        publish publish-without-broker; do
      echo '{"survived": 5, "days": 5, "unconfirmed": 0, "recoveries": []}' >"build/rehearsed/$report.json"
    done
    scripts/rehearse --installed prefix watch
    expect_unwritten rehearse
    scripts/rehearse --write --installed prefix watch
    grep --quiet --fixed-strings --line-regexp '| `examples/one` | 5 of 5 | 0 |  |  | 0 |' docs/testing.md
    grep --quiet --fixed-strings --line-regexp '| `watch` | 7 of 7 | 0 |  |  | 0 |' docs/testing.md
    [[ $(grep --count '^| `' docs/testing.md) == 8 ]] ;;
  Fuzz.WritesTheFiguresOfAllFuzzers)
    project fuzz
    fuzzer first 1000
    fuzzer second 2000
    scripts/fuzz 30
    expect_unwritten fuzz
    scripts/fuzz --write 40 second
    expect_written fuzz "$fuzz_head
| \`first\` | 30 | 1,000 | 10,000 | 20,000 | 2 | 5,000 |
| \`second\` | 40 | 2,000 | 20,000 | 40,000 | 2 | 10,000 |" ;;
  Fuzz.RefusesToWriteWithoutAReportOfEachFuzzer)
    project fuzz
    fuzzer first 1000
    fuzzer second 2000
    if scripts/fuzz --write 30 first 2>errors; then exit 1; fi
    grep -qx "$PWD/build/fuzz/reports/second does not exist; run the fuzzer second as well" errors
    expect_unwritten fuzz ;;
  Fuzz.RunsAsManyFuzzersAtTheSameTimeAsAsked)
    project fuzz
    mkfifo fifo
    fuzzer first 1 'read -r word <fifo'
    fuzzer second 2 'echo word >fifo'
    scripts/fuzz --jobs 2 30 ;;
  Fuzz.FailsWithAFuzzer)
    project fuzz
    fuzzer first 1000 'echo found' 'exit 77'
    fuzzer second 2000
    expect 123 "==> first, 30 s, 2 committed inputs
found
==> second, 30 s, 2 committed inputs
stat::number_of_executed_units: 2000
all inputs of second reach (cov: edges, ft: edges, distinguished by their counts):
#9	DONE   cov: 20000 ft: 40000 corp: 2/9b
the committed ones reach:
#3	DONE   cov: 10000 ft: 12000 corp: 2/9b" scripts/fuzz --write 30
    expect_unwritten fuzz ;;
  Fuzz.RefusesATimeThatIsNotANumber)
    expect 2 "usage: fuzz [--write] [--jobs N] [SECONDS [FUZZER...]]" "$scripts/fuzz" scene
    expect 2 "usage: fuzz [--write] [--jobs N] [SECONDS [FUZZER...]]" "$scripts/fuzz" --jobs ;;
  *) echo "unknown outcome: $outcome" >&2; exit 2 ;;
esac
