#include "tests/cli/RunZelto.h"

#include <gtest/gtest.h>

using zelto::test::RunZelto;

TEST(CommandLine, HelpExitsWithZeroAndNamesTheConventions) {
    const auto run = RunZelto({"--help"});
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_NE(run.output.find("Bands are numbered from 1"), std::string::npos);
    EXPECT_EQ(run.errors, "");
}

TEST(CommandLine, VersionIsTheProjects) {
    EXPECT_EQ(RunZelto({"--version"}).output, "zelto 1.0.0\n");
}

TEST(CommandLine, AnUnknownCommandIsWrongUsage) {
    EXPECT_EQ(RunZelto({"paint"}).exitStatus, 2);
}

TEST(CommandLine, NoCommandIsWrongUsage) {
    EXPECT_EQ(RunZelto({}).exitStatus, 2);
}
