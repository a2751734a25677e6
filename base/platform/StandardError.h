// Writing to standard error without waiting for whoever reads it.
#pragma once

namespace qv::platform {

// Makes writes to a pipe that nobody reads any more fail from now on, instead of ending the
// process.
void SurviveClosedPipes();

// Returns false if a line of up to 4096 bytes that is written to standard error now could have to
// wait, because nobody empties the pipe or the terminal that it leads to.
[[nodiscard]] bool StandardErrorHasRoom();

}  // namespace qv::platform
