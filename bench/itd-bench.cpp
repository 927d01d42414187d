// ITD documents: the text part unpacked and packed beside zlib, its records beside copying their
// bytes, a whole document read beside its bare unpacking, and a walk over its segments.

#include <generalutilities/automation/pointers.h>
#include <generalutilities/automation/zip_manager.h>
#include <generalutilities/interfaces/class_ids.h>
#include <generalutilities/interfaces/itd.h>
#include <generalutilities/itd/archive.h>
#include <generalutilities/itd/document_walk.h>

#include "check.h"
#include "ratios.h"
#include "sample_texts.h"

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <malloc.h>
#include <unistd.h>
#include <zlib.h>

namespace generalutilities::bench {
namespace {

using benchmark::RegisterBenchmark;
using benchmark::State;

constexpr std::uint32_t Offset = 29;  // of the compressed bytes, in an envelope with nothing in it

/// A document of segments with a code between two texts, some 100 units in all.
std::string TextPart(std::size_t segments) {
    const std::u16string words = TextMaker(1 << 20).Words({Ascii, Latin, Cyrillic});
    ItdDocument document;
    document.headerBytes = std::string(21, '\0') + "\5en-US\5fr-FR" + std::string(7, '\0');
    const auto count = static_cast<std::uint32_t>(segments);
    document.headerBytes.append(reinterpret_cast<const char*>(&count), 4);
    document.headerBytes += std::string(4, '\0') + std::string(8, '\xFF') + std::string(30, '\1');
    document.headerBytes += std::string(20 * segments, '\2');
    for (auto* column : {&document.sourceSegments, &document.targetSegments}) {
        for (std::uint32_t i = 0; i < count; ++i) {
            const auto text = std::u16string_view(words).substr(i * 97U % (words.size() - 100));
            const ItdRecord records[] = {
                {{i, 0x20, 0, i}, text.substr(0, 60)},
                {{i, 1, 0, i}, u"<b>"},
                {{i, 0x20, 0, i}, text.substr(60, 40)},
                {{i, i + 1 == count ? ItdLastOfSection : 2, 0, i}, u"</b>"},
            };
            column->push_back(document.Store(records));
        }
    }
    return SerializeTextPart(document);
}

/// A file with the part in it, in the folder for temporary files; it goes with the object.
class SampleFile {
  public:
    explicit SampleFile(const std::string& part) {
        Check(CoCreateInstance(CLSID_ZipManager, nullptr, CLSCTX_ALL, IID_IZipManager,
                               manager.OutVoid()) == S_OK,
              "no archive manager");
        std::ofstream(path) << "SDLXARCH" << std::string(Offset - 8, '\0');
        name = Bstr(std::u16string(path.begin(), path.end()));
        bytes = Bstr();
        *bytes.Out() = SysAllocStringByteLen(part.data(), static_cast<std::uint32_t>(part.size()));
        size = static_cast<std::uint32_t>(part.size());
        Write();
        Check(CloseTextPart(name.Text(), Offset - 4, packed, TextPartTrailer(part)) == S_OK,
              "a file cannot be written");
    }
    ~SampleFile() { std::remove(path.c_str()); }
    SampleFile(const SampleFile&) = delete;
    SampleFile& operator=(const SampleFile&) = delete;

    void Write() {
        Check(manager->WriteTextPart(name.Get(), Offset, size, bytes.Get(), &packed) == S_OK,
              "a text part cannot be packed");
    }
    Bstr Read() const {
        Bstr result;
        std::uint32_t length = 0;
        Check(manager->ReadTextPart(name.Get(), Offset, packed, &length, result.Out()) == S_OK &&
                  length == size,
              "a text part cannot be unpacked");
        return result;
    }

    std::string path = std::string(std::getenv("TMPDIR") ? std::getenv("TMPDIR") : "/tmp") +
                       "/itd-bench-" + std::to_string(getpid());
    ComPtr<IZipManager> manager;
    Bstr name;
    Bstr bytes;
    std::uint32_t size = 0;
    std::uint32_t packed = 0;
};

std::string_view View(const Bstr& bytes, std::uint32_t size) {
    return {reinterpret_cast<const char*>(bytes.Get()), size};
}

ItdDocument Parse(std::string_view bytes) {
    ItdTextHeader header;
    ItdDocument document;
    Check(ParseTextHeader(bytes, header) == ItdParse::Complete &&
              ParseTextPart(bytes, header.statusEntryCount, document) == ItdParse::Complete,
          "a text part cannot be read");
    return document;
}

/// The peer reads and writes the same bytes of the same file.
void RegisterPacking(SampleFile& file, const std::string& part, std::vector<Goal>& goals) {
    const std::string unpack = "unpack a text part of 10 MB", pack = "pack a text part of 10 MB";
    RegisterBenchmark((unpack + "/ours").c_str(), [&file](State& state) {
        for (auto _ : state) {
            benchmark::DoNotOptimize(file.Read());
        }
    });
    RegisterBenchmark((unpack + "/peer").c_str(), [&file](State& state) {
        for (auto _ : state) {
            std::string stream(file.packed, '\0');
            std::ifstream(file.path).seekg(Offset).read(stream.data(), file.packed);
            const std::unique_ptr<char[]> room(new char[file.size]);
            uLongf size = file.size;
            Check(uncompress(reinterpret_cast<Bytef*>(room.get()), &size,
                             reinterpret_cast<const Bytef*>(stream.data()), stream.size()) == Z_OK,
                  "zlib cannot unpack");
        }
    });
    RegisterBenchmark((pack + "/ours").c_str(), [&file](State& state) {
        for (auto _ : state) {
            file.Write();
        }
    });
    RegisterBenchmark((pack + "/peer").c_str(), [&file, &part](State& state) {
        for (auto _ : state) {
            uLongf size = compressBound(part.size());
            const std::unique_ptr<char[]> room(new char[size]);
            Check(compress2(reinterpret_cast<Bytef*>(room.get()), &size,
                            reinterpret_cast<const Bytef*>(part.data()), part.size(), 6) == Z_OK,
                  "zlib cannot pack");
            std::ofstream(file.path + ".zlib", std::ios::binary)
                .write(room.get(), static_cast<std::streamsize>(size));
            state.counters["size"] = static_cast<double>(size) / file.packed;
        }
        std::remove((file.path + ".zlib").c_str());
    });
    goals.push_back({.row = "8", .work = unpack, .peer = 2.5});
    goals.push_back({.row = "8", .work = pack, .peer = 2});
}

void RegisterReading(SampleFile& file, const std::string& part, std::vector<Goal>& goals) {
    const auto copy = [&part](State& state) {
        const std::unique_ptr<char[]> room(new char[part.size()]);
        for (auto _ : state) {
            std::memcpy(room.get(), part.data(), part.size());
            benchmark::ClobberMemory();
        }
    };
    const std::string views = "records of 10 MB, without owned strings";
    const std::string parse = "ParseTextPart, 10 MB";
    const std::string owned = "records of 10 MB, an owned string each";
    std::size_t count = 0;
    const ItdDocument parsed = Parse(part);
    for (const auto* column : {&parsed.sourceSegments, &parsed.targetSegments}) {
        for (const ItdSegment& segment : *column) {
            count += static_cast<std::size_t>(std::ranges::distance(segment));
        }
    }
    const std::string whole = "ITDReader opens a document of 10 MB";
    RegisterBenchmark((views + "/ours").c_str(), [&part](State& state) {
        const ItdDocument document = Parse(part);
        for (auto _ : state) {
            std::size_t units = 0;
            for (const auto* column : {&document.sourceSegments, &document.targetSegments}) {
                for (const ItdSegment& segment : *column) {
                    for (const ItdRecord& record : segment) {
                        units += record.text.size();
                    }
                }
            }
            benchmark::DoNotOptimize(units);
        }
    });
    RegisterBenchmark((parse + "/ours").c_str(), [&part](State& state) {
        for (auto _ : state) {
            benchmark::DoNotOptimize(Parse(part));
        }
    });
    RegisterBenchmark((owned + "/ours").c_str(), [&part, count](State& state) {
        for (auto _ : state) {
            const ItdDocument document = Parse(part);
            std::vector<std::u16string> texts;
            texts.reserve(count);
            for (const auto* column : {&document.sourceSegments, &document.targetSegments}) {
                for (const ItdSegment& segment : *column) {
                    for (const ItdRecord& record : segment) {
                        texts.emplace_back(record.text);
                    }
                }
            }
            benchmark::DoNotOptimize(texts.data());
        }
    });
    for (const std::string& work : {views, parse, owned}) {
        RegisterBenchmark((work + "/limit").c_str(), copy);
    }
    RegisterBenchmark((whole + "/ours").c_str(), [&file](State& state) {
        ComPtr<IITDReader> reader;
        Check(CoCreateInstance(CLSID_ITDReader, nullptr, CLSCTX_ALL, IID_IITDReader,
                               reader.OutVoid()) == S_OK,
              "no reader");
        for (auto _ : state) {
            Check(reader->OpenITDFile(file.name.Get()) == S_OK, "a document cannot be read");
        }
    });
    RegisterBenchmark((whole + "/limit").c_str(), [&file](State& state) {
        for (auto _ : state) {
            benchmark::DoNotOptimize(file.Read());
        }
    });
    goals.push_back({.row = "11", .work = views, .limit = 0.5});
    goals.push_back({.row = "", .work = parse});
    goals.push_back({.row = "11", .work = owned, .limit = 0.07});
    goals.push_back({.row = "", .work = whole, .limit = 1 / 1.5});
}

void RegisterWalk(std::size_t segments, std::vector<Goal>& goals) {
    const std::string work = "walk " + std::to_string(segments) + " segments, both columns";
    RegisterBenchmark((work + "/ours").c_str(), [segments](State& state) {
        ItdWalk walk;
        walk.Open(Parse(TextPart(segments)));
        for (auto _ : state) {
            for (walk.Restart(); walk.Next();) {
            }
        }
        state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(segments));
    });
    goals.push_back({.row = "", .work = work});
}

/// Memory in use, in parts of the text part's size, while its bytes and the document are both
/// there.
void TellMemory(const SampleFile& file) {
    const auto inUse = [] {
        const struct mallinfo2 info = mallinfo2();
        return info.uordblks + info.hblkhd;
    };
    const std::size_t before = inUse();
    const Bstr bytes = file.Read();
    const ItdDocument document = Parse(View(bytes, file.size));
    std::printf("\nReading took %.2f times the text part in memory, its bytes included.\n",
                static_cast<double>(inUse() - before) / file.size);
}

int Main(int argc, char** argv) {
    const std::string part = TextPart(16400);
    SampleFile file(part);
    std::printf("text part %.1f MB, packed %.1f MB\n", static_cast<double>(part.size()) / 1e6,
                file.packed / 1e6);
    std::vector<Goal> goals;
    RegisterPacking(file, part, goals);
    RegisterReading(file, part, goals);
    for (const std::size_t segments : {1000, 10000, 100000}) {
        RegisterWalk(segments, goals);
    }
    const int result = Run(argc, argv, goals);
    TellMemory(file);
    return result;
}

}  // namespace
}  // namespace generalutilities::bench

int main(int argc, char** argv) {
    return generalutilities::bench::Main(argc, argv);
}
