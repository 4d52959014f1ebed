# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT
#
# Completion of the tarnvod command in bash.

# The numbers of the service's cameras.
_tarnvod_cameras() {
  local channels
  channels=$(tarnvod info 2>/dev/null | awk '$1 == "channels" && $2 ~ /^[0-9]+$/ { print $2 }')
  seq 1 "${channels:-0}"
}

_tarnvod() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
  local -A options=(
    [info]="--camera --file --json --help"
    [watch]="--camera --class --all-classes --roi --frames --seconds --json --help"
    [record]="--camera --output --seconds --frames --keep --max-size --ring --after --on --help"
    [inspect]="--json --help"
    [export]="--format --output --size --box --range --help"
    [cut]="--from --to --output --help"
    [merge]="--output --help"
    [compare]="--json --iou --tolerance --mota --idf1 --box --range --help"
    [repair]="--output --help"
    [render]="--output --frame --html --box --range --aspect --background --detector --help"
    [rehearse]="--days --until-failure --seed --day --schedule --speed --jobs --patience --callback-limit --stop-limit --check --must-print --must-not-print --output --json --help"
    [view]="--camera --class --all-classes --roi --recording --background --port --address --box --range --aspect --help"
    [publish]="--site --device --spool --spool-size --until-stored --every --changes --counts --camera --class --all-classes --roi --frames --seconds --metrics --host --port --cafile --cert --key --user --password-file --keepalive --help"
    [collect]="--site --name --metrics --host --port --cafile --cert --key --user --password-file --keepalive --help"
    [audit]="--json --late --from-first --live --for --site --host --port --cafile --cert --key --user --password-file --keepalive --help"
  )
  COMPREPLY=()
  if [[ $COMP_CWORD -eq 1 ]]; then
    mapfile -t COMPREPLY < <(compgen -W "info watch record inspect export cut merge repair compare render rehearse view publish collect audit --help --version" -- "$current")
    return
  fi
  case $previous in
    --box)
      mapfile -t COMPREPLY < <(compgen -W "corners size" -- "$current")
      return
      ;;
    --format)
      mapfile -t COMPREPLY < <(compgen -W "csv mot sqlite mcap" -- "$current")
      return
      ;;
    --on)
      mapfile -t COMPREPLY < <(compgen -W "class: deleted connected silence: signal" -- "$current")
      return
      ;;
    --camera)
      mapfile -t COMPREPLY < <(compgen -W "$(_tarnvod_cameras)" -- "$current")
      return
      ;;
    --file | --output | --spool | --cafile | --cert | --key | --password-file | --background | --detector | --recording | --schedule)
      compopt -o filenames
      mapfile -t COMPREPLY < <(compgen -f -- "$current")
      return
      ;;
    --class | --roi | --from | --to | --keep | --max-size | --ring | --after | --iou | --tolerance | --mota | --idf1 | --size | --frames | --seconds | --frame | --range | --aspect | --port | --address | --site | --device | --name | --spool-size | --every | --late | --for | --metrics | --host | --user | --keepalive | --days | --seed | --day | --speed | --jobs | --patience | --callback-limit | --stop-limit | --check | --must-print | --must-not-print)
      return
      ;;
  esac
  if [[ $current == -* ]]; then
    mapfile -t COMPREPLY < <(compgen -W "${options[${COMP_WORDS[1]}]:-}" -- "$current")
  elif [[ ${COMP_WORDS[1]} == @(watch|publish) ]]; then
    mapfile -t COMPREPLY < <(compgen -W "$(_tarnvod_cameras)" -- "$current")
  elif [[ " inspect export cut merge repair compare render view collect audit " == *" ${COMP_WORDS[1]} "* ]]; then
    compopt -o filenames
    mapfile -t COMPREPLY < <(compgen -f -- "$current")
  fi
}
complete -F _tarnvod tarnvod
