#include "apps/kel/commands/output_options.h"

#include <CLI/CLI.hpp>
#include <string>

#include "kel/outputs/output_format.h"

namespace kel {

void AddOutputOptions(CLI::App& command, OutputOptions& options) {
    command
        .add_option("--out", options.out,
                    "Writes the rendered picture: a film (" + OutputEndings(IsVideoOutput, "") +
                        "), a picture of every field (f%05d.png), or the last one (" +
                        OutputEndings(IsPictureOutput, "") + ")")
        ->type_name("FILE");
    command
        .add_option("--overlay", options.overlay,
                    "Writes the strokes alone as the window shows them, with alpha: a film (" +
                        OutputEndings(IsAlphaVideoOutput, "") +
                        "), a picture of every field (f%05d.png), or the last one (" +
                        OutputEndings(IsAlphaPictureOutput, "") + ")")
        ->type_name("FILE");
    command
        .add_option("--canvas", options.canvas,
                    "Writes the canvas as it is at the end, flat and in its own size, with alpha (" +
                        OutputEndings(IsAlphaPictureOutput, "") + ")")
        ->type_name("FILE");
    command.add_option("--fill", options.fill, "Writes the colors of the strokes, for a mixer; goes with --key")
        ->type_name("FILE");
    command.add_option("--key", options.key, "Writes the alpha of the strokes as gray; goes with --fill")
        ->type_name("FILE");
    command.add_flag_callback(
        "--straight", [&options] { options.isStraight = true; },
        "Overlay and fill have colors that are not multiplied by alpha");
}

void AddLiveOptions(CLI::App& command, std::vector<LiveRequest>& requests) {
    const auto add = [&](const char* name, View view, const std::string& what) {
        command
            .add_option_function<std::vector<std::string>>(
                name,
                [&requests, view](const std::vector<std::string>& addresses) {
                    for (const std::string& address : addresses) requests.push_back({view, address});
                },
                what)
            ->type_name("ADDRESS")
            ->expected(1)
            ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    };
    const std::string all = OutputEndings(IsStreamOutput, "or");
    add("--live", View::Rendered, "Sends the rendered picture live to an address (" + all + "); may be repeated");
    add("--live-overlay", View::Overlay,
        "Sends the strokes alone live, with alpha (" + OutputEndings(IsAlphaStreamOutput, "or") + ")");
    add("--live-fill", View::Fill, "Sends the colors of the strokes live, for a mixer; goes with --live-key");
    add("--live-key", View::Key, "Sends the alpha of the strokes live as gray; goes with --live-fill");
    add("--live-fill-key", View::FillKey, "Sends fill and key live in one picture, side by side");
}

}  // namespace kel
