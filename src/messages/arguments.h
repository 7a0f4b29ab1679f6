#pragma once

#include <array>
#include <string_view>

#include "messages/command_line_texts.h"

/// Where an argument may stand.
enum class ArgumentPlace {
    /// Alone on the command line.
    ALONE,
    /// Among the others.
    ANYWHERE
};

struct KnownArgument {
    /// An option's word, or a parameter's letter with its '='.
    std::string_view spelling;
    ArgumentPlace place;
    /// For Gatewarden's installer: documented, but not offered to an operator who is typing.
    bool for_installer;
    /// What it does, in some words.
    std::string_view meaning;

    /// Whether a value belongs to it.
    [[nodiscard]] constexpr bool is_parameter() const { return spelling.ends_with('='); }
};

/// Every argument that the command line takes. The parser, the manual and the completion are held
/// against this table.
inline constexpr std::array<KnownArgument, 16> KNOWN_ARGUMENTS = {{
    {ARG_VER, ArgumentPlace::ALONE, false, "show the version"},
    {ARG_HELP, ArgumentPlace::ALONE, false, "show the usage"},
    {ARG_GENERAL_TEST, ArgumentPlace::ALONE, false, "try every kind of dialog"},
    {ARG_KUDOS, ArgumentPlace::ALONE, false, "show whom the program is for"},
    {ARG_IDENTIFY, ArgumentPlace::ALONE, true, "do nothing, successfully"},
    {ARG_DATA_GEN, ArgumentPlace::ANYWHERE, false, "add invented records to the logs"},
    {ARG_DURING_INSTALL, ArgumentPlace::ANYWHERE, true, "show what an installation needs"},
    {"F=", ArgumentPlace::ANYWHERE, false, "gatebits file"},
    {"Q=", ArgumentPlace::ANYWHERE, false, "query to run"},
    {"A=", ArgumentPlace::ANYWHERE, false, "action to run"},
    {"C=", ArgumentPlace::ANYWHERE, false, "command to count"},
    {"U=", ArgumentPlace::ANYWHERE, false, "user to count"},
    {"K=", ArgumentPlace::ANYWHERE, false, "command key to count"},
    {"B=", ArgumentPlace::ANYWHERE, false, "functionality bit to count"},
    {"D=", ArgumentPlace::ANYWHERE, false, "show the page in a browser"},
    {"R=", ArgumentPlace::ANYWHERE, false, "come back with the menu"},
}};
