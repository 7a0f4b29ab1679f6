#pragma once

// The pages of the time queries: 120 narrow columns, one a day, the oldest on the left. They read
// the counters of the last get_query_data, set cell_max to their own scale and write to
// DISPLAY_STREAM.

/// Allowed commands above a middle line, denied ones below it.
void Display_Graph__twist();

/// One bar a day: how often `what` ("bits") was used.
void Display_Graph__success_only(const char* what);

/// One bar a day: how often `what` ("keys") denied a command.
void Display_Graph__denied_only(const char* what);
