#pragma once

namespace radiashafts::standin {

// Standard input and output pass all bytes as they are.
void useBinaryStreams();

}  // namespace radiashafts::standin
