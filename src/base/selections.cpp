#include "base/selections.h"

bool file_selected = false;
bool query_selected = false;
bool action_selected = false;
bool command_selected = false;
bool user_selected = false;
bool key_selected = false;
bool bit_selected = false;
bool display_selected = false;
bool repeat_selected = false;
bool data_gen_selected = false;
int selected_query = 0;
int selected_action = 0;
std::string selected_command;
std::string selected_user;
long selected_key = 0;
int selected_bit = 0;
std::string selected_display = "y";
std::string selected_repeat = "y";
bool IS_DURING_INSTALL = false;
