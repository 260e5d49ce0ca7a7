#include "apps/kel/commands/claimed_files.h"

#include <system_error>

#include "cli/error.h"
#include "cli/file_claims.h"
#include "cli/json_node.h"
#include "kel/outputs/output_sink.h"
#include "kel/session/session_lines.h"

namespace kel {

void ClaimFiles(const OutputOptions& outputs, const std::filesystem::path& recording) {
    cli::FileClaims claims;
    for (const auto& input : outputs.inputs)
        if (!input.empty()) claims.Read(input);
    for (const std::string& output : {outputs.out, outputs.overlay, outputs.canvas, outputs.fill, outputs.key})
        if (!output.empty() && !IsNumberedName(output)) claims.Write(output);
    if (!recording.empty()) claims.Write(recording);
}

void RequireSessionPlace(const std::filesystem::path& recording) {
    std::error_code failure;
    if (!std::filesystem::exists(recording, failure) || std::filesystem::file_size(recording, failure) == 0) return;
    try {
        if (cli::ParseJson(WholeSessionText(cli::ReadJsonText(recording)), recording).contains("containers")) return;
    } catch (const cli::Error&) {
        // Not even JSON: told below.
    }
    throw cli::Error(recording.string(), {}, "is no session; --overwrite replaces it all the same");
}

}  // namespace kel
