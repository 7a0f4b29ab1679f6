#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <ostream>
#include <string>
#include <vector>

#include "actions/requests.h"
#include "messages/arguments.h"
#include "messages/bit_names.h"
#include "messages/command_names.h"
#include "support/scratch_directory.h"

namespace gatescope {

// Compares the completions for zsh and fish with the program's tables. fish lists them itself. For
// zsh its function runs with stand-ins for the completion system; terminal.sh uses the real one.

namespace {

using Offers = std::vector<std::string>;

struct Shell {
    const char* name;
    /// Prints the completions of the script's last argument, one per line, with the meaning after a
    /// tab.
    const char* script;
};

constexpr char IN_ZSH[] = R"(
    compdef() { }
    compset() {
        [[ $PREFIX == ${~2}* ]] || return 1
        IPREFIX=${PREFIX[1,2]} PREFIX=${PREFIX[3,-1]}
    }
    _describe() {
        local row
        for row in "${(@P)5}"; do
            if [[ $row == "$PREFIX"* ]]; then print -r -- "$IPREFIX${row/:/	}"; fi
        done
    }
    _files() { print F=file }
    _users() { print U=user }
    source ')" ZSH_COMPLETION R"('
    words=(gatescope "$@") CURRENT=$#words PREFIX=${words[-1]} IPREFIX=
    _gatescope || true
)";
constexpr char IN_FISH[] =
    "source '" FISH_COMPLETION "'; complete --do-complete \"gatescope $argv\"";

constexpr std::array<Shell, 2> SHELLS = {{{"zsh", IN_ZSH}, {"fish", IN_FISH}}};

std::ostream& operator<<(std::ostream& stream, const Shell& shell) {
    return stream << shell.name;
}

std::string quoted_word(const std::string& text) {
    std::string word = "'";
    for (const char character : text)
        word += character == '\'' ? "'\\''" : std::string(1, character);
    return word + "'";
}

/// The lines that a shell command prints.
Offers lines_of_command(const std::string& command) {
    FILE* output = popen(command.c_str(), "r");
    Offers lines(1);
    for (int character = 0; (character = std::getc(output)) != EOF;) {
        if (character == '\n') {
            lines.emplace_back();
        } else {
            lines.back() += static_cast<char>(character);
        }
    }
    EXPECT_EQ(pclose(output), 0) << command;
    lines.pop_back();
    return lines;
}

class OtherShells : public testing::TestWithParam<Shell> {
  protected:
    void SetUp() override {
        const std::string search = std::string("command -v ") + GetParam().name + " >/dev/null";
        if (std::system(search.c_str()) != 0)
            GTEST_SKIP() << GetParam().name << " is not installed";
    }

    /// The completions of the last of the arguments.
    static Offers offered(const Offers& arguments) {
        const std::string shell = GetParam().name;
        // fish writes to its home directory even with --no-config.
        const ScratchDirectory home;
        std::string command = "HOME=" + quoted_word(home.path()) + " ";
        command += shell == "zsh" ? "zsh -f -c " : "fish --no-config -c ";
        command += quoted_word(GetParam().script);
        // zsh's first argument is the script's name.
        command += shell == "zsh" ? " zsh" : " --";
        for (const std::string& argument : arguments) command += " " + quoted_word(argument);
        Offers offers = lines_of_command(command);
        // If no completion begins with the word, fish offers those that contain it.
        std::erase_if(
            offers, [&](const std::string& offer) { return !offer.starts_with(arguments.back()); });
        return offers;
    }
};

std::string row(const std::string& word, std::string_view meaning) {
    return word + "\t" + std::string(meaning);
}

Offers requests(RequestKind kind, const std::string& letter) {
    Offers offers;
    for (const Request& request : all_requests()) {
        if (request.kind != kind) continue;
        offers.push_back(row(letter + std::to_string(request.number),
                             std::string_view(request.label).substr(6)));
    }
    return offers;
}

Offers with_all(Offers offers, const std::string& letter) {
    offers.push_back(row(letter + "*", "all of them"));
    return offers;
}

/// The rows of the arguments that begin with `start`: parameters, switches, options.
Offers arguments_with(const std::string& start) {
    Offers offers;
    for (const auto kind : {ArgumentKind::PARAMETER, ArgumentKind::SWITCH, ArgumentKind::OPTION}) {
        for (const KnownArgument& argument : KNOWN_ARGUMENTS) {
            if (argument.kind != kind || argument.for_installer) continue;
            if (!argument.spelling.starts_with(start)) continue;
            offers.push_back(row(std::string(argument.spelling), argument.meaning));
        }
    }
    return offers;
}

TEST_P(OtherShells, OfferEveryArgumentOfAnOperatorAtTheStart) {
    EXPECT_EQ(offered({""}), arguments_with(""));
    EXPECT_EQ(offered({"-"}), arguments_with("-"));
    EXPECT_EQ(arguments_with("-").size(), 5U);
}

TEST_P(OtherShells, OfferEveryQueryActionBitAndCommand) {
    EXPECT_EQ(offered({"Q="}), requests(RequestKind::QUERY, "Q="));
    EXPECT_EQ(offered({"D=n", "A="}), requests(RequestKind::ACTION, "A="));
    Offers bits;
    for (const char* name : GATEWARDEN_BITS_DESC) {
        bits.push_back(row("B=" + std::to_string(bits.size()), name));
    }
    EXPECT_EQ(offered({"B="}), with_all(bits, "B="));
    Offers commands;
    for (const auto name : TRIGGERABLE_COMMANDS) commands.push_back("C=" + std::string(name));
    EXPECT_EQ(offered({"C="}), with_all(commands, "C="));
}

TEST_P(OtherShells, OfferValuesOfOtherParameters) {
    EXPECT_EQ(offered({"D="}), (Offers{"D=y", "D=n"}));
    EXPECT_EQ(offered({"R=n"}), Offers{"R=n"});
    EXPECT_EQ(offered({"K="}), with_all({}, "K="));
    EXPECT_EQ(offered({"U="}).back(), row("U=*", "all of them"));
    EXPECT_GT(offered({"U="}).size(), 1U);
}

TEST_P(OtherShells, OfferOnlyArgumentsAllowedNext) {
    EXPECT_EQ(offered({"-ver", ""}), Offers{});
    EXPECT_EQ(offered({"-data_gen", "-"}), Offers{});
    EXPECT_EQ(offered({"Q=1", "-"}), arguments_with("-data_gen"));
    EXPECT_EQ(offered({"Q=1", "A"}), Offers{});
    EXPECT_EQ(offered({"A=1", "Q"}), Offers{});
    EXPECT_EQ(offered({"R=n", "D"}), Offers{});
    EXPECT_EQ(offered({"D=n", "R"}), arguments_with("R="));
    EXPECT_EQ(offered({"F=a b", "F"}), Offers{});
}

INSTANTIATE_TEST_SUITE_P(Completion, OtherShells, testing::ValuesIn(SHELLS),
                         [](const testing::TestParamInfo<Shell>& shell) {
                             return shell.param.name;
                         });

}  // namespace
}  // namespace gatescope
