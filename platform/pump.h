#pragma once

namespace radiashafts::platform {

// Takes and dispatches all waiting window messages of the calling thread. False when a quit
// message was among them; it has then been posted again, so that the outer loop sees it too.
bool pumpPendingMessages();

}  // namespace radiashafts::platform
