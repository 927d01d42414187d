#include "commands/itd_command.h"

#include <generalutilities/itd/archive.h>
#include <generalutilities/itd/itd_file.h>

#include "byte_input.h"
#include "commands/itd_documents.h"
#include "failure.h"
#include "output_file.h"
#include "unicode.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <memory>
#include <optional>

/// `genutil itd`: bilingual documents. Here are the two commands that know of the file alone: the
/// text part taken out of its envelope, and put into one; `itd_documents` has those on segments.
namespace generalutilities::cli {
namespace {

struct FileOptions {
    std::string input;
    std::string output;
    std::string like;
    bool force = false;
};

void WriteBytes(const std::string& path, std::string_view bytes) {
    std::ofstream stream(path, std::ios::binary);
    stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    stream.close();
    if (!stream) {
        throw Failure("writing " + path + ": " + std::strerror(errno));
    }
}

/// Tells what a reader of the file would stumble over.
void WarnOfFaults(Console& console, const std::string& name, std::string_view bytes) {
    ItdTextHeader header;
    ItdDocument document;
    if (ParseTextHeader(bytes, header) != ItdParse::Complete) {
        console.Warn(name + ": " + ToUtf8(ItdErrorText(itderrWrongTextHeader)));
    } else if (ParseTextPart(bytes, header.statusEntryCount, document) != ItdParse::Complete) {
        console.Warn(name + ": " + ToUtf8(ItdErrorText(itderrTextParsing)));
    }
}

ExitCode RunUnpack(CommandContext& context, const FileOptions& options) {
    const std::u16string path = ArgumentToUtf16("FILE", options.input);
    std::optional<OutputFile> file;
    if (!options.output.empty()) {
        file.emplace(options.output, options.force);
    }
    ItdArchiveHeader header;
    const std::string bytes = ReadItdTextPart(path, header);
    if (TextPartTrailer(bytes) != header.trailerValue) {
        context.console.Warn(options.input +
                             ": the value behind the text part is not its check sum");
    }
    WarnOfFaults(context.console, options.input, bytes);
    if (!file) {
        context.console.Write(bytes);
        return ExitCode::Done;
    }
    WriteBytes(file->Path(), bytes);
    file->Commit();
    return ExitCode::Done;
}

/// What stands before the length of the text part.
std::string EnvelopeStart(const std::string& like) {
    if (like.empty()) {
        // A version text of three characters, no first part, and nine opaque bytes.
        return std::string("SDLXARCH\3\0\0\0", 12) + "1.0" + std::string(13, '\0');
    }
    ItdArchiveHeader header;
    ReadItdTextPart(ArgumentToUtf16("--like", like), header);
    return ReadInput(like).substr(0, header.lengthFieldOffset);
}

ExitCode RunPack(CommandContext& context, const FileOptions& options) {
    OutputFile file(options.output, options.force);
    if (file.IsDirect()) {
        throw UsageError(options.output + ": an ITD file cannot be written to a device or a pipe");
    }
    const std::string bytes = ReadInput(options.input);
    WarnOfFaults(context.console, InputName(options.input), bytes);
    const std::string start = EnvelopeStart(options.like);
    WriteBytes(file.Path(), start);
    const std::u16string path = ToUtf16(file.Path());
    const auto lengthField = static_cast<std::uint32_t>(start.size());
    std::uint32_t packed = 0;
    HRESULT status = PackTextPart(path, lengthField + 4, bytes, packed);
    if (Succeeded(status)) {
        status = CloseTextPart(path, lengthField, packed, TextPartTrailer(bytes));
    }
    if (Failed(status)) {
        throw Failure("writing " + options.output + ": " + std::strerror(errno), "genutil", status);
    }
    file.Commit();
    return ExitCode::Done;
}

void AddFileCommands(CLI::App& itd, CommandContext& context) {
    auto unpackOptions = std::make_shared<FileOptions>();
    CLI::App* unpack = itd.add_subcommand("unpack", "The text part of a document, as bytes");
    unpack->add_option("FILE", unpackOptions->input, "The ITD file")->type_name("")->required();
    unpack
        ->add_option("--output,-o", unpackOptions->output,
                     "Where the bytes go; else standard output")
        ->type_name("FILE");
    unpack->add_flag("--force", unpackOptions->force, "Replace a file of that name");
    context.Runs(unpack, [&context, unpackOptions] { return RunUnpack(context, *unpackOptions); });

    auto packOptions = std::make_shared<FileOptions>();
    CLI::App* pack = itd.add_subcommand("pack", "An ITD file around the bytes of a text part");
    pack->add_option("FILE", packOptions->input, "The bytes; - for standard input")
        ->type_name("")
        ->required();
    pack->add_option("--output,-o", packOptions->output, "The ITD file")
        ->type_name("FILE")
        ->required();
    pack->add_option("--like", packOptions->like,
                     "The ITD file whose envelope is taken; else one with nothing in it")
        ->type_name("FILE");
    pack->add_flag("--force", packOptions->force, "Replace a file of that name");
    pack->footer(
        "Example:\n  genutil itd unpack a.itd -o a.bin\n"
        "  genutil itd pack a.bin -o b.itd --like a.itd");
    context.Runs(pack, [&context, packOptions] { return RunPack(context, *packOptions); });
}

}  // namespace

void AddItdCommand(CLI::App& parent, CommandContext& context) {
    CLI::App* itd = parent.add_subcommand("itd", "Bilingual ITD documents");
    itd->require_subcommand(1);
    AddItdDocumentCommands(*itd, context);
    AddFileCommands(*itd, context);
}

}  // namespace generalutilities::cli
