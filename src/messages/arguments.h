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
    /// Documented, but not offered to somebody who is typing.
    bool hidden;
};

/// Every argument that the command line takes. The parser, the manual and the completion are held
/// against this table.
inline constexpr std::array<KnownArgument, 16> KNOWN_ARGUMENTS = {{
    {ARG_VER, ArgumentPlace::ALONE, false},
    {ARG_HELP, ArgumentPlace::ALONE, false},
    {ARG_GENERAL_TEST, ArgumentPlace::ALONE, true},
    {ARG_KUDOS, ArgumentPlace::ALONE, true},
    {ARG_IDENTIFY, ArgumentPlace::ALONE, true},
    {ARG_DATA_GEN, ArgumentPlace::ANYWHERE, true},
    {ARG_DURING_INSTALL, ArgumentPlace::ANYWHERE, true},
    {"F=", ArgumentPlace::ANYWHERE, false},
    {"Q=", ArgumentPlace::ANYWHERE, false},
    {"A=", ArgumentPlace::ANYWHERE, false},
    {"C=", ArgumentPlace::ANYWHERE, false},
    {"U=", ArgumentPlace::ANYWHERE, false},
    {"K=", ArgumentPlace::ANYWHERE, false},
    {"B=", ArgumentPlace::ANYWHERE, false},
    {"D=", ArgumentPlace::ANYWHERE, false},
    {"R=", ArgumentPlace::ANYWHERE, false},
}};
