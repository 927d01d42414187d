// Reading an RTF table back, beside a copy of its bytes and, where it is installed, unrtf.

#include "extview/rtf/rtf_import.h"
#include "extview/rtf/twb_import.h"
#include "ratios.h"
#include "sample_project.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <sys/resource.h>

namespace generalutilities::bench {
namespace {

/// A table of about so many bytes, as the export writes it.
struct Table {
    explicit Table(std::size_t size) : project(size / BytesPerRow, Duplicates::Some) {
        ExportTable(project, 0, "table.rtf");
        bytes = FileContent(path()).size();
    }
    std::filesystem::path path() const { return project.Path("table.rtf"); }

    static constexpr std::size_t BytesPerRow = 1900;
    SampleProject project;
    std::size_t bytes = 0;
};

template <class Reader>
std::size_t ReadRows(const std::filesystem::path& path) {
    Reader reader;
    reader.SetSource(path.u16string(), TargetLanguage);
    std::u16string id, source, target, comments;
    std::int32_t status = -1;
    std::size_t rows = 0;
    if (reader.OpenFile() && reader.ReadHeader()) {
        while (reader.NextRow(id, source, target, comments, status)) {
            ++rows;
        }
    }
    return rows;
}

std::size_t ReadTable(const Table& table) {
    return ReadRows<CRTFImport>(table.path());
}

/// Reading a bilingual document beside reading a table of as many bytes.
std::vector<Goal> RegisterBilingual(const Table& table) {
    static SampleProject project(table.bytes / 462, Duplicates::Some);
    ExportTable<CExternalViewTWBExport>(project, 0, "document.rtf");
    const std::filesystem::path path = project.Path("document.rtf");
    const double size = static_cast<double>(FileContent(path).size());
    const std::string work = "read a bilingual document of 20 MB";
    benchmark::RegisterBenchmark((work + "/ours").c_str(), [=](benchmark::State& state) {
        for ([[maybe_unused]] auto _ : state) {
            benchmark::DoNotOptimize(ReadRows<CTWBImport>(path));
        }
        state.SetItemsProcessed(
            static_cast<std::int64_t>(size * static_cast<double>(state.iterations())));
    });
    benchmark::RegisterBenchmark((work + "/peer").c_str(), [&table](benchmark::State& state) {
        for ([[maybe_unused]] auto _ : state) {
            benchmark::DoNotOptimize(ReadTable(table));
        }
    });
    // The two files differ in size by a little; the time per byte of ours is the goal.
    return {{.row = "10c", .work = work, .peer = static_cast<double>(table.bytes) / size / 1.3}};
}

/// Processor seconds, of this process or of its children that have ended.
double Seconds(int who) {
    rusage usage = {};
    getrusage(who, &usage);
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

double MedianSeconds(int who, int repetitions, const std::function<void()>& work) {
    std::vector<double> times;
    for (int i = 0; i < repetitions; ++i) {
        const double start = Seconds(who);
        work();
        times.push_back(Seconds(who) - start);
    }
    std::nth_element(times.begin(), times.begin() + repetitions / 2, times.end());
    return times[static_cast<std::size_t>(repetitions / 2)];
}

/// A whole command has a process of its own, which the benchmarks' clock does not see.
void CompareWithUnrtf(const Table& table, const char* size) {
    const std::string command =
        "unrtf --text --quiet '" + table.path().string() + "' >/dev/null 2>&1";
    if (std::system("command -v unrtf >/dev/null") != 0) {
        return;
    }
    const double peer =
        MedianSeconds(RUSAGE_CHILDREN, 3, [&] { (void)!std::system(command.c_str()); });
    constexpr int ReadingsAtOnce = 20;
    const double ours = MedianSeconds(RUSAGE_SELF, 9, [&] {
        for (int i = 0; i < ReadingsAtOnce; ++i) {
            benchmark::DoNotOptimize(ReadTable(table));
        }
    });
    std::printf("unrtf on the table of %s: %.3g times our time (goal 50)\n", size,
                peer * ReadingsAtOnce / ours);
}

int Main(int argc, char** argv) {
    const Table small(1000000);
    const Table large(20000000);
    std::vector<Goal> goals;
    for (const auto& [size, table] : {std::pair("1 MB", &small), std::pair("20 MB", &large)}) {
        const std::string work = std::string("read an RTF table of ") + size;
        const Table* const file = table;
        benchmark::RegisterBenchmark((work + "/ours").c_str(), [file](benchmark::State& state) {
            for ([[maybe_unused]] auto _ : state) {
                benchmark::DoNotOptimize(ReadTable(*file));
            }
            state.SetItemsProcessed(static_cast<std::int64_t>(file->bytes * state.iterations()));
        });
        benchmark::RegisterBenchmark((work + "/limit").c_str(), [file](benchmark::State& state) {
            const std::string content = FileContent(file->path());
            std::string copy(content.size(), '\0');
            for ([[maybe_unused]] auto _ : state) {
                std::memcpy(copy.data(), content.data(), content.size());
                benchmark::ClobberMemory();
            }
        });
        goals.push_back({.row = "10a", .work = work, .rate = 800});
    }
    const std::vector<Goal> bilingual = RegisterBilingual(large);
    goals.insert(goals.end(), bilingual.begin(), bilingual.end());
    const int result = Run(argc, argv, goals);
    CompareWithUnrtf(small, "1 MB");
    CompareWithUnrtf(large, "20 MB");
    return result;
}

}  // namespace
}  // namespace generalutilities::bench

int main(int argc, char** argv) {
    return generalutilities::bench::Main(argc, argv);
}
