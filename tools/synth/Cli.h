#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace synth {

// The command line of brinova-synth, without the program name. Returns the exit status:
// 0 done, 1 a bad song or file, 2 a bad command line.
int runCommandLine(const std::vector<std::string>& args, std::ostream& out, std::ostream& err);

} // namespace synth
