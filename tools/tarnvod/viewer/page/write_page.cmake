# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT

# cmake -D files=FILE,FILE... -D output=FILE -P write_page.cmake: embeds the files of the current folder in a C++ source file.
# page.html becomes "/". The texts are always quoted, so that CMake does not interpret their brackets and semicolons.
cmake_minimum_required(VERSION 3.25)

set(type_of_.html "text/html; charset=utf-8")
set(type_of_.css "text/css; charset=utf-8")
set(type_of_.js "text/javascript; charset=utf-8")

set(entries "")
string(REPLACE "," ";" files "${files}")
foreach(file IN LISTS files)
  file(READ "${file}" text)
  cmake_path(GET file EXTENSION LAST_ONLY extension)
  string(REGEX REPLACE "^page\\.html$" "" path "${file}")
  string(APPEND entries "    {\"/${path}\", \"${type_of_${extension}}\", R\"page-file(${text})page-file\"},\n")
endforeach()

file(WRITE "${output}" "// Generated from the files in tools/tarnvod/viewer/page/.

#include \"viewer/page_files.h\"

namespace tarn::command {

const std::vector<PageFile>& pageFiles() {
  static const std::vector<PageFile> files{
${entries}  };
  return files;
}

}  // namespace tarn::command
")
