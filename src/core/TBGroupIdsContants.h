#pragma once

namespace tb {

// The shared defaults suite of the message extension. (The type keeps its historic spelling.)
struct TBGroupIdsContants {
    const char* imessageExtension = "group.com.tunebrook.iphone.imessageextension";
};

}  // namespace tb
