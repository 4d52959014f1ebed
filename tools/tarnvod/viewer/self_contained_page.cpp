// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "viewer/self_contained_page.h"

#include "base/base64.h"
#include "base/errors.h"
#include "drawing/svg.h"
#include "viewer/page_files.h"

#include <nlohmann/json.hpp>
#include <zlib.h>

#include <map>
#include <new>
#include <stdexcept>

namespace tarn::command {
namespace {

/**
 * Scripts and styles are those that are in the file, with this nonce; a name that became markup would have none. Whoever
 * writes the file writes all of it, so the nonce need not be a secret.
 */
constexpr std::string_view policy =
    "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; script-src 'nonce-page'; "
    "style-src 'nonce-page'; img-src data:; base-uri 'none'; form-action 'none'; "
    "require-trusted-types-for 'script'; trusted-types 'none'\">\n";

std::string compressed(std::string_view bytes) {
  uLongf size = compressBound(bytes.size());
  std::string result(size, '\0');
  const auto* const source = reinterpret_cast<const Bytef*>(bytes.data());
  if (compress2(reinterpret_cast<Bytef*>(result.data()), &size, source, bytes.size(), Z_BEST_COMPRESSION) != Z_OK) {
    throw std::bad_alloc();  // the only error with a buffer of this size
  }
  result.resize(size);
  return result;
}

std::string replaced(const std::string& text, std::string_view what, std::string_view replacement) {
  const std::size_t at = text.find(what);
  if (at == std::string::npos) {
    throw std::logic_error("the page has no " + std::string(what));
  }
  return text.substr(0, at).append(replacement).append(text, at + what.size());
}

/** A module without a place of its own finds others by their names alone. */
std::string importingByName(std::string_view module) {
  constexpr std::string_view relative = "from './";
  std::string text(module);
  for (std::size_t at = text.find(relative); at != std::string::npos; at = text.find(relative, at)) {
    text.replace(at, relative.size(), "from '");
  }
  return text;
}

std::string fileNamed(std::string_view path) {
  for (const PageFile& file : pageFiles()) {
    if (file.path == path) {
      return std::string(file.text);
    }
  }
  throw std::logic_error("the page has no file " + std::string(path));
}

/** All modules, and the statement that runs the first. */
std::string scripts() {
  constexpr std::string_view ending = ".js";
  std::map<std::string, std::string> modules;
  for (const PageFile& file : pageFiles()) {
    const std::string_view path = file.path;
    if (path.size() > ending.size() && path.substr(path.size() - ending.size()) == ending) {
      modules[std::string(path.substr(1))] = "data:text/javascript;base64," + base64(importingByName(file.text));
    }
  }
  return "<script type=\"importmap\" nonce=\"page\">" + nlohmann::json{{"imports", modules}}.dump() +
         "</script>\n<script type=\"module\" nonce=\"page\">import 'main.js';</script>";
}

}  // namespace

void SelfContainedPage::add(std::string_view path, std::string_view json) {
  answers_ +=
      svg::element("script", {{"type", "application/zlib"}, {"id", std::string(path)}}, base64(compressed(json)));
  answers_ += '\n';
  if (answers_.size() > mostBytes) {
    throw Failure("the page would be larger than " + std::to_string(mostBytes >> 20U) +
                  " MiB; 'tarnvod cut' makes a recording of the part that matters");
  }
}

std::string SelfContainedPage::html(std::string_view title) const {
  std::string page = fileNamed("/");
  page = replaced(page, "<title>tarnvod view</title>",
                  std::string(policy) + svg::element("title", {}, svg::escaped(title)));
  page = replaced(page, "<script type=\"module\" src=\"main.js\"></script>", scripts());
  page = replaced(page, "<link rel=\"stylesheet\" href=\"page.css\">",
                  svg::element("style", {{"nonce", "page"}}, fileNamed("/page.css")));
  return replaced(page, "</body>", answers_ + "</body>");
}

}  // namespace tarn::command
