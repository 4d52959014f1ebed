# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT
#
# awk -v topic=TOPIC -v qos=N -v published=N -v keeps=0|1 -f account-for-frames.awk \
#     BROKER1.log BROKER2.log CONSUMER...
#
# Reports where each frame of one camera went: to the consumer, or where it was lost. BROKER1.log and BROKER2.log are what the broker
# logged before it was killed and after its return, each CONSUMER has the time, the topic and the frame of each message that the consumer
# received; `keeps` is 1 if the broker keeps a session for it. Fails when that does not add up, or is not what the quality of
# service promises.
#
# Frame k is the k-th that was published, counted from 0. It is known by its time stamp at the consumer, and at the broker by the
# number of the message, which counts from 1; with quality of service 0 there are no such numbers, but the order stands.

function complain(problem) {
  printf "%s: %s\n", topic, problem >"/dev/stderr"
  failed = 1
}

function note_at_broker(life) {
  if (qos > 0) at_broker[life, substr($9, 2) - 1] = 1
  else messages[life]++
}

function note_at_consumer(time, json) {
  match(json, /"timestamp":[0-9]+/)
  frame = substr(json, RSTART + 12, RLENGTH - 12) / frame_period
  if (frame in arrived) {
    twice++
    return
  }
  arrived[frame] = time
  if (!received++) start = time - frame * frame_period / 1e6
  else if (time - last_time > pause) pause = time - last_time
  last_time = time
  delay = time - start - frame * frame_period / 1e6
  if (delay > latest) latest = delay
}

# Connections keep the order: the first life of the broker had the first frames, the second one had the last.
function place_frames_without_numbers() {
  for (frame = 0; frame < messages[1]; frame++) at_broker[1, frame] = 1
  for (frame = published - messages[2]; frame < published; frame++) at_broker[2, frame] = 1
}

function place_of_loss(frame) {
  if ((2, frame) in at_broker) return "early"
  if ((1, frame) in at_broker) return "died"
  return "unsent"
}

BEGIN {
  frame_period = 100000  # microseconds, in the recordings of this repository
}

FNR == 1 { file++ }
file < 3 && $2 == "Received" && $3 == "PUBLISH" && $5 == topic { note_at_broker(file) }
file >= 3 && $2 == topic { note_at_consumer($1, $3) }

END {
  if (qos == 0) place_frames_without_numbers()
  for (frame = 0; frame < published; frame++) {
    if (frame in arrived) accounted++
    else lost[place_of_loss(frame)]++
  }
  unsent = lost["unsent"] + 0
  died = lost["died"] + 0
  early = lost["early"] + 0
  printf "%9d %9d %6d %6d %8d %6d %6d %7.1f %7.1f\n", published, received, twice, published - received, unsent, died, early,
    pause, latest

  if (published == 0) complain("nothing was published")
  if (accounted != received || published != received + unsent + died + early) complain("the figures do not add up")
  if (!((published - 1) in arrived)) complain("the last frame did not arrive")
  if (qos == 0 && unsent == 0) complain("nothing was lost while the broker was away")
  if (qos > 0 && unsent > 0) complain("a frame was not sent again")
  if (qos > 0 && keeps && early > 0) complain("the broker kept a session and lost frames all the same")
  exit failed
}
