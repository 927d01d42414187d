#include "commands/codepage_convert.h"

#include "byte_input.h"
#include "code_page.h"
#include "failure.h"
#include "output_file.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <memory>
#include <optional>

/// `genutil codepage convert`: a file from one code page into another, where nothing is lost
/// without a word.
namespace generalutilities::cli {
namespace {

struct ConvertOptions {
    std::string input = "-";
    std::string output;
    std::uint32_t from = 0;
    std::uint32_t to = 65001;
    bool replace = false;
    bool force = false;
};

class Conversion {
  public:
    Conversion(Console& errors, const ConvertOptions& options)
        : console(errors),
          settings(options),
          name(InputName(options.input)),
          from(OpenNamedCodePage("--from", options.from)),
          to(OpenNamedCodePage("--to", options.to)) {}

    std::string Run() {
        const std::string bytes = ReadInput(settings.input);
        if (const std::size_t offset = from->FindUndefinedBytes(bytes);
            offset != CodePageConverter::NotFound) {
            Tell(bytes, offset,
                 "no character of code page " + std::to_string(settings.from) + " begins here");
        }
        std::u16string text(from->MeasureUnits(bytes), u'\0');
        from->ToUnits(bytes, text.data());
        // A byte order mark tells of the encoding and is no part of the text.
        const std::size_t mark = !text.empty() && text.front() == 0xFEFF ? 1 : 0;
        const auto content = std::u16string_view(text).substr(mark);
        if (const std::size_t index = to->FindForeignUnit(content);
            index != CodePageConverter::NotFound) {
            Tell(bytes, from->OffsetOfUnit(bytes, index + mark),
                 CodePointAt(content, index) + " is not in code page " +
                     std::to_string(settings.to));
        }
        std::string result(to->MeasureBytes(content), '\0');
        to->ToBytes(content, result.data());
        return result;
    }

  private:
    void Tell(const std::string& bytes, std::size_t offset, const std::string& what) {
        char byte[32];
        std::snprintf(byte, sizeof byte,
                      ", byte 0x%02X: ", static_cast<unsigned char>(bytes[offset]));
        const std::string place = name + ", byte offset " + std::to_string(offset) + byte + what;
        if (!settings.replace) {
            throw Failure(place + "; --replace puts a mark in its place");
        }
        console.Warn(place + "; replaced, as is all that follows of this kind");
    }

    Console& console;
    const ConvertOptions& settings;
    std::string name;
    std::unique_ptr<CodePageConverter> from;
    std::unique_ptr<CodePageConverter> to;
};

ExitCode RunConvert(CommandContext& context, const ConvertOptions& options) {
    std::optional<OutputFile> file;
    Conversion conversion(context.console, options);
    if (!options.output.empty()) {
        file.emplace(options.output, options.force);
    }
    const std::string result = conversion.Run();
    if (!file) {
        context.console.Write(result);
        return ExitCode::Done;
    }
    std::ofstream stream(file->Path(), std::ios::binary);
    stream.write(result.data(), static_cast<std::streamsize>(result.size()));
    stream.close();
    if (!stream) {
        throw Failure("writing " + options.output + ": " + std::strerror(errno));
    }
    file->Commit();
    return ExitCode::Done;
}

}  // namespace

void AddCodePageConvertCommand(CLI::App& codePage, CommandContext& context) {
    auto options = std::make_shared<ConvertOptions>();
    CLI::App* convert =
        codePage.add_subcommand("convert", "A file from one code page into another");
    convert
        ->add_option("FILE", options->input,
                     "The file to convert; without one, or for -, standard input")
        ->type_name("");
    convert->add_option("--from", options->from, "The code page of the input")
        ->type_name("N")
        ->required();
    convert->add_option("--to", options->to, "The code page of the result")
        ->type_name("N")
        ->capture_default_str();
    convert->add_option("--output,-o", options->output, "The result's file; else standard output")
        ->type_name("FILE");
    convert->add_flag("--replace", options->replace,
                      "Put U+FFFD, or a question mark, where a character is missing");
    convert->add_flag("--force", options->force, "Replace a file of that name");
    convert->footer(
        "A byte order mark at the start is no part of the text, and none is written.\nExample:\n"
        "  genutil codepage convert --from 1251 old.txt -o new.txt");
    context.Runs(convert, [&context, options] { return RunConvert(context, *options); });
}

}  // namespace generalutilities::cli
