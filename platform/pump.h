#pragma once

namespace radiashafts::platform {

// Dispatches the pending window messages of the calling thread. Returns false on a quit message,
// which is posted again so that the outer message loop also ends.
bool pumpPendingMessages();

}  // namespace radiashafts::platform
