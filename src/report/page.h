#pragma once

#include <string>

// The frame of a report page. The page is self-contained: its style and script stand in it, and
// it needs no pictures. Everything goes to DISPLAY_STREAM; whether it got there, Make_Graph finds
// out when it closes the page.

/// The comment at the top of every page. Made for the first page of the process, kept for the
/// others.
extern std::string CALCULATED_STAMP;

/// Opens the page: stamp, script, style sheet, form and heading (graph_title).
void print_block_to_file__header();

/// Closes what the header opened, and says where help is to be had.
void print_block_to_file__tail();
