#include "platform/JsonLimits.h"

namespace tb {

bool jsonNestingWithin(std::string_view text, int maxDepth) {
    int depth = 0;
    bool inString = false;
    bool escaped = false;
    for (const char c : text) {
        if (inString) {
            if (escaped) {
                escaped = false;
            } else if (c == '\\') {
                escaped = true;
            } else if (c == '"') {
                inString = false;
            }
            continue;
        }
        switch (c) {
            case '"':
                inString = true;
                break;
            case '[':
            case '{':
                if (++depth > maxDepth) {
                    return false;
                }
                break;
            case ']':
            case '}':
                --depth;
                break;
            default:
                break;
        }
    }
    return true;
}

}  // namespace tb
