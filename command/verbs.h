#pragma once

namespace CLI {
class App;
}

// The verbs of the command, a source each. A verb adds itself with its options and its help, does
// its work when it is called, prints what came of it to stdout when all of it is done, and throws a
// Failure otherwise.
namespace headless {

void AddRecordVerb(CLI::App& app);
void AddOpenVerb(CLI::App& app);
void AddMergeVerb(CLI::App& app);
void AddSampleVerb(CLI::App& app);
void AddInspectVerb(CLI::App& app);
void AddDrawVerb(CLI::App& app);
void AddRenderVerb(CLI::App& app);
void AddConvertVerb(CLI::App& app);
void AddRecoverVerb(CLI::App& app);
void AddInfoVerb(CLI::App& app);
void AddExportVerb(CLI::App& app);
void AddViewVerb(CLI::App& app);
void AddRunVerb(CLI::App& app);
void AddCheckVerb(CLI::App& app);
void AddDiffVerb(CLI::App& app);
void AddTapeVerbs(CLI::App& app);
void AddTapeWatchVerb(CLI::App& app);
void AddTapeReplayVerb(CLI::App& app);

// Of all verbs, so that they are added last.
void AddHelpVerbs(CLI::App& app);

}  // namespace headless
