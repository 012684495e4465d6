#pragma once

#include <windows.h>

namespace radiashafts::platform {

// Offered each message before pumpPendingMessages dispatches it.
class MessageFilter {
 public:
  // Returns whether it has handled the message.
  virtual bool take(MSG& message) = 0;

 protected:
  ~MessageFilter() = default;
};

// Null for none.
void setMessageFilter(MessageFilter* filter);

}  // namespace radiashafts::platform
