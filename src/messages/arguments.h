#pragma once

#include <array>
#include <string_view>

#include "messages/command_line_texts.h"

namespace gatescope {

enum class ArgumentKind {
    /// A word that must be the only argument.
    OPTION,
    /// A word that may accompany other arguments.
    SWITCH,
    /// A letter with a value.
    PARAMETER
};

struct KnownArgument {
    /// An option's word, or a parameter's letter with its '='.
    std::string_view spelling;
    ArgumentKind kind;
    /// For Gatewarden's installer: documented, but not offered by completion.
    bool for_installer;
    /// A short description.
    std::string_view meaning;
};

/// All arguments of the command line. The parser, the manual and the completion are checked against
/// this table.
inline constexpr std::array<KnownArgument, 16> KNOWN_ARGUMENTS = {{
    {ARG_VER, ArgumentKind::OPTION, false, "show the version"},
    {ARG_HELP, ArgumentKind::OPTION, false, "show the usage"},
    {ARG_GENERAL_TEST, ArgumentKind::OPTION, false, "try every kind of dialog"},
    {ARG_KUDOS, ArgumentKind::OPTION, false, "show whom the program is for"},
    {ARG_IDENTIFY, ArgumentKind::OPTION, true, "do nothing, successfully"},
    {ARG_DATA_GEN, ArgumentKind::SWITCH, false, "add invented records to the logs"},
    {ARG_DURING_INSTALL, ArgumentKind::SWITCH, true, "show what an installation needs"},
    {"F=", ArgumentKind::PARAMETER, false, "gatebits file"},
    {"Q=", ArgumentKind::PARAMETER, false, "query to run"},
    {"A=", ArgumentKind::PARAMETER, false, "action to run"},
    {"C=", ArgumentKind::PARAMETER, false, "command to count"},
    {"U=", ArgumentKind::PARAMETER, false, "user to count"},
    {"K=", ArgumentKind::PARAMETER, false, "command key to count"},
    {"B=", ArgumentKind::PARAMETER, false, "functionality bit to count"},
    {"D=", ArgumentKind::PARAMETER, false, "show the page in a browser"},
    {"R=", ArgumentKind::PARAMETER, false, "come back with the menu"},
}};

}  // namespace gatescope
