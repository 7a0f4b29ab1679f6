#pragma once

namespace gatescope {

// Pieces of the time graphs: a row of narrow columns made of nested tables, one a day, whose cell
// heights are the bars. A bar and its filler are 100 pixels together.

/// Classes of a bar, of its filler, and of the block under a day's column.
inline constexpr char CELL_EXTRA[] = "cell_extra";
inline constexpr char CELL_SUCCESS[] = "cell_success";
inline constexpr char CELL_FAILURE[] = "cell_failure";
inline constexpr char BLOCK_CLASS_POPULATED[] = "time_block_populated";
inline constexpr char BLOCK_CLASS_UNPOPULATED[] = "time_block_unpopulated";

/// Day cell.
inline constexpr char CELL_START[] =
    "\n   <!-- cell %03d -->\n   <td>\n      <table class=\"tight\" >\n"
    "         <tr><td class=\"bottom_line_pencil\" width=6 height=2></td></tr>\n";
/// Class, height in pixels, title.
inline constexpr char CELL_PART[] =
    "         <tr class=\"hot_row\" ><td class=\"%s\" height=%d width=6 title=\"%s\" "
    "onmouseover=\"ShowTitle(this);\" ></td></tr>\n";
inline constexpr char ROW_PENCIL[] =
    "         <tr class=\"hot_row\" ><td class=\"bottom_line_pencil\" width=6 height=2 "
    "></td></tr>\n";
/// Its class has no style rule, so the row has no colour.
inline constexpr char ROW_SPACE[] =
    "         <tr class=\"hot_row\" ><td class=\"bottom_space_pencil\" width=6 height=1 "
    "></td></tr>\n";
/// Day label, block class.
inline constexpr char ROW_TIME[] =
    "         <tr class=\"hot_row\" ><th class=\"time_block\" width=6 height=8 title=\"%s\" "
    "onmouseover=\"ShowTitle(this);\" ><center><table class=\"time_block\" CELLSPACING=1 >"
    "<tr><td class=\"%s\" ></td></tr></table></center></th></tr>\n";
/// Day cell.
inline constexpr char EMPTY_TIME_LINE[] =
    "\n         <tr class=\"hot_row\" ><td height=100 width=6 "
    "title=\"No data was available %d day(s) ago...\" onmouseover=\"ShowTitle(this);\" "
    "class=\"bottom_line_space\" ></td></tr>\n"
    "         <tr><td width=6 height=2 class=\"bottom_line_pencil\" ></td></tr>\n";
inline constexpr char END_TABLE_AND_TD[] = "      </table>\n   </td>\n";
inline constexpr char ROW_TICK[] = "\n   <td class=\"bottom_line_pencil\" width=2 ></td>\n";

/// Opening of a graph with one bar a day. Scale.
inline constexpr char TOP_TIME_GRAPH[] =
    "\n<table class=\"tight\" >\n<tr>\n"
    "   <td valign=top >\n      <table class=\"tight\" >\n"
    "         <tr><td class=\"bottom_line_pencil\" height=2 ></td></tr>\n"
    "         <tr><td class=\"cell_text_top\" height=49 align=right > %u </td></tr>\n"
    "         <tr><td class=\"bottom_line_pencil\" height=2 ></td></tr>\n"
    "         <tr><td class=\"cell_text_bottom\" height=49 align=right > 0 </td></tr>\n"
    "         <tr><td class=\"bottom_line_pencil\" height=2 ></td></tr>\n"
    "      </table>\n   </td>\n"
    "   <td class=\"bottom_line_pencil\" height=100 width=2 ></td>\n";

/// Opening of the graph with one bar above and one below a middle line. Scale of the upper half,
/// scale of the lower half.
inline constexpr char TOP_TWIST_GRAPH[] =
    "\n<table class=\"tight\" >\n<tr>\n"
    "   <td valign=top >\n      <table class=\"tight\" >\n"
    "         <tr><td colspan=2 class=\"top_right_line_pencil\" height=2 ></td></tr>\n"
    "         <tr><td colspan=2 class=\"cell_text_top\" height=49 align=right > %u </td></tr>\n"
    "         <tr><td colspan=2 class=\"bottom_line_pencil\" height=2 ></td></tr>\n"
    "         <tr><td rowspan=3 align=right >0</td><td width=6 height=49 ></td></tr>\n"
    "         <tr><td class=\"bottom_line_pencil\" width=6 height=2 ></td></tr>\n"
    "         <tr><td width=6 height=49 ></td></tr>\n"
    "         <tr><td colspan=2 class=\"bottom_line_pencil\" height=2 ></td></tr>\n"
    "         <tr><td colspan=2 class=\"cell_text_bottom\" height=49 align=right > %u </td></tr>\n"
    "         <tr><td colspan=2 class=\"bottom_line_pencil\" height=2 ></td></tr>\n"
    "      </table>\n   </td>\n"
    "   <td class=\"bottom_line_pencil\" height=100 width=2 ></td>\n";

/// Closing of every time graph. Label of the oldest day, label of today, text widget. The style
/// attributes contain class names, so they have no effect.
inline constexpr char BOTTOM_TIME_GRAPH[] =
    "\n</tr>\n<tr>\n"
    "   <td style=\"cell_left\" ></td>\n"
    "   <td style=\"cell_top_pencil\" ></td>\n"
    "   <td style=\"cell_top_pencil\" colspan=12 align=center >115</td>\n"
    "   <td style=\"cell_top_pencil\" colspan=12 align=center >105</td>\n"
    "   <td style=\"cell_top_pencil\" colspan=12 align=center >95</td>\n"
    "   <td style=\"cell_top_pencil\" colspan=12 align=center >85</td>\n"
    "   <td style=\"cell_top_pencil\" colspan=12 align=center >75</td>\n"
    "   <td style=\"cell_top_pencil\" colspan=12 align=center >65</td>\n"
    "   <td style=\"cell_top_pencil\" colspan=12 align=center >55</td>\n"
    "   <td style=\"cell_top_pencil\" colspan=12 align=center >45</td>\n"
    "   <td style=\"cell_top_pencil\" colspan=12 align=center >35</td>\n"
    "   <td style=\"cell_top_pencil\" colspan=12 align=center >25</td>\n"
    "   <td style=\"cell_top_pencil\" colspan=12 align=center >15</td>\n"
    "   <td style=\"cell_top_pencil\" colspan=11 align=center >05</td>\n"
    "</tr>\n<tr>\n"
    "   <td style=\"cell_left\" ></td>\n"
    "   <td style=\"top_left_line_pencil\" ></td>\n"
    "   <td style=\"top_left_line_pencil\" colspan=72 align=left >^--%s</td>\n"
    "   <td style=\"top_left_line_pencil\" colspan=71 align=right >%s--^</td>\n"
    "</tr>\n</table>\n<br>\n%s\n";

}  // namespace gatescope
