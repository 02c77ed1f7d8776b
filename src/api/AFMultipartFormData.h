#pragma once

#include <string>

#include "platform/HttpTransport.h"

namespace tb {

// The body of a multipart/form-data request, built part by part.
class AFMultipartFormData {
  public:
    explicit AFMultipartFormData(std::string boundary);

    void appendPartWithFileData(const std::string& data,
                                const std::string& name,
                                const std::string& fileName,
                                const std::string& mimeType);
    void appendPartWithFormData(const std::string& data, const std::string& name);
    void appendPartWithHeaders(const HttpHeaders& headers, const std::string& body);

    const std::string& boundary() const { return boundary_; }
    // "multipart/form-data; boundary=..."
    std::string contentType() const;
    // The parts so far and the closing boundary.
    std::string body() const;

  private:
    std::string boundary_;
    std::string parts_;
};

}  // namespace tb
