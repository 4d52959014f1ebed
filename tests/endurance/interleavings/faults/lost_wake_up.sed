# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT

# The retry thread is started before it is asked to run, and may find that it is not to.
/^  handlerRunning = true;/d
s/^  retryThread->process = getpid\(\);/  handlerRunning = true;\n&/
