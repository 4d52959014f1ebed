# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT
#
# Splits a Markdown document into its code blocks. Block N becomes the files N.body, N.language, N.line (where it begins) and
# N.directive, in the folder `into`. A directive is a comment <!-- test: WHAT --> that stands before the block.

function value_of(text) {
  sub(/^ *<!-- test: */, "", text)
  sub(/ *-->.*$/, "", text)
  return text
}

function put(suffix, text) {
  file = sprintf("%s/%03d.%s", into, count, suffix)
  printf "%s", text >file
  close(file)
}

in_block && /^ *```+ *$/ {
  in_block = 0
  put("body", body)
  next
}

in_block {
  line = $0
  if (substr(line, 1, indent) ~ /^ *$/) line = substr(line, indent + 1)
  body = body line "\n"
  next
}

/^ *```/ {
  in_block = 1
  count++
  indent = match($0, /`/) - 1
  language = $0
  sub(/^ *```+ */, "", language)
  body = ""
  put("language", language)
  put("line", FNR)
  put("directive", directive)
  directive = ""
  next
}

/^ *<!-- test: / {
  directive = value_of($0)
  next
}

# Text between a directive and a block separates them.
/[^ ]/ {
  if (directive != "") {
    printf "%s:%d: a directive without a block: %s\n", FILENAME, FNR, directive >"/dev/stderr"
    failed = 1
    exit 1
  }
}

END {
  if (!failed && in_block) {
    printf "%s: a code block without an end\n", FILENAME >"/dev/stderr"
    exit 1
  }
}
