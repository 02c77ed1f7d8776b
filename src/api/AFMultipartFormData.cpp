#include "api/AFMultipartFormData.h"

namespace tb {

namespace {

// Quotes and line breaks would end the header value early; they are escaped as a browser
// does for form field names.
std::string quoted(const std::string& text) {
    std::string escaped;
    for (const char c : text) {
        if (c == '"') {
            escaped += "%22";
        } else if (c == '\r') {
            escaped += "%0D";
        } else if (c == '\n') {
            escaped += "%0A";
        } else {
            escaped += c;
        }
    }
    return "\"" + escaped + "\"";
}

}  // namespace

AFMultipartFormData::AFMultipartFormData(std::string boundary) : boundary_(std::move(boundary)) {}

void AFMultipartFormData::appendPartWithFileData(const std::string& data,
                                                 const std::string& name,
                                                 const std::string& fileName,
                                                 const std::string& mimeType) {
    appendPartWithHeaders({{"Content-Disposition",
                            "form-data; name=" + quoted(name) + "; filename=" + quoted(fileName)},
                           {"Content-Type", mimeType}},
                          data);
}

void AFMultipartFormData::appendPartWithFormData(const std::string& data, const std::string& name) {
    appendPartWithHeaders({{"Content-Disposition", "form-data; name=" + quoted(name)}}, data);
}

void AFMultipartFormData::appendPartWithHeaders(const HttpHeaders& headers,
                                                const std::string& body) {
    parts_ += "--" + boundary_ + "\r\n";
    for (const auto& [name, value] : headers) {
        parts_ += name + ": " + value + "\r\n";
    }
    parts_ += "\r\n" + body + "\r\n";
}

std::string AFMultipartFormData::contentType() const {
    return "multipart/form-data; boundary=" + boundary_;
}

std::string AFMultipartFormData::body() const {
    return parts_ + "--" + boundary_ + "--\r\n";
}

}  // namespace tb
