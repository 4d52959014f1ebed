#!/bin/bash
# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT
#
# check_option_check.sh SCRIPTS FOLDER OUTCOME: checks one outcome of the check of manual and completion (tests/tools/tarnvod), in FOLDER,
# with a command that has two subcommands.
set -euo pipefail
# shellcheck source=tests/scripts/support.sh
source "$(dirname "$0")/support.sh" "$@"

cat >./command <<'COMMAND'
#!/bin/bash
[[ $1 == --help ]] || echo '  -h,--help                   Print this help message and exit'
case $1 in
  --help) printf '%s\n' '  -h,--help   Print this' '  --version   Print that' '' Subcommands: '  one   Do one' '  two   Do two' ;;
  one) printf '%s\n' '  --first N   As --last of another' '  --json      As JSON' ;;
  two) printf '%s\n' '  --second Needs: --json' '  --json' ;;
esac
COMMAND
chmod +x command
cat >manual <<'MANUAL'
.SH SYNOPSIS
\fBtarnvod one\fR [\fB\-\-first\fR \fIN\fR] [\fB\-\-json\fR]
\fBtarnvod two\fR [\fB\-\-second\fR]
        [\fB\-\-json\fR]
\fBtarnvod\fR \fB\-\-version\fR
\fBtarnvod\fR [\fISUBCOMMAND\fR] \fB\-\-help\fR
.SH DESCRIPTION
With
.B \-\-first
or
.BR \-\-second ,
or as JSON
.RB ( \-\-json ).
.SH EXAMPLES
.B tarnvod two \-\-second
MANUAL
cat >completion <<'COMPLETION'
_tarnvod() {
  local -A options=([one]="--first --json --help" [two]="--second --json --help")
  local words="one two --help --version"
  [[ $COMP_CWORD -eq 1 ]] || words=${options[${COMP_WORDS[1]}]}
  mapfile -t COMPREPLY < <(compgen -W "$words" -- "${COMP_WORDS[COMP_CWORD]}")
}
complete -F _tarnvod tarnvod
COMPLETION

# change FILE EXPRESSION: in place, as sed does it; it has to change something.
change() {
  cp "$1" before
  sed -i "$2" "$1"
  ! cmp --silent before "$1" || { echo "$2 changes nothing" >&2; exit 1; }
}

# expect_check STATUS OUTPUT
expect_check() {
  expect "$1" "$2" "$scripts/../tests/tools/tarnvod/check_options.sh" ./command manual completion
}

readonly differ='differ from those of --help (<: missing, >: unknown):'

case $outcome in
  CheckOptions.AcceptsWhatAgrees)
    expect_check 0 "" ;;
  CheckOptions.ReportsAnOptionThatTheSynopsisLacks)
    change manual '4d'
    expect_check 1 "manual: the options of 'two' $differ
< --json" ;;
  CheckOptions.ReportsAnOptionThatTheDescriptionLacks)
    change manual 's/^\.BR .*second ,/more/'
    expect_check 1 'manual: does not describe --second' ;;
  CheckOptions.ReportsAnOptionThatTheCompletionLacks)
    change completion 's/--first //'
    expect_check 1 "completion: the options of 'one' $differ
< --first" ;;
  CheckOptions.ReportsAnOptionThatTheCommandDoesNotHave)
    change command 's/--second/--zeroth/'
    expect_check 1 "completion: the options of 'two' $differ
< --zeroth
> --second
manual: does not describe --zeroth
manual: the options of 'two' $differ
< --zeroth
> --second" ;;
  CheckOptions.ReportsASubcommandThatIsMissing)
    change manual '/tarnvod one/d'
    change completion 's/"one two/"two/'
    expect_check 1 "completion: subcommands and options $differ
< one
manual: subcommands $differ
< one
manual: the options of 'one' $differ
< --first
< --json" ;;
  CheckOptions.ReportsAnOptionWithoutSubcommandThatIsMissing)
    change manual '/--version\|\\-\\-version/d'
    change completion 's/ --version//'
    expect_check 1 "completion: subcommands and options $differ
< --version
manual: options $differ
< --version" ;;
  *) echo "unknown outcome: $outcome" >&2; exit 2 ;;
esac
