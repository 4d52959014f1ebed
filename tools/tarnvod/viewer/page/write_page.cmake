# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT

# cmake -D scripts=FILE,FILE... -D output=FILE -P write_page.cmake: puts page.css and the scripts into page.html, and all of it
# into C++. Reads no brackets and semicolons as a list's: texts are only ever quoted.
cmake_minimum_required(VERSION 3.25)

file(READ viewer/page/page.html page)
file(READ viewer/page/page.css style)
set(script "")
string(REPLACE "," ";" scripts "${scripts}")
foreach(file IN LISTS scripts)
  file(READ "${file}" part)
  string(APPEND script "${part}")
endforeach()
string(REPLACE "@STYLE@" "${style}" page "${page}")
string(REPLACE "@SCRIPT@" "${script}" page "${page}")

file(WRITE "${output}" "// Made of the files in tools/tarnvod/viewer/page/.

#include \"viewer/view_page.h\"

namespace tarn::command {

const std::string_view viewPage = R\"viewer-page(${page})viewer-page\";

}  // namespace tarn::command
")
