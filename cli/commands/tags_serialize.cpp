#include "commands/tags_serialize.h"

#include <generalutilities/automation/dictionary.h>
#include <generalutilities/interfaces/class_ids.h>
#include <generalutilities/interfaces/string_utils.h>

#include "component_client.h"
#include "text_sources.h"
#include "unicode.h"

#include <limits>
#include <memory>
#include <nlohmann/json.hpp>

/// `genutil tags serialize`: the codes of segments as numbered markers.
namespace generalutilities::cli {
namespace {

using nlohmann::json;

struct SerializeOptions {
    TextSources sources;
    std::int32_t lastNumber = 0;
    bool ignoreFonts = false;
    bool asJson = false;
};

class SerializeRun {
  public:
    SerializeRun(Console& console, const SerializeOptions& options)
        : output(console),
          gather(options.asJson),
          lastNumber(options.lastNumber),
          utils(CreateComponent<IStringUtils>(CLSID_StringUtils, IID_IStringUtils, "StringUtils")),
          targets(CreateComponent<IDictionary>(CLSID_Dictionary, IID_IDictionary, "Dictionary")) {
        utils->put_TTXIgnoreFonts(options.ignoreFonts ? VARIANT_TRUE : VARIANT_FALSE);
    }

    /// The source and its targets.
    void Add(const std::vector<std::string>& texts) {
        const std::string doing = "segment " + std::to_string(++count);
        targets->RemoveAll();
        for (std::size_t i = 1; i < texts.size(); ++i) {
            const Bstr text(ToUtf16(texts[i]));
            VARIANT key = KeyOf(i);
            VARIANT item{};
            item.vt = VT_BSTR;
            item.bstrVal = text.Get();
            Check(targets->Add(&key, &item), doing);
        }
        Bstr source(ToUtf16(texts[0]));
        SAFEARRAY* numbers = nullptr;
        SAFEARRAY* contents = nullptr;
        const HRESULT status =
            utils->SerializeCodes(source.InOut(), targets.Get(), &lastNumber, &numbers, &contents);
        const ArrayPtr ownNumbers(numbers), ownContents(contents);
        Check(status, doing);

        std::vector<std::string> marked = {ToUtf8(source.View())};
        for (std::size_t i = 1; i < texts.size(); ++i) {
            VARIANT key = KeyOf(i);
            Variant item;
            Check(targets->get_Item(&key, item.Out()), doing);
            marked.push_back(ToUtf8({item.Get().bstrVal, SysStringLen(item.Get().bstrVal)}));
        }
        Tell(marked, ownNumbers.get(), ownContents.get());
    }

    void Finish() {
        if (gather) {
            const json document{{"format", "genutil.tags/1"},
                                {"operation", "serialize"},
                                {"lastNumber", lastNumber},
                                {"results", std::move(results)}};
            output.WriteLine(document.dump(2));
        }
    }

  private:
    static VARIANT KeyOf(std::size_t target) {
        VARIANT key{};
        key.vt = VT_I4;
        key.lVal = static_cast<std::int32_t>(target);
        return key;
    }

    void Tell(const std::vector<std::string>& marked, SAFEARRAY* numbers, SAFEARRAY* contents) {
        json codes = json::array();
        std::string lines;
        for (std::size_t i = 0; i < marked.size(); ++i) {
            lines += (i == 0 ? "source\t" : "target\t") + ShowControls(marked[i]) + "\n";
        }
        std::int32_t last = -1;
        SafeArrayGetUBound(numbers, 1, &last);
        for (std::int32_t i = 0; i <= last; ++i) {
            std::int32_t number = 0;
            Bstr tag;
            Check(SafeArrayGetElement(numbers, &i, &number), "the numbers of the codes");
            Check(SafeArrayGetElement(contents, &i, tag.Out()), "the codes");
            const std::string code = ToUtf8(tag.View());
            lines += std::to_string(number) + "\t" + ShowControls(code) + "\n";
            codes.push_back({{"number", number}, {"tag", code}});
        }
        if (gather) {
            results.push_back({{"texts", marked}, {"codes", std::move(codes)}});
        } else {
            output.Write((count == 1 ? "" : "\n") + lines);  // an empty line parts the segments
        }
    }

    Console& output;
    bool gather;
    std::int32_t lastNumber;
    ComPtr<IStringUtils> utils;
    ComPtr<IDictionary> targets;
    json results = json::array();
    std::size_t count = 0;
};

ExitCode RunSerialize(CommandContext& context, const SerializeOptions& options) {
    SerializeRun run(context.console, options);
    std::size_t number = 0;
    std::vector<std::string> segment;
    if (!options.sources.texts.empty()) {
        ForEachText({options.sources.texts, {}}, [&](std::string_view text) {
            WarnOfZero(context.console, ++number, text);
            segment.emplace_back(text);
        });
        run.Add(segment);
    }
    if (options.sources.texts.empty() || !options.sources.files.empty()) {
        ForEachText({{}, options.sources.files}, [&](std::string_view line) {
            WarnOfZero(context.console, ++number, line);
            segment.clear();
            for (std::size_t start = 0, end = 0; end != line.npos; start = end + 1) {
                end = line.find('\t', start);
                segment.emplace_back(line.substr(start, end - start));
            }
            run.Add(segment);
        });
    }
    run.Finish();
    return ExitCode::Done;
}

}  // namespace

void AddTagsSerializeCommand(CLI::App& tags, CommandContext& context) {
    auto options = std::make_shared<SerializeOptions>();
    CLI::App* command = tags.add_subcommand(
        "serialize", "The tags of segments as numbered markers, and what the numbers stand for");
    AddTextSources(command, options->sources);
    command
        ->add_option("--last-number", options->lastNumber,
                     "The last number used so far; numbering goes on behind it")
        ->check(CLI::Range(0, std::numeric_limits<std::int32_t>::max()))
        ->type_name("")
        ->capture_default_str();
    command->add_flag("--ignore-fonts", options->ignoreFonts,
                      "Strip font information first: it is no code");
    command->add_flag("--json", options->asJson, "One JSON document, \"genutil.tags/1\"");
    command->footer(
        "Arguments are one segment, the source and its targets. A line of a file or of standard\n"
        "input is a segment whose texts are parted by tabs. Numbers go on from segment to\n"
        "segment. A marker is U+0011, the number, U+0012.\nExample:\n"
        "  genutil tags serialize 'a<p>b<p>c' '<p>d'");
    context.Runs(command, [&context, options] { return RunSerialize(context, *options); });
}

}  // namespace generalutilities::cli
