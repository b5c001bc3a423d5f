// Aligned columns.
#include <terminal/Table.h>

#include <gtest/gtest.h>

#include <sstream>

using namespace quilletctl;

namespace {

std::string Printed(const Table& table, bool isTerminal = false, std::size_t width = 80,
                    bool colour = false) {
    std::ostringstream out;
    table.Print(Terminal{out, out, isTerminal, isTerminal, colour, colour, width});
    return out.str();
}

TEST(TableTest, Print_AlignsByColumnsOfTheScreen) {
    Table table({{"NAME"}, {"ID"}});
    table.AddRow({"東京", "1"});
    table.AddRow({"Gerät", "2"});
    table.AddRow({"e\xCC\x81", "3"});
    EXPECT_EQ(Printed(table), "NAME   ID\n"
                              "東京   1\n"
                              "Gerät  2\n"
                              "e\xCC\x81      3\n");
}

TEST(TableTest, Print_NoLineEndsWithBlanks) {
    Table table({{"A"}, {"LONG TITLE"}});
    table.AddRow({"x", ""});
    table.AddRow({"", "y"});
    table.AddRow({"short", "z"});
    EXPECT_EQ(Printed(table), "A      LONG TITLE\n"
                              "x\n"
                              "       y\n"
                              "short  z\n");
}

TEST(TableTest, Print_InANarrowTerminalTheWidestTextGivesWay) {
    Table table({{"NAME", Fit::MayShorten}, {"TEXT", Fit::MayShorten}, {"ID", Fit::Whole}});
    table.AddRow({"0123456789abcdef", "0123456789", "{0123456789}"});
    EXPECT_EQ(Printed(table, true, 36), "NAME        TEXT        ID\n"
                                        "01234…cdef  0123456789  {0123456789}\n");
    EXPECT_EQ(Printed(table, true, 10), "NAME      TEXT      ID\n"
                                        "0123…def  0123…789  {0123456789}\n")
        << "identifiers stay whole, and texts stay readable";
    EXPECT_EQ(Printed(table, false, 10), "NAME              TEXT        ID\n"
                                         "0123456789abcdef  0123456789  {0123456789}\n")
        << "a file is as wide as it likes";
}

TEST(TableTest, Print_InANarrowTerminalAColumnThatRepeatsAnotherGoesFirst) {
    Table table({{"NAME", Fit::MayShorten}, {"MODEL", Fit::MayShorten, "NAME"}, {"ID"}});
    table.AddRow({"Server Adapter", "Server Adapter", "{1}"});
    table.AddRow({"Server Adapter #2", "Server Adapter", "{2}"});
    EXPECT_EQ(Printed(table, true, 38), "NAME               MODEL           ID\n"
                                        "Server Adapter     Server Adapter  {1}\n"
                                        "Server Adapter #2  Server Adapter  {2}\n");
    EXPECT_EQ(Printed(table, true, 37), "NAME               ID\n"
                                        "Server Adapter     {1}\n"
                                        "Server Adapter #2  {2}\n");
    table.AddRow({"Left", "Server Adapter", "{3}"});
    EXPECT_EQ(Printed(table, true, 37), "NAME              MODEL           ID\n"
                                        "Server Adapter    Server Adapter  {1}\n"
                                        "Server A…pter #2  Server Adapter  {2}\n"
                                        "Left              Server Adapter  {3}\n")
        << "it says something of one row";
}

TEST(TableTest, Print_InANarrowTerminalIdentifiersLoseWhatAllBeginWith) {
    Table table({{"NAME", Fit::MayShorten}, {"ID"}});
    table.AddRow({"the left port", "{0000-0000-000A}"});
    table.AddRow({"the right port", "{0000-0000-001B}"});
    EXPECT_EQ(Printed(table, true, 32), "NAME            ID\n"
                                        "the left port   {0000-0000-000A}\n"
                                        "the right port  {0000-0000-001B}\n");
    EXPECT_EQ(Printed(table, true, 31), "NAME            ID\n"
                                        "the left port   …000A}\n"
                                        "the right port  …001B}\n");
    Table same({{"NAME", Fit::MayShorten}, {"ID"}});
    same.AddRow({"a long name of a port", "{0000-000A}"});
    same.AddRow({"another", "{0000-000A}"});
    EXPECT_EQ(Printed(same, true, 30), "NAME               ID\n"
                                       "a long n…f a port  {0000-000A}\n"
                                       "another            {0000-000A}\n")
        << "what is the same everywhere tells nothing apart";
}

TEST(TableTest, Print_TitlesAreBoldWhereColoursAreWanted) {
    Table table({{"A"}});
    table.AddRow({"x"});
    EXPECT_EQ(Printed(table, true, 80, true), "\x1b[1mA\x1b[0m\nx\n");
}

TEST(TableTest, AddRow_CellsCannotBreakTheTable) {
    Table table({{"A"}, {"B"}});
    table.AddRow({"a\nb", "c\x1B[2J"});
    table.AddRow({"only one"});
    EXPECT_EQ(Printed(table), "A         B\n"
                              "a\xEF\xBF\xBD"
                              "b       c\xEF\xBF\xBD[2J\n"
                              "only one\n");
}

TEST(TableTest, Print_InANarrowTerminalColumnsGoInTheirOrder) {
    Table table({{"NAME", Fit::MayShorten},
                 {"TEAM", Fit::Whole, {}, Stay::First},
                 {"MAC", Fit::Intact, {}, Stay::Third},
                 {"ID", Fit::Whole, {}, Stay::WhileAllFits}});
    table.AddRow({"0123456789 0123456789 0123456789", "Front", "02-00-01", "{1}"});
    const auto titles = [&](std::size_t width) {
        const std::string printed = Printed(table, true, width);
        return printed.substr(0, printed.find('\n'));
    };
    EXPECT_EQ(titles(54), "NAME                              TEAM   MAC       ID");
    EXPECT_EQ(titles(53), "NAME                              TEAM   MAC") << "a text would be cut";
    EXPECT_EQ(titles(41), "NAME                      TEAM   MAC");
    EXPECT_EQ(titles(40), "NAME                              TEAM") << "the name would be hard to read";
    EXPECT_EQ(titles(30), "NAME") << "and again";
    EXPECT_EQ(Printed(table, false, 10).substr(0, 53),
              "NAME                              TEAM   MAC       ID");
}

TEST(TableTest, Print_InANarrowTerminalShortTextsComeFirstAndThenColumnsGoBelow) {
    Table table({{"NAME", Fit::MayShorten},
                 {"SPEED"},
                 {"TEAM", Fit::Whole, {}, Stay::Below},
                 {"STATE", Fit::Whole, {}, Stay::Below}});
    const auto add = [&](const char* name, const char* team, const char* state, const char* below) {
        table.AddRow({name, Cell("10 Gbit/s").Briefly("10G"),
                      Cell(team).Below(*team == '\0' ? "" : std::string("in ") + team),
                      Cell(state).Below(below)});
    };
    add("0123456789 0123456789 0123456789", "Front", "enabled", "");
    add("Left", "Front\x1B[2J", "cable removed", "cable removed");
    add("Right", "", "enabled", "");
    EXPECT_EQ(Printed(table, true, 69).substr(0, 58),
              "NAME                              SPEED      TEAM       ST");
    EXPECT_EQ(Printed(table, true, 68).substr(0, 58),
              "NAME                              SPEED  TEAM       STATE\n");
    EXPECT_EQ(Printed(table, true, 57),
              "NAME                      SPEED  TEAM       STATE\n"
              "0123456789 0… 0123456789  10G    Front      enabled\n"
              "Left                      10G    Front\xEF\xBF\xBD[2J  cable removed\n"
              "Right                     10G               enabled\n");
    EXPECT_EQ(Printed(table, true, 40), "NAME                              SPEED\n"
                                        "0123456789 0123456789 0123456789  10G\n"
                                        "  in Front\n"
                                        "Left                              10G\n"
                                        "  in Front\xEF\xBF\xBD[2J, cable removed\n"
                                        "Right                             10G\n");
    EXPECT_NE(Printed(table).find("10 Gbit/s  Front      enabled\n"), std::string::npos)
        << "a file is as wide as it likes";
}

TEST(TableTest, Print_ACellOfSeveralTexts) {
    Table table({{"TEAM"}, {"MEMBERS"}});
    table.AddRow({"Front", Cell(std::vector<std::string>{"left", "right"})});
    table.AddRow({"Back", Cell(std::vector<std::string>())});
    EXPECT_EQ(Printed(table, true), "TEAM   MEMBERS\nFront  left\n       right\nBack\n");
    EXPECT_EQ(Printed(table), "TEAM   MEMBERS\nFront  left, right\nBack\n") << "one line for programs";
}

TEST(TableTest, Print_TonesColourTheTextAlone) {
    Table table({{"LINK"}, {"X"}});
    table.AddRow({Cell("up", Tone::Good), "1"});
    EXPECT_EQ(Printed(table, true, 80, true), "\x1b[1mLINK  X\x1b[0m\n\x1b[32mup\x1b[0m    1\n");
    EXPECT_EQ(Printed(table, true), "LINK  X\nup    1\n");
}

} // namespace
