#pragma once

namespace gatescope {

// Pieces of the bar lists: a table with a row for every bit or key and a bar of up to 400 pixels.

/// Noun, noun, first date, last date.
inline constexpr char BEGIN_3_COL_TABLE[] =
    "\n<table class=\"tight\" >\n<tr BORDER=0 >\n"
    "   <td colspan=8 height=2 class=\"bottom_line_pencil\" ></td></tr>\n</tr>\n"
    "<tr BORDER=0 >\n"
    "   <td width=2 class=\"bottom_line_pencil\" ></td>\n"
    "   <th>%s#</th>\n"
    "   <td width=2 class=\"bottom_line_pencil\" ></td>\n"
    "   <th>%s Description</th>\n"
    "   <td width=2 class=\"bottom_line_pencil\" ></td>\n"
    "   <th colspan=2 align=center width=400>Usage from: %s - %s</th>\n"
    "   <td width=2 class=\"bottom_line_pencil\" ></td>\n"
    "</tr>\n<tr BORDER=0 >\n"
    "   <td colspan=8 height=2 class=\"bottom_line_pencil\"></td></tr>\n</tr>\n\n";
/// Row title, number, description.
inline constexpr char START_LIST_ROW[] =
    "<tr BORDER=0 class=\"hot_row\" title=\"%s\" onmouseover=\"ShowTitle(this);\">\n"
    "   <td width=2 class=\"bottom_line_pencil\" ></td>\n"
    "   <td>%02d#</td>\n"
    "   <td width=2 class=\"bottom_line_pencil\" ></td>\n"
    "   <td>%s</td>\n"
    "   <td width=2 class=\"bottom_line_pencil\" ></td>\n";
/// Row title, bar width, count, rest width.
inline constexpr char LIST_MIXED_CONTENTS[] =
    "\n   <td colspan=2 class=\"cell_extra\" >\n"
    "    <table class=\"tight\" title=\"%s\" onmouseover=\"ShowTitle(this);\">\n"
    "     <tr BORDER=0 class=\"hot_row\" >\n"
    "       <td width=%d height=12 class=\"cell_failure\" ></td>\n"
    "\t   <td height=12 class=\"cell_extra\" >:%u</td>\n"
    "       <td width=%d class=\"cell_extra\" ></td>\n"
    "     </tr>\n    </table>\n   </td>\n";
/// Count. Without a title of its own, so that of the row is shown.
inline constexpr char LIST_MAX_CONTENTS[] =
    "\n   <td colspan=2 class=\"cell_extra\" >\n"
    "    <table class=\"tight\">\n"
    "     <tr BORDER=0 >\n"
    "      <td width=400 height=12 class=\"cell_failure\" ></td>\n"
    "      <td valign=bottom class=\"cell_extra\">:%u</td>\n"
    "\t  </tr>\n    </table>\n   </td>\n";
inline constexpr char CLOSE_LIST_CONTENTS[] =
    "   <td width=2 class=\"bottom_line_pencil\" ></td>\n</tr>\n"
    "<tr BORDER=0 >\n"
    "   <td colspan=8 height=1 class=\"bottom_line_pencil\"></td></tr>\n</tr>\n";
/// Text widget.
inline constexpr char CLOSE_TABLE_SHOW_TEXT[] =
    "<tr BORDER=0 >\n"
    "   <td colspan=8 height=1 class=\"bottom_line_pencil\"></td></tr>\n</tr>\n"
    "</table>\n<br>\n%s\n";
inline constexpr char NO_KEY_ROW[] =
    "<tr BORDER=0 >\n"
    "   <td width=2 class=\"bottom_line_pencil\" ></td>\n"
    "   <td >No matching data was available at the time</td>\n"
    "   <td width=2 class=\"bottom_line_pencil\" ></td>\n"
    "   <td align=center >-----------</td>\n"
    "   <td width=2 class=\"bottom_line_pencil\" ></td>\n"
    "   <td colspan=2 align=center >-----------</td>\n"
    "   <td width=2 class=\"bottom_line_pencil\" ></td>\n</tr>\n";

}  // namespace gatescope
