#pragma once
#include <string>
#include <vector>

#include "ScenarioParser.h"

// Runs a scenario against SETUP.EXE: starts it, acts on its windows as a user
// does, and checks what the screen and the machine show. Besides the windows
// and files, a scenario reaches (texts may name %VARIABLES% of the environment):
//   reg-set <key> <name> <text>       expect-reg <key> <name> <text or (none)>
//   expect-log <line>                 expect-no-log <line>    (TavRinInstall.log)
//   service <path> [<form>]           expect-service <path> <text in the answer>
//     (the TavRin service in test mode at TAVRIN_SERVICE_URL: GET, or POST of a form)
//   forget-account                    expect-cookie <url> <text>
//   unique <VARIABLE> <prefix>        a name no earlier run took, e.g. for an account
//   clean-machine                     no product, no leftovers of a run, no account
//   use-service                       the wizard told to use TAVRIN_SERVICE_URL
//   welcome-page                      the frame on its first page
//   cancel-no, cancel-yes             Cancel, and No (the wizard stays) or Yes to its question
//   finish-opening-nothing            the finish page's boxes unticked, then Finish
// With a shots folder, `shot <name>` pictures the screen, and so does every `box`
// step before it answers.
namespace scenario {

struct RunOptions {
    std::string program;      // SETUP.EXE when no `program` step names another
    std::string shotsFolder;  // empty: `shot` steps take nothing
};

// Runs the steps in order, one line of report each. Stops at the first failing
// one: prints its line and what was seen, ends the started program, returns false.
bool runScenario(const std::vector<Step>& steps, const RunOptions& options);

}  // namespace scenario
