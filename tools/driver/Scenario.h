#pragma once
#include <string>
#include <vector>

#include "ScenarioParser.h"

// Runs a scenario against SETUP.EXE: starts it, acts on its windows as a user
// does, and checks what the screen and the machine show.
namespace scenario {

struct RunOptions {
    std::string program;      // SETUP.EXE when no `program` step names another
    std::string shotsFolder;  // empty: `shot` steps take nothing
};

// Runs the steps in order, one line of report each. Stops at the first failing
// one: prints its line and what was seen, ends the started program, returns false.
bool runScenario(const std::vector<Step>& steps, const RunOptions& options);

}  // namespace scenario
