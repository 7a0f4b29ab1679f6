#pragma once

/// Set to 0 before every request. Nobody in this program reads it any more.
extern unsigned char use_default_answer;

/// Runs the operator's requests: the one that the command line named first, then what is picked
/// from the menus. Returns when the repeat flag says so, with the code of its letter: that is the
/// exit status that scheduled jobs look for (110). A cancelled main menu ends the process.
int run_requests();
