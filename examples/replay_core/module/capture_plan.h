#pragma once

#include <vector>

#include "replay/report.h"
#include "replay_core/module/environment.h"
#include "replay_core/recorder/record_take.h"
#include "replay_core/state/takes.h"

// What is to be recorded of the captures of a request. Nothing of it touches the scene. A capture
// that cannot be recorded is left out, and told in its own report; where not one is left, the
// report's error says why.
namespace replay {

// The captures with the frames that are to be recorded; `report` gets an entry for each that was
// asked for.
std::vector<PlannedTake> ReadCaptures(const Request& request, Report& report);

// Gives each a take to go into, and warns of what is written over.
void FindTakes(const Request& request, Takes& takes, std::vector<PlannedTake>& plan,
               Report& report);

// Of what is planned, the entries of the report, in the same order.
std::vector<CaptureReport*> ReportsOf(std::span<const PlannedTake> plan, Report& report);

}  // namespace replay
