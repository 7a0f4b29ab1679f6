#pragma once

#include <string>

/// Shows the finished page at `path`, whose file name is `name`: in the browser, or, without
/// `display`, as a line on standard output that names it. Whatever goes wrong
/// with the browser is told to the operator; the page stays.
void display_page(const std::string& path, const std::string& name, bool display);
