#pragma once

namespace radiashafts::standin {

// Whether standard error is a terminal, so that a progress bar can be drawn.
bool errorIsTerminal();

}  // namespace radiashafts::standin
