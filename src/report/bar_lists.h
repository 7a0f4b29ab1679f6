#pragma once

// The pages of the bar queries: a row with a horizontal bar for every functionality bit or command
// key. They read the counters of the last get_query_data and write to DISPLAY_STREAM.

/// All 24 bits, used or not.
void Display_Graph__hbars_Bits();

/// The keys from 1 to the highest one counted, each described by its line of the gatebits file.
/// Gripes when that file cannot be read.
void Display_Graph__hbars_Keys();
