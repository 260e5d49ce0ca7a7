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

}  // namespace kel
