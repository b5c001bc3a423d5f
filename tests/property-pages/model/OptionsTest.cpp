// The program's command line.
#include "model/Options.h"

#include <gtest/gtest.h>

namespace quillet::tests {

namespace {

using namespace pages;

TEST(OptionsTest, WithoutAnythingItIsThisMachine) {
    const Options options = ReadOptions({});
    EXPECT_FALSE(options.simulate);
    EXPECT_EQ(options.host, "");
    EXPECT_FALSE(options.language.has_value());
}

TEST(OptionsTest, ASimulatedMachineIsBuiltInOrOfAFile) {
    EXPECT_TRUE(ReadOptions({"--simulate"}).simulate);
    EXPECT_EQ(ReadOptions({"--simulate"}).machineFile, "");
    EXPECT_EQ(ReadOptions({"--simulate", "lab.mof"}).machineFile, "lab.mof");
    const Options kept = ReadOptions({"--state", "lab.mof"});
    EXPECT_TRUE(kept.simulate) << "a state file is a simulated machine's";
    EXPECT_EQ(kept.stateFile, "lab.mof");
}

TEST(OptionsTest, AnotherMachineAndOneAdapter) {
    const Options options =
        ReadOptions({"--machine", "server12", "--adapter", "Zorel 10G", "--language", "DE"});
    EXPECT_EQ(options.host, "server12");
    EXPECT_EQ(options.adapter, "Zorel 10G");
    EXPECT_EQ(options.language, Language::German);
}

TEST(OptionsTest, WhatMakesNoSenseIsRefusedInWords) {
    for (const std::vector<std::string>& bad : {std::vector<std::string>{"--simulate", "--machine", "a"},
                                                {"--state", "f", "--machine", "a"},
                                                {"--language", "tlh"},
                                                {"--adapter"},
                                                {"--unheard-of"},
                                                {"word"}}) {
        EXPECT_THROW(ReadOptions(bad), std::runtime_error) << bad.front();
    }
}

TEST(OptionsTest, HelpNamesTheOptions) {
    EXPECT_NE(ReadOptions({"--help"}).help.find("--adapter NAME"), std::string::npos);
}

} // namespace

} // namespace quillet::tests
