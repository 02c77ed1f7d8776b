#pragma once

namespace tb {

// Property names (and the one fixed value) of the analytics events.
struct TBAnalyticsParameters {
    const char* source = "Source";
    const char* selection = "Selection";
    const char* location = "Location";
    const char* genre = "Genre";
    const char* query = "Query";
    const char* authType = "Type";
    const char* authFailureType = "Failure Type";
    const char* env = "Env";
    const char* envValue = "iOS";
};

}  // namespace tb
