// Sends a project's French rows to a reviewer as a table for a word processor:
//   export-view handbook.project fr.rtf

#include <generalutilities/automation/client.h>
#include <generalutilities/automation/progress_events.h>
#include <generalutilities/extview/export_options.h>

#include <iostream>

using namespace generalutilities;

namespace {

constexpr std::int32_t French = 1036;
constexpr std::int32_t Yellow = 0x00FFFF, Green = 0x00C000, Grey = 0xC0C0C0;

void ExportView(const std::string& path, const std::string& destination) {
    const auto helper = Create<IExtViewHelper>(CLSID_ExtViewHelper);
    Call(helper, &IExtViewHelper::put_TargetFont, u"Noto Sans");

    int shown = -25;
    ProgressConnection progress(helper, [&](int percent) {
        if (percent >= shown + 25) {
            shown = percent;
            std::cout << percent << " %\n";
        }
    });
    Call(helper, &IExtViewHelper::ExportExternalView, OpenProject(path), FromUtf8(destination),
         AllFiles, French, ShowIdColumn | ShowStatusColumn | ShowStatusValue | ColorAllRows, u"",
         Green, Green, Yellow, Yellow, Yellow, Yellow, Grey, Yellow, Yellow);
    progress.RethrowFailure();

    if (!Call(helper, &IExtViewHelper::IsFileRTF, FromUtf8(destination))) {
        throw Error(E_FAIL, destination + " is no RTF file");
    }
}

void ShowWhatFitsWindows1252() {
    const auto utils = Create<IStringUtils>(CLSID_StringUtils);
    for (const char* text : {"straße", "Ångström", "Ελλάδα"}) {
        const std::u16string upper = Call(utils, &IStringUtils::ToUpper, FromUtf8(text));
        std::cout << ToUtf8(upper) << ": "
                  << (Call(utils, &IStringUtils::IsStringInCodePage, upper, 1252) ? "" : "not ")
                  << "in code page 1252\n";
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "usage: export-view PROJECT DESTINATION.rtf\n";
        return 2;
    }
    try {
        ExportView(argv[1], argv[2]);
        ShowWhatFitsWindows1252();
        return 0;
    } catch (const ComponentError& error) {
        std::cerr << "export-view: " << error.what() << " (" << error.Source() << ")\n";
    } catch (const Error& error) {
        std::cerr << "export-view: " << error.what() << '\n';
    }
    return 3;
}
