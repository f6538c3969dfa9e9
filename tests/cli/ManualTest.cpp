#include "tests/cli/RunZelto.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <memory>

using zelto::test::ReadFile;
using zelto::test::RunZelto;
using zelto::test::TemporaryFolder;

namespace {

struct ClosePipe {
    void operator()(std::FILE* pipe) const { pclose(pipe); }
};

/// What a script prints in bash.
std::string RunBash(const std::string& script) {
    const TemporaryFolder folder;
    zelto::test::WriteFile(folder.File("script"), script);
    const std::string line = "bash " + folder.File("script") + " 2>&1";
    const std::unique_ptr<std::FILE, ClosePipe> pipe(popen(line.c_str(), "r"));
    std::string printed;
    std::array<char, 4096> part;
    while (pipe && std::fgets(part.data(), part.size(), pipe.get()) != nullptr)
        printed += part.data();
    return printed;
}

class Manual : public testing::Test {
  protected:
    static void SetUpTestSuite() {
        s_folder = std::make_unique<TemporaryFolder>();
        ASSERT_EQ(RunZelto({"--write-manual", s_folder->File("share")}).exitStatus, 0);
    }
    static void TearDownTestSuite() { s_folder.reset(); }
    static std::string Page(const std::string& name) {
        return ReadFile(s_folder->File("share/man/man1/" + name + ".1"));
    }
    /// What bash offers for the last word.
    static std::string Completed(const std::string& words, int count) {
        return RunBash("source " + s_folder->File("share/bash-completion/completions/zelto") +
                       "\nCOMP_WORDS=(" + words + ")\nCOMP_CWORD=" + std::to_string(count - 1) +
                       "\n_zelto\necho \"${COMPREPLY[*]}\"\n");
    }

    static std::unique_ptr<TemporaryFolder> s_folder;
};

std::unique_ptr<TemporaryFolder> Manual::s_folder;

} // namespace

TEST_F(Manual, HasAPageForTheProgramAndForEachCommand) {
    const std::string program = Page("zelto");
    EXPECT_EQ(program.find(".TH zelto 1 "), 0U) << program;
    EXPECT_NE(program.find(".SH EXIT STATUS\n"), std::string::npos);
    for (const char* command :
         {"aoi", "classes", "compose", "copy", "create", "file", "georef", "histogram", "info",
          "polygonize", "pyramids", "render", "reproject", "samples", "srs", "stats", "vector"}) {
        EXPECT_NE(program.find(".B " + std::string(command) + "\n"), std::string::npos) << command;
        EXPECT_NE(Page(std::string("zelto-") + command).find(".SH NAME\n"), std::string::npos);
    }
    const std::string areas = Page("zelto-aoi");
    EXPECT_NE(areas.find(".SS zelto aoi new\n"), std::string::npos);
    EXPECT_NE(areas.find(".B \\-\\-ellipse VALUE\nleft,top,right,bottom around an ellipse\n"),
              std::string::npos);
    EXPECT_NE(Page("zelto-copy").find(".B \\-\\-overwrite\n"), std::string::npos);
}

TEST_F(Manual, NoLineOfTextIsTakenForACommandOfTheFormatter) {
    for (const auto& entry :
         std::filesystem::directory_iterator(s_folder->File("share/man/man1"))) {
        const std::string page = ReadFile(entry.path());
        for (std::size_t at = page.find("\n."); at != std::string::npos;
             at = page.find("\n.", at + 1)) {
            const std::string name =
                page.substr(at + 2, page.find_first_of(" \n", at + 2) - at - 2);
            const std::string known = " SH SS TP B I RI PP nf fi TH ";
            EXPECT_NE(known.find(" " + name + " "), std::string::npos) << entry << name;
        }
    }
}

TEST_F(Manual, BashCompletesCommandsAndOptions) {
    EXPECT_EQ(Completed("zelto re", 2), "render reproject\n");
    EXPECT_EQ(Completed("zelto reproject ''", 3), "points box window grid\n");
    EXPECT_EQ(Completed("zelto copy a.tif --ov", 4), "--overwrite\n");
    EXPECT_EQ(Completed("zelto aoi new --e", 4), "--ellipse\n");
    EXPECT_EQ(Completed("zelto copy a", 3), "\n") << "files are the shell's own to find";
    EXPECT_EQ(RunBash("bash -n " + s_folder->File("share/bash-completion/completions/zelto")), "");
}

TEST_F(Manual, ZshHasTheCommandsWithWhatTheyDo) {
    const std::string script = ReadFile(s_folder->File("share/zsh/site-functions/_zelto"));
    EXPECT_EQ(script.find("#compdef zelto\n"), 0U);
    EXPECT_NE(script.find("'render:draw a raster as a picture'"), std::string::npos);
    EXPECT_NE(script.find("'--overwrite:replace a file"), std::string::npos);
}

TEST_F(Manual, AFolderThatCannotBeWrittenIsAFailure) {
    const auto run = RunZelto({"--write-manual", "/proc/no/such"});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_EQ(run.errors.find("zelto: /proc/no/such/"), 0U) << run.errors;
}
