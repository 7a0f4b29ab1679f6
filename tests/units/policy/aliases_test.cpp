#include "policy/aliases.h"

#include <gtest/gtest.h>

#include "units/on_stage.h"

namespace gatescope {
namespace {

const std::string BLOCK = "gatewarden;;;east;\n;;O;\n;;\n;;\n; ;\n; ;\n;;;\nD;0;\n";

std::string alias_line(const std::string& name, const std::string& value) {
    return "#!gatewarden_alias " + name + " " + value + "\n";
}

class AliasTables : public OnStage {
  protected:
    AliasTables() { ZUL_PREFER_GUI = 0; }

    Gatebits gatebits{std::string()};
    Aliases aliases;
    const std::array<std::string, MAX_ALIASES>& ALIAS_NAME = aliases.ALIAS_NAME;
    const std::array<std::string, MAX_ALIASES>& ALIAS = aliases.ALIAS;
    const std::uint8_t& number_of_aliases = aliases.number_of_aliases;

    void use(const std::string& text) { gatebits = Gatebits(text); }

    /// Builds the list, and expects no output.
    int built() {
        int count = -1;
        EXPECT_EQ(printed_by([&] { count = build_alias_list(gatebits, &aliases); }), "");
        return count;
    }

    /// The message about a fault in `line`, which follows one good alias.
    std::string fault(const std::string& line) {
        use(alias_line("good", "x") + line + "\n" + alias_line("later", "y") + BLOCK);
        const std::string said =
            printed_by([this] { EXPECT_EQ(build_alias_list(gatebits, &aliases), 1); });
        EXPECT_EQ(ALIAS_NAME[0], "good");
        EXPECT_EQ(ALIAS_NAME[1], "");
        return said;
    }

    /// Makes a change and returns its message.
    std::string message_of(const AliasChange& change) {
        const Gatebits before = gatebits;
        const Rewrite rewrite = add_change_remove_an_alias(gatebits, change);
        EXPECT_EQ(rewrite.result, ChangeResult::WRITTEN);
        if (rewrite.text) use(rewrite.text->text());
        return report_of_alias_change(before, change);
    }
};

TEST_F(AliasTables, ListAliasesInTheOrderOfTheFile) {
    use("# c\n  \t#!gatewarden_alias one first value\n" + BLOCK + alias_line("Two_2", "second"));
    EXPECT_EQ(built(), 2);
    EXPECT_EQ(ALIAS_NAME[0], "one");
    EXPECT_EQ(ALIAS[0], "first value");
    EXPECT_EQ(ALIAS_NAME[1], "Two_2");
    EXPECT_EQ(ALIAS[1], "second");
    EXPECT_EQ(ALIAS_NAME[2], "");
    EXPECT_EQ(number_of_aliases, 2);
}

TEST_F(AliasTables, IgnoreAMarkerWithoutABlank) {
    use("#!gatewarden_alias\n#!gatewarden_aliases x y\n" + alias_line("a", "b") + BLOCK);
    EXPECT_EQ(built(), 1);
    EXPECT_EQ(message_of({AliasMode::ADD, "n", "v"}), "");
    EXPECT_EQ(gatebits.text(), alias_line("a", "b") + alias_line("n", "v") +
                                   "#!gatewarden_alias\n#!gatewarden_aliases x y\n" + BLOCK);
}

TEST_F(AliasTables, SkipALineWithTheMarkerOnly) {
    use("#!gatewarden_alias  \t \n" + alias_line("a", "b") + BLOCK);
    EXPECT_EQ(built(), 1);
    EXPECT_EQ(ALIAS_NAME[0], "a");
}

TEST_F(AliasTables, RewriteANameWithoutAValueWithOneBlank) {
    use("#!gatewarden_alias empty\n" + BLOCK);
    EXPECT_EQ(built(), 1);
    EXPECT_EQ(ALIAS_NAME[0], "empty");
    EXPECT_EQ(ALIAS[0], "");
    message_of({AliasMode::ADD, "n", "v"});
    EXPECT_EQ(gatebits.text(), "#!gatewarden_alias empty \n" + alias_line("n", "v") + BLOCK);
}

TEST_F(AliasTables, CollapseBlanksInAValue) {
    use("#!gatewarden_alias \t a\t \tx  y\tz \t\n" + BLOCK);
    EXPECT_EQ(built(), 1);
    EXPECT_EQ(ALIAS[0], "x y z");
    message_of({AliasMode::ADD, "n", "v"});
    EXPECT_EQ(gatebits.text(), alias_line("a", "x y z") + alias_line("n", "v") + BLOCK);
}

TEST_F(AliasTables, AcceptNamesOfUpToFiftyCharacters) {
    const std::string fifty(50, 'n');
    use(alias_line(fifty, "x") + BLOCK);
    EXPECT_EQ(built(), 1);
    EXPECT_EQ(ALIAS_NAME[0], fifty);
    EXPECT_EQ(
        fault("#!gatewarden_alias " + fifty + "n x"),
        "ERROR: read alias name exceeds 50 characters: #!gatewarden_alias " + fifty + "n x\n\n");
}

TEST_F(AliasTables, EndAtANameWithAnInvalidCharacter) {
    EXPECT_EQ(fault("#!gatewarden_alias a-b x"),
              "ERROR: read invalid alias name (#!gatewarden_alias a-b x).  Alias names must be "
              "made up of [a..z,A..Z,_,0..9] only.\n");
}

TEST_F(AliasTables, EndAtADuplicateNameOfTheSameCase) {
    EXPECT_EQ(fault("#!gatewarden_alias good z"),
              "ERROR: read alias name (#!gatewarden_alias good z) is a duplicate of another alias "
              "name.  Alias names must be unique.\n\n");
    use(alias_line("good", "x") + alias_line("Good", "y") + BLOCK);
    EXPECT_EQ(built(), 2);
}

TEST_F(AliasTables, AcceptValuesOfUpTo256Characters) {
    const std::string value = std::string(128, 'v') + " " + std::string(127, 'w');
    use(alias_line("a", value) + BLOCK);
    EXPECT_EQ(built(), 1);
    EXPECT_EQ(ALIAS[0], value);
    EXPECT_EQ(
        fault("#!gatewarden_alias a " + value + "w"),
        "ERROR: read alias value exceeds 256 characters: #!gatewarden_alias a " + value + "w\n\n");
}

TEST_F(AliasTables, EndAtTheEightyFirstAlias) {
    std::string text;
    for (int i = 1; i <= 80; ++i) text += alias_line("a" + std::to_string(i), "v");
    use(text + "  #!gatewarden_alias last one\n" + BLOCK);
    EXPECT_EQ(printed_by([this] { EXPECT_EQ(build_alias_list(gatebits, &aliases), 80); }),
              "ERROR: read alias exceeds max of 80 alias definitions: #!gatewarden_alias last "
              "one\n\n");
    EXPECT_EQ(ALIAS_NAME[79], "a80");
}

TEST_F(AliasTables, KeepTheCountOfTheFileBeforeOneWithoutAliases) {
    use(alias_line("only", "x") + BLOCK);
    EXPECT_EQ(built(), 1);
    EXPECT_EQ(message_of({AliasMode::REMOVE, "only"}),
              "The alias definition for ( only ) was removed..\n\n");
    EXPECT_EQ(built(), 1);
    EXPECT_EQ(number_of_aliases, 1);
    EXPECT_EQ(ALIAS_NAME[0], "");
}

TEST_F(AliasTables, WriteNoEntriesWithoutAName) {
    use(alias_line("only", "x") + BLOCK);
    message_of({AliasMode::REMOVE, "only"});
    EXPECT_EQ(gatebits.text(), BLOCK);
    message_of({AliasMode::ADD, "new", "y"});
    EXPECT_EQ(gatebits.text(), alias_line("new", "y") + BLOCK);
}

TEST_F(AliasTables, MoveAliasesToTheTopAheadOfToolVariables) {
    use("#!gatescope_unix_browser=b\n# c\n\n" + BLOCK + alias_line("b", "2") +
        "key;\n  #!gatewarden_alias a  1\n# end\n");
    message_of({AliasMode::ADD, "c", "3"});
    EXPECT_EQ(gatebits.text(), alias_line("b", "2") + alias_line("a", "1") + alias_line("c", "3") +
                                   "#!gatescope_unix_browser=b\n# c\n" + BLOCK + "key;\n# end\n");
}

TEST_F(AliasTables, KeepOrderAndReferencesInAChange) {
    const std::string keys = "k;~b ;\nk;~bc;~b;\n";
    use(alias_line("a", "1") + alias_line("b", "2") + BLOCK + keys);
    EXPECT_EQ(message_of({AliasMode::CHANGE, "b", "new value"}), "");
    EXPECT_EQ(gatebits.text(), alias_line("a", "1") + alias_line("b", "new value") + BLOCK + keys);
}

TEST_F(AliasTables, ReportTheReferencesOfAChangeIfVerbose) {
    setenv("ZUL_GATESCOPE_VERBOSITY", "", 1);
    use(alias_line("b", "2") + BLOCK);
    EXPECT_EQ(message_of({AliasMode::CHANGE, "b", "3"}),
              "The alias definition for ~b was changed..\n\n");
    use(alias_line("b", "2") + BLOCK + "k;~b ;\n");
    EXPECT_EQ(message_of({AliasMode::CHANGE, "b", "3"}),
              "The alias definition for ~b was changed..\n\n1 current ~b alias reference was "
              "effected.");
    use(alias_line("b", "2") + BLOCK + "k;~b;~b ~b ;\n");
    EXPECT_EQ(message_of({AliasMode::CHANGE, "b", "3"}),
              "The alias definition for ~b was changed..\n\n3 current ~b alias references were "
              "effected.");
}

TEST_F(AliasTables, ReportReferencesLeftByARemoval) {
    const std::string start = "The alias definition for ( b ) was removed..\n\n";
    use(alias_line("b", "2") + BLOCK + "k;~b;\n");
    EXPECT_EQ(message_of({AliasMode::REMOVE, "b"}),
              start + "WARNING: 1 ~b alias reference still exists.");
    EXPECT_EQ(gatebits.text(), BLOCK + "k;~b;\n");
    use(alias_line("b", "2") + BLOCK + "k;~b;~b ;\n");
    EXPECT_EQ(message_of({AliasMode::REMOVE, "b"}),
              start + "WARNING: 2 ~b alias references still exist.");
    use(alias_line("b", "2") + BLOCK);
    EXPECT_EQ(message_of({AliasMode::REMOVE, "b"}), start);
}

TEST_F(AliasTables, ReportReferencesRemovedWithTheDefinition) {
    const std::string start = "The alias definition for ( b ) was removed..\n\n";
    use(alias_line("b", "2") + BLOCK);
    EXPECT_EQ(message_of({AliasMode::REMOVE_ALL, "b"}),
              start + "No ~b alias references were found to remove.");
    use(alias_line("b", "2") + BLOCK + "k;~b;\n");
    EXPECT_EQ(message_of({AliasMode::REMOVE_ALL, "b"}),
              start + "1 ~b alias reference was found and also removed.");
    EXPECT_EQ(gatebits.text(), BLOCK + "k;;\n");
    use(alias_line("b", "2") + BLOCK + "k;~b;~b ;\n");
    EXPECT_EQ(message_of({AliasMode::REMOVE_ALL, "b"}),
              start + "2 ~b alias references were found and also removed.");
}

TEST_F(AliasTables, KeepTheDefinitionIfOnlyReferencesAreRemoved) {
    use(alias_line("b", "2") + BLOCK);
    EXPECT_EQ(message_of({AliasMode::REMOVE_REFERENCES, "~b"}),
              "No ~b alias references were found to remove.");
    use(alias_line("b", "2") + BLOCK + "k;x ~b y;\n");
    EXPECT_EQ(message_of({AliasMode::REMOVE_REFERENCES, "~b"}),
              "1 ~b alias reference was found and removed.");
    EXPECT_EQ(gatebits.text(), alias_line("b", "2") + BLOCK + "k;x y;\n");
    use(alias_line("b", "2") + BLOCK + "k;~b ~b ;\n");
    EXPECT_EQ(message_of({AliasMode::REMOVE_REFERENCES, "~b"}),
              "2 ~b alias references were found and removed.");
    EXPECT_EQ(gatebits.text(), alias_line("b", "2") + BLOCK + "k;;\n");
}

TEST_F(AliasTables, RemoveReferencesThatEndInABlankOrASemicolon) {
    use(alias_line("b", "2") + BLOCK +
        "between;one ~b two;\n"
        "alone;~b;\n"
        "both;~b;x ~b ;\n"
        "two bare;~b;~b ;\n"
        "longer;~bc;~b_ ;~b\n"
        "glued;x~b;\n"
        "# comment ~b ;\n"
        "at the end ~b");
    EXPECT_EQ(message_of({AliasMode::REMOVE_REFERENCES, "~b"}),
              "7 ~b alias references were found and removed.");
    EXPECT_EQ(gatebits.text(), alias_line("b", "2") + BLOCK +
                                   "between;one two;\n"
                                   "alone;;\n"
                                   "both;;x ;\n"
                                   "two bare;;;\n"
                                   "longer;~bc;~b_ ;~b\n"
                                   "glued;x;\n"
                                   "# comment ~b ;\n"
                                   "at the end ~b\n");
}

TEST_F(AliasTables, LeaveALineOfOneReferenceBlank) {
    use(alias_line("b", "2") + BLOCK + "~b \nk;\n");
    EXPECT_EQ(message_of({AliasMode::REMOVE_REFERENCES, "~b"}),
              "1 ~b alias reference was found and removed.");
    EXPECT_EQ(gatebits.text(), alias_line("b", "2") + BLOCK + "\nk;\n");
}

TEST_F(AliasTables, KeepLinesAfterAFaultyOneInARewrite) {
    const std::string rest = "#!gatewarden_alias bad-name x\n" + alias_line("later", "y");
    use(alias_line("good", "x") + BLOCK + rest);
    EXPECT_EQ(message_of({AliasMode::ADD, "new", "z"}), "");
    EXPECT_EQ(gatebits.text(), alias_line("good", "x") + alias_line("new", "z") + BLOCK + rest);
}

TEST_F(AliasTables, ReturnTheDefinitionOfAName) {
    use(alias_line("a", "1") + alias_line("e", "") + BLOCK + "#!gatewarden_alias bad-name x\n" +
        alias_line("later", "y"));
    EXPECT_EQ(definition_of("a", gatebits), std::vector<std::string>{"1"});
    EXPECT_EQ(definition_of("e", gatebits), std::vector<std::string>{""});
    EXPECT_EQ(definition_of("none", gatebits), std::vector<std::string>());
    EXPECT_EQ(definition_of("later", gatebits), std::vector<std::string>());
    EXPECT_EQ(definition_of("", gatebits), std::vector<std::string>());
}

TEST_F(AliasTables, RefuseAnAliasMoreThanTheMaximum) {
    std::string text;
    for (int i = 1; i <= 79; ++i) text += alias_line("a" + std::to_string(i), "v");
    const AliasChange one_more = {AliasMode::ADD, "new", "v"};
    const Rewrite last = add_change_remove_an_alias(Gatebits(text + BLOCK), one_more);
    EXPECT_EQ(last.result, ChangeResult::WRITTEN);
    const Rewrite too_many =
        add_change_remove_an_alias(Gatebits(text + alias_line("a80", "v") + BLOCK), one_more);
    EXPECT_EQ(too_many.result, ChangeResult::CHANGED_MEANWHILE);
    EXPECT_FALSE(too_many.text);
}

}  // namespace
}  // namespace gatescope
