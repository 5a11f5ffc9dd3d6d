// Makes the lines of a run record from the fields of JSON objects.

#pragma once

#include "results/runs/Json.h"
#include "results/runs/RunLines.h"

namespace corvane {

// Each returns the line with defaults for fields that are missing or wrong,
// about which it complains to \p fields.

ProcessLine readProcess(JsonFields &fields);
DeviceLine readDevice(JsonFields &fields);
ProgramLine readProgram(JsonFields &fields);
ConfigurationLine readConfiguration(JsonFields &fields);
SampleLine readSample(JsonFields &fields);
CheckLine readCheck(JsonFields &fields);
DecisionLine readDecision(JsonFields &fields);
EndLine readEnd(JsonFields &fields);

} // namespace corvane
