#pragma once

namespace radiashafts::standin {

// Whether standard error goes to a terminal that a bar can be drawn on.
bool errorIsTerminal();

}  // namespace radiashafts::standin
