#include "commands/draw_command.h"

#include <generalutilities/automation/device_context.h>
#include <generalutilities/code_pages.h>
#include <generalutilities/interfaces/class_ids.h>
#include <generalutilities/interfaces/draw_text.h>

#include "color.h"
#include "component_client.h"
#include "failure.h"
#include "output_file.h"
#include "text_sources.h"
#include "unicode.h"

#include <algorithm>
#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>

/// `genutil draw`: text as a picture or a page, or the room that it takes.
namespace generalutilities::cli {
namespace {

constexpr std::int32_t MaxPictureSide = 32767;
constexpr std::int32_t MaxPageSide = 1'000'000;

struct DrawOptions {
    TextSources sources;
    std::string output;
    std::string format;  ///< empty: the ending of the file's name decides
    std::string family;
    std::int32_t size = 16;
    bool bold = false, italic = false, underline = false, strikeOut = false, monospace = false;
    std::optional<std::int32_t> width;
    std::optional<std::int32_t> height;
    std::int32_t margin = 8;
    std::string color = "#000000";
    std::string background;
    bool transparent = false;
    bool measure = false;
    bool force = false;
    bool asJson = false;
};

struct Size {
    std::int32_t width;
    std::int32_t height;
};

/// A device context that ends with this object: a picture, or a page in the file `path`.
class Context {
  public:
    Context(const std::string& format, const std::string& path, Size size) {
        const std::u16string file = ArgumentToUtf16("--output", path);
        SetErrorInfo(0, nullptr);
        Check(format == "pdf"
                  ? CreatePdfDeviceContext(file.c_str(), size.width, size.height, &handle)
              : format == "svg"
                  ? CreateSvgDeviceContext(file.c_str(), size.width, size.height, &handle)
                  : CreateImageDeviceContext(size.width, size.height, &handle),
              "drawing");
    }
    ~Context() { CloseDeviceContext(handle); }
    Context(const Context&) = delete;
    Context& operator=(const Context&) = delete;

    std::int32_t Handle() const { return handle; }

    /// Brings what was drawn into the file.
    void Write(const std::string& format, const std::string& path) {
        SetErrorInfo(0, nullptr);
        Check(format == "png"
                  ? WriteDeviceContextPng(handle, ArgumentToUtf16("--output", path).c_str())
                  : CloseDeviceContext(std::exchange(handle, 0)),
              "writing " + path);
    }

  private:
    std::int32_t handle = 0;
};

LOGFONT FontOf(const DrawOptions& options) {
    LOGFONT font{};
    font.lfHeight = -options.size;
    font.lfWeight = options.bold ? 700 : 400;
    font.lfItalic = options.italic ? 1 : 0;
    font.lfUnderline = options.underline ? 1 : 0;
    font.lfStrikeOut = options.strikeOut ? 1 : 0;
    font.lfPitchAndFamily = options.monospace ? 1 : 0;
    const std::u16string family = ArgumentToUtf16("--font", options.family);
    const auto latin = OpenCodePage(SystemAnsiCodePage);
    if (latin->FindForeignUnit(family) != CodePageConverter::NotFound ||
        latin->MeasureBytes(family) >= sizeof font.lfFaceName) {
        throw UsageError(
            "--font: a family has at most 31 letters, all of code page 1252; see "
            "fc-list : family");
    }
    latin->ToBytes(family, font.lfFaceName);
    return font;
}

std::string FormatOf(const DrawOptions& options) {
    if (!options.format.empty() || options.measure) {
        return options.format.empty() ? "png" : options.format;
    }
    std::string ending = std::filesystem::path(options.output).extension().string();
    std::transform(ending.begin(), ending.end(), ending.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    if (ending != ".png" && ending != ".pdf" && ending != ".svg") {
        throw UsageError("--output: " + options.output +
                         " ends in none of .png, .pdf and .svg; say --format");
    }
    return ending.substr(1);
}

/// All texts as the lines of one.
std::u16string TextOf(CommandContext& context, const TextSources& sources) {
    std::u16string all;
    std::size_t count = 0;
    ForEachText(sources, [&](std::string_view text) {
        WarnOfZero(context.console, ++count, text);
        all += (count == 1 ? u"" : u"\n") + ToUtf16(text.substr(0, text.find('\0')));
    });
    return all;
}

/// The room that the text takes on a surface of this kind, wrapped if a width is given.
Size Measure(IUDrawText& drawer, const Bstr& text, const DrawOptions& options,
             const std::string& format, const LOGFONT& font) {
    const Context context(format, "/dev/null", {1, 1});
    Check(SelectDeviceContextFont(context.Handle(), &font), "choosing the font");
    Size size{};
    Check(drawer.GetTextWidth(context.Handle(), text.Get(), &size.width), "measuring");
    size.width = options.width.value_or(size.width);
    Check(drawer.GetTextHeight(context.Handle(), text.Get(), size.width, &size.height),
          "measuring");
    return size;
}

/// Draws the text, which takes `room`, and gives the size of the picture.
Size Draw(IUDrawText& drawer, const Bstr& text, const DrawOptions& options,
          const std::string& format, const LOGFONT& font, Size room) {
    const std::int32_t most = format == "png" ? MaxPictureSide : MaxPageSide;
    const Size inside{room.width, options.height.value_or(room.height)};
    const Size size{std::max(inside.width, 1) + 2 * options.margin,
                    std::max(inside.height, 1) + 2 * options.margin};
    if (size.width > most || size.height > most) {
        throw Failure("the text takes " + std::to_string(size.width) + " x " +
                      std::to_string(size.height) + " units with its margin, and a " + format +
                      " holds " + std::to_string(most) + " each way; give --width and --height" +
                      (format == "png" ? ", or write a pdf" : ""));
    }
    OutputFile file(options.output, options.force);
    Context context(format, file.Path(), size);
    if (!options.background.empty() || (format == "png" && !options.transparent)) {
        const std::int32_t color =
            options.background.empty() ? 0xFFFFFF : ParseColor(options.background);
        Check(FillDeviceContext(context.Handle(), static_cast<COLORREF>(color)), "drawing");
    }
    Check(SelectDeviceContextFont(context.Handle(), &font), "choosing the font");
    Check(SetDeviceContextTextColor(context.Handle(),
                                    static_cast<COLORREF>(ParseColor(options.color))),
          "choosing the colour");
    tagRECT bounds{options.margin, options.margin, size.width - options.margin,
                   size.height - options.margin};
    Check(drawer.DrawText(context.Handle(), text.Get(), &bounds), "drawing");
    context.Write(format, file.Path());
    file.Commit();
    return size;
}

ExitCode RunDraw(CommandContext& context, const DrawOptions& options) {
    if (options.output.empty() != options.measure) {
        throw UsageError("either --output or --measure says what is wanted");
    }
    const LOGFONT font = FontOf(options);
    const std::string format = FormatOf(options);
    const Bstr text(TextOf(context, options.sources));
    const auto drawer = CreateComponent<IUDrawText>(CLSID_UDrawText, IID_IUDrawText, "UDrawText");
    const Size room = Measure(*drawer.Get(), text, options, format, font);
    nlohmann::json document{
        {"format", "genutil.draw/1"}, {"textWidth", room.width}, {"textHeight", room.height}};
    std::string words = std::to_string(room.width) + "\t" + std::to_string(room.height);
    bool direct = false;
    if (!options.measure) {
        const Size size = Draw(*drawer.Get(), text, options, format, font, room);
        document.update({{"file", options.output},
                         {"fileFormat", format},
                         {"width", size.width},
                         {"height", size.height}});
        words = "Wrote " + options.output + ": " + format + ", " + std::to_string(size.width) +
                " x " + std::to_string(size.height);
        direct = !std::filesystem::is_regular_file(options.output);
    }
    words = options.asJson ? document.dump(2) : words;
    if (direct) {
        context.console.Note(words);
    } else {
        context.console.WriteLine(words);
    }
    if (options.height && room.height > *options.height) {
        context.console.Warn("the text is " + std::to_string(room.height - *options.height) +
                             " units higher than --height");
        return ExitCode::NegativeAnswer;
    }
    return ExitCode::Done;
}

}  // namespace

void AddDrawCommand(CLI::App& parent, CommandContext& context) {
    auto options = std::make_shared<DrawOptions>();
    CLI::App* command =
        parent.add_subcommand("draw", "Draw text in any script as PNG, PDF or SVG, or measure it");
    const auto number = [&](const char* name, auto& value, std::int32_t least, const char* help) {
        return command->add_option(name, value, help)
            ->check(CLI::Range(least, MaxPictureSide))
            ->type_name("UNITS");
    };
    AddTextSources(command, options->sources);
    command->add_option("--output,-o", options->output, "The file to write")->type_name("FILE");
    command
        ->add_option("--format", options->format,
                     "png, pdf or svg; without it the ending of the file's name decides")
        ->check(CLI::IsMember({"png", "pdf", "svg"}))
        ->type_name("FORMAT");
    command->add_flag("--measure", options->measure,
                      "Print width and height of the text, and draw nothing");
    command
        ->add_option("--font", options->family,
                     "The family; characters that it lacks come from other ones")
        ->type_name("NAME");
    number("--size", options->size, 1, "Height of the letters; a unit is 1/96 inch")
        ->capture_default_str();
    command->add_flag("--bold", options->bold, "Bold letters");
    command->add_flag("--italic", options->italic, "Italic letters");
    command->add_flag("--underline", options->underline, "A line below the letters");
    command->add_flag("--strike-out", options->strikeOut, "A line through the letters");
    command->add_flag("--monospace", options->monospace,
                      "Letters of one width, where the family is missing or none is given");
    number("--width", options->width, 1, "Wrap the text to this width; else it breaks at its ends");
    number("--height", options->height, 1, "Cut the text at this height");
    number("--margin", options->margin, 0, "Room around the text")->capture_default_str();
    command->add_option("--color", options->color, "The colour of the letters")
        ->check(CheckColor)
        ->capture_default_str()
        ->type_name("#RRGGBB");
    command
        ->add_option("--background", options->background,
                     "The colour behind them; a png is white without it, a page has none")
        ->check(CheckColor)
        ->type_name("#RRGGBB");
    command->add_flag("--transparent", options->transparent, "No colour behind the letters")
        ->excludes("--background");
    command->add_flag("--force", options->force, "Replace a file of that name");
    command->add_flag("--json", options->asJson, "The sizes as JSON, \"genutil.draw/1\"");
    command->footer(
        "Each text is a line, and starts at the right where its script does. Exit code 1: the\n"
        "text is higher than --height.\n\nExamples:\n"
        "  genutil draw -o greeting.png --size 32 'Hello' 'שלום' 'こんにちは'\n"
        "  genutil draw -o page.pdf --width 600 --font 'DejaVu Serif' --file text.txt\n"
        "  genutil draw --measure --width 200 'how high is this?'");
    context.Runs(command, [&context, options] { return RunDraw(context, *options); });
}

}  // namespace generalutilities::cli
