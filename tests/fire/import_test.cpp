// An import becomes visible as a whole, whatever happens to the process, the disk or the file while
// it runs: the project holds the outcome of the import before or the complete one of this import,
// and the segments are as they were.

#include "extview/rtf/rtf_import.h"
#include "platform/database/sqlite/connection.h"
#include "project.h"
#include "rounds.h"
#include "rtf/memory_file.h"

#include <chrono>
#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

namespace generalutilities::fire {
namespace {

HRESULT RunImport(const Project& project) {
    DatabaseFailure failure;
    const auto database = OpenDatabase(project.Path(), OpenMode::ReadWrite, failure);
    CRTFImport import;
    return database ? import.RunImport(*database, project.Reviewed(), 1036) : E_FAIL;
}

/// Runs `work` in a process of its own, which exits with its result; gives the process.
template <class Work>
pid_t Fork(Work&& work) {
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        _exit(work());
    }
    return child;
}

/// The exit code, or minus the signal that ended the process.
int Wait(pid_t child) {
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

class ImportUnderFire : public ::testing::Test {
  protected:
    /// In the long rounds the table is more than SQLite's cache holds, so that the file is written
    /// to before the commit.
    ImportUnderFire() : project(LongRounds() ? 40 : 12, LongRounds() ? 8000 : 300) {
        InstallFaultyVfs();
        before = project.Look();
        EXPECT_EQ(before.damage, "ok|\n");
        EXPECT_EQ(RunImport(project), S_OK);
        after = project.Look();
        EXPECT_EQ(after.pairs, before.pairs);
        EXPECT_NE(after.reimporting, before.reimporting);
        sqlite::SetBusyTimeout(200);
    }
    ~ImportUnderFire() override { sqlite::SetBusyTimeout(sqlite::DefaultBusyTimeout); }

    /// Expects the whole of the one or of the other; true for the new one.
    bool IsNew(const std::string& what) {
        const Contents now = project.Look();
        EXPECT_TRUE(now == before || now == after) << what << "\n"
                                                   << now.reimporting.substr(0, 2000) << now.damage;
        return now == after;
    }

    /// Lets each call in turn meet the fault. Gives the number of calls that could.
    long FailEach(FaultPlan plan, const std::string& what);

    Project project;
    Contents before;
    Contents after;
};

// Kill -9 in front of each call that touches the disk, and in the middle of each write.
TEST_F(ImportUnderFire, KilledAtAnyCall) {
    for (const Fault fault : {Fault::Die, Fault::DieHalfDone}) {
        long points = 0;
        long finished = 0;
        for (int code = DiedByPlan; code == DiedByPlan; ++points) {
            project.Restore();
            const FaultPlan plan = {fault == Fault::Die ? EveryCall : WriteCall, fault, points + 1};
            code = Wait(Fork([&] {
                Arm(plan);
                return RunImport(project) == S_OK ? 0 : 1;
            }));
            const std::string what = "killed at " + std::to_string(points + 1);
            const bool isNew = IsNew(what);
            finished += isNew ? 1 : 0;
            ASSERT_TRUE(code == DiedByPlan || (code == 0 && isNew)) << what << ": " << code;
            ASSERT_FALSE(HasFailure()) << what;
        }
        std::printf("killed at %ld points; the new table stood at %ld of them\n", points - 1,
                    finished - 1);
        EXPECT_GT(points, 10);
    }
}

long ImportUnderFire::FailEach(FaultPlan plan, const std::string& what) {
    for (plan.at = 1;; ++plan.at) {
        project.Restore();
        DatabaseFailure failure;
        CRTFImport import;
        Arm(plan);
        const auto database = OpenDatabase(project.Path(), OpenMode::ReadWrite, failure);
        const HRESULT status =
            database ? import.RunImport(*database, project.Reviewed(), 1036) : E_FAIL;
        const bool met = Disarm();
        const std::string where = what + " " + std::to_string(plan.at);
        EXPECT_TRUE(status == S_OK || status == E_FAIL) << where << ": " << status;
        // Success is told of the complete new table alone.
        const bool isNew = IsNew(where);
        EXPECT_TRUE(isNew || status != S_OK) << where;
        // The disk works again, and so does what stands on it, without opening anything anew.
        if (database) {
            EXPECT_EQ(import.RunImport(*database, project.Reviewed(), 1036), S_OK) << where;
            EXPECT_TRUE(IsNew(where)) << where;
        }
        if (!met || HasFailure()) {
            EXPECT_EQ(status, S_OK) << where;
            return plan.at - 1;
        }
    }
}

TEST_F(ImportUnderFire, EveryCallFails) {
    const struct {
        const char* what;
        unsigned calls;
        Fault fault;
        bool fromThenOn;
    } cases[] = {
        {"each call once", EveryCall, Fault::Error, false},
        {"every call from", EveryCall, Fault::Error, true},
        {"every open from", OpenCall, Fault::Error, true},
        {"every read from", ReadCall, Fault::Error, true},
        {"every write from", WriteCall, Fault::Error, true},
        {"every sync from", SyncCall, Fault::Error, true},
        {"every truncation from", TruncateCall, Fault::Error, true},
        {"every deletion from", DeleteCall, Fault::Error, true},
        {"disk full once", WriteCall, Fault::DiskFull, false},
        {"disk full from", WriteCall, Fault::DiskFull, true},
    };
    for (const auto& test : cases) {
        const long points = FailEach({test.calls, test.fault, 0, test.fromThenOn}, test.what);
        std::printf("%s: %ld points\n", test.what, points);
        ASSERT_FALSE(HasFailure()) << test.what;
    }
}

/// Reads the reviewed file from memory, where a read fails.
class ImportFromMemory : public CRTFImport {
  public:
    std::string content;
    int failingRead = 0;

    bool OpenFile() override {
        CRTFImport::OpenFile();
        auto file = testing::FileOf(content);
        file->failingRead = failingRead;
        return Open(std::move(file));
    }
};

TEST_F(ImportUnderFire, EveryReadOfTheReviewedFileFails) {
    ImportFromMemory import;
    import.content = ReadFile(project.Reviewed());
    import.content.insert(import.content.find("\\row"), 300'000, ' ');  // five pages at least
    DatabaseFailure failure;
    project.Restore();
    const auto database = OpenDatabase(project.Path(), OpenMode::ReadWrite, failure);
    ASSERT_TRUE(database);
    for (import.failingRead = 1;; ++import.failingRead) {
        const HRESULT status = import.RunImport(*database, project.Reviewed(), 1036);
        if (status == S_OK) {
            break;
        }
        EXPECT_EQ(status, E_FAIL) << import.failingRead;
        EXPECT_FALSE(IsNew("read of the file")) << import.failingRead;
    }
    EXPECT_TRUE(IsNew("the end"));
    EXPECT_GT(import.failingRead, 5);
    std::printf("reads of the reviewed file: %d points\n", import.failingRead - 1);
}

/// Holds a lock on a project from another process, until it is told to let go or a while is over.
class OtherProcess {
  public:
    OtherProcess(const std::u16string& path, const char* lock, int milliseconds) {
        int ready[2];
        EXPECT_EQ(pipe(ready), 0);
        child = Fork([&] {
            RawFile file(path);
            const bool locked = file.Rows(lock).empty();
            const bool told = write(ready[1], "", 1) == 1;
            usleep(static_cast<useconds_t>(milliseconds) * 1000);
            return locked && told ? 0 : 1;
        });
        char byte;
        EXPECT_EQ(read(ready[0], &byte, 1), 1);
        close(ready[0]);
        close(ready[1]);
    }
    void Kill() const { kill(child, SIGKILL); }
    ~OtherProcess() { Wait(child); }

  private:
    pid_t child;
};

TEST_F(ImportUnderFire, AnotherProcessHoldsTheProject) {
    for (const char* lock : {"BEGIN IMMEDIATE", "BEGIN EXCLUSIVE", "BEGIN; SELECT * FROM Files"}) {
        project.Restore();
        DatabaseFailure failure;
        const auto database = OpenDatabase(project.Path(), OpenMode::ReadWrite, failure);
        ASSERT_TRUE(database);
        CRTFImport import;
        {
            const OtherProcess other(project.Path(), lock, 60'000);
            const HRESULT status = import.RunImport(*database, project.Reviewed(), 1036);
            EXPECT_EQ(status, E_FAIL) << lock;
            EXPECT_EQ(database->LastFailure().kind, DatabaseFailure::Kind::Locked) << lock;
            other.Kill();
        }
        EXPECT_FALSE(IsNew(lock));
        EXPECT_EQ(import.RunImport(*database, project.Reviewed(), 1036), S_OK) << lock;
        EXPECT_TRUE(IsNew(lock));
    }
    sqlite::SetBusyTimeout(30'000);
    project.Restore();
    const OtherProcess brief(project.Path(), "BEGIN EXCLUSIVE", 300);
    EXPECT_EQ(RunImport(project), S_OK) << "waits for a lock that goes";
    EXPECT_TRUE(IsNew("waiting"));
}

TEST_F(ImportUnderFire, TwoProcessesImportAtOnce) {
    sqlite::SetBusyTimeout(30'000);
    const int rounds = LongRounds() ? 50 : 10;
    project.Restore();
    const auto work = [&] {
        for (int round = 0; round < rounds; ++round) {
            if (RunImport(project) != S_OK) {
                return 1;
            }
        }
        return 0;
    };
    const pid_t first = Fork(work);
    const pid_t second = Fork(work);
    for (int look = 0; look < rounds; ++look) {
        IsNew("while two import");
    }
    EXPECT_EQ(Wait(first), 0);
    EXPECT_EQ(Wait(second), 0);
    EXPECT_TRUE(IsNew("in the end"));
}

}  // namespace
}  // namespace generalutilities::fire
