#!/bin/bash
# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT
#
# check_accounts.sh ACCOUNTS FOLDER OUTCOME: checks one outcome of the accounts, on logs of a broker that are made in FOLDER.
set -euo pipefail
accounts=$1
folder=$2
topic=tarnvod/demo/gate/camera/1/frames

rm -rf "$folder"
mkdir -p "$folder"
cd "$folder"

# The messages of these numbers reached the broker; without quality of service all are number 0.
at_broker() {
  local log=$1 qos=$2 number
  shift 2
  for number in "$@"; do
    echo "1795262864: Received PUBLISH from $topic (d0, q$qos, r0, m$number, '$topic', ... (99 bytes))"
  done >"$log"
}

# These frames, counted from 0, reached the consumer.
at_consumer() {
  local frame
  for frame in "$@"; do
    echo "100.$frame $topic {\"camera\":1,\"timestamp\":$((frame * 100000)),\"detections\":[],\"events\":[]}"
  done >consumer
}

# account QOS PUBLISHED KEEPS: prints published, received, twice, lost, not sent, died, early.
account() {
  awk -v topic="$topic" -v qos="$1" -v published="$2" -v keeps="$3" -f "$accounts" broker-1 broker-2 consumer >row 2>problem &&
    awk '{ print $1, $2, $3, $4, $5, $6, $7 }' row
}

expect() {
  local actual
  actual=$(account "$1" "$2" "$3") || { cat problem >&2; exit 1; }
  [[ $actual == "$4" ]] || { echo "'$actual' in place of '$4'" >&2; exit 1; }
}

expect_problem() {
  if account "$1" "$2" "$3"; then
    echo "there was no problem" >&2
    exit 1
  fi
  grep --quiet "$4" problem || { cat problem >&2; exit 1; }
}

case $3 in
  FramesThatArrivedAreReceived)
    at_broker broker-1 1 1 2; at_broker broker-2 1 3 4; at_consumer 0 1 2 3
    expect 1 4 1 "4 4 0 0 0 0 0" ;;
  AFrameThatNoBrokerHadWasNotSent)
    at_broker broker-1 0 0; at_broker broker-2 0 0 0; at_consumer 0 2 3
    expect 0 4 0 "4 3 0 1 1 0 0" ;;
  AFrameOfTheFirstBrokerOnlyDiedWithIt)
    at_broker broker-1 2 1 2; at_broker broker-2 2 3 4; at_consumer 0 2 3
    expect 2 4 1 "4 3 0 1 0 1 0" ;;
  AFrameOfTheSecondBrokerCameTooEarly)
    at_broker broker-1 1 1 2; at_broker broker-2 1 2 3 4; at_consumer 0 3
    expect 1 4 0 "4 2 0 2 0 0 2" ;;
  AFrameThatCameTwiceCountsOnce)
    at_broker broker-1 1 1 2; at_broker broker-2 1 2 3 4; at_consumer 0 1 1 2 3
    expect 1 4 1 "4 4 1 0 0 0 0" ;;
  FramesWithoutNumbersAreToldByTheirOrder)
    at_broker broker-1 0 0 0 0; at_broker broker-2 0 0 0; at_consumer 0 1 6
    expect 0 7 0 "7 3 0 4 2 1 1" ;;
  AFrameThatNobodyPublishedDoesNotAddUp)
    at_broker broker-1 1 1 2; at_broker broker-2 1 3; at_consumer 0 1 2 7
    expect_problem 1 3 1 "do not add up" ;;
  AMissingLastFrameIsAMistake)
    at_broker broker-1 1 1 2; at_broker broker-2 1 3; at_consumer 0 1
    expect_problem 1 3 0 "the last frame did not arrive" ;;
  AFrameNotSentAgainBreaksThePromise)
    at_broker broker-1 1 1; at_broker broker-2 1 3; at_consumer 0 2
    expect_problem 1 3 0 "was not sent again" ;;
  AFrameLostFromASessionBreaksThePromise)
    at_broker broker-1 1 1; at_broker broker-2 1 2 3; at_consumer 0 2
    expect_problem 1 3 1 "kept a session" ;;
  *) echo "unknown outcome: $3" >&2; exit 2 ;;
esac
