// The RTF reader against the plain one of the tests. The first four bytes say at which calls the
// parse is stopped and how far the file is shifted against the border of a page; the rest is the
// file.

#include "rtf/recording_reader.h"
#include "rtf/reference_reader.h"

#include <cstdlib>
#include <cstring>
#include <iostream>

using generalutilities::RtfFilePager;
using generalutilities::testing::FileOf;
using generalutilities::testing::RecordingReader;
using generalutilities::testing::ReferenceReader;

namespace {

void Require(bool agreed, const char* what) {
    if (!agreed) {
        std::cerr << "the readers differ: " << what << "\n";
        std::abort();
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::uint32_t choices = 0;
    if (size < sizeof choices || size > 4096) {
        return 0;
    }
    std::memcpy(&choices, data, sizeof choices);
    std::string file(reinterpret_cast<const char*>(data) + sizeof choices, size - sizeof choices);
    if (choices % 16 == 1) {  // seldom, as it costs a hundred times the rest
        file.insert(0, RtfFilePager::PageSize - (choices >> 4) % (file.size() + 1), 'x');
    }
    RecordingReader reader;
    ReferenceReader reference;
    reference.file = file;
    for (const char* word : {"row", "cell"}) {
        reader.controlWords.Add(word);
        reference.controlWords.insert(word);
    }
    for (generalutilities::testing::Events* events : {&reader.events, &reference.events}) {
        events->goOn = [=] { return (choices >> events->all.size() % 32 & 1) == 0; };
    }
    Require(reader.Open(FileOf(file)), "opening");
    const bool prepared = reader.Prepare();
    Require(prepared == reference.Prepare(), "Prepare");
    Require(reader.fontCodePages == reference.fontCodePages, "fonts");
    Require(reader.styleNames == reference.styleNames, "styles");
    for (bool stopped = prepared; stopped;) {
        stopped = reader.Parse();
        Require(stopped == reference.Parse(), "Parse");
        Require(reader.Position() == static_cast<std::uint32_t>(reference.position), "position");
        Require(reader.events.all == reference.events.all, "events");
    }
    return 0;
}
