#include "output_file.h"

#include "database/temporary_folder.h"
#include "failure.h"

#include <fstream>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace generalutilities::cli {
namespace {

void Fill(const OutputFile& file, const std::string& content) {
    std::ofstream(file.Path(), std::ios::binary) << content;
}

mode_t ModeOf(const std::string& path) {
    struct stat status {};
    stat(path.c_str(), &status);
    return status.st_mode & 07777;
}

TEST(OutputFile, AppearsWhenItIsComplete) {
    const TemporaryFolder folder;
    const mode_t before = umask(027);
    {
        OutputFile file(folder / "out", false);
        Fill(file, "content");
        EXPECT_FALSE(std::filesystem::exists(folder / "out"));
        file.Commit();
    }
    umask(before);
    EXPECT_EQ(ReadFile(folder / "out"), "content");
    EXPECT_EQ(ModeOf(folder / "out"), 0640U);
    EXPECT_EQ(folder.FileCount(), 1U);
}

TEST(OutputFile, LeavesNothingWithoutACommit) {
    const TemporaryFolder folder;
    folder.Write("out", "old");
    {
        OutputFile file(folder / "out", true);
        Fill(file, "half");
    }
    EXPECT_EQ(ReadFile(folder / "out"), "old");
    EXPECT_EQ(folder.FileCount(), 1U);
}

TEST(OutputFile, ReplacesWithTheModeOfTheOldFileAndThroughALink) {
    const TemporaryFolder folder;
    chmod(folder.Write("real", "old").c_str(), 0606);
    std::filesystem::create_symlink("real", folder / "link");
    OutputFile file(folder / "link", true);
    Fill(file, "new");
    file.Commit();
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "link"));
    EXPECT_EQ(ReadFile(folder / "real"), "new");
    EXPECT_EQ(ModeOf(folder / "real"), 0606U);
}

TEST(OutputFile, RefusesWhatItMustNotReplace) {
    const TemporaryFolder folder;
    folder.Write("old", "old");
    EXPECT_THROW(OutputFile(folder / "old", false), Failure);
    EXPECT_THROW(OutputFile(folder.Path().string(), true), Failure);
    EXPECT_THROW(OutputFile(folder / "no/such/folder", false), Failure);
    {
        OutputFile file(folder / "raced", false);
        folder.Write("raced", "another program's");
        EXPECT_THROW(file.Commit(), Failure);
    }
    EXPECT_EQ(ReadFile(folder / "raced"), "another program's");
    EXPECT_EQ(folder.FileCount(), 2U);
}

TEST(OutputFile, LeavesNothingWhenInterrupted) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        const TemporaryFolder folder;
        const pid_t child = fork();
        if (child == 0) {
            ::signal(signal, SIG_DFL);
            OutputFile file(folder / "out", false);
            Fill(file, "half");
            raise(signal);
            _exit(0);
        }
        int status = 0;
        waitpid(child, &status, 0);
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == signal);
        EXPECT_EQ(folder.FileCount(), 0U);
    }
}

}  // namespace
}  // namespace generalutilities::cli
